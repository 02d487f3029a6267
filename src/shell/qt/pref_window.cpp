#include "shell/qt/pref_window.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>

#include "shell/qt/qt_app.h"
#include "shell/qt/render.h"
#include "shell/qt/twips.h"

namespace tessivo::qt {

namespace {
QLabel* label(QWidget* parent, const char* name, const QString& text) {
  auto* l = new QLabel(text, parent);
  l->setObjectName(name);
  return l;
}
}  // namespace

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
  setFixedSize(px(7425), px(2655));
  setModal(false);

  // The Multis to read at start, in two columns.
  QLabel* label1 = label(this, "Label1", PrefForm::kLabel1);
  label1->setToolTip(PrefForm::kLabel1Tip);
  placeWrapped(label1, 120, 240, 2295, 495);
  for (int m = kFirstMulti; m <= kLastMulti; ++m) {
    const auto i = static_cast<std::size_t>(m - kFirstMulti);
    // The box of Multi 8 has always been spelt this way; its name stays.
    const QString name = m == 8 ? QString("Chkmlt8") : QString("ChkMlt%1").arg(m);
    QCheckBox* box = checkBox(name, QString::fromStdString(form_.ChkMlt(m).caption), form_.ChkMlt(m));
    const int row = static_cast<int>(i % 6);
    place(box, i < 6 ? 360 : 1320, 720 + 240 * row, 975, 255);
    chkMlt_[i] = box;
  }
  // Label2 may widen up to the channel list.
  placeWrapped(label(this, "Label2", PrefForm::kLabel2), 240, 2160, 1935, 375, 2400);

  // The Workspace loaded instead. The check box stands in front of the label's leading
  // blanks; its caption does not fit its width and shows nothing.
  QLabel* label3 = label(this, "Label3", PrefForm::kLabel3);
  placeLabel(label3, 2520, 240, 4455, 255);
  chkLdFile_ = checkBox("ChkLdFile", QString(), form_.ChkLdFile);
  place(chkLdFile_, 2640, 240, 255, 255);
  chkLdFile_->raise();
  cmdBrowse_ = new QPushButton(QString::fromStdString(form_.CmdBrowse.caption), this);
  cmdBrowse_->setObjectName("CmdBrowse");
  cmdBrowse_->setAutoDefault(false);
  place(cmdBrowse_, 2520, 600, 735, 285);
  txtLdFile_ = new QLineEdit(this);
  txtLdFile_->setObjectName("TxtLdFile");
  place(txtLdFile_, 3360, 600, 3975, 315);

  placeLabel(label(this, "Label4", "MIDI In Device"), 3600, 1080, 1215, 255);
  combo1_ = new QComboBox(this);
  combo1_->setObjectName("Combo1");
  place(combo1_, 3360, 1320, 1815, 315);

  placeLabel(label(this, "Label5", "MIDI Out Device"), 5760, 1080, 1335, 255);
  combo2_ = new QComboBox(this);
  combo2_->setObjectName("Combo2");
  place(combo2_, 5520, 1320, 1815, 315);

  placeWrapped(label(this, "Labelx1_55", "Performance Midi Channel"), 2280, 1500, 975, 375, 3360);
  cmbPerfChnl_ = new QComboBox(this);
  cmbPerfChnl_->setObjectName("cmbPerfChnl");
  place(cmbPerfChnl_, 2400, 1920, 615, 315);

  // The density of exported MIDI files: the high end at the left.
  // Its caption stands over the slider's middle: a wide font widens it to both sides, clear
  // of "High" and "Low".
  placeLabelCentred(label(this, "Label6_0", "Midi File Density"), 3960, 1920, 1095, 255);
  slider1_ = new QSlider(Qt::Horizontal, this);
  slider1_->setObjectName("Slider1");
  slider1_->setTickPosition(QSlider::NoTicks);
  slider1_->setPageStep(1);
  place(slider1_, 3720, 2160, 1455, 270);
  placeLabel(label(this, "Label6_2", "High"), 3240, 2040, 375, 255);
  placeLabel(label(this, "Label6_1", "Low"), 5160, 2040, 255, 255);

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
  // A device name longer than its list shows whole under the pointer.
  for (QComboBox* devices : {combo1_, combo2_})
    devices->setToolTip(devices->fontMetrics().horizontalAdvance(devices->currentText()) + 24 > devices->width()
                            ? devices->currentText()
                            : QString());
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
