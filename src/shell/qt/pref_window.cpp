#include "shell/qt/pref_window.h"

#include <QCloseEvent>
#include <QAbstractItemView>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>

#include "shell/qt/qt_app.h"
#include "shell/qt/twips.h"

namespace tessivo::qt {

namespace {
void renderList(QComboBox* box, const ListCtl& list) {
  QSignalBlocker block(box);
  if (box->count() != static_cast<int>(list.items.size())) {
    box->clear();
    for (const std::string& item : list.items) box->addItem(QString::fromStdString(item));
  }
  box->setCurrentIndex(list.index());
  // The list is narrow on the form; its drop-down shows whole device names.
  box->view()->setMinimumWidth(box->view()->sizeHintForColumn(0) + 24);
}
}  // namespace

PrefWindow::PrefWindow(PrefForm& form, QtApp& app) : form_(form), app_(app) {
  setObjectName("frmPref");
  setWindowTitle(PrefForm::kCaption);
  setFixedSize(px(7425), px(2655));
  setModal(false);

  auto* label4 = new QLabel("MIDI In Device", this);
  label4->setObjectName("Label4");
  placeLabel(label4, 3600, 1080, 1215, 255);
  combo1_ = new QComboBox(this);
  combo1_->setObjectName("Combo1");
  place(combo1_, 3360, 1320, 1815, 315);

  auto* label5 = new QLabel("MIDI Out Device", this);
  label5->setObjectName("Label5");
  placeLabel(label5, 5760, 1080, 1335, 255);
  combo2_ = new QComboBox(this);
  combo2_->setObjectName("Combo2");
  place(combo2_, 5520, 1320, 1815, 315);

  ok_ = new QPushButton(QString::fromStdString(form_.OKButton.caption), this);
  ok_->setObjectName("OKButton");
  place(ok_, 5760, 2040, 1215, 375);
  ok_->setDefault(true);
  ok_->setAutoDefault(true);

  connect(combo1_, &QComboBox::activated, this, [this](int i) {
    form_.Combo1.setIndex(i);
    render();
  });
  connect(combo2_, &QComboBox::activated, this, [this](int i) {
    form_.Combo2.setIndex(i);
    render();
  });
  connect(ok_, &QPushButton::clicked, this, [this] {
    app_.logic().OKButton_Click();
    app_.afterHandler();
  });
  render();
}

void PrefWindow::render() {
  renderList(combo1_, form_.Combo1);
  renderList(combo2_, form_.Combo2);
}

void PrefWindow::closeEvent(QCloseEvent* event) {
  event->ignore();  // the logic decides: end the program at the first start, else hide
  app_.logic().PrefClosed();
  app_.afterHandler();
}

void PrefWindow::reject() {}

}  // namespace tessivo::qt
