// The Qt forms under the offscreen platform as a user and the desktop meet them: the start from
// the preferences through the splash to the main form, the controls as the desktop's
// accessibility interface shows them, and every text a musician reads shown whole.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QRegularExpression>
#include <QSlider>
#include <QStyleOption>
#include <QTabWidget>

#include "data/tables.h"
#include "edit/slider_map.h"
#include "qt/qt_program.h"

namespace tessivo::qt {
namespace {

using Forms = QtProgram;

QString text(std::string_view s) { return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())); }

TEST_F(Forms, ThePreferencesComeFirstAndEnterStartsTheProgramThroughTheSplash) {
  app.start();
  PrefWindow* pref = app.prefWindow();
  ASSERT_NE(pref, nullptr);
  EXPECT_TRUE(pref->isVisible());
  EXPECT_EQ(pref->height(), 2655 / 15);
  EXPECT_GE(pref->width(), 7425 / 15);  // wider where a device name needs it
  for (const char* name : {"Combo1", "Combo2"}) EXPECT_EQ(child<QComboBox>(pref, name)->currentText(), "Virtual CS2x (built-in)");
  EXPECT_TRUE(child<QPushButton>(pref, "OKButton")->isDefault());
  EXPECT_EQ(child<QLabel>(pref, "Label1")->toolTip(), PrefForm::kLabel1Tip);
  pref->activateWindow();
  QTest::keyClick(pref, Qt::Key_Return);

  QWidget* splash = app.form(FormId::Splash);
  ASSERT_NE(splash, nullptr);
  EXPECT_TRUE(splash->isVisible());
  EXPECT_FALSE(pref->isVisible());
  EXPECT_EQ(child<QLabel>(splash, "Picture1")->size(), QSize(415, 121));
  EXPECT_EQ(child<QLabel>(splash, "Picture1")->pixmap().size(), QSize(415, 121));
  EXPECT_EQ(child<QLabel>(splash, "lblCompanyProduct")->font().pointSizeF(), 18);
  EXPECT_TRUE(child<QLabel>(splash, "lblCompanyProduct")->font().bold());
  EXPECT_FALSE(child<QLabel>(splash, "lblWarning")->text().isEmpty());
  MainWindow* main = app.mainWindow();
  ASSERT_NE(main, nullptr);
  EXPECT_FALSE(main->isVisible());  // created hidden until the timer's tick
  ASSERT_TRUE(QTest::qWaitFor([&] { return main->isVisible(); }, 60000));
  EXPECT_EQ(app.form(FormId::Splash), nullptr);
  EXPECT_EQ(child<QComboBox>(main, "CmbPrgm")->currentText(), text(PrfNames1[0]));
}

