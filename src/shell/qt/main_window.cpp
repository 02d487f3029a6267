#include "shell/qt/main_window.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QDropEvent>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSlider>

#include <functional>

#include "data/tables.h"
#include "link/numtext.h"
#include "shell/qt/about_window.h"
#include "shell/qt/edit_tab.h"
#include "shell/qt/effects_tab.h"
#include "shell/qt/gestures.h"
#include "shell/qt/names.h"
#include "shell/qt/qt_app.h"
#include "shell/qt/render.h"
#include "shell/qt/twips.h"

namespace tessivo::qt {

namespace {
constexpr int kGap = 2;  // pixels between neighbours that a wider control moves apart

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
constexpr const char* kNoteSliderTip =
    "Choose note that is played when a Performance, Layer, or Multi button is clicked.";
constexpr const char* kVelocitySliderTip =
    "Choose velocity of note that is played when a Performance, Layer, or Multi button is clicked.";
constexpr const char* kPoolTip = "Drag and drop a layer onto one of the Multi Part buttons.";
constexpr const char* kClearPoolTip = "Click to remove all entries from layer pool.";

// A label of the form, and the control that it names: tools that read the screen find the
// control by it.
QLabel* label(QWidget* parent, const char* name, const char* text, int left, int top, int width, int height,
              QWidget* names) {
  auto* l = new QLabel(text, parent);
  l->setObjectName(name);
  l->setBuddy(names);
  placeLabel(l, left, top, width, height);
  return l;
}

// The texts of the lists whose entries are " 1", " 2" ..: from `first` to `last`.
QStringList numberTexts(int first, int last) {
  QStringList texts;
  for (int i = first; i <= last; ++i) texts << QString::fromStdString(signedText(i));
  return texts;
}

QStringList programNames() {
  QStringList names = numberTexts(1, 128);  // the User banks
  for (const auto* bank : {&PrfNames1, &PrfNames2})
    for (std::string_view name : *bank) names << QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
  return names;
}

// An option pair's frame has no caption in the layout; the desktop knows it by its name.
QGroupBox* optionFrame(QWidget* central, const char* name) {
  auto* frame = new QGroupBox(central);
  uncaptioned(frame, name);
  return frame;
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
  buildTestNote(central);
  buildPool(central);
  buildMultiRows(central);
  buildDebugRow(central);
  editTab_ = new EditTab(form_.edit(), [this] { handled(); }, central);
  // The panel stands right of the Multi rows, whose lists and caption a wide font widens; the
  // form grows to the right just as far as the panel then reaches.
  int rowsRight = central->findChild<QLabel*>("Labelx1_54")->geometry().right();
  for (QComboBox* list : cmbMult_) rowsRight = std::max(rowsRight, list->geometry().right());
  if (editTab_->x() <= rowsRight + kGap) editTab_->move(rowsRight + 1 + kGap, editTab_->y());
  constexpr int kRightMargin = px(11085 - 8040 - 3015);
  central->setFixedSize(std::max(central->width(), editTab_->geometry().right() + 1 + kRightMargin),
                        std::max(central->height(), editTab_->geometry().bottom() + 1));
  // The effects panel stands over the Performance block, left of the Multi buttons.
  effectsTab_ = new EffectsTab(form_.effects(), form_.edit(), [this] { handled(); }, central);
  if (effectsTab_->geometry().right() + kGap >= cmdMult_[0]->x())
    effectsTab_->move(std::max(0, cmdMult_[0]->x() - kGap - effectsTab_->width()), effectsTab_->y());
  // The picture behind the controls, drawn for the form's final size.
  QPalette palette = central->palette();
  palette.setBrush(QPalette::Window, QBrush(backgroundPicture(central->size())));
  central->setPalette(palette);
  central->setAutoFillBackground(true);
  acceptDrops();
  render();
}

void MainWindow::handled() {
  render();
  app_.afterHandler();
}

void MainWindow::buildMultiRows(QWidget* central) {
  const QStringList channels = numberTexts(1, 16);
  for (int m = kFirstMulti; m <= kLastMulti; ++m) {
    const int i = m - kFirstMulti;
    const int top = 1560 + 480 * i;
    auto* button = new QPushButton(central);
    const QString name = QString("CmdMult%1").arg(m);
    button->setObjectName(name);
    button->setToolTip(kMultiButtonTip);
    place(button, 5880, top, 1455, 375);
    cmdMult_[static_cast<std::size_t>(i)] = button;
    // The press sounds the Multi; the drag that follows ends the note with its drop.
    new DragSource(button, button,
                   {[this, m](QPoint) {
                      form_.audition().CmdMult_Press(m, form_.row(m).CmbMult.index());
                      handled();
                    },
                    [this, name](QPoint) {
                      form_.DragDrop(name.toStdString(), name.toStdString());
                      handled();
                    },
                    {}});

    auto* channel = new QComboBox(central);
    channel->setObjectName(QString("CmbMult%1").arg(m));
    channel->setToolTip(kMultiChannelTip);
    place(channel, 7395, top, 585, 315);
    widen(channel, listWidthFor(channel, channels));
    connect(channel, &QComboBox::activated, this, [this, m](int index) {
      form_.row(m).CmbMult.setIndex(index);
      handled();
    });
    cmbMult_[static_cast<std::size_t>(i)] = channel;
  }
  // One caption stands over the column of lists; it names the first.
  label(central, "Labelx1_54", "Midi Chan", 7440, 1080, 615, 375, cmbMult_[0]);
}

QMenu* MainWindow::subMenu(QWidget* parent, const char* name, const char* title) {
  QMenu* menu = parent == menuBar() ? menuBar()->addMenu(title) : static_cast<QMenu*>(parent)->addMenu(title);
  menu->setObjectName(name);
  return menu;
}

QAction* MainWindow::addEntry(QMenu* menu, const char* name, const char* text, std::function<void()> handler) {
  QAction* action = menu->addAction(text);
  action->setObjectName(name);
  connect(action, &QAction::triggered, this, [this, handler = std::move(handler)] {
    handler();
    handled();
  });
  return action;
}

void MainWindow::addMultiEntries(QMenu* menu, const char* prefix, const std::function<void(int multi)>& handler) {
  for (int m = kFirstMulti; m <= kLastMulti; ++m) {
    QAction* action = menu->addAction(QString("Multi %1").arg(m));
    action->setObjectName(QString("%1%2").arg(prefix).arg(m));
    connect(action, &QAction::triggered, this, [this, m, handler] {
      handler(m);
      handled();
    });
  }
}

void MainWindow::setDeveloperEntries(bool on) {
  debugMenu_->menuAction()->setEnabled(on);
  debugMenu_->setEnabled(on);
  svSetupSyx_->setEnabled(on);
}

void MainWindow::buildDebugRow(QWidget* central) {
  // The log of received bytes and the manual fields, hidden until Debug, Window On.
  list1_ = new QListWidget(central);
  uncaptioned(list1_, "List1");
  place(list1_, 360, 360, 5295, 1230);
  QFont small = font();
  small.setPixelSize(9);
  for (std::size_t i = 0; i < txtParm_.size(); ++i) {
    auto* field = new QLineEdit(central);
    uncaptioned(field, QString("TxtParm_%1").arg(i));
    field->setFont(small);
    place(field, 360 + 600 * static_cast<int>(i), 120, 555, 255);
    connect(field, &QLineEdit::textEdited, this, [this, i](const QString& text) { form_.TxtParm[i].text = text.toStdString(); });
    txtParm_[i] = field;
  }
  const std::array<std::pair<const char*, void (MainForm::*)()>, 3> buttons{
      {{"CmdRtrvParm", &MainForm::CmdRtrvParm_Click}, {"CmdChngParm", &MainForm::CmdChngParm_Click}, {"CmdChngCntl", &MainForm::CmdChngCntl_Click}}};
  for (std::size_t i = 0; i < buttons.size(); ++i) {
    auto* button = new QPushButton(QString(buttons[i].first).mid(3), central);
    button->setObjectName(buttons[i].first);
    button->setFont(small);
    place(button, 3360 + 840 * static_cast<int>(i), 120, 795, 255);
    connect(button, &QPushButton::clicked, this, [this, click = std::bind_front(buttons[i].second, &form_)] {
      click();
      handled();
    });
    debugButtons_[i] = button;
  }
}

// Handlers reached through a member pointer are bound with std::bind_front: g++ 12 under
// -fsanitize=vptr miscompiles a lambda that calls through the member pointer itself.
void MainWindow::buildMenus() {
  MainForm& f = form_;
  Files& files = f.files();
  auto on = [&f](void (MainForm::*handler)()) { return std::bind_front(handler, &f); };
  auto file = [&files](void (Files::*handler)()) { return std::bind_front(handler, &files); };

  QMenu* fileMenu = subMenu(menuBar(), "FileMenu", "File");
  addEntry(fileMenu, "StrtupPref", "Startup Preferences", [this] { app_.logic().StrtupPref_Click(); });
  addEntry(fileMenu, "ExitMenu", "Exit", [this] { app_.logic().ExitRequested(); });

  QMenu* edit = subMenu(menuBar(), "EditMenu", "Edit");
  addEntry(edit, "EditEffcts", "Effects", [&f] { f.effects().EditEffcts_Click(); });
  addMultiEntries(subMenu(edit, "EditMulti", "Multi"), "EditMult", [&f](int m) { f.edit().EditMult_Click(m); });

  QMenu* retrieve = subMenu(menuBar(), "Retrv", "Retrieve");
  addEntry(retrieve, "RtrvPerf", "Performance", on(&MainForm::RtrvPerf_Click));
  addEntry(retrieve, "RtrvAllMulti", "All Multis", on(&MainForm::RtrvAllMulti_Click));
  addMultiEntries(subMenu(retrieve, "RtrvMult", "Multi"), "RtrvMulti", [&f](int m) { f.RtrvMulti_Click(m); });

  QMenu* load = subMenu(menuBar(), "load", "Load");
  addEntry(load, "LdWrkSpace", "Workspace", file(&Files::LdWrkSpace_Click));
  addEntry(load, "LdFullSetup", "Setup", file(&Files::LdFullSetup_Click));
  addEntry(load, "LdLayerPool", "Layer Pool", file(&Files::LdLayerPool_Click));
  addEntry(load, "LdPerform", "Performance", file(&Files::LdPerform_Click));
  addEntry(load, "LdMultAll", "All Multis", file(&Files::LdMultAll_Click));
  addMultiEntries(subMenu(load, "Mltsel", "Multi"), "LdMult", [&files](int m) { files.LdMultDlg(m - 1); });
  addEntry(load, "LdAidSub", "Load Aid", on(&MainForm::LdAidSub_Click));

  QMenu* save = subMenu(menuBar(), "Save", "Save");
  addEntry(save, "SvWrkSpace", "Workspace", file(&Files::SvWrkSpace_Click));
  QMenu* setup = subMenu(save, "SvfullSetup", "Setup");
  addEntry(setup, "SvSetuptvf", "as .tvf", file(&Files::SvSetuptvf_Click));
  svSetupSyx_ = addEntry(setup, "SvSetupSyx", "as Sys-Ex", file(&Files::SvSetupSyx_Click));
  addEntry(setup, "SvSetupMid", "as Midi type 0", file(&Files::SvSetupMid_Click));
  addEntry(save, "SvLayerPool", "Layer Pool", file(&Files::SvLayerPool_Click));
  addEntry(save, "SvPerform", "Performance", file(&Files::SvPerform_Click));
  addEntry(save, "SvMultAll", "All Multis", file(&Files::SvMultAll_Click));
  addMultiEntries(subMenu(save, "Mlts", "Multi"), "SvMult", [&files](int m) { files.SvMultDlg(m - 1); });
  addEntry(save, "SvWrkSpaceText", "Workspace Desc Text", file(&Files::SvWrkSpaceText_Click));

  QMenu* init = subMenu(menuBar(), "Init", "Initialize");
  addEntry(init, "InitMltall", "All Multis", [&f] { f.multis().InitMltall_Click(); });
  addMultiEntries(subMenu(init, "Mlt", "Multi"), "InitMlt", [&f](int m) { f.multis().InitMlt_Click(m); });

  // The check marks belong to the form: a triggered entry's own toggle is overwritten by the
  // render after the handler.
  QMenu* midi = subMenu(menuBar(), "mnuMidi", "Midi");
  addEntry(midi, "AllNtsOff", "All Notes Off", on(&MainForm::AllNtsOff_Click));
  localOff_ = addEntry(midi, "LocalOff", "Local Off", on(&MainForm::LocalOff_Click));
  arpOff_ = addEntry(midi, "ArpOff", "Arpeggiator Off", on(&MainForm::ArpOff_Click));
  trnsChnlAssgn_ = addEntry(midi, "TrnsChnlAssgn", "Trans Chnl Assigned by Audition", on(&MainForm::TrnsChnlAssgn_Click));
  for (QAction* action : {localOff_, arpOff_, trnsChnlAssgn_}) action->setCheckable(true);

  // About is modeless and goes when it closes.
  addEntry(subMenu(menuBar(), "Help", "Help"), "About", "About", [this] { (new AboutWindow(app_, this))->show(); });

  debugMenu_ = subMenu(menuBar(), "DebugMenu", "Debug");
  addEntry(debugMenu_, "WinOn", "Window On", on(&MainForm::WinOn_Click));
  addEntry(debugMenu_, "WinOff", "Window Off", on(&MainForm::WinOff_Click));
  addEntry(debugMenu_, "LdSysEx", "Write sysex", on(&MainForm::LdSysEx_Click));
#ifdef TESSIVO_DEVELOPER_MENUS
  setDeveloperEntries(true);
#else
  setDeveloperEntries(false);
#endif
}

QRadioButton* MainWindow::option(QWidget* frame, const char* name, const char* text, int top,
                                 void (Performance::*handler)()) {
  auto* button = new QRadioButton(text, frame);
  button->setObjectName(name);
  place(button, 120, top, 900, 240);
  // Only the option that becomes selected runs its click; the list changes, so all renders.
  connect(button, &QRadioButton::toggled, this,
          [this, click = std::bind_front(handler, &form_.performance())](bool on) {
            if (!on) return;
            click();
            handled();
          });
  return button;
}

void MainWindow::buildPerformance(QWidget* central) {
  const QStringList programs = programNames();
  QGroupBox* frame1 = optionFrame(central, "Frame1");
  place(frame1, 600, 3720, 1095, 615);
  optPreset_ = option(frame1, "OptPreset", "Preset", 90, &Performance::OptPreset_Click);
  optPreset_->setToolTip("Click to select Preset Performances banks.");
  optUser_ = option(frame1, "OptUser", "User", 345, &Performance::OptUser_Click);
  optUser_->setToolTip("Click to select User Performances banks.");

  QGroupBox* frame2 = optionFrame(central, "Frame2");
  place(frame2, 1800, 3720, 1095, 615);
  optBank1_ = option(frame2, "OptBank1", "Bank1", 90, &Performance::OptBank1_Click);
  optBank2_ = option(frame2, "OptBank2", "Bank2", 345, &Performance::OptBank2_Click);

  cmbPrgm_ = new QComboBox(central);
  cmbPrgm_->setObjectName("CmbPrgm");
  cmbPrgm_->setToolTip("Click to choose a different Performance.");
  place(cmbPrgm_, 2880, 3960, 1095, 285);
  // The list shows every Performance name whole and stops short of the Layer Pool; where it
  // needs more room than that leaves, it moves left, and the two option frames as far as
  // they must to stay clear of it.
  const int width = std::max(cmbPrgm_->width(), listWidthFor(cmbPrgm_, programs));
  cmbPrgm_->setGeometry(std::min(cmbPrgm_->x(), px(3960) - kGap - width), cmbPrgm_->y(), width, cmbPrgm_->height());
  const int shift = std::max(0, frame2->geometry().right() + 1 + kGap - cmbPrgm_->x());
  for (QGroupBox* frame : {frame1, frame2}) frame->move(frame->x() - shift, frame->y());
  label(central, "Labelx1_52", "Prgm", 3240, 3720, 495, 255, cmbPrgm_);
  // A pick of the entry already shown still changes the Performance and reads it back.
  connect(cmbPrgm_, &QComboBox::activated, this, [this](int index) {
    form_.panel.CmbPrgm.pick(index);
    handled();
  });

  cmdPrfm_ = new QPushButton(central);
  cmdPrfm_->setObjectName("CmdPrfm");
  cmdPrfm_->setToolTip("Click Button to audition whole Performance");
  place(cmdPrfm_, 1800, 4440, 975, 375);
  widen(cmdPrfm_, buttonWidthFor(cmdPrfm_, programs));
  label(central, "Labelx1_49", "Performance", 600, 4560, 975, 255, cmdPrfm_);
  new PressWatch(
      cmdPrfm_,
      [this] {
        form_.audition().CmdPrfm_Press();
        handled();
      },
      [this] {
        form_.audition().CmdPrfm_Release();
        handled();
      });

  // A Layer's name box shows the Performance name and the Layer's letter behind it.
  QStringList layerNames;
  for (const QString& name : programs)
    for (QChar letter : {'A', 'B', 'C', 'D'}) layerNames << name + letter;
  for (std::size_t i = 0; i < 4; ++i) {
    const int n = static_cast<int>(i) + 1;
    auto* button = new QPushButton(central);
    button->setObjectName(QString("CmdLyr%1").arg(n));
    button->setToolTip("Click Button to audition individual Layer of performance.");
    place(button, 1920, 5040 + 480 * static_cast<int>(i), 735, 375);
    cmdLyr_[i] = button;
    new PressWatch(
        button,
        [this, n] {
          form_.audition().CmdLyr_Press(n);
          handled();
        },
        [this, n] {
          form_.audition().CmdLyr_Release(n);
          handled();
        });

    auto* text = new QLineEdit(central);
    const QString name = QString("TxtLyr%1").arg(n);
    uncaptioned(text, name);
    text->setToolTip("Drag Layer onto Layer Pool.");
    text->setReadOnly(true);
    place(text, 2760, 5160 + 480 * static_cast<int>(i), 975, 285);
    int widest = text->width();
    for (const QString& layerName : layerNames) widest = std::max(widest, editWidthFor(text, layerName));
    widen(text, widest);
    txtLyr_[i] = text;
    new DragSource(text, text,
                   {{},
                    [this, name](QPoint) {
                      form_.DragDrop(name.toStdString(), name.toStdString());
                      handled();
                    },
                    {}});
  }

  // The note and velocity lists show " 127" whole; the velocity list stands right of the note
  // list, which the layout lets overlap it by a pixel.
  const QStringList values = numberTexts(0, 127);
  cmbMidNtNo_ = new QComboBox(central);
  cmbMidNtNo_->setObjectName("CmbMidNtNo");
  cmbMidNtNo_->setToolTip(kNoteTip);
  place(cmbMidNtNo_, 360, 5160, 735, 315);
  widen(cmbMidNtNo_, listWidthFor(cmbMidNtNo_, values));
  cmbMidVel_ = new QComboBox(central);
  cmbMidVel_->setObjectName("CmbMidVel");
  cmbMidVel_->setToolTip(kVelocityTip);
  place(cmbMidVel_, 1080, 5160, 735, 315);
  cmbMidVel_->move(std::max(cmbMidVel_->x(), cmbMidNtNo_->geometry().right() + 1), cmbMidVel_->y());
  widen(cmbMidVel_, listWidthFor(cmbMidVel_, values));
  label(central, "Labelx1_50", "Note", 480, 4920, 375, 255, cmbMidNtNo_);
  label(central, "Labelx1_51", "Velocity", 1080, 4920, 615, 255, cmbMidVel_);
  connect(cmbMidNtNo_, &QComboBox::activated, this, [this](int index) {
    form_.CmbMidNtNo.setIndex(index);
    handled();
  });
  connect(cmbMidVel_, &QComboBox::activated, this, [this](int index) {
    form_.CmbMidVel.setIndex(index);
    handled();
  });
}

void MainWindow::buildTestNote(QWidget* central) {
  // The sliders show the note and the velocity themselves (the form's position is 127 less),
  // so the highest stands at the top, the groove fills from the bottom up to the handle and
  // the keys move the handle the way their arrows point.
  auto slider = [&](const char* name, const char* tip, int left) {
    auto* s = new QSlider(Qt::Vertical, central);
    uncaptioned(s, name);
    s->setToolTip(tip);
    s->setPageStep(12);
    place(s, left, 5520, 255, 1935);
    return s;
  };
  sldNt_ = slider("SldNt", kNoteSliderTip, 600);
  sldVel_ = slider("SldVel", kVelocitySliderTip, 1320);
  connect(sldNt_, &QSlider::valueChanged, this, [this](int value) {
    form_.SldNt.value = flipped(form_.SldNt, value);
    form_.SldNt_Scroll();
    handled();
  });
  connect(sldVel_, &QSlider::valueChanged, this, [this](int value) {
    form_.SldVel.value = flipped(form_.SldVel, value);
    form_.SldVel_Scroll();
    handled();
  });
}

void MainWindow::buildPool(QWidget* central) {
  lbxLyrPool_ = new QListWidget(central);
  uncaptioned(lbxLyrPool_, "LbxLyrPool");
  label(central, "Labelx1_53", "Layer Pool", 4320, 3480, 855, 255, lbxLyrPool_);
  lbxLyrPool_->setToolTip(kPoolTip);
  lbxLyrPool_->setSelectionMode(QAbstractItemView::SingleSelection);
  place(lbxLyrPool_, 3960, 3720, 1815, 3375);
  LayerPool& pool = form_.pool();
  // Keys move the selection; the mouse belongs to the drag.
  connect(lbxLyrPool_, &QListWidget::currentRowChanged, this, [&pool](int row) { pool.LbxLyrPool.index = row; });
  new DragSource(lbxLyrPool_, lbxLyrPool_->viewport(),
                 {[this, &pool](QPoint pos) {
                    // The entry under the pointer is the one a drag takes along.
                    if (QListWidgetItem* item = lbxLyrPool_->itemAt(pos)) {
                      pool.LbxLyrPool.index = lbxLyrPool_->row(item);
                      renderListBox(lbxLyrPool_, pool.LbxLyrPool);
                    }
                  },
                  [this, &pool](QPoint pos) {
                    // A plain click: the entry under the pointer becomes the selected one.
                    if (QListWidgetItem* item = lbxLyrPool_->itemAt(pos)) pool.LbxLyrPool.index = lbxLyrPool_->row(item);
                    form_.DragDrop("LbxLyrPool", "LbxLyrPool");
                    handled();
                  },
                  [this, &pool](QPoint pos) {
                    QListWidgetItem* item = lbxLyrPool_->itemAt(pos);
                    pool.LbxLyrPool.index = item ? lbxLyrPool_->row(item) : -1;
                    pool.DblClick();
                    handled();
                  }});

  cmdClrLyrPool_ = new QPushButton(central);
  cmdClrLyrPool_->setObjectName("CmdClrLyrPool");
  cmdClrLyrPool_->setToolTip(kClearPoolTip);
  place(cmdClrLyrPool_, 4080, 7200, 1575, 255);
  connect(cmdClrLyrPool_, &QPushButton::clicked, this, [this] {
    form_.pool().Clear();
    handled();
  });
}

void MainWindow::acceptDrops() {
  // Every widget of the window, down to a list's viewport, takes any drag; its own handling
  // of drops (a line edit's text) never runs.
  QList<QWidget*> widgets = findChildren<QWidget*>();
  widgets << this;
  for (QWidget* w : widgets) {
    if (w->window() != this) continue;  // menus and drop-down lists are windows of their own
    w->setAcceptDrops(true);
    w->installEventFilter(this);
  }
}

QString MainWindow::dropTarget(QWidget* receiver, QPoint pos) const {
  QWidget* w = receiver->childAt(pos);
  if (w == nullptr) w = receiver;
  // Parts of a control (a list's viewport) carry no name or one of Qt's own.
  for (; w != nullptr && w != this && w != centralWidget(); w = w->parentWidget()) {
    const QString name = w->objectName();
    if (!name.isEmpty() && !name.startsWith("qt_")) return name;
  }
  return objectName();
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
  const QEvent::Type type = event->type();
  if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop) return false;
  auto* drop = static_cast<QDropEvent*>(event);
  // Our drags copy; another program's drag is taken as a copy where it offers one.
  if (drop->possibleActions() & Qt::CopyAction) {
    drop->setDropAction(Qt::CopyAction);
    drop->accept();
  } else {
    drop->acceptProposedAction();
  }
  if (type == QEvent::Drop) {
    const QString target = dropTarget(static_cast<QWidget*>(watched), drop->position().toPoint());
    form_.DragDrop(target.toStdString(), sourceName(drop->mimeData()).toStdString());
    handled();
  }
  return true;
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
  renderFlippedSlider(sldNt_, form_.SldNt);
  renderFlippedSlider(sldVel_, form_.SldVel);

  LayerPool& pool = form_.pool();
  renderListBox(lbxLyrPool_, pool.LbxLyrPool);
  renderButton(cmdClrLyrPool_, pool.CmdClrLyrPool);

  list1_->setVisible(form_.List1Visible);
  const std::vector<std::string>& log = app_.logic().link().List1;
  if (form_.List1Visible && list1_->count() != static_cast<int>(log.size())) {
    list1_->clear();
    for (const std::string& line : log) list1_->addItem(QString::fromStdString(line));
  }
  for (std::size_t i = 0; i < txtParm_.size(); ++i) renderText(txtParm_[i], form_.TxtParm[i]);
  for (QPushButton* button : debugButtons_) button->setVisible(form_.DebugButtonsVisible);

  editTab_->render();
  effectsTab_->render();
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
