// The main form's mouse gestures under the offscreen platform, against the built-in instrument:
// audition by press and release, drags onto the Layer Pool, clicks that drop a control on
// itself, and the sliders beside the test note lists. A real drag cannot complete without a
// display, so the drop arrives as the events the platform would send.
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDropEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QMimeData>
#include <QMouseEvent>
#include <QSlider>
#include <memory>
#include <optional>
#include <set>

#include "qt/qt_program.h"
#include "shell/qt/gestures.h"

namespace tessivo::qt {
namespace {

std::unique_ptr<QMimeData> ours(const QString& source) { return std::unique_ptr<QMimeData>(sourceMimeData(source)); }

void mouse(QWidget* w, QEvent::Type type, QPoint pos, Qt::MouseButton button, Qt::MouseButtons held) {
  QMouseEvent event(type, QPointF(pos), w->mapToGlobal(QPointF(pos)), button, held, Qt::NoModifier);
  QApplication::sendEvent(w, &event);
}
void press(QWidget* w, QPoint pos, Qt::MouseButton button = Qt::LeftButton) {
  mouse(w, QEvent::MouseButtonPress, pos, button, button);
}
void moveHeld(QWidget* w, QPoint pos, Qt::MouseButton button = Qt::LeftButton) {
  mouse(w, QEvent::MouseMove, pos, Qt::NoButton, button);
}
void release(QWidget* w, QPoint pos, Qt::MouseButton button = Qt::LeftButton) {
  mouse(w, QEvent::MouseButtonRelease, pos, button, Qt::NoButton);
}

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

  // A press, then a move past the drag distance: the drag starts (and, without a display,
  // ends at once; its drop comes with dropOn).
  void startDrag(QWidget* source, Qt::MouseButton button = Qt::LeftButton) {
    const QPoint at = source->rect().center();
    press(source, at, button);
    moveHeld(source, at + QPoint(QApplication::startDragDistance() + 1, 0), button);
  }