TEST_F(Forms, TheMenusStandInTheirOrderWithoutShortcutsOrCheckMarks) {
  MainWindow* main = startMainForm();
  ASSERT_NE(main, nullptr);
  std::function<QStringList(const QList<QAction*>&)> tree = [&](const QList<QAction*>& actions) {
    QStringList entries;
    for (QAction* a : actions) {
      EXPECT_TRUE(a->shortcut().isEmpty()) << a->text().toStdString();
      EXPECT_FALSE(a->isChecked()) << a->text().toStdString();
      const QString off = a->isEnabled() ? "" : " (off)";
      entries << (a->menu() ? a->menu()->objectName() + "=" + a->text() + off + " [" + tree(a->menu()->actions()).join(", ") + "]"
                            : a->objectName() + "=" + a->text() + off);
    }
    return entries;
  };
  auto multis = [](const char* name) {
    QStringList entries;
    for (int m = 5; m <= 16; ++m) entries << QString("%1%2=Multi %2").arg(name).arg(m);
    return entries.join(", ");
  };
  EXPECT_EQ(tree(main->menuBar()->actions()),
            QStringList({"FileMenu=File [StrtupPref=Startup Preferences, ExitMenu=Exit]",
                         "EditMenu=Edit [EditEffcts=Effects, EditMulti=Multi [" + multis("EditMult") + "]]",
                         "Retrv=Retrieve [RtrvPerf=Performance, RtrvAllMulti=All Multis, RtrvMult=Multi [" + multis("RtrvMulti") + "]]",
                         "load=Load [LdWrkSpace=Workspace, LdFullSetup=Setup, LdLayerPool=Layer Pool, LdPerform=Performance, "
                         "LdMultAll=All Multis, Mltsel=Multi [" + multis("LdMult") + "], LdAidSub=Load Aid]",
                         "Save=Save [SvWrkSpace=Workspace, SvfullSetup=Setup [SvSetuptvf=as .tvf, SvSetupSyx=as Sys-Ex (off), "
                         "SvSetupMid=as Midi type 0], SvLayerPool=Layer Pool, SvPerform=Performance, SvMultAll=All Multis, "
                         "Mlts=Multi [" + multis("SvMult") + "], SvWrkSpaceText=Workspace Desc Text]",
                         "Init=Initialize [InitMltall=All Multis, Mlt=Multi [" + multis("InitMlt") + "]]",
                         "mnuMidi=Midi [AllNtsOff=All Notes Off, LocalOff=Local Off, ArpOff=Arpeggiator Off, "
                         "TrnsChnlAssgn=Trans Chnl Assigned by Audition]",
                         "Help=Help [About=About]",
                         "DebugMenu=Debug (off) [WinOn=Window On, WinOff=Window Off, LdSysEx=Write sysex]"}));
}

// Escape cancels a question; a message's line breaks show as line breaks.
TEST(MessageBoxes, EscapeCancelsAndLineBreaksShow) {
  std::unique_ptr<QMessageBox> question(makeMessageBox("Exit?", "Exit", MsgButtons::OkCancel, MsgIcon::Question));
  EXPECT_EQ(question->icon(), QMessageBox::Question);
  EXPECT_EQ(question->escapeButton(), question->button(QMessageBox::Cancel));
  std::unique_ptr<QMessageBox> error(makeMessageBox("Operation: Open\r\nx", "Tessivo", MsgButtons::Ok, MsgIcon::None));
  EXPECT_EQ(error->text(), "Operation: Open\nx");
}

// ---- Found from outside ---------------------------------------------------------------------

using R = QAccessible::Role;
constexpr R kByLabel = R::NoRole;  // found through the label with this text

struct Found {
  R role;
  QString name, control = {};  // control "": named by its own name
};

// The control that the desktop's accessibility interface shows with this role and name (a tab
// by its name), or that the label with this text names; "" when there is none, "ambiguous"
// when there are more.
QString found(QWidget* window, R role, const QString& name) {
  QStringList hits;
  std::function<void(QAccessibleInterface*)> walk = [&](QAccessibleInterface* e) {
    if (e->text(QAccessible::Name) == name && role == kByLabel && e->role() == R::StaticText)
      for (const auto& [other, relation] : e->relations(QAccessible::Labelled)) hits << other->object()->objectName();
    else if (e->text(QAccessible::Name) == name && e->role() == role)
      hits << (e->object() ? e->object()->objectName() : name);  // a tab is no object of its own
    for (int i = 0; i < e->childCount(); ++i)
      if (QAccessibleInterface* c = e->child(i)) walk(c);
  };
  walk(QAccessible::queryAccessibleInterface(window));
  return hits.size() == 1 ? hits.front() : hits.isEmpty() ? QString() : "ambiguous";
}

