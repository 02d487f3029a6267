#include "shell/qt/effects_tab.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>

#include <functional>
#include <algorithm>

#include "data/tables.h"
#include "shell/qt/gestures.h"
#include "shell/qt/map_slider.h"
#include "shell/qt/names.h"
#include "shell/qt/render.h"
#include "shell/qt/twips.h"

namespace tessivo::qt {

namespace {
constexpr const char* kReverbTip = "Choose a different reverb type.";
constexpr const char* kChorusTip = "Choose a different Chorus type.";
constexpr const char* kVariationTip = "Choose a different Variation type.";
constexpr const char* kBypassTip = "Click to temporarily bypass all effects.";
constexpr const char* kResetTip = "Click to reset effects to the original settings used by the performance.";
constexpr const char* kDoneTip = "Close Effects panel.";
constexpr int kSmallPixels = 9;  // the lists and buttons: a font of about 7 points
constexpr int kButtonPadding = 10;  // beyond the style's margin, so a short caption does not look cramped


// The type names of a table as a closed list shows them: the blanks that pad each name to its
// table's width take no room on the screen.
QStringList shownNames(std::span<const EffectType> table) {
  QStringList names;
  for (const EffectType& t : table) {
    QString name = qs(t.name);
    while (name.endsWith(' ')) name.chop(1);
    names << name;
  }
  return names;
}



void useSmallFont(QWidget* w) {
  QFont f = w->font();
  f.setPixelSize(kSmallPixels);
  w->setFont(f);
}
}  // namespace

EffectsTab::EffectsTab(EffectsPanel& panel, EditPanel& sliders, std::function<void()> handled, QWidget* parent)
    : QTabWidget(parent), panel_(panel), sliders_(sliders), handled_(std::move(handled)) {
  uncaptioned(this, "SSTab2");
  auto* page = new QWidget(this);
  page->setObjectName("PageEffects");
  auto* grid = new QGridLayout(page);
  grid->setContentsMargins(2, 2, 2, 2);
  grid->setHorizontalSpacing(3);
  grid->setVerticalSpacing(1);
  grid->setColumnStretch(1, 1);
  addTab(page, "Effects");

  // The three types side by side, each under its caption; widgets are made in reading order,
  // which is the order Tab takes.
  auto* lists = new QGridLayout;
  lists->setHorizontalSpacing(3);
  lists->setVerticalSpacing(0);
  cmbRvrb_ = typeList(lists, 0, "Rvrb", "Reverb", kReverbTip, panel_.CmbRvrb, shownNames(RvrbTbl));
  cmbChrs_ = typeList(lists, 1, "Chrs", "Chorus", kChorusTip, panel_.CmbChrs, shownNames(ChrsTbl));
  cmbVar_ = typeList(lists, 2, "Var", "Variation", kVariationTip, panel_.CmbVar, shownNames(VarTbl));
  lists->setColumnStretch(3, 1);
  grid->addLayout(lists, 0, 0, 1, 5);

  for (std::size_t i = 0; i < kSends; ++i) sends_[i] = addMapSlider(grid, sliders_, kFirstEffectSlider + i, 0, handled_);

  // Bypass, Reset and Done stand in a column right of the sends, one beside each; Tab reaches
  // them after the sends.
  chkEffByPass_ = new QCheckBox(qs(panel_.ChkEffByPass.caption), page);
  chkEffByPass_->setObjectName("ChkEffByPass");
  chkEffByPass_->setToolTip(kBypassTip);
  connect(chkEffByPass_, &QCheckBox::clicked, this, [this] {
    panel_.ChkEffByPass.toggle();
    handled_();
  });
  cmdEffReset_ = button("CmdEffReset", panel_.CmdEffReset, kResetTip, &EffectsPanel::CmdEffReset_Click);
  cmdEffDn1_ = button("CmdEffDn1", panel_.CmdEffDn1, kDoneTip, &EffectsPanel::CmdEffDn1_Click);
  const int buttons = std::max(cmdEffReset_->minimumWidth(), cmdEffDn1_->minimumWidth());
  cmdEffReset_->setFixedWidth(buttons);
  cmdEffDn1_->setFixedWidth(buttons);
  grid->setColumnMinimumWidth(3, 4);  // a little air between the boxes and the column
  grid->addWidget(chkEffByPass_, 1, 4);
  grid->addWidget(cmdEffReset_, 2, 4, Qt::AlignLeft);
  grid->addWidget(cmdEffDn1_, 3, 4, Qt::AlignLeft);
  grid->setRowStretch(grid->rowCount(), 1);

  // The panel's place on the form; where its controls need more room in a Linux desktop's
  // fonts, it grows to the right and down just enough.
  place(this, 600, 1560, 5175, 1935);
  const QSize need = minimumSizeHint();
  resize(std::max(width(), need.width()), std::max(height(), need.height()));
  render();
}

QComboBox* EffectsTab::typeList(QGridLayout* grid, int column, const char* name, const char* caption,
                                const char* tip, ListCtl& list, const QStringList& names) {
  QWidget* parent = widget(0);
  auto* label = new QLabel(caption, parent);
  label->setObjectName(QString("Lbl") + name);
  auto* box = new QComboBox(parent);
  box->setObjectName(QString("Cmb") + name);
  box->setToolTip(tip);
  useSmallFont(box);
  // The closed list is as wide as its widest name; the names' padding may run past the edge.
  box->setFixedWidth(listWidthFor(box, names));
  label->setBuddy(box);
  grid->addWidget(label, 0, column);
  grid->addWidget(box, 1, column);
  connect(box, &QComboBox::activated, this, [this, &list](int index) {
    list.pick(index);
    handled_();
  });
  return box;
}

QPushButton* EffectsTab::button(const char* name, const ButtonCtl& ctl, const char* tip,
                                void (EffectsPanel::*handler)()) {
  auto* b = new QPushButton(qs(ctl.caption), widget(0));
  b->setObjectName(name);
  b->setToolTip(tip);
  useSmallFont(b);
  b->setFixedWidth(buttonWidthFor(b, {b->text()}) + kButtonPadding);
  connect(b, &QPushButton::clicked, this, [this, click = std::bind_front(handler, &panel_)] {
    click();
    handled_();
  });
  return b;
}



void EffectsTab::render() {
  renderList(cmbRvrb_, panel_.CmbRvrb);
  renderList(cmbChrs_, panel_.CmbChrs);
  renderList(cmbVar_, panel_.CmbVar);
  for (std::size_t i = 0; i < kSends; ++i) {
    renderMapSlider(sends_[i], sliders_, kFirstEffectSlider + i);
  }
  {
    QSignalBlocker block(chkEffByPass_);
    chkEffByPass_->setChecked(panel_.ChkEffByPass.value() != 0);
    chkEffByPass_->setEnabled(panel_.ChkEffByPass.enabled);
  }
  renderButton(cmdEffReset_, panel_.CmdEffReset);
  renderButton(cmdEffDn1_, panel_.CmdEffDn1);
  setVisible(panel_.visible);
}

}  // namespace tessivo::qt
