#include "shell/qt/gestures.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDrag>
#include <QGuiApplication>
#include <QMimeData>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTimer>
#include <QLinearGradient>
#include <QPainter>
#include <QPen>
#include <QPainterPath>
#include <QWidget>

namespace tessivo::qt {

QMimeData* sourceMimeData(const QString& sourceName) {
  auto* data = new QMimeData;
  data->setData(kSourceMimeType, sourceName.toUtf8());
  return data;
}

QString sourceName(const QMimeData* data) {
  if (data == nullptr || !data->hasFormat(kSourceMimeType)) return {};
  return QString::fromUtf8(data->data(kSourceMimeType));
}

QPixmap backgroundPicture(QSize size) {
  QPixmap pixmap(size);
  QPainter p(&pixmap);
  QLinearGradient sky(0, 0, 0, size.height());
  sky.setColorAt(0, QColor(236, 239, 244));
  sky.setColorAt(1, QColor(214, 221, 232));
  p.fillRect(pixmap.rect(), sky);
  // Five faint lines of a staff across the upper part, where no control stands.
  p.setRenderHint(QPainter::Antialiasing);
  p.setPen(QPen(QColor(190, 199, 214), 1));
  const int top = size.height() / 10;
  for (int i = 0; i < 5; ++i) p.drawLine(0, top + i * 7, size.width(), top + i * 7);
  return pixmap;
}

QPixmap dragPixmap() {
  QPixmap pixmap(32, 32);
  pixmap.fill(Qt::transparent);
  QPainter p(&pixmap);
  p.setRenderHint(QPainter::Antialiasing);
  // The card, slightly turned like one taken from a pile.
  p.translate(16, 16);
  p.rotate(-8);
  p.setPen(QPen(QColor(40, 40, 40), 1.5));
  p.setBrush(QColor(255, 250, 230));
  p.drawRoundedRect(QRectF(-10, -13, 20, 26), 3, 3);
  // An eighth note: head, stem and flag.
  p.setPen(Qt::NoPen);
  p.setBrush(QColor(20, 20, 90));
  p.save();
  p.translate(-2.5, 6);
  p.rotate(-20);
  p.drawEllipse(QRectF(-3.5, -2.5, 7, 5));
  p.restore();
  p.setPen(QPen(QColor(20, 20, 90), 1.6));
  p.drawLine(QPointF(0.6, 5), QPointF(0.6, -9));
  QPainterPath flag(QPointF(0.6, -9));
  flag.cubicTo(QPointF(2.5, -5.5), QPointF(6.5, -5), QPointF(4.5, -0.5));
  p.setBrush(Qt::NoBrush);
  p.drawPath(flag);
  return pixmap;
}

namespace {
bool isPress(const QEvent* event) {
  return event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
}
QPoint position(QEvent* event) { return static_cast<QMouseEvent*>(event)->position().toPoint(); }

// A message box opened by a press (a failed send) runs its own event loop, and the button's
// release goes there. Once the press handler is back, a user's press whose buttons are all up
// has been released; the release is then handled as if it had come, so that nothing stays
// down and no note or muted layer is left behind.
bool releaseTakenByBox(const QEvent* event) {
  return event->spontaneous() && QGuiApplication::mouseButtons() == Qt::NoButton;
}
}  // namespace

PressWatch::PressWatch(QWidget* widget, std::function<void()> press, std::function<void()> release)
    : QObject(widget), widget_(widget), press_(std::move(press)), release_(std::move(release)) {
  widget->installEventFilter(this);
}

bool PressWatch::eventFilter(QObject* watched, QEvent* event) {
  if (watched != widget_) return false;
  if (isPress(event) && !down_ && widget_->isEnabled()) {
    down_ = true;
    if (press_) press_();
    if (releaseTakenByBox(event)) {
      down_ = false;
      if (release_) release_();
      return true;  // the button is not left shown down
    }
  } else if (event->type() == QEvent::MouseButtonRelease && down_ &&
             static_cast<QMouseEvent*>(event)->buttons() == Qt::NoButton) {
    down_ = false;
    if (release_) release_();
  }
  return false;
}

SliderLetGo::SliderLetGo(QWidget* slider, std::function<void()> letGo)
    : QObject(slider), slider_(slider), letGo_(std::move(letGo)) {
  slider->installEventFilter(this);
}

bool SliderLetGo::eventFilter(QObject* watched, QEvent* event) {
  if (watched != slider_ || !slider_->isEnabled()) return false;
  switch (event->type()) {
    case QEvent::MouseButtonRelease:
      letGo_();  // a press on the groove or the handle has moved the slider already
      break;
    case QEvent::KeyRelease: {
      auto* key = static_cast<QKeyEvent*>(event);
      switch (key->isAutoRepeat() ? 0 : key->key()) {
        case Qt::Key_Left: case Qt::Key_Right: case Qt::Key_Up: case Qt::Key_Down:
        case Qt::Key_PageUp: case Qt::Key_PageDown: case Qt::Key_Home: case Qt::Key_End:
          letGo_();
          break;
        default:
          break;
      }
      break;
    }
    case QEvent::Wheel:
      QTimer::singleShot(0, this, [this] { letGo_(); });  // the wheel moves it once this event arrives
      break;
    default:
      break;
  }
  return false;
}

DragSource::DragSource(QWidget* source, QWidget* events, Hooks hooks)
    : QObject(source), source_(source), events_(events), hooks_(std::move(hooks)) {
  events->installEventFilter(this);
}

void DragSource::setShownDown(bool down) {
  if (auto* button = qobject_cast<QAbstractButton*>(source_)) button->setDown(down);
}

bool DragSource::eventFilter(QObject* watched, QEvent* event) {
  if (watched != events_ || !source_->isEnabled()) return false;
  switch (event->type()) {
    case QEvent::MouseButtonDblClick:
      if (hooks_.doubleClick) {
        pressed_ = false;
        hooks_.doubleClick(position(event));
        return true;
      }
      [[fallthrough]];
    case QEvent::MouseButtonPress:
      if (pressed_) return true;  // a second button while the first is held
      pressed_ = true;
      start_ = position(event);
      source_->setFocus(Qt::MouseFocusReason);
      setShownDown(true);
      if (hooks_.press) hooks_.press(start_);
      if (releaseTakenByBox(event)) {
        pressed_ = false;
        setShownDown(false);
        if (hooks_.dropOnItself) hooks_.dropOnItself(start_);
      }
      return true;
    case QEvent::MouseMove: {
      auto* move = static_cast<QMouseEvent*>(event);
      if (pressed_ && move->buttons() != Qt::NoButton &&
          (move->position().toPoint() - start_).manhattanLength() >= QApplication::startDragDistance())
        startDrag();
      return true;
    }
    case QEvent::MouseButtonRelease:
      if (pressed_ && static_cast<QMouseEvent*>(event)->buttons() == Qt::NoButton) {
        pressed_ = false;
        setShownDown(false);
        if (hooks_.dropOnItself) hooks_.dropOnItself(position(event));
      }
      return true;
    default:
      return false;
  }
}

void DragSource::startDrag() {
  pressed_ = false;
  setShownDown(false);
  auto* drag = new QDrag(source_);  // Qt disposes of it once the drag is over
  drag->setMimeData(sourceMimeData(source_->objectName()));
  const QPixmap picture = dragPixmap();
  drag->setPixmap(picture);
  drag->setHotSpot(QPoint(picture.width() / 2, picture.height() / 2));
  for (Qt::DropAction action : {Qt::CopyAction, Qt::MoveAction, Qt::LinkAction}) drag->setDragCursor(picture, action);
  // Blocks until the drop on some platforms and returns at once on others: the drop's own
  // event does all the work.
  drag->exec(Qt::CopyAction, Qt::CopyAction);
}

}  // namespace tessivo::qt