// Every control of the forms is found from outside: each window by its title, and each control
// and menu entry of it by its caption, its name or its label (but the Multis' channel lists
// after the first, which its label names).
TEST_F(Forms, EveryControlIsFoundFromOutsideByCaptionNameOrLabel) {
  QStringList seen;
  auto expectFound = [&](QWidget* window, const std::vector<Found>& controls) {
    for (const auto& [role, name, control] : controls) {
      seen << (control.isEmpty() ? name : control);
      EXPECT_EQ(found(window, role, name), seen.back()) << name.toStdString();
    }
  };
  auto expectEveryControlSeen = [&](QWidget* window, const QString& title) {
    EXPECT_EQ(QAccessible::queryAccessibleInterface(window)->text(QAccessible::Name), title);
    for (const QString& control : controlsOf(window)) {
      EXPECT_TRUE(seen.contains(control) || control.startsWith("CmbMult")) << "not found from outside: " << control.toStdString();
    }
  };
  app.start();
  PrefWindow* pref = app.prefWindow();
  std::vector<Found> prefControls{{R::CheckBox, "ChkLdFile"}, {R::PushButton, "Browse", "CmdBrowse"}, {R::EditableText, "TxtLdFile"},
                                  {R::Slider, "Slider1"}, {R::PushButton, "OK", "OKButton"}, {kByLabel, PrefForm::kLabel1, "ChkMlt5"},
                                  {kByLabel, PrefForm::kLabel3, "ChkLdFile"}, {kByLabel, "MIDI In Device", "Combo1"},
                                  {kByLabel, "MIDI Out Device", "Combo2"}, {kByLabel, "Performance Midi Channel", "cmbPerfChnl"},
                                  {kByLabel, "Midi File Density", "Slider1"}, {kByLabel, "High", "Slider1"}, {kByLabel, "Low", "Slider1"}};
  for (int m = 5; m <= 16; ++m) prefControls.push_back({R::CheckBox, QString("Multi %1").arg(m), m == 8 ? "Chkmlt8" : QString("ChkMlt%1").arg(m)});
  expectFound(pref, prefControls);
  expectEveryControlSeen(pref, "Tessivo Startup Preferences");

  child<QPushButton>(pref, "OKButton")->click();
  QWidget* splash = app.form(FormId::Splash);
  expectFound(splash, {{R::Border, "Frame1"}, {R::StaticText, "Tessivo", "lblCompanyProduct"}, {R::StaticText, "Windows 95/98", "LblPlatform"},
                       {R::StaticText, "V1.2.0", "lblVersion"}, {R::Graphic, "Picture1"}});
  expectEveryControlSeen(splash, "Tessivo");
  MainWindow* main = app.mainWindow();
  ASSERT_TRUE(QTest::qWaitFor([&] { return main->isVisible(); }, 60000));
  std::vector<Found> mainControls{
      {R::Grouping, "Frame1"}, {R::Grouping, "Frame2"}, {R::RadioButton, "Preset", "OptPreset"}, {R::RadioButton, "User", "OptUser"},
      {R::RadioButton, "Bank1", "OptBank1"}, {R::RadioButton, "Bank2", "OptBank2"}, {R::PushButton, text(PrfNames1[0]), "CmdPrfm"},
      {R::Slider, "SldNt"}, {R::Slider, "SldVel"}, {R::List, "LbxLyrPool"}, {R::PushButton, "Clear", "CmdClrLyrPool"},
      {R::Client, "SSTab1"}, {R::Client, "SSTab2"}, {R::List, "List1"}, {R::PushButton, "RtrvParm", "CmdRtrvParm"},
      {R::PushButton, "ChngParm", "CmdChngParm"}, {R::PushButton, "ChngCntl", "CmdChngCntl"}, {kByLabel, "Prgm", "CmbPrgm"},
      {kByLabel, "Performance", "CmdPrfm"}, {kByLabel, "Note", "CmbMidNtNo"}, {kByLabel, "Velocity", "CmbMidVel"},
      {kByLabel, "Layer Pool", "LbxLyrPool"}, {kByLabel, "Midi Chan", "CmbMult5"}};
  for (int i = 0; i < 5; ++i) mainControls.push_back({R::EditableText, QString("TxtParm_%1").arg(i)});
  for (int n = 1; n <= 4; ++n) {
    mainControls.push_back({R::PushButton, QString("Layer%1").arg(n), QString("CmdLyr%1").arg(n)});
    mainControls.push_back({R::EditableText, QString("TxtLyr%1").arg(n)});
  }
  for (int m = 5; m <= 16; ++m) mainControls.push_back({R::PushButton, QString("Multi Part M%1").arg(m), QString("CmdMult%1").arg(m)});
  expectFound(main, mainControls);
  // Menu entries by their captions within their menus ("Multi 5" stands under Edit, Retrieve
  // and Initialize alike).
  for (QAction* action : main->findChildren<QAction*>())
    if (auto* menu = qobject_cast<QMenu*>(action->parent()); menu && !action->objectName().isEmpty()) {
      expectFound(menu, {{R::MenuItem, action->text(), action->objectName()}});
    }

  // The edit panel's pages: sliders, their boxes and the name box by name, buttons, options,
  // frames and tabs by caption, the voice boxes through their label.
  child<QAction>(main, "EditMult7")->trigger();
  auto* panel = child<QTabWidget>(main, "SSTab1");
  std::vector<Found> panelControls{
      {R::EditableText, "TxtMsb"}, {R::EditableText, "TxtLsb"}, {R::EditableText, "TxtPrg"}, {R::PushButton, "Change", "CmdVocChng"},
      {R::EditableText, "TxtName1"}, {R::CheckBox, "On/Off", "ChckPort"}, {R::Grouping, "Part Mode", "FrmPartMode"},
      {R::Grouping, "Mono/Poly Mode", "FrmMonoPoly"}, {R::Grouping, "Same Note No. Key On Assign", "FrmSameNote"},
      {kByLabel, " msb    lsb     prg", "TxtMsb"}, {kByLabel, "Variation Send", "SldEffVar"}, {kByLabel, "Detune", "SldNtDtn"}};
  for (std::size_t row = 0; row < kEditSliders; ++row) {
    panelControls.push_back({R::Slider, text(kSliderMap[row].control)});
    panelControls.push_back({R::EditableText, text(kSliderMap[row].textBox)});
  }
  for (const auto& [group, captions] : std::vector<std::pair<QString, QStringList>>{
           {"Option1", {"Single", "Multi", "Inst"}}, {"Option2", {"Mono", "Poly"}}, {"Option3", {"Norm", "Drum", "Drum1", "Drum2"}}})
    for (int i = 0; i < captions.size(); ++i) panelControls.push_back({R::RadioButton, captions[i], QString("%1_%2").arg(group).arg(i)});
  for (int page = 1; page <= 3; ++page) panelControls.push_back({R::PageTab, QString("Page %1").arg(page)});
  expectFound(panel, panelControls);
  for (const auto& [page, done] : {std::pair{"Page1", "CmdDone1"}, {"Page2", "CmdDone2_0"}, {"Page3", "CmdDone2_1"}})
    expectFound(child<QWidget>(panel, page), {{R::PushButton, "Done", done}});

  child<QAction>(main, "EditEffcts")->trigger();
  expectFound(child<QTabWidget>(main, "SSTab2"),
              {{R::Slider, "SldEffSndCtoR"}, {R::Slider, "SldEffVarRvbSnd"}, {R::Slider, "SldEffVarChrSnd"}, {R::EditableText, "Text30"},
               {R::EditableText, "Text31"}, {R::EditableText, "Text32"}, {R::CheckBox, "Bypass", "ChkEffByPass"},
               {R::PushButton, "Reset", "CmdEffReset"}, {R::PushButton, "Done", "CmdEffDn1"}, {R::PageTab, "Effects"},
               {kByLabel, "Reverb", "CmbRvrb"}, {kByLabel, "Chorus", "CmbChrs"}, {kByLabel, "Variation", "CmbVar"},
               {kByLabel, "Vari Chorus Send", "SldEffVarChrSnd"}});
  expectEveryControlSeen(main, "CS2x Tessivo");
}

