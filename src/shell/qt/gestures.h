#pragma once
// Mouse gestures the widgets do not give by themselves: a press and its release by any mouse
// button (the audition buttons), and the drag of a control onto another (Layers, Multis and
// the Layer Pool). The gestures only report; the main window forwards them to the form.

#include <QObject>
#include <QPixmap>
#include <QPoint>
#include <QSize>
#include <QString>
#include <functional>

class QEvent;
class QMimeData;
class QWidget;

namespace tessivo::qt {

// Our drags carry the source control's name in this type; another program's drag has none.
inline constexpr const char* kSourceMimeType = "application/x-tessivo-source";

QMimeData* sourceMimeData(const QString& sourceName);
QString sourceName(const QMimeData* data);  // "" for another program's drag
// The picture under the pointer while a control is dragged: a small card with a note.
QPixmap dragPixmap();
// The main form's background: a quiet gradient with a faint staff across it, drawn for `size`.
QPixmap backgroundPicture(QSize size);

// A press by any mouse button on a widget and the release that ends it. The events go on to
// the widget, so a button still shows itself pressed. A disabled widget reports nothing.
class PressWatch : public QObject {
 public:
  PressWatch(QWidget* widget, std::function<void()> press, std::function<void()> release);
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* widget_;
  std::function<void()> press_, release_;
  bool down_ = false;
};

// The end of a slider's movement, as a user lets go of it: the release of a mouse button, the
// release of a key that moves it (a held key once, at its end), and each turn of the wheel once
// the slider has moved. A disabled slider reports nothing.
class SliderLetGo : public QObject {
 public:
  SliderLetGo(QWidget* slider, std::function<void()> letGo);
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* slider_;
  std::function<void()> letGo_;
};

// A control that can be dragged. A press (any mouse button) reports at once; the drag itself
// starts once the pointer has moved QApplication::startDragDistance() with a button held. A
// release before that is a drop of the control on itself. The control takes no mouse events
// of its own while it is a drag source (a read-only box selects no text, a list keeps its
// selection until the click is reported).
class DragSource : public QObject {
 public:
  struct Hooks {
    std::function<void(QPoint pos)> press;         // may be empty
    std::function<void(QPoint pos)> dropOnItself;  // the release without a drag
    std::function<void(QPoint pos)> doubleClick;   // empty: a double click is a press
  };
  // `events` is the widget that gets the mouse events (a list's viewport), `source` the
  // control whose name the drag carries and that must be enabled.
  DragSource(QWidget* source, QWidget* events, Hooks hooks);
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void startDrag();
  void setShownDown(bool down);

  QWidget* source_;
  QWidget* events_;
  Hooks hooks_;
  bool pressed_ = false;
  QPoint start_;
};

}  // namespace tessivo::qt