  // Enter, move and drop over `over` (its middle unless `at` is given), sent to the widget the
  // platform picks (the deepest one there; all of them take drops). True when all three were
  // accepted.
  bool dropOn(QWidget* over, const QMimeData& data, std::optional<QPoint> at = {}) {
    const QPoint inWindow = over->mapTo(main, at.value_or(over->rect().center()));
    QWidget* receiver = main->childAt(inWindow);
    if (receiver == nullptr) receiver = main;
    const QPoint pos = receiver->mapFrom(main, inWindow);
    QDragEnterEvent enter(pos, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(receiver, &enter);
    QDragMoveEvent move(pos, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(receiver, &move);
    QDropEvent drop(QPointF(pos), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(receiver, &drop);
    return enter.isAccepted() && move.isAccepted() && drop.isAccepted() && drop.dropAction() == Qt::CopyAction;
  }

  // All Notes Off (controller 123) on every one of the sixteen channels since the log was cleared.
  bool allNotesOffReceived() const {
    std::set<int> channels;
    for (const VirtualCs2x::Received& r : cs2x.log())
      if (r.bytes.size() == 3 && (r.bytes[0] & 0xF0) == 0xB0 && r.bytes[1] == 0x7B && r.bytes[2] == 0) channels.insert(r.bytes[0] & 0x0F);
    return channels.size() == 16;
  }

  VirtualCs2x::SoundingNote testNoteOn(int channel) const {
    return {static_cast<std::uint8_t>(channel), static_cast<std::uint8_t>(form->CmbMidNtNo.index())};
  }
};

TEST_F(Dragging, ALayerDroppedOnThePoolBecomesAnEntryWhichAClickSelectsAndClearRemoves) {
  int n = 1;
  while (n <= 4 && !form->panel.TxtLyr[static_cast<std::size_t>(n - 1)].enabled) ++n;
  ASSERT_LE(n, 4) << "the Performance has no Layer on";
  auto* text = child<QLineEdit>(main, QString("TxtLyr%1").arg(n));
  cs2x.clearLog();

  startDrag(text);
  ASSERT_TRUE(dropOn(poolList, *ours(text->objectName())));
  ASSERT_EQ(poolList->count(), 1);
  EXPECT_EQ(poolList->item(0)->text(), text->text());
  EXPECT_TRUE(text->text().endsWith(QChar('A' + n - 1)));
  EXPECT_EQ(form->pool().LbxLyrPool.itemData, std::vector<int>{0});
  EXPECT_TRUE(allNotesOffReceived());

  // The second entry takes the next record; a click on the first selects it and adds nothing.
  startDrag(text);
  ASSERT_TRUE(dropOn(poolList, *ours(text->objectName())));
  EXPECT_EQ(form->pool().LbxLyrPool.itemData, (std::vector<int>{0, 1}));
  QWidget* viewport = poolList->viewport();
  const QPoint first = poolList->visualItemRect(poolList->item(0)).center();
  press(viewport, first);
  release(viewport, first);
  EXPECT_EQ(form->pool().LbxLyrPool.index, 0);
  EXPECT_EQ(poolList->currentRow(), 0);
  EXPECT_EQ(poolList->count(), 2);

  child<QPushButton>(main, "CmdClrLyrPool")->click();
  EXPECT_EQ(poolList->count(), 0);
  EXPECT_TRUE(form->pool().LbxLyrPool.items.empty());
}

TEST_F(Dragging, AMultiSoundsFromItsPressUntilItsDropOnThePoolOrItsReleaseWithoutADrag) {
  auto* button5 = child<QPushButton>(main, "CmdMult5");
  startDrag(button5);
  EXPECT_EQ(cs2x.soundingNotes(), std::vector<VirtualCs2x::SoundingNote>{testNoteOn(form->row(5).CmbMult.index())});
  ASSERT_TRUE(dropOn(poolList, *ours("CmdMult5")));
  ASSERT_EQ(poolList->count(), 1);
  EXPECT_EQ(poolList->item(0)->text(), "Multi Part");
  EXPECT_TRUE(cs2x.soundingNotes().empty());

  // The right button sounds it as well; a move short of the drag distance is no drag, and the
  // release is a click that ends the note.
  auto* button9 = child<QPushButton>(main, "CmdMult9");
  const QPoint at = button9->rect().center();
  press(button9, at, Qt::RightButton);
  EXPECT_EQ(cs2x.soundingNotes(), std::vector<VirtualCs2x::SoundingNote>{testNoteOn(form->row(9).CmbMult.index())});
  moveHeld(button9, at + QPoint(QApplication::startDragDistance() / 2, 0), Qt::RightButton);
  EXPECT_FALSE(cs2x.soundingNotes().empty());
  release(button9, at, Qt::RightButton);
  EXPECT_TRUE(cs2x.soundingNotes().empty());
  EXPECT_EQ(poolList->count(), 1);
  EXPECT_FALSE(button9->isDown());
}

TEST_F(Dragging, DropsOfForeignDataOrOnOtherControlsAddNothingButStopTheNotes) {
  QMimeData foreign;
  foreign.setText("from another program");
  cs2x.clearLog();
  EXPECT_TRUE(dropOn(poolList, foreign));
  EXPECT_EQ(poolList->count(), 0);
  EXPECT_TRUE(allNotesOffReceived());

  // A Layer dropped on another control or the bare form is no Pool entry either.
  cs2x.clearLog();
  EXPECT_TRUE(dropOn(child<QWidget>(main, "CmdMult6"), *ours("TxtLyr1")));
  EXPECT_TRUE(allNotesOffReceived());
  QWidget* client = main->centralWidget();
  const QPoint bare = client->rect().bottomRight() - QPoint(2, 2);
  ASSERT_EQ(client->childAt(bare), nullptr);
  cs2x.clearLog();
  EXPECT_TRUE(dropOn(client, *ours("TxtLyr1"), bare));
  EXPECT_TRUE(allNotesOffReceived());
  EXPECT_EQ(poolList->count(), 0);
}

TEST_F(Dragging, PerformanceAndLayerButtonsSoundWhileHeldByEitherMouseButtonUnlessDisabled) {
  const int perfChannel = cs2x.performanceChannel();
  auto* layer1 = child<QPushButton>(main, "CmdLyr1");
  ASSERT_TRUE(layer1->isEnabled());
  for (QPushButton* button : {child<QPushButton>(main, "CmdPrfm"), layer1})
    for (Qt::MouseButton b : {Qt::LeftButton, Qt::RightButton}) {
      press(button, button->rect().center(), b);
      EXPECT_EQ(cs2x.soundingNotes(), std::vector<VirtualCs2x::SoundingNote>{testNoteOn(perfChannel)}) << b;
      release(button, button->rect().center(), b);
      EXPECT_TRUE(cs2x.soundingNotes().empty()) << b;
    }

  form->panel.CmdLyr[0].enabled = false;
  main->render();
  cs2x.clearLog();
  press(layer1, layer1->rect().center());
  release(layer1, layer1->rect().center());
  EXPECT_TRUE(cs2x.log().empty());
}

TEST_F(Dragging, TheSlidersAndTheTestNoteListsMirrorEachOtherWithTheHighestAtTheTop) {
  auto* noteList = child<QComboBox>(main, "CmbMidNtNo");
  auto* noteSlider = child<QSlider>(main, "SldNt");
  auto* velocitySlider = child<QSlider>(main, "SldVel");
  EXPECT_EQ(noteSlider->orientation(), Qt::Vertical);
  const int note = noteList->currentIndex();
  ASSERT_GT(note, 0);
  ASSERT_LT(note, 120);
  EXPECT_EQ(noteSlider->value(), 127 - note);
  EXPECT_EQ(velocitySlider->value(), 127 - child<QComboBox>(main, "CmbMidVel")->currentIndex());

  QTest::keyClick(noteList, Qt::Key_Down);  // a pick in the list moves the slider
  EXPECT_EQ(noteSlider->value(), 127 - (note + 1));

  QTest::keyClick(noteSlider, Qt::Key_Up);  // the arrow's way is the handle's way: up is higher
  EXPECT_EQ(form->CmbMidNtNo.index(), note + 2);
  EXPECT_EQ(noteList->currentIndex(), note + 2);
  EXPECT_EQ(noteSlider->value(), 127 - (note + 2));

  // A click near the top of the groove moves the handle up there: a higher note.
  QTest::mouseClick(noteSlider, Qt::LeftButton, {}, QPoint(noteSlider->width() / 2, 2));
  EXPECT_GT(noteList->currentIndex(), note + 2);
  EXPECT_EQ(noteSlider->value(), 127 - noteList->currentIndex());

  const int velocity = form->CmbMidVel.index();
  ASSERT_GT(velocity, 0);
  QTest::keyClick(velocitySlider, Qt::Key_Down);
  EXPECT_EQ(form->CmbMidVel.index(), velocity - 1);
  EXPECT_EQ(velocitySlider->value(), 127 - (velocity - 1));
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
