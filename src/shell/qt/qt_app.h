#pragma once
// The Qt side of the program: implements the screen (message boxes, forms, busy pointer, the
// start timer) and owns the windows that render the forms' logic.

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <memory>

#include "shell/app.h"
#include "shell/qt/load_aid_window.h"
#include "shell/qt/main_window.h"
#include "shell/qt/pref_window.h"
#include "shell/qt/splash_window.h"

class QMessageBox;

namespace tessivo::qt {

inline constexpr int kFormFontPixels = 11;  // the forms' standard font

// The filter of a file dialog, "Text (*.a)|*.a|Text (*.b)|*.b", as Qt's name filters.
QStringList nameFilters(const std::string& filter);

// A message box as the program shows it; OK (or Yes) is the default button, so Enter answers.
QMessageBox* makeMessageBox(const std::string& text, const std::string& title, MsgButtons buttons,
                            MsgIcon icon);

class QtApp : public QObject, public Screen {
  Q_OBJECT
 public:
  explicit QtApp(MidiService& midi, QObject* parent = nullptr);
  ~QtApp() override;

  App& logic() { return app_; }
  void start();  // the program's entry: the preferences form

  QWidget* form(FormId id) const;
  MainWindow* mainWindow() const { return main_; }
  PrefWindow* prefWindow() const { return pref_; }

  // Screen
  MsgAnswer messageBox(const std::string& text, const std::string& title, MsgButtons buttons,
                       MsgIcon icon) override;
  void createForm(FormId form) override;
  void showForm(FormId form) override;
  void hideForm(FormId form) override;
  void unloadForm(FormId form) override;
  void setBusy(bool busy) override;
  void startTimer(int intervalMs) override;
  bool showOpen(FileDialog& dialog) override;
  bool showSave(FileDialog& dialog) override;

  // Called by the windows after a handler ran: ends the process when no form is left.
  void afterHandler();

 signals:
  void finished();

 private:
  App app_;
  QPointer<PrefWindow> pref_;
  QPointer<SplashWindow> splash_;
  QPointer<MainWindow> main_;
  QPointer<LoadAidWindow> loadAid_;
  QTimer timer1_;
  int busy_ = 0;
};

}  // namespace tessivo::qt
