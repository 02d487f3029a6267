#include "shell/qt/main_window.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>

#include "shell/qt/qt_app.h"
#include "shell/qt/render.h"
#include "shell/qt/twips.h"

namespace tessivo::qt {

namespace {
constexpr const char* kMultiButtonTip =
    "Click on Button to audition sound (all multi currently assigned to this channel will play) "
    "or drag multi back to layer pool.";
constexpr const char* kMultiChannelTip =
    "Select a midi channel to group sounds together so that multiple voices sound on one channel "
    "or choose an unused channel to isolate individual sound.";
constexpr const char* kNoteTip =
    "Click to choose note that is played when a Performance, Layer, or Multi button is clicked.";
constexpr const char* kVelocityTip =
    "Click to choose velocity of note that is played when a Performance, Layer, or Multi button is clicked.";

QLabel* label(QWidget* parent, const char* name, const char* text, int left, int top, int width, int height) {
  auto* l = new QLabel(text, parent);
  l->setObjectName(name);
  placeLabel(l, left, top, width, height);
  return l;
}

void renderCheck(QAction* action, bool checked) {
  QSignalBlocker block(action);
  action->setChecked(checked);
}
}  // namespace

MainWindow::MainWindow(MainForm& form, QtApp& app) : form_(form), app_(app) {
  setObjectName("CS2x");
  setWindowTitle(MainForm::kCaption);
  buildMenus();

  auto* central = new QWidget(this);
  central->setObjectName("CS2xClient");
  central->setFixedSize(px(11085), px(7740));
  setCentralWidget(central);

  buildPerformance(central);

  label(central, "Labelx1_54", "Midi Chan", 7440, 1080, 615, 375);
  for (int m = kFirstMulti; m <= kLastMulti; ++m) {
    const int i = m - kFirstMulti;
    const int top = 1560 + 480 * i;
    auto* button = new QPushButton(central);
    button->setObjectName(QString("CmdMult%1").arg(m));
    button->setToolTip(kMultiButtonTip);
    place(button, 5880, top, 1455, 375);
    cmdMult_[static_cast<std::size_t>(i)] = button;

    auto* channel = new QComboBox(central);
    channel->setObjectName(QString("CmbMult%1").arg(m));
    channel->setToolTip(kMultiChannelTip);
    place(channel, 7395, top, 585, 315);
    channel->setMinimumWidth(px(585));
    connect(channel, &QComboBox::activated, this, [this, m](int index) {
      form_.row(m).CmbMult.setIndex(index);
      render();
      app_.afterHandler();
    });
    cmbMult_[static_cast<std::size_t>(i)] = channel;
  }
  render();
}

QAction* MainWindow::addEntry(QMenu* menu, const char* name, const char* text, void (MainForm::*handler)()) {
  QAction* action = menu->addAction(text);
  action->setObjectName(name);
  connect(action, &QAction::triggered, this, [this, handler] {
    (form_.*handler)();
    render();
    app_.afterHandler();
  });
  return action;
}

void MainWindow::buildMenus() {
  QMenu* file = menuBar()->addMenu("File");
  file->setObjectName("FileMenu");
  QAction* pref = file->addAction("Startup Preferences");
  pref->setObjectName("StrtupPref");
  connect(pref, &QAction::triggered, this, [this] {
    app_.logic().StrtupPref_Click();
    app_.afterHandler();
  });
  QAction* exitAction = file->addAction("Exit");
  exitAction->setObjectName("ExitMenu");
  connect(exitAction, &QAction::triggered, this, [this] {
    app_.logic().ExitRequested();
    app_.afterHandler();
  });

  QMenu* retrieve = menuBar()->addMenu("Retrieve");
  retrieve->setObjectName("Retrv");
  addEntry(retrieve, "RtrvPerf", "Performance", &MainForm::RtrvPerf_Click);
  addEntry(retrieve, "RtrvAllMulti", "All Multis", &MainForm::RtrvAllMulti_Click);
  QMenu* multi = retrieve->addMenu("Multi");
  multi->setObjectName("RtrvMult");
  for (int m = kFirstMulti; m <= kLastMulti; ++m) {
    QAction* action = multi->addAction(QString("Multi %1").arg(m));
    action->setObjectName(QString("RtrvMulti%1").arg(m));
    connect(action, &QAction::triggered, this, [this, m] {
      form_.RtrvMulti_Click(m);
      render();
      app_.afterHandler();
    });
  }

  // The check marks belong to the form: a triggered entry's own toggle is overwritten by the
  // render after the handler.
  QMenu* midi = menuBar()->addMenu("Midi");
  midi->setObjectName("mnuMidi");
  addEntry(midi, "AllNtsOff", "All Notes Off", &MainForm::AllNtsOff_Click);
  localOff_ = addEntry(midi, "LocalOff", "Local Off", &MainForm::LocalOff_Click);
  arpOff_ = addEntry(midi, "ArpOff", "Arpeggiator Off", &MainForm::ArpOff_Click);
  trnsChnlAssgn_ = addEntry(midi, "TrnsChnlAssgn", "Trans Chnl Assigned by Audition", &MainForm::TrnsChnlAssgn_Click);
  for (QAction* action : {localOff_, arpOff_, trnsChnlAssgn_}) action->setCheckable(true);
}

QRadioButton* MainWindow::option(QWidget* frame, const char* name, const char* text, int top,
                                 void (Performance::*handler)()) {
  auto* button = new QRadioButton(text, frame);
  button->setObjectName(name);
  place(button, 120, top, 900, 240);
  // Only the option that becomes selected runs its click; the list changes, so all renders.
  connect(button, &QRadioButton::toggled, this, [this, handler](bool on) {
    if (!on) return;
    (form_.performance().*handler)();
    render();
    app_.afterHandler();
  });
  return button;
}

void MainWindow::buildPerformance(QWidget* central) {
  auto* frame1 = new QGroupBox(central);
  frame1->setObjectName("Frame1");
  place(frame1, 600, 3720, 1095, 615);
  optPreset_ = option(frame1, "OptPreset", "Preset", 90, &Performance::OptPreset_Click);
  optPreset_->setToolTip("Click to select Preset Performances banks.");
  optUser_ = option(frame1, "OptUser", "User", 345, &Performance::OptUser_Click);
  optUser_->setToolTip("Click to select User Performances banks.");

  auto* frame2 = new QGroupBox(central);
  frame2->setObjectName("Frame2");
  place(frame2, 1800, 3720, 1095, 615);
  optBank1_ = option(frame2, "OptBank1", "Bank1", 90, &Performance::OptBank1_Click);
  optBank2_ = option(frame2, "OptBank2", "Bank2", 345, &Performance::OptBank2_Click);

  label(central, "Labelx1_52", "Prgm", 3240, 3720, 495, 255);
  cmbPrgm_ = new QComboBox(central);
  cmbPrgm_->setObjectName("CmbPrgm");
  cmbPrgm_->setToolTip("Click to choose a different Performance.");
  place(cmbPrgm_, 2880, 3960, 1095, 285);
  // A pick of the entry already shown still changes the Performance and reads it back.
  connect(cmbPrgm_, &QComboBox::activated, this, [this](int index) {
    form_.panel.CmbPrgm.pick(index);
    render();
    app_.afterHandler();
  });

  label(central, "Labelx1_49", "Performance", 600, 4560, 975, 255);
  cmdPrfm_ = new QPushButton(central);
  cmdPrfm_->setObjectName("CmdPrfm");
  cmdPrfm_->setToolTip("Click Button to audition whole Performance");
  place(cmdPrfm_, 1800, 4440, 975, 375);

  for (std::size_t i = 0; i < 4; ++i) {
    const int n = static_cast<int>(i) + 1;
    auto* button = new QPushButton(central);
    button->setObjectName(QString("CmdLyr%1").arg(n));
    button->setToolTip("Click Button to audition individual Layer of performance.");
    place(button, 1920, 5040 + 480 * static_cast<int>(i), 735, 375);
    cmdLyr_[i] = button;

    auto* text = new QLineEdit(central);
    text->setObjectName(QString("TxtLyr%1").arg(n));
    text->setToolTip("Drag Layer onto Layer Pool.");
    text->setReadOnly(true);
    place(text, 2760, 5160 + 480 * static_cast<int>(i), 975, 285);
    txtLyr_[i] = text;
  }

  label(central, "Labelx1_50", "Note", 480, 4920, 375, 255);
  label(central, "Labelx1_51", "Velocity", 1080, 4920, 615, 255);
  cmbMidNtNo_ = new QComboBox(central);
  cmbMidNtNo_->setObjectName("CmbMidNtNo");
  cmbMidNtNo_->setToolTip(kNoteTip);
  place(cmbMidNtNo_, 360, 5160, 735, 315);
  cmbMidVel_ = new QComboBox(central);
  cmbMidVel_->setObjectName("CmbMidVel");
  cmbMidVel_->setToolTip(kVelocityTip);
  place(cmbMidVel_, 1080, 5160, 735, 315);
  connect(cmbMidNtNo_, &QComboBox::activated, this, [this](int index) {
    form_.CmbMidNtNo.setIndex(index);
    render();
    app_.afterHandler();
  });
  connect(cmbMidVel_, &QComboBox::activated, this, [this](int index) {
    form_.CmbMidVel.setIndex(index);
    render();
    app_.afterHandler();
  });
}

void MainWindow::render() {
  for (int m = kFirstMulti; m <= kLastMulti; ++m) {
    const auto i = static_cast<std::size_t>(m - kFirstMulti);
    const MultiRow& row = form_.row(m);
    renderButton(cmdMult_[i], row.CmdMult);
    renderList(cmbMult_[i], row.CmbMult);
  }

  const PerfPanel& panel = form_.panel;
  renderOptions(optPreset_, panel.OptPreset, optUser_, panel.OptUser);
  renderOptions(optBank1_, panel.OptBank1, optBank2_, panel.OptBank2);
  renderList(cmbPrgm_, panel.CmbPrgm);
  renderButton(cmdPrfm_, panel.CmdPrfm);
  for (std::size_t i = 0; i < 4; ++i) {
    renderButton(cmdLyr_[i], panel.CmdLyr[i]);
    renderText(txtLyr_[i], panel.TxtLyr[i]);
  }
  renderList(cmbMidNtNo_, form_.CmbMidNtNo);
  renderList(cmbMidVel_, form_.CmbMidVel);

  renderCheck(localOff_, form_.LocalOffChecked);
  renderCheck(arpOff_, form_.ArpOffChecked);
  renderCheck(trnsChnlAssgn_, form_.TrnsChnlAssgnChecked);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  // The window's own close asks the exit question like the menu entry; a confirmed exit has
  // already closed the ports and unloads this window.
  if (app_.form(FormId::Main) != this) {
    event->accept();
    return;
  }
  event->ignore();
  app_.logic().ExitRequested();
  app_.afterHandler();
}

}  // namespace tessivo::qt
