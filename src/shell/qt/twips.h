#pragma once
// The forms' layout is given in twips; at the usual screen setting 15 twips make a pixel.

#include <QLabel>
#include <algorithm>
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

// A centred caption is never cut either: it grows to both sides alike.
inline void placeLabelCentred(QLabel* w, int left, int top, int width, int height) {
  w->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
  place(w, left, top, width, height);
  const int grow = w->sizeHint().width() - w->width();
  if (grow > 0) w->setGeometry(w->x() - (grow + 1) / 2, w->y(), w->sizeHint().width(), w->height());
}

// A word-wrapped label shows every line: where its text takes more lines than its height
// holds, it first widens (never beyond maxRight, in twips; 0 keeps the width) as far as that
// saves lines, then grows downwards.
inline void placeWrapped(QLabel* w, int left, int top, int width, int height, int maxRight = 0) {
  w->setWordWrap(true);
  w->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  place(w, left, top, width, height);
  int best = w->width();
  for (int x = best + 1; x <= px(maxRight) - w->x() && w->heightForWidth(best) > w->height(); ++x)
    if (w->heightForWidth(x) < w->heightForWidth(best)) best = x;
  w->resize(best, std::max(w->height(), w->heightForWidth(best)));
}

}  // namespace tessivo::qt
