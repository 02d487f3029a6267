#pragma once
// The edit panel SSTab1 on the screen: three pages of sliders with their captions and text
// boxes, the voice boxes, the name box, the options and the Done buttons. A slider's text box
// follows it while it moves; letting go (a mouse button, a key, a turn of the wheel) stores and
// sends, so the panel never shows a value the instrument did not get.

#include <QTabWidget>
#include <array>
#include <functional>
#include <vector>

#include "edit/edit_panel.h"
#include "shell/qt/map_slider.h"

class QCheckBox;
class QGroupBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QSlider;

namespace tessivo::qt {

class EditTab : public QTabWidget {
  Q_OBJECT
 public:
  // `handled` runs after each handler: the window renders and the program may end.
  EditTab(EditPanel& panel, std::function<void()> handled, QWidget* parent);
  void render();

 private:
  QWidget* page(const char* name);
  QLabel* heading(QGridLayout* grid, const char* text);
  void sliderRow(QGridLayout* grid, std::size_t row);
  void sliders(QGridLayout* grid, int page, std::size_t first, std::size_t last);
  QLineEdit* voiceBox(const char* name);
  QGroupBox* options(QGridLayout* grid, const char* name, OptionGroupCtl& group, std::vector<QRadioButton*>& buttons,
                     int columns);
  // Label34(label), the part's caption, and a Done button at the foot of a page.
  void nameAndDone(QGridLayout* grid, std::size_t label, const char* done);
  QPushButton* doneButton(const char* name, const QString& tip = {});

  EditPanel& panel_;
  std::function<void()> handled_;
  std::array<MapSlider, kEditSliders> sliders_{};
  QLabel* varSendLabel_ = nullptr;
  QLineEdit* txtMsb_ = nullptr;
  QLineEdit* txtLsb_ = nullptr;
  QLineEdit* txtPrg_ = nullptr;
  QPushButton* cmdVocChng_ = nullptr;
  QLineEdit* txtName1_ = nullptr;
  std::array<QLabel*, 2> label34_{};
  QCheckBox* chckPort_ = nullptr;
  std::vector<QRadioButton*> option1_, option2_, option3_;
};

}  // namespace tessivo::qt