// ---- Readable -------------------------------------------------------------------------------
// Measured with the widgets' own font against the room that their style gives the text, so
// that a control too narrow for its text fails here; the suite also runs at a scale of 200 %.

int textRoom(QComboBox* box) {
  QStyleOptionComboBox option;
  option.initFrom(box);
  return box->style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, box).width() - 2;
}
int textRoom(QLineEdit* edit) {
  QStyleOptionFrame option;
  option.initFrom(edit);
  option.lineWidth = edit->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, edit);
  return edit->style()->subElementRect(QStyle::SE_LineEditContents, &option, edit).width() - 2 * 2 - 1;  // margins, cursor
}
int textRoom(QAbstractButton* button) {
  QStyleOptionButton option;
  option.initFrom(button);
  const auto element = qobject_cast<QCheckBox*>(button)      ? QStyle::SE_CheckBoxContents
                       : qobject_cast<QRadioButton*>(button) ? QStyle::SE_RadioButtonContents
                                                             : QStyle::SE_PushButtonContents;
  return button->style()->subElementRect(element, &option, button).width();
}
int widest(const QWidget* w, const QStringList& texts) {
  int most = 0;
  for (const QString& t : texts) most = std::max(most, w->fontMetrics().horizontalAdvance(t));
  return most;
}

