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

class Dragging : public QtProgram {
 protected:
  MainWindow* main = nullptr;
  MainForm* form = nullptr;
  QListWidget* pool = nullptr;

  void SetUp() override {
    main = startMainForm();
    ASSERT_NE(main, nullptr);
    form = app.logic().mainForm();
    pool = child<QListWidget>(main, "LbxLyrPool");
  }
  // The right button held on `button`: the test note sounds on `channel` until the release.
  void expectSoundsWhileHeld(QPushButton* button, int channel, QPoint moved = {}) {
    const QPoint at = button->rect().center();
    press(button, at, Qt::RightButton);
    const std::uint8_t note = static_cast<std::uint8_t>(form->CmbMidNtNo.index());
    EXPECT_EQ(cs2x.soundingNotes(), (std::vector<VirtualCs2x::SoundingNote>{{static_cast<std::uint8_t>(channel), note}}));
    moveHeld(button, at + moved, Qt::RightButton);
    EXPECT_FALSE(cs2x.soundingNotes().empty());
    release(button, at + moved, Qt::RightButton);
    EXPECT_TRUE(cs2x.soundingNotes().empty());
    EXPECT_FALSE(button->isDown());
  }
};

TEST_F(Dragging, TheRightButtonSoundsEachAuditionButtonAndAMoveShortOfTheDragDistanceIsAClick) {
  expectSoundsWhileHeld(child<QPushButton>(main, "CmdMult9"), form->row(9).CmbMult.index(),
                        QPoint(QApplication::startDragDistance() / 2, 0));
  EXPECT_EQ(pool->count(), 0);
  for (const char* button : {"CmdPrfm", "CmdLyr1"}) expectSoundsWhileHeld(child<QPushButton>(main, button), cs2x.performanceChannel());

  // A Layer that is off gives no press, nor does its name box give a drag.
  form->panel.CmdLyr[0].enabled = false;
  form->panel.TxtLyr[0].enabled = false;
  main->render();
  cs2x.clearLog();
  press(child<QWidget>(main, "CmdLyr1")), release(child<QWidget>(main, "CmdLyr1"));
  auto* name = child<QLineEdit>(main, "TxtLyr1");
  press(name);
  moveHeld(name, name->rect().center() + QPoint(QApplication::startDragDistance() + 1, 0));
  EXPECT_EQ(name->findChild<QDrag*>(), nullptr);
  release(name);
  EXPECT_TRUE(cs2x.log().empty());
}

TEST_F(Dragging, DropsOfForeignDataOrOnOtherControlsAddNothingButStopTheNotes) {
  QMimeData foreign;
  foreign.setText("from another program");
  const std::unique_ptr<QMimeData> layer(sourceMimeData("TxtLyr1"));
  QWidget* client = main->centralWidget();
  const QPoint bare = client->rect().bottomRight() - QPoint(2, 2);
  ASSERT_EQ(client->childAt(bare), nullptr);
  // Another program's data on the Pool; a Layer on another control, a label or the bare form.
  for (const auto& [over, data, at] : std::vector<std::tuple<QWidget*, QMimeData*, std::optional<QPoint>>>{
           {pool, &foreign, {}}, {child<QWidget>(main, "CmdMult6"), layer.get(), {}},
           {child<QWidget>(main, "Labelx1_53"), layer.get(), {}}, {client, layer.get(), bare}}) {
    cs2x.clearLog();
    EXPECT_TRUE(dropOn(main, over, *data, at)) << over->objectName().toStdString();
    std::set<int> channels;  // All Notes Off (controller 123) on every one of the sixteen
    for (const VirtualCs2x::Received& r : cs2x.log())
      if (r.bytes.size() == 3 && (r.bytes[0] & 0xF0) == 0xB0 && r.bytes[1] == 0x7B && r.bytes[2] == 0) channels.insert(r.bytes[0] & 0x0F);
    EXPECT_EQ(channels.size(), 16u) << over->objectName().toStdString();
  }
  EXPECT_EQ(pool->count(), 0);
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
  auto boxTakingTheRelease = [&](const char* what) {
    calls.push_back(what);
    QMessageBox box(QMessageBox::NoIcon, "Tessivo", "failed");
    QTimer::singleShot(0, &box, [&] { QTest::mouseRelease(box.windowHandle(), Qt::LeftButton, {}, QPoint(5, 5)), box.accept(); });
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
}

}  // namespace
}  // namespace tessivo::qt
