// The Qt forms under the offscreen platform: what a user finds on the screen from the
// preferences through the splash to the main form, with names, captions and default buttons.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTest>
#include <stdexcept>

#include "data/tables.h"
#include "instrument/virtual_cs2x.h"
#include "link/port_service.h"
#include "shell/qt/qt_app.h"
#include "support/scripted.h"

namespace tessivo::qt {

class Forms : public ::testing::Test {
 protected:
  VirtualCs2x cs2x;
  VirtualCs2xProvider builtIn{cs2x};
  PortMidiService midi{{&builtIn}};
  QtApp app{midi};
  test::TempFile prefs;

  void SetUp() override { app.logic().pref().prefsPath = prefs.path; }

  // OK on the first preferences, then the start reads the instrument.
  MainWindow* startMainForm() {
    app.start();
    app.prefWindow()->findChild<QPushButton*>("OKButton")->click();
    MainWindow* main = app.mainWindow();
    if (main == nullptr || !QTest::qWaitFor([&] { return main->isVisible(); }, 60000)) return nullptr;
    return main;
  }
};

// A widget that must be there; a missing one ends the test with its name.
template <typename W>
W* child(QObject* parent, const QString& name) {
  auto* w = parent->findChild<W*>(name);
  if (w == nullptr) throw std::runtime_error("no " + name.toStdString());
  return w;
}

TEST_F(Forms, ThePreferencesComeFirstWithTheBuiltInInstrumentAndOkAsDefault) {
  app.start();
  PrefWindow* pref = app.prefWindow();
  ASSERT_NE(pref, nullptr);
  EXPECT_TRUE(pref->isVisible());
  EXPECT_EQ(pref->objectName(), "frmPref");
  EXPECT_EQ(pref->windowTitle(), "Tessivo Startup Preferences");
  auto* combo1 = pref->findChild<QComboBox*>("Combo1");
  auto* combo2 = pref->findChild<QComboBox*>("Combo2");
  ASSERT_TRUE(combo1 && combo2);
  EXPECT_EQ(combo1->itemText(0), "Virtual CS2x (built-in)");
  EXPECT_EQ(combo2->itemText(0), "Virtual CS2x (built-in)");
  EXPECT_EQ(combo1->currentIndex(), 0);
  auto* ok = pref->findChild<QPushButton*>("OKButton");
  ASSERT_NE(ok, nullptr);
  EXPECT_EQ(ok->text(), "OK");
  EXPECT_TRUE(ok->isDefault());
  EXPECT_EQ(pref->findChild<QLabel*>("Label4")->text(), "MIDI In Device");
  EXPECT_EQ(pref->findChild<QLabel*>("Label5")->text(), "MIDI Out Device");
}

TEST_F(Forms, EnterOnThePreferencesStartsTheProgramThroughSplashToMainForm) {
  app.start();
  PrefWindow* pref = app.prefWindow();
  pref->activateWindow();
  QTest::keyClick(pref, Qt::Key_Return);  // the default button answers Enter

  auto* splash = app.form(FormId::Splash);
  ASSERT_NE(splash, nullptr);
  EXPECT_TRUE(splash->isVisible());
  EXPECT_FALSE(pref->isVisible());
  EXPECT_EQ(splash->findChild<QLabel*>("lblCompanyProduct")->text(), "Tessivo");
  EXPECT_EQ(splash->findChild<QLabel*>("LblPlatform")->text(), "Windows 95/98");
  EXPECT_EQ(splash->findChild<QLabel*>("lblVersion")->text(), "V1.2.0");
  EXPECT_FALSE(splash->findChild<QLabel*>("lblWarning")->text().isEmpty());
  MainWindow* main = app.mainWindow();
  ASSERT_NE(main, nullptr);
  EXPECT_FALSE(main->isVisible());  // created hidden until the timer's tick

  ASSERT_TRUE(QTest::qWaitFor([&] { return main->isVisible(); }, 60000));
  EXPECT_EQ(app.form(FormId::Splash), nullptr);
  EXPECT_EQ(main->objectName(), "CS2x");
  EXPECT_EQ(main->windowTitle(), "CS2x Tessivo");
  for (int m = 5; m <= 16; ++m) {
    auto* button = main->findChild<QPushButton*>(QString("CmdMult%1").arg(m));
    auto* channel = main->findChild<QComboBox*>(QString("CmbMult%1").arg(m));
    ASSERT_TRUE(button && channel) << m;
    EXPECT_EQ(button->text(), QString("Multi Part M%1").arg(m));
    EXPECT_EQ(channel->count(), 16);
    EXPECT_EQ(channel->currentIndex(), (m - 5) / 4 * 4);
    EXPECT_EQ(channel->itemText(15), " 16");
  }
  // The built-in instrument now has its input started and thru on.
  EXPECT_TRUE(cs2x.inputStarted());
  EXPECT_TRUE(cs2x.thruOn());

  QMenu* file = main->menuBar()->findChild<QMenu*>("FileMenu");
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(file->title(), "File");
  ASSERT_EQ(file->actions().size(), 2);
  EXPECT_EQ(file->actions()[0]->objectName(), "StrtupPref");
  EXPECT_EQ(file->actions()[0]->text(), "Startup Preferences");
  EXPECT_EQ(file->actions()[1]->objectName(), "ExitMenu");
  EXPECT_EQ(file->actions()[1]->text(), "Exit");

  file->actions()[0]->trigger();  // Startup Preferences shows the form again
  EXPECT_TRUE(pref->isVisible());
}

TEST_F(Forms, EveryPreferenceControlStandsByNameWithItsTextAndNoLabelIsCut) {
  app.start();
  PrefWindow* pref = app.prefWindow();
  const std::pair<const char*, QString> labels[] = {
      {"Label1", PrefForm::kLabel1},  {"Label2", PrefForm::kLabel2},
      {"Label3", PrefForm::kLabel3},  {"Label4", "MIDI In Device"},
      {"Label5", "MIDI Out Device"},  {"Labelx1_55", "Performance Midi Channel"},
      {"Label6_0", "Midi File Density"}, {"Label6_1", "Low"},
      {"Label6_2", "High"}};
  for (const auto& [name, text] : labels) {
    auto* label = child<QLabel>(pref, name);
    EXPECT_EQ(label->text(), text) << name;
    const bool fits = label->wordWrap() ? label->height() >= label->heightForWidth(label->width())
                                        : label->width() >= label->sizeHint().width();
    EXPECT_TRUE(fits) << name;
  }
  EXPECT_EQ(child<QLabel>(pref, "Label1")->toolTip(), PrefForm::kLabel1Tip);

  for (int m = 5; m <= 16; ++m) {
    auto* box = child<QCheckBox>(pref, m == 8 ? QString("Chkmlt8") : QString("ChkMlt%1").arg(m));
    EXPECT_EQ(box->text(), QString("Multi %1").arg(m));
  }
  EXPECT_EQ(pref->findChild<QCheckBox*>("ChkMlt8"), nullptr);

  // The check box in front of Label3 shows no text and takes the clicks on its place.
  auto* chkLdFile = child<QCheckBox>(pref, "ChkLdFile");
  EXPECT_TRUE(chkLdFile->text().isEmpty());
  EXPECT_EQ(pref->childAt(chkLdFile->geometry().center()), chkLdFile);

  EXPECT_EQ(child<QPushButton>(pref, "CmdBrowse")->text(), "Browse");
  child<QLineEdit>(pref, "TxtLdFile");
  auto* channel = child<QComboBox>(pref, "cmbPerfChnl");
  ASSERT_EQ(channel->count(), 16);
  EXPECT_EQ(channel->itemText(15), " 16");
  auto* slider = child<QSlider>(pref, "Slider1");
  EXPECT_EQ(slider->orientation(), Qt::Horizontal);
  EXPECT_EQ(slider->maximum(), 3);
  EXPECT_GE(slider->height(), slider->minimumSizeHint().height());  // tall enough to drag
}

TEST_F(Forms, PreferenceGesturesReachTheFormAndTheFormRendersBack) {
  app.start();
  PrefWindow* pref = app.prefWindow();
  PrefForm& form = app.logic().pref();

  auto* multi7 = child<QCheckBox>(pref, "ChkMlt7");
  multi7->click();
  EXPECT_EQ(form.ChkMlt(7).value, 1);
  multi7->click();
  EXPECT_EQ(form.ChkMlt(7).value, 0);
  child<QCheckBox>(pref, "Chkmlt8")->click();
  EXPECT_EQ(form.ChkMlt(8).value, 1);
  child<QCheckBox>(pref, "ChkLdFile")->click();
  EXPECT_EQ(form.ChkLdFile.value, 1);

  auto* path = child<QLineEdit>(pref, "TxtLdFile");
  path->clear();
  QTest::keyClicks(path, "/tmp/my.tvw");
  EXPECT_EQ(form.workspacePath(), "/tmp/my.tvw");

  QTest::keyClick(child<QComboBox>(pref, "cmbPerfChnl"), Qt::Key_Down);
  EXPECT_EQ(form.cmbPerfChnl.index(), 1);
  auto* slider = child<QSlider>(pref, "Slider1");
  slider->triggerAction(QAbstractSlider::SliderSingleStepAdd);
  EXPECT_EQ(form.Slider1.value, 1);

  // Any value but 0 is a check.
  form.ChkMlt(12).value = 2;
  form.ChkMlt(8).value = 0;
  form.TxtLdFile.text = "other.tvw";
  form.Slider1.value = 3;
  pref->render();
  EXPECT_TRUE(child<QCheckBox>(pref, "ChkMlt12")->isChecked());
  EXPECT_FALSE(child<QCheckBox>(pref, "Chkmlt8")->isChecked());
  EXPECT_EQ(path->text(), "other.tvw");
  EXPECT_EQ(slider->value(), 3);
}

TEST_F(Forms, AfterTheStartTheMainFormShowsThePerformanceAndItsMenusWork) {
  MainWindow* main = startMainForm();
  ASSERT_NE(main, nullptr);
  MainForm& form = *app.logic().mainForm();
  const PerfPanel& panel = form.panel;

  auto* preset = child<QRadioButton>(main, "OptPreset");
  auto* user = child<QRadioButton>(main, "OptUser");
  auto* bank1 = child<QRadioButton>(main, "OptBank1");
  auto* bank2 = child<QRadioButton>(main, "OptBank2");
  EXPECT_TRUE(preset->isChecked());
  EXPECT_FALSE(user->isChecked());
  EXPECT_TRUE(bank1->isChecked());
  EXPECT_FALSE(bank2->isChecked());
  auto* program = child<QComboBox>(main, "CmbPrgm");
  ASSERT_EQ(program->count(), 128);
  EXPECT_EQ(program->itemText(0), "Ministry");
  EXPECT_EQ(program->currentIndex(), 0);

  // Name and Layers as the instrument gave them; an unread name shows no zero bytes.
  EXPECT_EQ(child<QPushButton>(main, "CmdPrfm")->text(),
            QString::fromStdString(panel.CmdPrfm.caption).remove(QChar(0)));
  for (int n = 1; n <= 4; ++n) {
    const auto i = static_cast<std::size_t>(n - 1);
    auto* layer = child<QPushButton>(main, QString("CmdLyr%1").arg(n));
    auto* text = child<QLineEdit>(main, QString("TxtLyr%1").arg(n));
    EXPECT_EQ(layer->text(), QString("Layer%1").arg(n));
    EXPECT_EQ(layer->isEnabled(), panel.CmdLyr[i].enabled) << n;
    EXPECT_EQ(text->isEnabled(), panel.TxtLyr[i].enabled) << n;
  }

  auto* note = child<QComboBox>(main, "CmbMidNtNo");
  ASSERT_EQ(note->count(), 128);
  EXPECT_EQ(note->itemText(127), " 127");
  const int startNote = form.CmbMidNtNo.index();
  EXPECT_EQ(note->currentIndex(), startNote);
  QTest::keyClick(note, Qt::Key_Down);
  EXPECT_EQ(form.CmbMidNtNo.index(), startNote + 1);

  // The options refill the program list; one of the same length shows its own entries.
  user->click();
  EXPECT_TRUE(panel.OptUser);
  EXPECT_FALSE(preset->isChecked());
  EXPECT_EQ(program->itemText(0), " 1");
  EXPECT_EQ(program->itemText(127), " 128");
  bank2->click();
  EXPECT_TRUE(panel.OptBank2);
  EXPECT_FALSE(bank1->isChecked());
  preset->click();
  QStringList shown, bank2Names;
  for (int i = 0; i < program->count(); ++i) shown << program->itemText(i);
  for (std::string_view name : PrfNames2) bank2Names << QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
  EXPECT_EQ(shown, bank2Names);

  // Menus after File: Retrieve, then Midi; no entry has a shortcut.
  QList<QAction*> bar = main->menuBar()->actions();
  ASSERT_GE(bar.size(), 3);
  const std::pair<const char*, const char*> menus[] = {{"FileMenu", "File"}, {"Retrv", "Retrieve"}, {"mnuMidi", "Midi"}};
  for (std::size_t i = 0; i < 3; ++i) {
    ASSERT_NE(bar[static_cast<int>(i)]->menu(), nullptr);
    EXPECT_EQ(bar[static_cast<int>(i)]->menu()->objectName(), menus[i].first);
    EXPECT_EQ(bar[static_cast<int>(i)]->text(), menus[i].second);
  }
  auto entries = [](QMenu* menu) {
    QStringList list;
    for (QAction* a : menu->actions()) {
      list << (a->menu() ? a->menu()->objectName() : a->objectName()) + "=" + a->text();
      EXPECT_TRUE(a->shortcut().isEmpty()) << a->objectName().toStdString();
    }
    return list;
  };
  EXPECT_EQ(entries(bar[1]->menu()),
            QStringList({"RtrvPerf=Performance", "RtrvAllMulti=All Multis", "RtrvMult=Multi"}));
  QStringList multis;
  for (int m = 5; m <= 16; ++m) multis << QString("RtrvMulti%1=Multi %1").arg(m);
  EXPECT_EQ(entries(child<QMenu>(main, "RtrvMult")), multis);
  EXPECT_EQ(entries(bar[2]->menu()),
            QStringList({"AllNtsOff=All Notes Off", "LocalOff=Local Off", "ArpOff=Arpeggiator Off",
                         "TrnsChnlAssgn=Trans Chnl Assigned by Audition"}));

  // The check mark follows the form's flag, which the entry's handler toggles.
  auto* localOff = child<QAction>(bar[2]->menu(), "LocalOff");
  EXPECT_FALSE(localOff->isChecked());
  localOff->trigger();
  EXPECT_TRUE(form.LocalOffChecked);
  EXPECT_TRUE(localOff->isChecked());
  localOff->trigger();
  EXPECT_FALSE(form.LocalOffChecked);
  EXPECT_FALSE(localOff->isChecked());
  // Where the flag and the mark disagree, the flag wins: the entry's own toggle is undone.
  auto* arpOff = child<QAction>(bar[2]->menu(), "ArpOff");
  form.ArpOffChecked = true;
  arpOff->trigger();
  EXPECT_FALSE(form.ArpOffChecked);
  EXPECT_FALSE(arpOff->isChecked());
}

TEST(MessageBoxes, OkIsTheDefaultSoEnterAnswers) {
  std::unique_ptr<QMessageBox> question(
      makeMessageBox("Do you really want to exit program?", "Exit", MsgButtons::OkCancel, MsgIcon::Question));
  EXPECT_EQ(question->windowTitle(), "Exit");
  EXPECT_EQ(question->icon(), QMessageBox::Question);
  EXPECT_EQ(question->defaultButton(), question->button(QMessageBox::Ok));
  EXPECT_EQ(question->escapeButton(), question->button(QMessageBox::Cancel));

  std::unique_ptr<QMessageBox> error(makeMessageBox("Operation: Open\r\nx", "Tessivo", MsgButtons::Ok, MsgIcon::None));
  EXPECT_EQ(error->defaultButton(), error->button(QMessageBox::Ok));
  EXPECT_EQ(error->icon(), QMessageBox::NoIcon);
  EXPECT_EQ(error->text(), "Operation: Open\nx");
}

}  // namespace tessivo::qt

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
