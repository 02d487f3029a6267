#pragma once
// frmPref on the screen: the Multis read at start, the Workspace loaded instead, the MIDI
// devices, the performance channel, the MIDI file density and OK. A modeless dialog, so Enter
// presses OK, its default button.

#include <QDialog>
#include <array>

#include "shell/pref_form.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSlider;

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
  QCheckBox* checkBox(const QString& name, const QString& text, CheckCtl& ctl);
  void closeUpMultiColumns(QLabel* channelLabel);
  void fitDeviceLists();

  PrefForm& form_;
  QtApp& app_;
  std::array<QCheckBox*, kMultiRows> chkMlt_{};  // Multi 5..16
  QCheckBox* chkLdFile_;
  QLineEdit* txtLdFile_;
  QPushButton* cmdBrowse_;
  QComboBox* combo1_;
  QComboBox* combo2_;
  QLabel* label5_;
  QComboBox* cmbPerfChnl_;
  QSlider* slider1_;
  QPushButton* ok_;
};

}  // namespace tessivo::qt