// Where a control draws on its form: a label or a check box where its text stands (a caption
// is centred in the height of its place, which the layout lets overlap its neighbours), any
// other control its whole place.
QRect ink(QWidget* w) {
  const QFontMetrics metrics = w->fontMetrics();
  if (auto* label = qobject_cast<QLabel*>(w); label && label->pixmap().isNull()) {
    const QSize size = label->wordWrap() ? QSize(label->width(), label->heightForWidth(label->width()))
                                         : QSize(metrics.horizontalAdvance(label->text()), metrics.height());
    return QStyle::alignedRect(Qt::LeftToRight, label->alignment(), size, label->geometry());
  }
  if (qobject_cast<QCheckBox*>(w) || qobject_cast<QRadioButton*>(w)) {
    auto* button = static_cast<QAbstractButton*>(w);
    const int right = button->width() - textRoom(button) + metrics.horizontalAdvance(button->text());
    return QStyle::alignedRect(Qt::LeftToRight, Qt::AlignLeft | Qt::AlignVCenter, QSize(right, metrics.height()), w->geometry());
  }
  return w->geometry();
}

// Every caption, list entry and text of the form shows whole, and no two controls run into
// each other (but the Workspace check box, which stands in front of its label's leading blanks).
void expectReadable(QWidget* form) {
  QList<QWidget*> controls;
  for (QWidget* w : form->findChildren<QWidget*>()) {
    if (w->window() != form || !w->isVisible() || w->objectName().isEmpty() || w->objectName().startsWith("qt_")) continue;
    const std::string name = w->objectName().toStdString();
    if (auto* label = qobject_cast<QLabel*>(w); label && label->pixmap().isNull()) {
      EXPECT_TRUE(label->wordWrap() ? label->heightForWidth(label->width()) <= label->height()
                                    : label->sizeHint().width() <= label->width())
          << name;
    }
    if (auto* box = qobject_cast<QComboBox*>(w)) {
      QStringList entries;  // the blanks that pad a type name to its table's width show as nothing
      for (int i = 0; i < box->count(); ++i) entries << box->itemText(i).remove(QRegularExpression(" +$"));
      EXPECT_LE(widest(box, entries), textRoom(box)) << name;
    }
    if (auto* edit = qobject_cast<QLineEdit*>(w)) {
      EXPECT_LE(widest(edit, {edit->text()}), textRoom(edit)) << name;
    }
    if (auto* button = qobject_cast<QAbstractButton*>(w); button && !button->text().isEmpty()) {
      QString shown = button->text();  // an access key's "&" is drawn as an underline
      shown.remove(QChar('&'));
      EXPECT_LE(widest(button, {shown}), textRoom(button)) << name;
    }
    if ((w->parentWidget() == form && w->objectName() != "CS2xClient") || w->parentWidget()->objectName() == "CS2xClient") controls << w;
  }
  for (QWidget* a : controls)
    for (QWidget* b : controls)
      if (a < b && ink(a).intersects(ink(b)) &&
          QSet<QString>{a->objectName(), b->objectName()} != QSet<QString>{"ChkLdFile", "Label3"})
        ADD_FAILURE() << a->objectName().toStdString() << " overlaps " << b->objectName().toStdString();
}

