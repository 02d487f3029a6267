#pragma once
// The Qt program under the offscreen platform as the Qt tests start it, against the built-in
// instrument or the scripted devices, and what a user does to it: mouse presses and releases,
// a pick in a drop-down list, drops, answers to the boxes and dialogs it opens.
#include <gtest/gtest.h>

#include <QApplication>
#include <QAbstractItemView>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QMenuBar>
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
#include <set>
#include <optional>
#include <stdexcept>

#include "shell/qt/qt_app.h"
#include "support/scripted.h"

// Failures show the texts.
inline void PrintTo(const QString& text, std::ostream* os) { *os << '"' << text.toStdString() << '"'; }

namespace tessivo::qt {

// A widget that must be there; a missing one ends the test with its name.
template <typename W>
W* child(QObject* parent, const QString& name) {
  auto* w = parent->findChild<W*>(name);
  if (w == nullptr) throw std::runtime_error("no " + name.toStdString());
  return w;
}

// Mouse events as the window system delivers them, with the buttons held after the event; sent
// straight to the widget, so that no other window takes them.
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
  press(w, pos), release(w, pos);
  mouse(w, QEvent::MouseButtonDblClick, pos, Qt::LeftButton, Qt::LeftButton);
  release(w, pos);
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

// Every control and menu entry of a form, by name: the widgets that stand on the form or in
// one of its frames, but for labels, frames and the menu bar, which take no gesture of their
// own; and the menu entries that are no sub-menus.
inline std::set<QString> controlsOf(QWidget* form) {
  auto holdsControls = [form](const QWidget* w) {
    return w == form || w->objectName() == "CS2xClient" || qobject_cast<const QGroupBox*>(w) != nullptr ||
           w->objectName().startsWith("Page");  // the edit panel's pages
  };
  std::set<QString> names;
  for (QWidget* w : form->findChildren<QWidget*>())
    if (w->window() == form && holdsControls(w->parentWidget()) && !holdsControls(w) && !qobject_cast<QLabel*>(w) &&
        !qobject_cast<QMenuBar*>(w))
      names.insert(w->objectName());
  for (QAction* a : form->findChildren<QAction*>())
    if (a->menu() == nullptr && !a->objectName().startsWith("qt_")) names.insert(a->objectName());
  return names;
}

// A pick in a drop-down list as a user makes it: the list opens and the entry is clicked.
inline void pick(QComboBox* box, int index) {
  box->showPopup();
  QAbstractItemView* view = box->view();
  const QModelIndex entry = view->model()->index(index, box->modelColumn());
  view->scrollTo(entry);
  QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(entry).center());
}

// Answers the boxes and dialogs that the program opens, from inside their own event loop, as
// a user would. A message box without a scripted answer gets its default button.
class ModalAnswers {
 public:
  using Answer = std::function<void(QWidget* modal)>;
  std::deque<Answer> script;
  QStringList asked;  // "title: text" of every message box so far

  ModalAnswers() {
    timer_.callOnTimeout([this] {
      QWidget* modal = QApplication::activeModalWidget();
      if (modal == nullptr || !modal->isVisible()) return;
      auto* box = qobject_cast<QMessageBox*>(modal);
      if (box) asked << box->windowTitle() + ": " + box->text();
      if (script.empty()) {
        if (box) box->defaultButton()->click();
        return;
      }
      Answer next = std::move(script.front());
      script.pop_front();
      next(modal);
    });
    timer_.start(5);
  }
  static Answer button(QMessageBox::StandardButton which) {
    return [which](QWidget* modal) { static_cast<QMessageBox*>(modal)->button(which)->click(); };
  }

 private:
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
    return main && QTest::qWaitFor([&] { return main->isVisible(); }, 60000) ? main : nullptr;
  }
};

using QtProgram = QtProgramOn<test::BuiltIn>;
using ScriptedQtProgram = QtProgramOn<ScriptedDevices>;

}  // namespace tessivo::qt
