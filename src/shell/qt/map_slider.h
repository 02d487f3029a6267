#pragma once
// One slider of the slider map on a panel: its caption, the slider and the value box beside it
// in a row of a grid. Moving writes the box; letting go stores the byte and sends it.

#include <QString>
#include <functional>
#include <string_view>

#include "edit/edit_panel.h"

class QGridLayout;
class QLineEdit;
class QSlider;

namespace tessivo::qt {

inline QString qs(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

struct MapSlider {
  QSlider* slider;
  QLineEdit* text;
};

// Adds row `row` of the slider map to `grid` at its next row. `boxWidth` 0 sizes the value box
// for the texts of its own family; `handled` runs after each gesture.
MapSlider addMapSlider(QGridLayout* grid, EditPanel& panel, std::size_t row, int boxWidth,
                       const std::function<void()>& handled);
// The width of a value box that shows every text of every slider of the map.
int widestValueBox(QLineEdit* box);
void renderMapSlider(const MapSlider& widgets, const EditPanel& panel, std::size_t row);

}  // namespace tessivo::qt
