#pragma once
// Rendering of the controls' plain state onto Qt widgets, shared by the windows. Every
// function blocks the widget's signals: rendering is no user gesture.

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QString>
#include <string>

#include "data/controls.h"

namespace tessivo::qt {

// A text as the screen shows it: zero bytes (an unread name) show as nothing.
inline QString shownText(const std::string& text) { return QString::fromStdString(text).remove(QChar(0)); }

// Items, index, enabled and visible. The items are rebuilt whenever any entry differs, so a
// list that changes its contents but not its length (another bank's names) is shown anew.
inline void renderList(QComboBox* box, const ListCtl& list) {
  QSignalBlocker block(box);
  bool same = box->count() == static_cast<int>(list.items.size());
  for (int i = 0; same && i < box->count(); ++i)
    same = box->itemText(i) == shownText(list.items[static_cast<std::size_t>(i)]);
  if (!same) {
    box->clear();
    for (const std::string& item : list.items) box->addItem(shownText(item));
    // A narrow list's drop-down shows whole entries.
    box->view()->setMinimumWidth(box->view()->sizeHintForColumn(0) + 24);
  }
  box->setCurrentIndex(list.index());
  box->setEnabled(list.enabled);
  box->setVisible(list.visible);
}

// A list box: its items in order, rebuilt whenever any differs, and the selected row.
inline void renderListBox(QListWidget* box, const ListBoxCtl& list) {
  QSignalBlocker block(box);
  bool same = box->count() == static_cast<int>(list.items.size());
  for (int i = 0; same && i < box->count(); ++i)
    same = box->item(i)->text() == shownText(list.items[static_cast<std::size_t>(i)]);
  if (!same) {
    box->clear();
    for (const std::string& item : list.items) box->addItem(shownText(item));
  }
  if (list.index >= 0 && list.index < box->count()) {
    box->setCurrentRow(list.index);
  } else {
    box->setCurrentRow(-1);
    box->clearSelection();
  }
}

inline void renderSlider(QSlider* slider, const SliderCtl& ctl) {
  QSignalBlocker block(slider);
  slider->setRange(ctl.min, ctl.max);
  slider->setValue(ctl.value);
  slider->setEnabled(ctl.enabled);
}

// A slider whose widget runs the other way than the form's position: the widget shows
// max + min - position, and a value of the widget is the position that far from the other end.
inline int flipped(const SliderCtl& ctl, int value) { return ctl.max + ctl.min - value; }

inline void renderFlippedSlider(QSlider* slider, const SliderCtl& ctl) {
  QSignalBlocker block(slider);
  slider->setRange(ctl.min, ctl.max);
  slider->setValue(flipped(ctl, ctl.value));
  slider->setEnabled(ctl.enabled);
}

inline void renderButton(QAbstractButton* button, const ButtonCtl& ctl) {
  button->setText(shownText(ctl.caption));
  button->setEnabled(ctl.enabled);
  button->setVisible(ctl.visible);
}

inline void renderText(QLineEdit* edit, const TextCtl& ctl) {
  QSignalBlocker block(edit);
  const QString text = shownText(ctl.text);
  // A new text shows from its first character (a line edit would show its end); an unchanged
  // one keeps the cursor where the user put it.
  if (edit->text() != text) {
    edit->setText(text);
    edit->setCursorPosition(0);
  }
  edit->setEnabled(ctl.enabled);
  edit->setVisible(ctl.visible);
}

// An option pair shows exactly the state of its two flags, even while both are off.
inline void renderOptions(QRadioButton* first, bool firstOn, QRadioButton* second, bool secondOn) {
  QSignalBlocker blockFirst(first), blockSecond(second);
  first->setAutoExclusive(false);
  second->setAutoExclusive(false);
  first->setChecked(firstOn);
  second->setChecked(secondOn);
  first->setAutoExclusive(true);
  second->setAutoExclusive(true);
}

}  // namespace tessivo::qt
