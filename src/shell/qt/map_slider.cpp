#include "shell/qt/map_slider.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSlider>

#include "shell/qt/gestures.h"
#include "shell/qt/names.h"
#include "shell/qt/render.h"
#include "shell/qt/twips.h"

namespace tessivo::qt {

namespace {
constexpr int kRowHeight = 16;

int boxWidthFor(QLineEdit* box, const SliderRow& r) {
  int widest = 0;
  for (int v = r.min; v <= r.max; ++v) widest = std::max(widest, editWidthFor(box, QString::fromStdString(familyText(r.family, v))));
  return widest;
}
}  // namespace

int widestValueBox(QLineEdit* box) {
  int widest = 0;
  for (const SliderRow& r : kSliderMap) widest = std::max(widest, boxWidthFor(box, r));
  return widest;
}

MapSlider addMapSlider(QGridLayout* grid, EditPanel& panel, std::size_t row, int boxWidth,
                       const std::function<void()>& handled) {
  const SliderRow& r = kSliderMap[row];
  QWidget* parent = grid->parentWidget();
  auto* caption = new QLabel(qs(r.caption), parent);
  caption->setObjectName(QString("Labelx1_%1").arg(row));
  auto* slider = new QSlider(Qt::Horizontal, parent);
  uncaptioned(slider, qs(r.control));
  slider->setFixedHeight(kRowHeight);
  slider->setMinimumWidth(60);
  slider->setPageStep(r.max - r.min > 40 ? 8 : 2);
  caption->setBuddy(slider);
  auto* text = new QLineEdit(parent);
  uncaptioned(text, qs(r.textBox));
  text->setReadOnly(true);
  text->setFocusPolicy(Qt::NoFocus);  // they only show
  text->setFixedHeight(kRowHeight + 2);
  text->setFixedWidth(boxWidth > 0 ? boxWidth : boxWidthFor(text, r));
  const int at = grid->rowCount();
  grid->addWidget(caption, at, 0);
  grid->addWidget(slider, at, 1);
  grid->addWidget(text, at, 2);
  QObject::connect(slider, &QSlider::valueChanged, slider, [&panel, row, handled](int value) {
    panel.sliders[row].value = value;
    panel.Scroll(row);
    handled();
  });
  new SliderLetGo(slider, [&panel, row, slider, handled] {
    panel.sliders[row].value = slider->value();
    panel.MouseUp(row);
    handled();
  });
  return {slider, text};
}

void renderMapSlider(const MapSlider& widgets, const EditPanel& panel, std::size_t row) {
  renderSlider(widgets.slider, panel.sliders[row]);
  renderText(widgets.text, panel.texts[row]);
}

}  // namespace tessivo::qt
