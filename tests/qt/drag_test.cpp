// The main form's mouse gestures beyond the left button's click and drag that the wiring table
// makes: the right button, a move short of the drag distance, disabled buttons, drops that
// are no Pool entry, and a press whose release a message box takes. A real drag cannot
// complete without a display, so its drop arrives as the events the platform would send.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QListWidget>
#include <set>

#include "qt/qt_program.h"
#include "shell/qt/gestures.h"

namespace tessivo::qt {
namespace {

std::unique_ptr<QMimeData> ours(const QString& source) { return std::unique_ptr<QMimeData>(sourceMimeData(source)); }

class Dragging : public QtProgram {
 protected:
  MainWindow* main = nullptr;
  MainForm* form = nullptr;
  QListWidget* poolList = nullptr;

  void SetUp() override {
    main = startMainForm();
    ASSERT_NE(main, nullptr);
    form = app.logic().mainForm();
    poolList = child<QListWidget>(main, "LbxLyrPool");
  }

  // All Notes Off (controller 123) on every one of the sixteen channels since the log was cleared.
  bool allNotesOffReceived() const {
    std::set<int> channels;
    for (const VirtualCs2x::Received& r : cs2x.log())
      if (r.bytes.size() == 3 && (r.bytes[0] & 0xF0) == 0xB0 && r.bytes[1] == 0x7B && r.bytes[2] == 0) channels.insert(r.bytes[0] & 0x0F);
    return channels.size() == 16;
  }

  std::vector<VirtualCs2x::SoundingNote> testNoteOn(int channel) const {
    return {{static_cast<std::uint8_t>(channel), static_cast<std::uint8_t>(form->CmbMidNtNo.index())}};
  }
};

TEST_F(Dragging, TheRightButtonSoundsAMultiAndAMoveShortOfTheDragDistanceIsAClick) {
  auto* button = child<QPushButton>(main, "CmdMult9");
  const QPoint at = button->rect().center();
  press(button, at, Qt::RightButton);
  EXPECT_EQ(cs2x.soundingNotes(), testNoteOn(form->row(9).CmbMult.index()));
  moveHeld(button, at + QPoint(QApplication::startDragDistance() / 2, 0), Qt::RightButton);
  EXPECT_FALSE(cs2x.soundingNotes().empty());
  release(button, at, Qt::RightButton);
  EXPECT_TRUE(cs2x.soundingNotes().empty());
  EXPECT_EQ(poolList->count(), 0);
  EXPECT_FALSE(button->isDown());
}

TEST_F(Dragging, DropsOfForeignDataOrOnOtherControlsAddNothingButStopTheNotes) {
  QMimeData foreign;
  foreign.setText("from another program");
  cs2x.clearLog();
  EXPECT_TRUE(dropOn(main, poolList, foreign));
  EXPECT_EQ(poolList->count(), 0);
  EXPECT_TRUE(allNotesOffReceived());

  // A Layer dropped on another control, a label or the bare form is no Pool entry either.
  for (const char* target : {"CmdMult6", "Labelx1_53"}) {
    cs2x.clearLog();
    EXPECT_TRUE(dropOn(main, child<QWidget>(main, target), *ours("TxtLyr1"))) << target;
    EXPECT_TRUE(allNotesOffReceived()) << target;
  }
  QWidget* client = main->centralWidget();
  const QPoint bare = client->rect().bottomRight() - QPoint(2, 2);
  ASSERT_EQ(client->childAt(bare), nullptr);
  cs2x.clearLog();
  EXPECT_TRUE(dropOn(main, client, *ours("TxtLyr1"), bare));
  EXPECT_TRUE(allNotesOffReceived());
  EXPECT_EQ(poolList->count(), 0);
}

TEST_F(Dragging, PerformanceAndLayerButtonsSoundWhileHeldByTheRightButtonUnlessDisabled) {
  const int perfChannel = cs2x.performanceChannel();
  auto* layer1 = child<QPushButton>(main, "CmdLyr1");
  ASSERT_TRUE(layer1->isEnabled());
  for (QPushButton* button : {child<QPushButton>(main, "CmdPrfm"), layer1}) {
    press(button, button->rect().center(), Qt::RightButton);
    EXPECT_EQ(cs2x.soundingNotes(), testNoteOn(perfChannel));
    release(button, button->rect().center(), Qt::RightButton);
    EXPECT_TRUE(cs2x.soundingNotes().empty());
  }

  // A Layer that is off gives no press, nor does its name box give a drag.
  form->panel.CmdLyr[0].enabled = false;
  form->panel.TxtLyr[0].enabled = false;
  main->render();
  cs2x.clearLog();
  press(layer1);
  release(layer1);
  auto* name = child<QLineEdit>(main, "TxtLyr1");
  startDrag(name);
  EXPECT_EQ(name->findChild<QDrag*>(), nullptr);
  release(name);
  EXPECT_TRUE(cs2x.log().empty());
}

// A failed send during a press shows a box, and the box's event loop takes the release. The
// press comes through the window system here, as a user's does, so the held buttons are real.
TEST(PressAnsweredByABox, IsReleasedOnceTheBoxClosesAndLeavesNeitherButtonNorDragSourceDown) {
  QWidget host;
  host.resize(300, 100);
  auto* held = new QPushButton("Held", &host);
  held->setGeometry(10, 10, 80, 30);
  auto* dragged = new QPushButton("Dragged", &host);
  dragged->setGeometry(110, 10, 80, 30);
  host.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&host));
  QWindow* window = host.windowHandle();

  std::vector<std::string> calls;
  bool boxOnPress = true;
  auto boxTakingTheRelease = [&](const char* what) {
    calls.push_back(what);
    if (!boxOnPress) return;
    QMessageBox box(QMessageBox::NoIcon, "Tessivo", "failed");
    QTimer::singleShot(0, &box, [&] {
      QTest::mouseRelease(box.windowHandle(), Qt::LeftButton, {}, QPoint(5, 5));
      box.accept();
    });
    box.exec();
  };
  new PressWatch(held, [&] { boxTakingTheRelease("press"); }, [&] { calls.push_back("release"); });
  new DragSource(dragged, dragged,
                 {.press = [&](QPoint) { boxTakingTheRelease("multi press"); },
                  .dropOnItself = [&](QPoint) { calls.push_back("drop on itself"); },
                  .doubleClick = {}});

  QTest::mousePress(window, Qt::LeftButton, {}, QPoint(50, 25));
  EXPECT_EQ(calls, (std::vector<std::string>{"press", "release"}));
  EXPECT_FALSE(held->isDown());
  QTest::mousePress(window, Qt::LeftButton, {}, QPoint(150, 25));
  EXPECT_EQ(calls.back(), "drop on itself");
  EXPECT_FALSE(dragged->isDown());

  // Without a box the press is held until its own release.
  calls.clear();
  boxOnPress = false;
  QTest::mousePress(window, Qt::LeftButton, {}, QPoint(50, 25));
  EXPECT_EQ(calls, (std::vector<std::string>{"press"}));
  EXPECT_TRUE(held->isDown());
  QTest::mouseRelease(window, Qt::LeftButton, {}, QPoint(50, 25));
  EXPECT_EQ(calls, (std::vector<std::string>{"press", "release"}));
  EXPECT_FALSE(held->isDown());
}

}  // namespace
}  // namespace tessivo::qt
