#pragma once
// The main form CS2x on the screen: the menu bar and the twelve Multi rows.

#include <QMainWindow>
#include <array>

#include "shell/main_form.h"

class QComboBox;
class QPushButton;

namespace tessivo::qt {

class QtApp;

class MainWindow : public QMainWindow {
  Q_OBJECT
 public:
  MainWindow(MainForm& form, QtApp& app);
  void render();  // the widgets take the state of the form's controls

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  MainForm& form_;
  QtApp& app_;
  std::array<QPushButton*, kMultiRows> cmdMult_{};
  std::array<QComboBox*, kMultiRows> cmbMult_{};
};

}  // namespace tessivo::qt
