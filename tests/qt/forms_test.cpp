// The Qt forms under the offscreen platform: what a user finds on the screen from the
// preferences through the splash to the main form, with names, captions and default buttons.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QRadioButton>
#include <QSlider>

#include "data/tables.h"
#include "qt/qt_program.h"

namespace tessivo::qt {

using Forms = QtProgram;

TEST_F(Forms, ThePreferencesComeFirstWithEveryControlByNameNoLabelCutAndOkAsDefault) {
  app.start();
  PrefWindow* pref = app.prefWindow();
  ASSERT_NE(pref, nullptr);
  EXPECT_TRUE(pref->isVisible());
  EXPECT_EQ(pref->objectName(), "frmPref");
  EXPECT_EQ(pref->windowTitle(), "Tessivo Startup Preferences");
  for (const char* name : {"Combo1", "Combo2"}) {
    EXPECT_EQ(child<QComboBox>(pref, name)->itemText(0), "Virtual CS2x (built-in)");
    EXPECT_EQ(child<QComboBox>(pref, name)->currentIndex(), 0);
  }
  auto* ok = child<QPushButton>(pref, "OKButton");
  EXPECT_EQ(ok->text(), "OK");
  EXPECT_TRUE(ok->isDefault());

  const std::pair<const char*, QString> labels[] = {
      {"Label1", PrefForm::kLabel1},     {"Label2", PrefForm::kLabel2},   {"Label3", PrefForm::kLabel3},
      {"Label4", "MIDI In Device"},      {"Label5", "MIDI Out Device"},   {"Labelx1_55", "Performance Midi Channel"},
      {"Label6_0", "Midi File Density"}, {"Label6_1", "Low"},             {"Label6_2", "High"}};
  for (const auto& [name, text] : labels) {
    auto* label = child<QLabel>(pref, name);
    EXPECT_EQ(label->text(), text) << name;
    const bool fits = label->wordWrap() ? label->height() >= label->heightForWidth(label->width())
                                        : label->width() >= label->sizeHint().width();
    EXPECT_TRUE(fits) << name;
  }
  EXPECT_EQ(child<QLabel>(pref, "Label1")->toolTip(), PrefForm::kLabel1Tip);
  for (int m = 5; m <= 16; ++m)  // the eighth box keeps its odd name
    EXPECT_EQ(child<QCheckBox>(pref, QString(m == 8 ? "Chkmlt%1" : "ChkMlt%1").arg(m))->text(), QString("Multi %1").arg(m));
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

TEST_F(Forms, EnterOnThePreferencesStartsTheProgramThroughSplashToMainForm) {
  app.start();
  PrefWindow* pref = app.prefWindow();
  pref->activateWindow();
  QTest::keyClick(pref, Qt::Key_Return);  // the default button answers Enter

  auto* splash = app.form(FormId::Splash);
  ASSERT_NE(splash, nullptr);
  EXPECT_TRUE(splash->isVisible());
  EXPECT_FALSE(pref->isVisible());
  EXPECT_EQ(child<QLabel>(splash, "lblCompanyProduct")->text(), "Tessivo");
  EXPECT_EQ(child<QLabel>(splash, "LblPlatform")->text(), "Windows 95/98");
  EXPECT_EQ(child<QLabel>(splash, "lblVersion")->text(), "V1.2.0");
  EXPECT_FALSE(child<QLabel>(splash, "lblWarning")->text().isEmpty());
  MainWindow* main = app.mainWindow();
  ASSERT_NE(main, nullptr);
  EXPECT_FALSE(main->isVisible());  // created hidden until the timer's tick

  ASSERT_TRUE(QTest::qWaitFor([&] { return main->isVisible(); }, 60000));
  EXPECT_EQ(app.form(FormId::Splash), nullptr);
  EXPECT_EQ(main->objectName(), "CS2x");
  EXPECT_EQ(main->windowTitle(), "CS2x Tessivo");
  for (int m = 5; m <= 16; ++m) {
    EXPECT_EQ(child<QPushButton>(main, QString("CmdMult%1").arg(m))->text(), QString("Multi Part M%1").arg(m));
    auto* channel = child<QComboBox>(main, QString("CmbMult%1").arg(m));
    EXPECT_EQ(channel->count(), 16);
    EXPECT_EQ(channel->currentIndex(), (m - 5) / 4 * 4);  // channels 1, 5 and 9 by fours
    EXPECT_EQ(channel->itemText(0), " 1");
    EXPECT_EQ(channel->itemText(15), " 16");
  }

  auto* startupPref = child<QAction>(main, "StrtupPref");
  startupPref->trigger();  // Startup Preferences shows the form again
  EXPECT_TRUE(pref->isVisible());
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
  EXPECT_TRUE(preset->isChecked() && bank1->isChecked());
  EXPECT_FALSE(user->isChecked() || bank2->isChecked());
  auto* program = child<QComboBox>(main, "CmbPrgm");
  ASSERT_EQ(program->count(), 128);
  EXPECT_EQ(program->itemText(0), "Ministry");
  EXPECT_EQ(program->currentIndex(), 0);

  // Name and Layers as the instrument gave them; an unread name shows no zero bytes.
  EXPECT_EQ(child<QPushButton>(main, "CmdPrfm")->text(), QString::fromStdString(panel.CmdPrfm.caption).remove(QChar(0)));
  for (int n = 1; n <= 4; ++n) {
    const auto i = static_cast<std::size_t>(n - 1);
    auto* layer = child<QPushButton>(main, QString("CmdLyr%1").arg(n));
    EXPECT_EQ(layer->text(), QString("Layer%1").arg(n));
    EXPECT_EQ(layer->isEnabled(), panel.CmdLyr[i].enabled) << n;
    EXPECT_EQ(child<QLineEdit>(main, QString("TxtLyr%1").arg(n))->isEnabled(), panel.TxtLyr[i].enabled) << n;
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

  // The menus File, Retrieve and Midi in that order; no entry has a shortcut.
  auto entries = [](QMenu* menu) {
    QStringList list;
    for (QAction* a : menu->actions()) {
      list << (a->menu() ? a->menu()->objectName() : a->objectName()) + "=" + a->text();
      EXPECT_TRUE(a->shortcut().isEmpty()) << a->objectName().toStdString();
    }
    return list;
  };
  QStringList bar;
  for (QAction* a : main->menuBar()->actions()) bar << (a->menu() ? a->menu()->objectName() : "") + "=" + a->text();
  EXPECT_EQ(bar.mid(0, 3), QStringList({"FileMenu=File", "Retrv=Retrieve", "mnuMidi=Midi"}));
  EXPECT_EQ(entries(child<QMenu>(main, "FileMenu")), QStringList({"StrtupPref=Startup Preferences", "ExitMenu=Exit"}));
  EXPECT_EQ(entries(child<QMenu>(main, "Retrv")),
            QStringList({"RtrvPerf=Performance", "RtrvAllMulti=All Multis", "RtrvMult=Multi"}));
  QStringList multis;
  for (int m = 5; m <= 16; ++m) multis << QString("RtrvMulti%1=Multi %1").arg(m);
  EXPECT_EQ(entries(child<QMenu>(main, "RtrvMult")), multis);
  QMenu* midiMenu = child<QMenu>(main, "mnuMidi");
  EXPECT_EQ(entries(midiMenu), QStringList({"AllNtsOff=All Notes Off", "LocalOff=Local Off", "ArpOff=Arpeggiator Off",
                                            "TrnsChnlAssgn=Trans Chnl Assigned by Audition"}));

  // The check mark follows the form's flag, which the entry's handler toggles.
  auto* localOff = child<QAction>(midiMenu, "LocalOff");
  EXPECT_FALSE(localOff->isChecked());
  localOff->trigger();
  EXPECT_TRUE(form.LocalOffChecked);
  EXPECT_TRUE(localOff->isChecked());
  localOff->trigger();
  EXPECT_FALSE(form.LocalOffChecked || localOff->isChecked());
  // Where the flag and the mark disagree, the flag wins: the entry's own toggle is undone.
  auto* arpOff = child<QAction>(midiMenu, "ArpOff");
  form.ArpOffChecked = true;
  arpOff->trigger();
  EXPECT_FALSE(form.ArpOffChecked || arpOff->isChecked());
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
