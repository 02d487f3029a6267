#pragma once
// frmPref on the screen: the MIDI device lists and OK. A modeless dialog, so Enter presses
// OK, its default button.

#include <QDialog>

#include "shell/pref_form.h"

class QComboBox;
class QPushButton;

namespace tessivo::qt {

class QtApp;

class PrefWindow : public QDialog {
  Q_OBJECT
 public:
  PrefWindow(PrefForm& form, QtApp& app);
  void render();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void reject() override;  // Escape does not close the preferences

 private:
  PrefForm& form_;
  QtApp& app_;
  QComboBox* combo1_;
  QComboBox* combo2_;
  QPushButton* ok_;
};

}  // namespace tessivo::qt
