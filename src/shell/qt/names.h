#pragma once
// How tools outside the program (screen readers, end-to-end checks) find a control: its object
// name is its control name; a control with a caption is found by the caption, one without (a
// slider, a text box, a list box, a frame without a title) by its name as its accessible name;
// a drop-down list, which the desktop names by its current text, by the label whose buddy it is.

#include <QString>
#include <QWidget>

namespace tessivo::qt {

inline void uncaptioned(QWidget* w, const QString& name) {
  w->setObjectName(name);
  w->setAccessibleName(name);
}

}  // namespace tessivo::qt
