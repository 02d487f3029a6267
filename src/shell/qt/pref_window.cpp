#include "shell/qt/pref_window.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>
#include <algorithm>

#include "link/numtext.h"
#include "shell/qt/names.h"
#include "shell/qt/qt_app.h"
#include "shell/qt/render.h"
#include "shell/qt/twips.h"

namespace tessivo::qt {

namespace {
constexpr int kWidth = 7425;           // the form's inside width in the layout, in twips
constexpr int kDeviceListsRight = 7335;  // where Combo2, and TxtLdFile above it, end
constexpr int kMaxDeviceList = 2700;    // a device list grows no wider; longer names show as tips
constexpr int kGap = 4;                 // pixels between a moved label and the list beside it

// A label of the form and the control that it names (none for a note beside the controls).
QLabel* label(QWidget* parent, const char* name, const QString& text, QWidget* names) {
  auto* l = new QLabel(text, parent);
  l->setObjectName(name);
  l->setBuddy(names);
  return l;
}
}  // namespace

void PrefWindow::closeUpMultiColumns(QLabel* channelLabel) {
  // Each Multi box is as wide as its caption. The two columns and the channel label beside
  // the second share the room up to Combo1: where the captions need more than the layout
  // gives them, the label moves right as far as that room allows (clear of Combo1) and the
  // columns close up to the left of it.
  int first = 0, second = 0;
  for (std::size_t i = 0; i < chkMlt_.size(); ++i) {
    int& column = i < 6 ? first : second;
    column = std::max({column, chkMlt_[i]->width(), chkMlt_[i]->sizeHint().width()});
  }
  const int room = combo1_->x() - kGap;
  const int labelWidth = narrowestWrap(channelLabel, channelLabel->width());
  const int labelLeft = std::min(std::max(channelLabel->x(), chkMlt_[6]->x() + second), room - labelWidth);
  const int secondLeft = std::min(chkMlt_[6]->x(), labelLeft - second);
  const int firstLeft = std::min(chkMlt_[0]->x(), secondLeft - first);
  for (std::size_t i = 0; i < chkMlt_.size(); ++i)
    chkMlt_[i]->setGeometry(i < 6 ? firstLeft : secondLeft, chkMlt_[i]->y(), i < 6 ? first : second, chkMlt_[i]->height());
  channelLabel->setGeometry(labelLeft, channelLabel->y(), room - labelLeft, channelLabel->heightForWidth(room - labelLeft));
}

void PrefWindow::fitDeviceLists() {
  // The device lists show whole names, both as wide as the longest up to a limit; Combo2, its
  // label and OK move right by what Combo1 grew, and the form and TxtLdFile widen with them.
  // A longer name shows whole under the pointer.
  QStringList names;
  for (const ListCtl* list : {&form_.Combo1, &form_.Combo2})
    for (const std::string& item : list->items) names << shownText(item);
  const int width = std::clamp(listWidthFor(combo1_, names), px(1815), px(kMaxDeviceList));
  const int grow = width - px(1815);
  combo1_->resize(width, combo1_->height());
  combo2_->setGeometry(px(5520) + grow, combo2_->y(), width, combo2_->height());
  label5_->move(px(5760) + grow, label5_->y());
  ok_->move(px(5760) + grow, ok_->y());
  txtLdFile_->resize(px(kDeviceListsRight) + 2 * grow - txtLdFile_->x(), txtLdFile_->height());
  setFixedWidth(px(kWidth) + 2 * grow);
  for (QComboBox* devices : {combo1_, combo2_})
    devices->setToolTip(listWidthFor(devices, {devices->currentText()}) > devices->width() ? devices->currentText()
                                                                                          : QString());
}

QCheckBox* PrefWindow::checkBox(const QString& name, const QString& text, CheckCtl& ctl) {
  auto* box = new QCheckBox(text, this);
  box->setObjectName(name);
  connect(box, &QCheckBox::clicked, this, [this, &ctl](bool on) {
    ctl.value = on ? 1 : 0;
    render();
  });
  return box;
}

PrefWindow::PrefWindow(PrefForm& form, QtApp& app) : form_(form), app_(app) {
  setObjectName("frmPref");
  setWindowTitle(PrefForm::kCaption);
  setFixedSize(px(kWidth), px(2655));
  setModal(false);

  // The Multis to read at start, in two columns.
  for (int m = kFirstMulti; m <= kLastMulti; ++m) {
    const auto i = static_cast<std::size_t>(m - kFirstMulti);
    // The box of Multi 8 has always been spelt this way; its name stays.
    const QString name = m == 8 ? QString("Chkmlt8") : QString("ChkMlt%1").arg(m);
    QCheckBox* box = checkBox(name, QString::fromStdString(form_.ChkMlt(m).caption), form_.ChkMlt(m));
    const int row = static_cast<int>(i % 6);
    place(box, i < 6 ? 360 : 1320, 720 + 240 * row, 975, 255);
    chkMlt_[i] = box;
  }
  QLabel* label1 = label(this, "Label1", PrefForm::kLabel1, chkMlt_[0]);
  label1->setToolTip(PrefForm::kLabel1Tip);
  placeWrapped(label1, 120, 240, 2295, 495);
  // Label2 may widen up to the channel list.
  placeWrapped(label(this, "Label2", PrefForm::kLabel2, nullptr), 240, 2160, 1935, 375, 2400);

  // The Workspace loaded instead. The check box stands in front of the label's leading
  // blanks; its caption does not fit its width and shows nothing, so the desktop knows it by
  // its name and by the label.
  chkLdFile_ = checkBox("ChkLdFile", QString(), form_.ChkLdFile);
  chkLdFile_->setAccessibleName("ChkLdFile");
  placeLabel(label(this, "Label3", PrefForm::kLabel3, chkLdFile_), 2520, 240, 4455, 255);
  place(chkLdFile_, 2640, 240, 255, 255);
  chkLdFile_->raise();
  cmdBrowse_ = new QPushButton(QString::fromStdString(form_.CmdBrowse.caption), this);
  cmdBrowse_->setObjectName("CmdBrowse");
  cmdBrowse_->setAutoDefault(false);
  place(cmdBrowse_, 2520, 600, 735, 285);
  txtLdFile_ = new QLineEdit(this);
  uncaptioned(txtLdFile_, "TxtLdFile");
  place(txtLdFile_, 3360, 600, 3975, 315);

  combo1_ = new QComboBox(this);
  combo1_->setObjectName("Combo1");
  place(combo1_, 3360, 1320, 1815, 315);
  placeLabel(label(this, "Label4", "MIDI In Device", combo1_), 3600, 1080, 1215, 255);
  combo2_ = new QComboBox(this);
  combo2_->setObjectName("Combo2");
  place(combo2_, 5520, 1320, 1815, 315);
  label5_ = label(this, "Label5", "MIDI Out Device", combo2_);
  placeLabel(label5_, 5760, 1080, 1335, 255);

  cmbPerfChnl_ = new QComboBox(this);
  cmbPerfChnl_->setObjectName("cmbPerfChnl");
  place(cmbPerfChnl_, 2400, 1920, 615, 315);
  QStringList channels;
  for (int c = 1; c <= 16; ++c) channels << QString::fromStdString(signedText(c));
  widen(cmbPerfChnl_, listWidthFor(cmbPerfChnl_, channels));
  QLabel* channelLabel = label(this, "Labelx1_55", "Performance Midi Channel", cmbPerfChnl_);
  placeWrapped(channelLabel, 2280, 1500, 975, 375, 3360);
  closeUpMultiColumns(channelLabel);

  // The density of exported MIDI files: the high end at the left.
  slider1_ = new QSlider(Qt::Horizontal, this);
  uncaptioned(slider1_, "Slider1");
  slider1_->setTickPosition(QSlider::NoTicks);
  slider1_->setPageStep(1);
  place(slider1_, 3720, 2160, 1455, 270);
  // Its caption stands over the slider's middle: a wide font widens it to both sides, clear
  // of "High" and "Low".
  placeLabelCentred(label(this, "Label6_0", "Midi File Density", slider1_), 3960, 1920, 1095, 255);
  QLabel* high = label(this, "Label6_2", "High", slider1_);
  placeLabel(high, 3240, 2040, 375, 255);
  QLabel* low = label(this, "Label6_1", "Low", slider1_);
  placeLabel(low, 5175, 2040, 255, 255);
  // Both stand level with the groove at the slider's ends, clear of the caption above it.
  for (QLabel* end : {high, low}) end->move(end->x(), slider1_->geometry().center().y() - end->height() / 2);

  ok_ = new QPushButton(QString::fromStdString(form_.OKButton.caption), this);
  ok_->setObjectName("OKButton");
  place(ok_, 5760, 2040, 1215, 375);
  ok_->setDefault(true);
  ok_->setAutoDefault(true);
  // A large font may need more room than the form has: it grows downwards, nothing is cut.
  const int bottom = childrenRect().bottom() + 1 + px(60);
  if (bottom > height()) setFixedHeight(bottom);

  connect(cmdBrowse_, &QPushButton::clicked, this, [this] {
    form_.CmdBrowse_Click();
    render();
    app_.afterHandler();
  });
  connect(txtLdFile_, &QLineEdit::textEdited, this, [this](const QString& text) {
    form_.TxtLdFile.text = text.toStdString();
  });
  connect(combo1_, &QComboBox::activated, this, [this](int i) {
    form_.Combo1.setIndex(i);
    render();
    app_.afterHandler();
  });
  connect(combo2_, &QComboBox::activated, this, [this](int i) {
    form_.Combo2.setIndex(i);
    render();
    app_.afterHandler();
  });
  connect(cmbPerfChnl_, &QComboBox::activated, this, [this](int i) {
    form_.cmbPerfChnl.setIndex(i);
    render();
    app_.afterHandler();
  });
  connect(slider1_, &QSlider::valueChanged, this, [this](int value) { form_.Slider1.value = value; });
  connect(ok_, &QPushButton::clicked, this, [this] {
    app_.logic().OKButton_Click();
    app_.afterHandler();
  });
  render();
}

void PrefWindow::render() {
  for (int m = kFirstMulti; m <= kLastMulti; ++m) {
    QCheckBox* box = chkMlt_[static_cast<std::size_t>(m - kFirstMulti)];
    QSignalBlocker block(box);
    box->setChecked(form_.ChkMlt(m).value != 0);
  }
  {
    QSignalBlocker block(chkLdFile_);
    chkLdFile_->setChecked(form_.ChkLdFile.value != 0);
  }
  renderText(txtLdFile_, form_.TxtLdFile);
  renderButton(cmdBrowse_, form_.CmdBrowse);
  renderList(combo1_, form_.Combo1);
  renderList(combo2_, form_.Combo2);
  fitDeviceLists();
  renderList(cmbPerfChnl_, form_.cmbPerfChnl);
  {
    QSignalBlocker block(slider1_);
    slider1_->setRange(form_.Slider1.min, form_.Slider1.max);
    slider1_->setValue(form_.Slider1.value);
    slider1_->setEnabled(form_.Slider1.enabled);
  }
}

void PrefWindow::closeEvent(QCloseEvent* event) {
  event->ignore();  // the logic decides: end the program at the first start, else hide
  app_.logic().PrefClosed();
  app_.afterHandler();
}

void PrefWindow::reject() {}

}  // namespace tessivo::qt
