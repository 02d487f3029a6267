#pragma once
// The Qt program under the offscreen platform as the Qt tests start it, against the built-in
// instrument or the scripted devices, and what a user does to it: mouse presses and releases,
// a pick in a drop-down list, drops, answers to the boxes and dialogs it opens.
#include <gtest/gtest.h>

#include <QApplication>
#include <QAbstractItemView>
#include <QComboBox>
#include <QDrag>
#include <QDropEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QMouseEvent>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <deque>
#include <functional>
#include <optional>
#include <stdexcept>

#include "shell/qt/qt_app.h"
#include "support/scripted.h"

namespace tessivo::qt {

// A widget that must be there; a missing one ends the test with its name.
template <typename W>
W* child(QObject* parent, const QString& name) {
  auto* w = parent->findChild<W*>(name);
  if (w == nullptr) throw std::runtime_error("no " + name.toStdString());
  return w;
}

// Mouse events as the window system delivers them to a widget, with the buttons held after
// the event. Sent straight to the widget, so that no other window takes them.
inline void mouse(QWidget* w, QEvent::Type type, QPoint pos, Qt::MouseButton button, Qt::MouseButtons held) {
  QMouseEvent event(type, QPointF(pos), w->mapToGlobal(QPointF(pos)), button, held, Qt::NoModifier);
  QApplication::sendEvent(w, &event);
}
inline void press(QWidget* w, QPoint pos, Qt::MouseButton button = Qt::LeftButton) {
  mouse(w, QEvent::MouseButtonPress, pos, button, button);
}
inline void press(QWidget* w) { press(w, w->rect().center()); }
inline void moveHeld(QWidget* w, QPoint pos, Qt::MouseButton button = Qt::LeftButton) {
  mouse(w, QEvent::MouseMove, pos, Qt::NoButton, button);
}
inline void release(QWidget* w, QPoint pos, Qt::MouseButton button = Qt::LeftButton) {
  mouse(w, QEvent::MouseButtonRelease, pos, button, Qt::NoButton);
}
inline void release(QWidget* w) { release(w, w->rect().center()); }
inline void doubleClick(QWidget* w, QPoint pos) {
  press(w, pos);
  release(w, pos);
  mouse(w, QEvent::MouseButtonDblClick, pos, Qt::LeftButton, Qt::LeftButton);
  release(w, pos);
}
// A press and a move past the drag distance: the drag starts (and, without a display, ends at
// once; its drop is sent by dropOn).
inline void startDrag(QWidget* source, Qt::MouseButton button = Qt::LeftButton) {
  const QPoint at = source->rect().center();
  press(source, at, button);
  moveHeld(source, at + QPoint(QApplication::startDragDistance() + 1, 0), button);
}

// Enter, move and drop over `over` (its middle unless `at` is given), sent to the widget of
// `window` that the platform picks: the deepest one there. True when all three were accepted
// as a copy.
inline bool dropOn(QWidget* window, QWidget* over, const QMimeData& data, std::optional<QPoint> at = {}) {
  const QPoint inWindow = over->mapTo(window, at.value_or(over->rect().center()));
  QWidget* receiver = window->childAt(inWindow);
  if (receiver == nullptr) receiver = window;
  const QPoint pos = receiver->mapFrom(window, inWindow);
  QDragEnterEvent enter(pos, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(receiver, &enter);
  QDragMoveEvent move(pos, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(receiver, &move);
  QDropEvent drop(QPointF(pos), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(receiver, &drop);
  return enter.isAccepted() && move.isAccepted() && drop.isAccepted() && drop.dropAction() == Qt::CopyAction;
}

// A pick in a drop-down list as a user makes it: the list opens and the entry is clicked.
inline void pick(QComboBox* box, int index) {
  box->showPopup();
  QAbstractItemView* view = box->view();
  const QModelIndex entry = view->model()->index(index, box->modelColumn());
  view->scrollTo(entry);
  const QPoint at = view->visualRect(entry).center();
  QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, at);
}

// Answers the boxes and dialogs that the program opens, from inside their own event loop, as
// a user would. A message box without a scripted answer gets its default button.
class ModalAnswers {
 public:
  using Answer = std::function<void(QWidget* modal)>;
  std::deque<Answer> script;
  QStringList asked;  // "title: text" of every message box so far

  ModalAnswers() {
    timer_.callOnTimeout([this] { answer(); });
    timer_.start(5);
  }
  static Answer button(QMessageBox::StandardButton which) {
    return [which](QWidget* modal) { static_cast<QMessageBox*>(modal)->button(which)->click(); };
  }

 private:
  void answer() {
    QWidget* modal = QApplication::activeModalWidget();
    if (modal == nullptr || !modal->isVisible()) return;
    if (auto* box = qobject_cast<QMessageBox*>(modal)) {
      asked << box->windowTitle() + ": " + box->text();
      if (script.empty()) {
        box->defaultButton()->click();
        return;
      }
    } else if (script.empty()) {
      return;
    }
    Answer next = std::move(script.front());
    script.pop_front();
    next(modal);
  }
  QTimer timer_;
};

// The scripted devices, "In A", "In B" and "Out A", "Out B", with an instrument that answers
// every dump request at once with an empty block.
struct ScriptedDevices {
  ScriptedDevices() {
    midi.answer = [](const Bytes& sent) -> std::optional<Bytes> {
      if (sent.size() < 4 || sent[0] != kSysExStart || (sent[2] & 0xF0) != kDumpRequest) return std::nullopt;
      return Bytes{kSysExStart, sent[1], 0x00, sent[3], 0x00, 0x00, kSysExEnd};
    };
  }
  test::Events events;
  test::ScriptedMidi midi{events};
};

template <typename Devices>
class QtProgramOn : public ::testing::Test, protected Devices {
 protected:
  QtApp app{this->midi};
  test::TempFile prefs;
  ModalAnswers answers;

  QtProgramOn() { app.logic().pref().prefsPath = prefs.path; }

  // OK on the first preferences, then the start reads the instrument; the main form once shown.
  MainWindow* startMainForm() {
    if (app.prefWindow() == nullptr) app.start();
    child<QPushButton>(app.prefWindow(), "OKButton")->click();
    MainWindow* main = app.mainWindow();
    if (main == nullptr || !QTest::qWaitFor([&] { return main->isVisible(); }, 60000)) return nullptr;
    return main;
  }
};

using QtProgram = QtProgramOn<test::BuiltIn>;
using ScriptedQtProgram = QtProgramOn<ScriptedDevices>;

}  // namespace tessivo::qt
