#pragma once
// The forms' layout is given in twips; at the usual screen setting 15 twips make a pixel.

#include <QRect>
#include <QWidget>

namespace tessivo::qt {

constexpr int px(int twips) { return twips / 15; }

inline void place(QWidget* w, int left, int top, int width, int height) {
  w->setGeometry(px(left), px(top), px(width), px(height));
}

// A label is never cut: where its text is wider than its place, it grows to the right.
inline void placeLabel(QWidget* w, int left, int top, int width, int height) {
  place(w, left, top, width, height);
  if (w->sizeHint().width() > w->width()) w->resize(w->sizeHint().width(), w->height());
}

}  // namespace tessivo::qt
