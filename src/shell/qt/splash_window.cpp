#include "shell/qt/splash_window.h"

#include <QFrame>
#include <QGuiApplication>
#include <QScreen>
#include <QLabel>
#include <QLinearGradient>
#include <QPainter>
#include <QPixmap>

#include "shell/qt/names.h"
#include "shell/qt/twips.h"

namespace tessivo::qt {

namespace {
// The splash picture, 415 by 121 pixels, drawn by the program.
QPixmap splashPicture() {
  QPixmap pix(415, 121);
  QPainter p(&pix);
  QLinearGradient g(0, 0, 415, 121);
  g.setColorAt(0, QColor(20, 30, 60));
  g.setColorAt(1, QColor(70, 110, 170));
  p.fillRect(pix.rect(), g);
  p.setPen(QColor(230, 235, 245));
  for (int x = 12; x < 415; x += 14) p.drawLine(x, 84, x, 112);  // a row of keys
  QFont f("DejaVu Sans", 30, QFont::Bold);
  p.setFont(f);
  p.drawText(QRect(0, 8, 415, 70), Qt::AlignCenter, "CS2x");
  return pix;
}

QLabel* label(QWidget* parent, const char* name, const char* text, double points, int l, int t, int w, int h) {
  auto* lbl = new QLabel(text, parent);
  lbl->setObjectName(name);
  QFont f("Times New Roman");
  f.setBold(true);
  f.setPointSizeF(points);
  lbl->setFont(f);
  place(lbl, l, t, w, h);
  return lbl;
}
}  // namespace

SplashWindow::SplashWindow() : QWidget(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint) {
  setObjectName("frmSplash");
  setWindowTitle("Tessivo");
  setFixedSize(px(7320), px(4290));
  setAttribute(Qt::WA_TransparentForMouseEvents);
  // In the middle of the screen, where the preferences stood.
  if (const QScreen* screen = QGuiApplication::primaryScreen()) move(screen->availableGeometry().center() - rect().center());

  auto* frame = new QFrame(this);
  uncaptioned(frame, "Frame1");
  frame->setFrameShape(QFrame::Box);
  place(frame, 120, 120, 7080, 4050);

  auto* picture = new QLabel(frame);
  uncaptioned(picture, "Picture1");
  picture->setPixmap(splashPicture());
  picture->setGeometry(28, 14, 415, 121);

  label(frame, "lblCompanyProduct", "Tessivo", 18, 720, 2640, 2610, 420);
  label(frame, "LblPlatform", "Windows 95/98", 15.75, 4575, 2340, 2280, 360);
  label(frame, "lblVersion", "V1.2.0", 12, 6210, 2700, 645, 285);
  auto* warning = new QLabel("Reading the CS2x: please leave the instrument alone until the editor opens.", frame);
  warning->setObjectName("lblWarning");
  place(warning, 150, 3660, 6855, 195);
  warning->setMinimumHeight(16);
}

}  // namespace tessivo::qt
