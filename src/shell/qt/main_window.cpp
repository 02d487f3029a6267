#include "shell/qt/main_window.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QSignalBlocker>

#include "shell/qt/qt_app.h"
#include "shell/qt/twips.h"

namespace tessivo::qt {

namespace {
constexpr const char* kMultiButtonTip =
    "Click on Button to audition sound (all multi currently assigned to this channel will play) "
    "or drag multi back to layer pool.";
constexpr const char* kMultiChannelTip =
    "Select a midi channel to group sounds together so that multiple voices sound on one channel "
    "or choose an unused channel to isolate individual sound.";

void renderList(QComboBox* box, const ListCtl& list) {
  QSignalBlocker block(box);
  if (box->count() != static_cast<int>(list.items.size())) {
    box->clear();
    for (const std::string& item : list.items) box->addItem(QString::fromStdString(item));
  }
  box->setCurrentIndex(list.index());
  box->setEnabled(list.enabled);
  box->setVisible(list.visible);
}
}  // namespace

MainWindow::MainWindow(MainForm& form, QtApp& app) : form_(form), app_(app) {
  setObjectName("CS2x");
  setWindowTitle(MainForm::kCaption);

  QMenu* file = menuBar()->addMenu("File");
  file->setObjectName("FileMenu");
  QAction* pref = file->addAction("Startup Preferences");
  pref->setObjectName("StrtupPref");
  connect(pref, &QAction::triggered, this, [this] {
    app_.logic().StrtupPref_Click();
    app_.afterHandler();
  });
  QAction* exitAction = file->addAction("Exit");
  exitAction->setObjectName("ExitMenu");
  connect(exitAction, &QAction::triggered, this, [this] {
    app_.logic().ExitRequested();
    app_.afterHandler();
  });

  auto* central = new QWidget(this);
  central->setObjectName("CS2xClient");
  central->setFixedSize(px(11085), px(7740));
  setCentralWidget(central);

  auto* chanLabel = new QLabel("Midi Chan", central);
  chanLabel->setObjectName("Labelx1_54");
  placeLabel(chanLabel, 7440, 1080, 615, 375);

  for (int m = kFirstMulti; m <= kLastMulti; ++m) {
    const int i = m - kFirstMulti;
    const int top = 1560 + 480 * i;
    auto* button = new QPushButton(central);
    button->setObjectName(QString("CmdMult%1").arg(m));
    button->setToolTip(kMultiButtonTip);
    place(button, 5880, top, 1455, 375);
    cmdMult_[static_cast<std::size_t>(i)] = button;

    auto* channel = new QComboBox(central);
    channel->setObjectName(QString("CmbMult%1").arg(m));
    channel->setToolTip(kMultiChannelTip);
    place(channel, 7395, top, 585, 315);
    channel->setMinimumWidth(px(585));
    connect(channel, &QComboBox::activated, this, [this, m](int index) {
      form_.row(m).CmbMult.setIndex(index);
      render();
      app_.afterHandler();
    });
    cmbMult_[static_cast<std::size_t>(i)] = channel;
  }
  render();
}

void MainWindow::render() {
  for (int m = kFirstMulti; m <= kLastMulti; ++m) {
    const auto i = static_cast<std::size_t>(m - kFirstMulti);
    const MultiRow& row = form_.row(m);
    cmdMult_[i]->setText(QString::fromStdString(row.CmdMult.caption));
    cmdMult_[i]->setEnabled(row.CmdMult.enabled);
    cmdMult_[i]->setVisible(row.CmdMult.visible);
    renderList(cmbMult_[i], row.CmbMult);
  }
}

void MainWindow::closeEvent(QCloseEvent* event) {
  // The window's own close asks the exit question like the menu entry; a confirmed exit has
  // already closed the ports and unloads this window.
  if (app_.form(FormId::Main) != this) {
    event->accept();
    return;
  }
  event->ignore();
  app_.logic().ExitRequested();
  app_.afterHandler();
}

}  // namespace tessivo::qt
