#include "shell/qt/edit_tab.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSlider>

#include "shell/qt/gestures.h"
#include "shell/qt/map_slider.h"
#include "shell/qt/names.h"
#include "shell/qt/render.h"
#include "shell/qt/twips.h"

namespace tessivo::qt {

namespace {
constexpr const char* kVoiceTip =
    "If you wish to call up a voice directly, enter new values for msb,lsb, and prg and click change.";
constexpr const char* kNameTip = "Type to change name of multi.";
constexpr const char* kDoneTip = "Close Edit panel.";
constexpr int kHeadingPixels = 13;  // a bold italic heading of about 10 points


void renderGroup(const std::vector<QRadioButton*>& buttons, const OptionGroupCtl& group) {
  for (std::size_t i = 0; i < buttons.size(); ++i) {
    QSignalBlocker block(buttons[i]);
    buttons[i]->setAutoExclusive(false);
    buttons[i]->setChecked(static_cast<int>(i) == group.index());
    buttons[i]->setAutoExclusive(true);
  }
}
}  // namespace

EditTab::EditTab(EditPanel& panel, std::function<void()> handled, QWidget* parent)
    : QTabWidget(parent), panel_(panel), handled_(std::move(handled)) {
  uncaptioned(this, "SSTab1");

  // Page 1: EQ, filter, envelope, level, the voice and the name.
  QWidget* p1 = page("Page 1");
  auto* g1 = static_cast<QGridLayout*>(p1->layout());
  heading(g1, "EQ");
  sliders(g1, 1, 0, 4);
  heading(g1, "Filter");
  sliders(g1, 1, 5, 6);
  heading(g1, "Env");
  sliders(g1, 1, 7, 9);
  heading(g1, "Level");
  sliders(g1, 1, 10, 11);
  QLabel* voiceHeading = heading(g1, "Voice");
  auto* voiceLabel = new QLabel(" msb    lsb     prg", p1);
  voiceLabel->setObjectName("LblVoice");
  g1->addWidget(voiceLabel, g1->rowCount(), 0, 1, 3);
  auto* voice = new QHBoxLayout;
  voice->setSpacing(3);
  txtMsb_ = voiceBox("TxtMsb");
  txtLsb_ = voiceBox("TxtLsb");
  txtPrg_ = voiceBox("TxtPrg");
  for (QLineEdit* box : {txtMsb_, txtLsb_, txtPrg_}) voice->addWidget(box);
  cmdVocChng_ = new QPushButton("Change", p1);
  cmdVocChng_->setObjectName("CmdVocChng");
  cmdVocChng_->setToolTip(kVoiceTip);
  voice->addWidget(cmdVocChng_);
  voice->addStretch();
  g1->addLayout(voice, g1->rowCount(), 0, 1, 3);
  voiceHeading->setBuddy(txtMsb_);
  voiceLabel->setBuddy(txtMsb_);
  connect(cmdVocChng_, &QPushButton::clicked, this, [this] {
    panel_.CmdVocChng_Click();
    handled_();
  });
  auto* nameRow = new QHBoxLayout;
  txtName1_ = new QLineEdit(p1);
  uncaptioned(txtName1_, "TxtName1");
  txtName1_->setToolTip(kNameTip);
  nameRow->addWidget(txtName1_, 1);
  connect(txtName1_, &QLineEdit::textEdited, this, [this](const QString& text) {
    panel_.TxtName1.text = text.toStdString();
    panel_.TxtName1_Change();
    handled_();
  });
  nameRow->addWidget(doneButton("CmdDone1", kDoneTip));
  g1->addLayout(nameRow, g1->rowCount(), 0, 1, 3);
  g1->setRowStretch(g1->rowCount(), 1);

  // Page 2: effect sends, LFO, pitch envelope, portamento.
  QWidget* p2 = page("Page 2");
  auto* g2 = static_cast<QGridLayout*>(p2->layout());
  heading(g2, "Effects");
  sliders(g2, 2, 12, 15);
  heading(g2, "LFO");
  sliders(g2, 2, 16, 18);
  heading(g2, "PEnv");
  sliderRow(g2, 20);  // attack and initial level stand in the instrument's order
  sliderRow(g2, 19);
  sliderRow(g2, 21);
  sliderRow(g2, 22);
  QLabel* portamento = heading(g2, "Portamento");
  chckPort_ = new QCheckBox(qs(panel_.ChckPort.caption), p2);
  chckPort_->setObjectName("ChckPort");
  portamento->setBuddy(chckPort_);
  g2->addWidget(chckPort_, g2->rowCount(), 0, 1, 3);
  connect(chckPort_, &QCheckBox::clicked, this, [this] {
    panel_.ChckPort.toggle();
    handled_();
  });
  sliderRow(g2, 23);
  nameAndDone(g2, 0, "CmdDone2_0");

  // Page 3: velocity, note, detune and the three option groups.
  QWidget* p3 = page("Page 3");
  auto* g3 = static_cast<QGridLayout*>(p3->layout());
  heading(g3, "Velocity");
  sliders(g3, 3, 24, 27);
  heading(g3, "Note");
  sliders(g3, 3, 28, 30);
  heading(g3, "Detune");
  sliders(g3, 3, 31, 31);
  options(g3, "FrmPartMode", panel_.Option3, option3_, 2);
  options(g3, "FrmMonoPoly", panel_.Option2, option2_, 2);
  options(g3, "FrmSameNote", panel_.Option1, option1_, 3);
  nameAndDone(g3, 1, "CmdDone2_1");

  // The panel's place on the form; where a page needs more room in a Linux desktop's fonts,
  // the panel grows to the right and down just enough.
  varSendLabel_ = findChild<QLabel*>("Labelx1_15");  // "Variation Send", M5's alone
  place(this, 8040, 1095, 3015, 6615);
  const QSize need = minimumSizeHint();
  resize(std::max(width(), need.width()), std::max(height(), need.height()));
  render();
}

void EditTab::nameAndDone(QGridLayout* grid, std::size_t label, const char* done) {
  auto* row = new QHBoxLayout;
  label34_[label] = new QLabel(grid->parentWidget());
  uncaptioned(label34_[label], QString("Label34_%1").arg(label));
  row->addWidget(label34_[label], 1);
  row->addWidget(doneButton(done));
  grid->addLayout(row, grid->rowCount(), 0, 1, 3);
  grid->setRowStretch(grid->rowCount(), 1);
}

QWidget* EditTab::page(const char* name) {
  auto* p = new QWidget(this);
  p->setObjectName(QString(name).remove(' '));
  auto* grid = new QGridLayout(p);
  grid->setContentsMargins(4, 2, 4, 2);
  grid->setHorizontalSpacing(3);
  grid->setVerticalSpacing(1);
  grid->setColumnStretch(1, 1);
  addTab(p, name);
  return p;
}

QLabel* EditTab::heading(QGridLayout* grid, const char* text) {
  auto* l = new QLabel(text, grid->parentWidget());
  l->setObjectName(QString("LblHd") + text);
  QFont f = l->font();
  f.setBold(true);
  f.setItalic(true);
  f.setPixelSize(kHeadingPixels);
  l->setFont(f);
  grid->addWidget(l, grid->rowCount(), 0, 1, 3);
  return l;
}

void EditTab::sliders(QGridLayout* grid, int, std::size_t first, std::size_t last) {
  for (std::size_t row = first; row <= last; ++row) sliderRow(grid, row);
}

void EditTab::sliderRow(QGridLayout* grid, std::size_t row) {
  // One width for all boxes, the widest text's, so the column stands straight.
  static const int width = [] {
    QLineEdit probe;
    return widestValueBox(&probe);
  }();
  sliders_[row] = addMapSlider(grid, panel_, row, width, handled_);
}

QLineEdit* EditTab::voiceBox(const char* name) {
  auto* box = new QLineEdit(widget(0));
  uncaptioned(box, name);
  box->setToolTip(kVoiceTip);
  box->setFixedWidth(editWidthFor(box, "1288"));
  TextCtl& ctl = name == QString("TxtMsb") ? panel_.TxtMsb : name == QString("TxtLsb") ? panel_.TxtLsb : panel_.TxtPrg;
  connect(box, &QLineEdit::textEdited, this, [&ctl](const QString& text) { ctl.text = text.toStdString(); });
  return box;
}

QGroupBox* EditTab::options(QGridLayout* grid, const char* name, OptionGroupCtl& group,
                            std::vector<QRadioButton*>& buttons, int columns) {
  auto* frame = new QGroupBox(qs(group.frame), grid->parentWidget());
  frame->setObjectName(name);
  auto* layout = new QGridLayout(frame);
  layout->setContentsMargins(4, 0, 4, 0);
  layout->setVerticalSpacing(0);
  const QString base = group.frame == "Same Note No. Key On Assign" ? "Option1"
                       : group.frame == "Mono/Poly Mode"            ? "Option2"
                                                                    : "Option3";
  for (std::size_t i = 0; i < group.captions.size(); ++i) {
    auto* b = new QRadioButton(qs(group.captions[i]), frame);
    b->setObjectName(QString("%1_%2").arg(base).arg(i));
    layout->addWidget(b, static_cast<int>(i) / columns, static_cast<int>(i) % columns);
    buttons.push_back(b);
    connect(b, &QRadioButton::clicked, this, [this, &group, i] {
      group.pick(static_cast<int>(i));
      handled_();
    });
  }
  grid->addWidget(frame, grid->rowCount(), 0, 1, 3);
  return frame;
}

QPushButton* EditTab::doneButton(const char* name, const QString& tip) {
  auto* b = new QPushButton("Done", this);
  b->setObjectName(name);
  if (!tip.isEmpty()) b->setToolTip(tip);
  connect(b, &QPushButton::clicked, this, [this] {
    panel_.Done();
    handled_();
  });
  return b;
}



void EditTab::render() {
  for (std::size_t row = 0; row < kEditSliders; ++row) {
    renderMapSlider(sliders_[row], panel_, row);
  }
  varSendLabel_->setEnabled(panel_.sliders[kVarSendRow].enabled);
  renderText(txtMsb_, panel_.TxtMsb);
  renderText(txtLsb_, panel_.TxtLsb);
  renderText(txtPrg_, panel_.TxtPrg);
  renderButton(cmdVocChng_, panel_.CmdVocChng);
  renderText(txtName1_, panel_.TxtName1);
  for (std::size_t i = 0; i < label34_.size(); ++i) label34_[i]->setText(shownText(panel_.Label34[i].text));
  {
    QSignalBlocker block(chckPort_);
    chckPort_->setChecked(panel_.ChckPort.value() != 0);
  }
  renderGroup(option1_, panel_.Option1);
  renderGroup(option2_, panel_.Option2);
  renderGroup(option3_, panel_.Option3);
  setVisible(panel_.visible);
}

}  // namespace tessivo::qt