// Where the text of a line edit starts to show, from the left of its frame.
int firstShown(QLineEdit* edit) {
  edit->grab();  // lays the text out as painting does
  EXPECT_EQ(edit->cursorPosition(), 0);
  return edit->inputMethodQuery(Qt::ImCursorRectangle).toRect().center().x();
}

TEST_F(Forms, ReadableEverythingAMusicianReadsShowsWhole) {
  MainWindow* main = startMainForm();
  ASSERT_NE(main, nullptr);
  expectReadable(main);
  PrefWindow* pref = app.prefWindow();
  pref->show();
  expectReadable(pref);
  EXPECT_LE(widest(pref, {"Virtual CS2x (built-in)"}), textRoom(child<QComboBox>(pref, "Combo1")));

  // Every Performance name, in the program list, on the Performance button and with its
  // Layer's letter in the name boxes, from the first character.
  QStringList names{" 128"}, layers;
  for (const auto* bank : {&PrfNames1, &PrfNames2})
    for (std::string_view name : *bank) {
      names << text(name);
      for (QChar letter : {'A', 'B', 'C', 'D'}) layers << text(name) + letter;
    }
  EXPECT_LE(widest(main, names), textRoom(child<QComboBox>(main, "CmbPrgm")));
  EXPECT_LE(widest(main, names), textRoom(child<QPushButton>(main, "CmdPrfm")));
  for (int n = 1; n <= 4; ++n) {
    auto* box = child<QLineEdit>(main, QString("TxtLyr%1").arg(n));
    EXPECT_LE(widest(box, layers), textRoom(box));
    EXPECT_LT(firstShown(box), box->width() / 4) << n;
  }
  // A stored Workspace path longer than its box, with the blanks that fill the record.
  PrefForm& prefs = app.logic().pref();
  prefs.TxtLdFile.text = "/home/musician/workspaces/for the concert in the old town hall/second set.tvw" + std::string(50, ' ');
  pref->render();
  auto* path = child<QLineEdit>(pref, "TxtLdFile");
  EXPECT_LT(firstShown(path), path->width() / 10);
  // Each page of the edit panel, in front in turn: every caption, heading, box and button whole,
  // every text a slider's box can show, and the panel whole on the form beside the Multi rows.
  child<QAction>(main, "EditMult5")->trigger();
  auto* panel = child<QTabWidget>(main, "SSTab1");
  for (int page = 0; page < panel->count(); ++page) {
    SCOPED_TRACE(page);
    panel->setCurrentIndex(page);
    expectReadable(main);
  }
  for (const SliderRow& row : kSliderMap) {
    if (row.page == 0) continue;  // the effects panel's
    auto* box = child<QLineEdit>(panel, text(row.textBox));
    QStringList texts;
    for (int v = row.min; v <= row.max; ++v) texts << QString::fromStdString(familyText(row.family, v));
    EXPECT_LE(widest(box, texts), textRoom(box)) << row.textBox;
  }
  QWidget* client = child<QWidget>(main, "CS2xClient");
  EXPECT_TRUE(client->rect().contains(panel->geometry()));
  // The effects panel beside it, over the Performance block: every type name whole.
  child<QAction>(main, "EditEffcts")->trigger();
  expectReadable(main);
  EXPECT_TRUE(client->rect().contains(child<QWidget>(main, "SSTab2")->geometry()));
  // The About box beside the main form, closed by Escape.
  child<QAction>(main, "About")->trigger();
  auto* about = main->findChild<QDialog*>("frmAbout");
  ASSERT_NE(about, nullptr);
  EXPECT_TRUE(about->isVisible() && !about->isModal());
  EXPECT_EQ(about->windowTitle(), "About CS2x Tessivo");
  EXPECT_EQ(child<QLabel>(about, "lblVersion")->text(), "Version 1.2.0");
  expectReadable(about);
  QTest::keyClick(about, Qt::Key_Escape);
  EXPECT_TRUE(QTest::qWaitFor([&] { return main->findChild<QWidget*>("frmAbout") == nullptr; }, 2000));
}

