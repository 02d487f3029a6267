#pragma once
// The effects panel SSTab2 on the screen: the reverb, chorus and variation types, the three
// sends between the effects, Bypass, Reset and Done. The send sliders behave like the edit
// panel's: the box follows while one moves, and letting go stores and sends.

#include <QTabWidget>
#include <array>
#include <functional>

#include "edit/edit_panel.h"
#include "edit/effects_panel.h"
#include "shell/qt/map_slider.h"

class QCheckBox;
class QComboBox;
class QGridLayout;
class QLineEdit;
class QPushButton;
class QSlider;

namespace tessivo::qt {

class EffectsTab : public QTabWidget {
  Q_OBJECT
 public:
  // `sliders` holds the three send sliders and their boxes in the rows after the edit panel's;
  // `handled` runs after each handler: the window renders and the program may end.
  EffectsTab(EffectsPanel& panel, EditPanel& sliders, std::function<void()> handled, QWidget* parent);
  void render();

 private:
  static constexpr std::size_t kSends = 3;

  QComboBox* typeList(QGridLayout* grid, int column, const char* name, const char* caption, const char* tip,
                      ListCtl& list, const QStringList& names);
  QPushButton* button(const char* name, const ButtonCtl& ctl, const char* tip, void (EffectsPanel::*handler)());

  EffectsPanel& panel_;
  EditPanel& sliders_;
  std::function<void()> handled_;
  QComboBox* cmbRvrb_ = nullptr;
  QComboBox* cmbChrs_ = nullptr;
  QComboBox* cmbVar_ = nullptr;
  std::array<MapSlider, kSends> sends_{};
  QCheckBox* chkEffByPass_ = nullptr;
  QPushButton* cmdEffReset_ = nullptr;
  QPushButton* cmdEffDn1_ = nullptr;
};

}  // namespace tessivo::qt
