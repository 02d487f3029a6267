#pragma once
// The forms' layout is given in twips; at the usual screen setting 15 twips make a pixel. The
// layout was made for a narrower font than a Linux desktop's: the helpers below give a control
// the width that its text needs, measured with the style that draws it.

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRect>
#include <QStringList>
#include <QStyleOption>
#include <QWidget>
#include <algorithm>

namespace tessivo::qt {

constexpr int px(int twips) { return twips / 15; }

inline void place(QWidget* w, int left, int top, int width, int height) {
  w->setGeometry(px(left), px(top), px(width), px(height));
}

// A control grows to the right to `width` pixels where that is more; its left and top stay.
inline void widen(QWidget* w, int width) {
  if (width > w->width()) w->resize(width, w->height());
}

// A label is never cut: where its text is wider than its place, it grows to the right.
inline void placeLabel(QWidget* w, int left, int top, int width, int height) {
  place(w, left, top, width, height);
  widen(w, w->sizeHint().width());
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

// The narrowest width at which a word-wrapped label takes no more lines than at `width`.
inline int narrowestWrap(const QLabel* w, int width) {
  const int height = w->heightForWidth(width);
  while (width > 1 && w->heightForWidth(width - 1) <= height) --width;
  return width;
}

inline int widestText(const QFontMetrics& metrics, const QStringList& texts) {
  int widest = 0;
  for (const QString& text : texts) widest = std::max(widest, metrics.horizontalAdvance(text));
  return widest;
}

// The width a closed drop-down list needs to show each of `texts` whole. Its text stands one
// pixel inside the edit field on either side; the arrow and the frame take the rest.
inline int listWidthFor(const QComboBox* box, const QStringList& texts) {
  QStyleOptionComboBox option;
  option.initFrom(box);
  option.editable = box->isEditable();
  const QRect field = box->style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, box);
  return option.rect.width() - field.width() + widestText(box->fontMetrics(), texts) + 2;
}

// The width a line edit needs to show `text` whole from its first character: the text keeps
// two pixels free on either side inside the frame, and the cursor behind it takes one.
inline int editWidthFor(const QLineEdit* edit, const QString& text) {
  QStyleOptionFrame option;
  option.initFrom(edit);
  option.lineWidth = edit->hasFrame() ? edit->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, edit) : 0;
  const QRect contents = edit->style()->subElementRect(QStyle::SE_LineEditContents, &option, edit);
  const QMargins margins = edit->textMargins();
  return option.rect.width() - contents.width() + margins.left() + margins.right() + 2 * 2 +
         edit->fontMetrics().horizontalAdvance(text) + 1;
}

// The width a push button needs to show each of `texts` whole inside its frame, with the
// style's margin around the text.
inline int buttonWidthFor(const QPushButton* button, const QStringList& texts) {
  QStyleOptionButton option;
  option.initFrom(button);
  const QRect contents = button->style()->subElementRect(QStyle::SE_PushButtonContents, &option, button);
  return option.rect.width() - contents.width() + button->style()->pixelMetric(QStyle::PM_ButtonMargin, &option, button) +
         widestText(button->fontMetrics(), texts);
}

}  // namespace tessivo::qt
