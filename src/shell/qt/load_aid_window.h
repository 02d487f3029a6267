#pragma once
// frmLoadAid "CS2x Load Aid": the type list, the drives, the folders and the matching files of
// the Load Aid; one click on a file loads it. Non-modal; Done hides it.

#include <QWidget>
#include <functional>

#include "files/load_aid.h"

class QComboBox;
class QLabel;
class QListWidget;
class QPushButton;

namespace tessivo::qt {

class LoadAidWindow : public QWidget {
  Q_OBJECT
 public:
  LoadAidWindow(LoadAid& aid, std::function<void()> handled, QWidget* parent);
  void render();

 private:
  LoadAid& aid_;
  std::function<void()> handled_;
  QComboBox* cmbLdAid_ = nullptr;
  QComboBox* drvLdAid_ = nullptr;
  QListWidget* dirLdAid_ = nullptr;
  QListWidget* flLdAid_ = nullptr;
  QPushButton* cmdLdAid_ = nullptr;
  QLabel* folderLabel_ = nullptr;
};

}  // namespace tessivo::qt
