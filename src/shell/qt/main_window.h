#pragma once
// The main form CS2x on the screen: the menu bar (File, Edit, Retrieve, Initialize, Midi), the
// Performance block, the test note with its sliders, the Layer Pool, the twelve Multi rows and
// the edit panel. Layers, Multis and Pool entries are dragged; every control takes drops.

#include <QMainWindow>
#include <array>
#include <functional>

#include "shell/main_form.h"

class QAction;
class QComboBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;
class QSlider;
class QWidget;

namespace tessivo::qt {

class EditTab;
class EffectsTab;
class QtApp;

class MainWindow : public QMainWindow {
  Q_OBJECT
 public:
  MainWindow(MainForm& form, QtApp& app);
  void render();  // the widgets take the state of the form's controls
  // The Debug menu and the Sys-Ex export, switched off for a musician; a developer's build
  // (TESSIVO_DEVELOPER_MENUS) and the tests switch them on.
  void setDeveloperEntries(bool on);

 protected:
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void buildMenus();
  void buildPerformance(QWidget* central);
  void buildTestNote(QWidget* central);
  void buildPool(QWidget* central);
  void buildMultiRows(QWidget* central);
  void buildDebugRow(QWidget* central);
  void acceptDrops();
  // The name of the control at `pos` of `receiver`; the form's own name where no control is.
  QString dropTarget(QWidget* receiver, QPoint pos) const;
  // A gesture's handler has run: show the form's state and let the program end if it must.
  void handled();
  // A menu of the bar or a sub-menu, by its name and title.
  QMenu* subMenu(QWidget* parent, const char* name, const char* title);
  // A menu entry whose handler runs, after which the window renders.
  QAction* addEntry(QMenu* menu, const char* name, const char* text, std::function<void()> handler);
  // The entries "Multi 5" .. "Multi 16" of a sub-menu, named prefix5 .. prefix16.
  void addMultiEntries(QMenu* menu, const char* prefix, const std::function<void(int multi)>& handler);
  QRadioButton* option(QWidget* frame, const char* name, const char* text, int top,
                       void (Performance::*handler)());

  MainForm& form_;
  QtApp& app_;
  std::array<QPushButton*, kMultiRows> cmdMult_{};
  std::array<QComboBox*, kMultiRows> cmbMult_{};

  QRadioButton* optPreset_ = nullptr;
  QRadioButton* optUser_ = nullptr;
  QRadioButton* optBank1_ = nullptr;
  QRadioButton* optBank2_ = nullptr;
  QComboBox* cmbPrgm_ = nullptr;
  QPushButton* cmdPrfm_ = nullptr;
  std::array<QPushButton*, 4> cmdLyr_{};
  std::array<QLineEdit*, 4> txtLyr_{};
  QComboBox* cmbMidNtNo_ = nullptr;
  QComboBox* cmbMidVel_ = nullptr;
  QSlider* sldNt_ = nullptr;
  QSlider* sldVel_ = nullptr;
  QListWidget* lbxLyrPool_ = nullptr;
  QPushButton* cmdClrLyrPool_ = nullptr;

  EditTab* editTab_ = nullptr;
  EffectsTab* effectsTab_ = nullptr;
  QAction* localOff_ = nullptr;
  QAction* arpOff_ = nullptr;
  QAction* trnsChnlAssgn_ = nullptr;
  QMenu* debugMenu_ = nullptr;
  QAction* svSetupSyx_ = nullptr;
  QListWidget* list1_ = nullptr;
  std::array<QLineEdit*, 5> txtParm_{};
  std::array<QPushButton*, 3> debugButtons_{};
};

}  // namespace tessivo::qt
