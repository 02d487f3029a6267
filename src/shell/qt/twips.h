#pragma once
// The forms' layout is given in twips; at the usual screen setting 15 twips make a pixel.

#include <QRect>
#include <QWidget>

namespace tessivo::qt {

constexpr int px(int twips) { return twips / 15; }

inline void place(QWidget* w, int left, int top, int width, int height) {
  w->setGeometry(px(left), px(top), px(width), px(height));
}

}  // namespace tessivo::qt
