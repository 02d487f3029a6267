#include "shell/qt/qt_app.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPixmapCache>
#include <QPushButton>

#include "shell/qt/main_window.h"
#include "shell/qt/pref_window.h"
#include "shell/qt/splash_window.h"

namespace tessivo::qt {

QMessageBox* makeMessageBox(const std::string& text, const std::string& title, MsgButtons buttons,
                            MsgIcon icon) {
  auto* box = new QMessageBox;
  box->setWindowTitle(QString::fromStdString(title));
  QString shown = QString::fromStdString(text);
  shown.replace("\r\n", "\n");
  box->setText(shown);
  switch (icon) {
    case MsgIcon::Question: box->setIcon(QMessageBox::Question); break;
    case MsgIcon::Exclamation: box->setIcon(QMessageBox::Warning); break;
    case MsgIcon::Information: box->setIcon(QMessageBox::Information); break;
    case MsgIcon::Critical: box->setIcon(QMessageBox::Critical); break;
    case MsgIcon::None: box->setIcon(QMessageBox::NoIcon); break;
  }
  switch (buttons) {
    case MsgButtons::Ok:
      box->setStandardButtons(QMessageBox::Ok);
      box->setDefaultButton(QMessageBox::Ok);
      break;
    case MsgButtons::OkCancel:
      box->setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
      box->setDefaultButton(QMessageBox::Ok);
      box->setEscapeButton(QMessageBox::Cancel);
      break;
    case MsgButtons::YesNo:
      box->setStandardButtons(QMessageBox::Yes | QMessageBox::No);
      box->setDefaultButton(QMessageBox::Yes);
      box->setEscapeButton(QMessageBox::No);
      break;
  }
  return box;
}

QStringList nameFilters(const std::string& filter) {
  const QStringList parts = QString::fromStdString(filter).split('|');
  QStringList filters;
  for (int i = 0; i + 1 < parts.size(); i += 2) filters << parts[i];
  return filters;
}

QtApp::QtApp(MidiService& midi, QObject* parent) : QObject(parent), app_(midi, *this) {
  // The forms' layout is made for a small standard font.
  QFont font = QApplication::font();
  font.setPixelSize(kFormFontPixels);
  QApplication::setFont(font);
  // The file dialogs' icons fill Qt's pixmap cache up to its 10 MB limit over an afternoon's
  // loads and saves; 2 MB holds what the forms show.
  QPixmapCache::setCacheLimit(2048);
  // The splash's one second: Qt's default coarse timer may fire it up to a tenth of a second late.
  timer1_.setTimerType(Qt::PreciseTimer);
  timer1_.setSingleShot(false);
  connect(&timer1_, &QTimer::timeout, this, [this] {
    app_.Timer1_Tick();
    afterHandler();
  });
}

QtApp::~QtApp() {
  delete main_.data();
  delete splash_.data();
  delete pref_.data();
  while (busy_-- > 0) QApplication::restoreOverrideCursor();
}

void QtApp::start() {
  app_.Main();
  afterHandler();
}

QWidget* QtApp::form(FormId id) const {
  switch (id) {
    case FormId::Pref: return pref_;
    case FormId::Splash: return splash_;
    case FormId::Main: return main_;
    case FormId::LoadAid: return loadAid_;
  }
  return nullptr;
}

MsgAnswer QtApp::messageBox(const std::string& text, const std::string& title, MsgButtons buttons,
                            MsgIcon icon) {
  std::unique_ptr<QMessageBox> box(makeMessageBox(text, title, buttons, icon));
  switch (box->exec()) {
    case QMessageBox::Cancel: return MsgAnswer::Cancel;
    case QMessageBox::Yes: return MsgAnswer::Yes;
    case QMessageBox::No: return MsgAnswer::No;
    default: return MsgAnswer::Ok;
  }
}

void QtApp::createForm(FormId id) {
  if (form(id)) return;
  switch (id) {
    case FormId::Pref: pref_ = new PrefWindow(app_.pref(), *this); break;
    case FormId::Splash: splash_ = new SplashWindow; break;
    case FormId::Main:
      if (app_.mainForm()) main_ = new MainWindow(*app_.mainForm(), *this);
      break;
    case FormId::LoadAid:
      if (app_.mainForm() && main_) {
        loadAid_ = new LoadAidWindow(app_.mainForm()->loadAid(), [this] {
          if (main_) main_->render();
          if (loadAid_) loadAid_->render();
          afterHandler();
        }, main_);
        // Beside the main form: 8200 twips right of its left edge and 1300 below its top.
        loadAid_->move(main_->geometry().topLeft() + QPoint(8200 / 15, 1300 / 15));
      }
      break;
  }
}

void QtApp::showForm(FormId id) {
  createForm(id);
  if (id == FormId::Main && main_) main_->render();
  if (id == FormId::Pref && pref_) pref_->render();
  if (id == FormId::LoadAid && loadAid_) loadAid_->render();
  if (QWidget* w = form(id)) {
    w->show();
    w->raise();
    w->activateWindow();
  }
}

void QtApp::hideForm(FormId id) {
  if (QWidget* w = form(id)) w->hide();
}

void QtApp::unloadForm(FormId id) {
  QWidget* w = form(id);
  if (!w) return;
  w->hide();
  w->deleteLater();
  switch (id) {
    case FormId::Pref: pref_ = nullptr; break;
    case FormId::Splash: splash_ = nullptr; break;
    case FormId::Main: main_ = nullptr; break;
    case FormId::LoadAid: loadAid_ = nullptr; break;
  }
}

void QtApp::setBusy(bool busy) {
  if (busy) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    ++busy_;
  } else {
    while (busy_ > 0) {
      QApplication::restoreOverrideCursor();
      --busy_;
    }
  }
}

void QtApp::startTimer(int intervalMs) {
  if (intervalMs > 0) timer1_.start(intervalMs);
  else timer1_.stop();
}

namespace {
// Qt's own dialog, the same on every desktop: its window and controls can be found from outside
// like the forms', and its file name box takes a whole path. The filter index counts from 1;
// one beyond the list falls back to the first filter. The last file chosen stands in it.
bool runFileDialog(FileDialog& dialog, bool save) {
  QFileDialog box(QApplication::activeWindow(), save ? "Save As" : "Open");
  box.setOption(QFileDialog::DontUseNativeDialog);
  box.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  box.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  // Flags 2 asks before an existing file is overwritten; nothing adds an extension.
  if (save) box.setOption(QFileDialog::DontConfirmOverwrite, (dialog.flags & 2) == 0);
  const QStringList filters = nameFilters(dialog.filter);
  box.setNameFilters(filters);
  if (dialog.filterIndex >= 1 && dialog.filterIndex <= filters.size()) box.selectNameFilter(filters[dialog.filterIndex - 1]);
  if (!dialog.fileName.empty()) box.selectFile(QString::fromStdString(dialog.fileName));
  if (box.exec() != QDialog::Accepted || box.selectedFiles().isEmpty()) return false;
  dialog.fileName = box.selectedFiles().front().toStdString();
  return true;
}
}  // namespace

bool QtApp::showOpen(FileDialog& dialog) { return runFileDialog(dialog, false); }
bool QtApp::showSave(FileDialog& dialog) { return runFileDialog(dialog, true); }

void QtApp::afterHandler() {
  if (app_.finished()) emit finished();
}

}  // namespace tessivo::qt
