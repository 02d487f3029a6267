// The Qt forms under the offscreen platform: what a user finds on the screen from the
// preferences through the splash to the main form, with names, captions and default buttons.
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

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
};

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

  ASSERT_TRUE(QTest::qWaitFor([&] { return main->isVisible(); }, 5000));
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