// The note slider shows the note: the highest at the top, and the groove filled, if at all,
// from the bottom up to the handle, never above it.
TEST_F(Forms, ReadableTheNoteSliderFillsFromTheBottomUpToTheNote) {
  MainWindow* main = startMainForm();
  ASSERT_NE(main, nullptr);
  auto* slider = child<QSlider>(main, "SldNt");
  pick(child<QComboBox>(main, "CmbMidNtNo"), 64);
  const QImage image = slider->grab().toImage();
  const int x = image.width() / 2;
  for (int y = image.height() / 20; y < image.height() / 4; ++y)
    EXPECT_LT(image.pixelColor(x, y).hsvSaturation(), 60) << "a coloured groove above the handle at " << y;

  QTest::mouseClick(slider, Qt::LeftButton, {}, QPoint(slider->width() / 2, 2));  // near the top: higher
  EXPECT_GT(app.logic().mainForm()->CmbMidNtNo.index(), 64);
}

// Device names show whole as far as the form allows; a longer one shows as a tool tip.
TEST_F(ScriptedQtProgram, ReadableALongDeviceNameShowsUnderThePointer) {
  const QString longName = "USB MIDI Interface with a rather long name:USB MIDI Interface MIDI 1 20:0";
  midi.inNames = {"In A", longName.toStdString()};
  app.start();
  PrefWindow* pref = app.prefWindow();
  auto* in = child<QComboBox>(pref, "Combo1");
  EXPECT_LE(in->geometry().right(), child<QComboBox>(pref, "Combo2")->x());
  EXPECT_LE(child<QComboBox>(pref, "Combo2")->geometry().right(), pref->width());
  EXPECT_TRUE(in->toolTip().isEmpty());
  pick(in, 1);
  EXPECT_EQ(in->toolTip(), longName);
}

// The main form as laid out, in twips: each control at its place and at least its size. Those
// that a Linux desktop's font widens keep their left and top (the README names them); the
// program list, the option frames and the two panels move, and are checked by their own tests.
TEST_F(Forms, TheMainFormsControlsStandWhereTheLayoutPutsThem) {
  MainWindow* main = startMainForm();
  ASSERT_NE(main, nullptr);
  struct Place {
    QString name;
    int left, top, width, height;
  };
  std::vector<Place> places{{"LbxLyrPool", 3960, 3720, 1815, 3375}, {"CmdClrLyrPool", 4080, 7200, 1575, 255},
                            {"CmdPrfm", 1800, 4440, 975, 375},      {"CmbMidNtNo", 360, 5160, 735, 315},
                            {"SldNt", 600, 5520, 255, 1935},        {"SldVel", 1320, 5520, 255, 1935},
                            {"List1", 360, 360, 5295, 1230}};
  for (int i = 0; i < 12; ++i) {
    places.push_back({QString("CmdMult%1").arg(i + 5), 5880, 1560 + 480 * i, 1455, 375});
    places.push_back({QString("CmbMult%1").arg(i + 5), 7395, 1560 + 480 * i, 585, 315});
  }
  for (int i = 0; i < 4; ++i) {
    places.push_back({QString("CmdLyr%1").arg(i + 1), 1920, 5040 + 480 * i, 735, 375});
    places.push_back({QString("TxtLyr%1").arg(i + 1), 2760, 5160 + 480 * i, 975, 285});
  }
  for (const Place& p : places) {
    const QRect at = child<QWidget>(main, p.name)->geometry();
    EXPECT_EQ(at.topLeft(), QPoint(p.left / 15, p.top / 15)) << p.name.toStdString();
    EXPECT_GE(at.width(), p.width / 15) << p.name.toStdString();
    EXPECT_EQ(at.height(), p.height / 15) << p.name.toStdString();
  }
  QWidget* client = child<QWidget>(main, "CS2xClient");
  EXPECT_EQ(client->height(), 7740 / 15);
  EXPECT_GE(client->width(), 11085 / 15);
}

}  // namespace
}  // namespace tessivo::qt
