#include "shell/qt/load_aid_window.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>

#include "shell/qt/names.h"
#include "shell/qt/render.h"

namespace tessivo::qt {

namespace {
void renderItems(QListWidget* list, const std::vector<std::string>& items) {
  QSignalBlocker block(list);
  bool same = list->count() == static_cast<int>(items.size());
  for (int i = 0; same && i < list->count(); ++i) same = list->item(i)->text() == QString::fromStdString(items[static_cast<std::size_t>(i)]);
  if (same) return;
  list->clear();
  for (const std::string& item : items) list->addItem(QString::fromStdString(item));
}
QLabel* labelFor(QWidget* parent, const char* text, QWidget* buddy) {
  auto* l = new QLabel(text, parent);
  l->setBuddy(buddy);
  return l;
}
}  // namespace

LoadAidWindow::LoadAidWindow(LoadAid& aid, std::function<void()> handled, QWidget* parent)
    : QWidget(parent, Qt::Tool), aid_(aid), handled_(std::move(handled)) {
  setObjectName("frmLoadAid");
  setWindowTitle(LoadAid::kCaption);
  auto* grid = new QGridLayout(this);

  cmbLdAid_ = new QComboBox(this);
  cmbLdAid_->setObjectName("cmbLdAid");
  cmbLdAid_->setEditable(true);  // its edit box shows the type before one is chosen
  cmbLdAid_->lineEdit()->setReadOnly(true);
  drvLdAid_ = new QComboBox(this);
  drvLdAid_->setObjectName("drvLdAid");
  dirLdAid_ = new QListWidget(this);
  uncaptioned(dirLdAid_, "dirLdAid");
  flLdAid_ = new QListWidget(this);
  uncaptioned(flLdAid_, "flLdAid");
  cmdLdAid_ = new QPushButton("Done", this);
  cmdLdAid_->setObjectName("cmdLdAid");

  grid->addWidget(labelFor(this, "Type", cmbLdAid_), 0, 0);
  grid->addWidget(cmbLdAid_, 1, 0, 1, 2);
  grid->addWidget(labelFor(this, "Drive", drvLdAid_), 2, 0);
  grid->addWidget(drvLdAid_, 3, 0);
  folderLabel_ = labelFor(this, "Folder", dirLdAid_);
  folderLabel_->setObjectName("lblFolder");
  grid->addWidget(folderLabel_, 4, 0, 1, 2);
  grid->addWidget(dirLdAid_, 5, 0);
  grid->addWidget(labelFor(this, "Files", flLdAid_), 2, 1);
  grid->addWidget(flLdAid_, 3, 1, 3, 1);
  grid->addWidget(cmdLdAid_, 6, 1, Qt::AlignRight);
  resize(420, 320);

  connect(cmbLdAid_, &QComboBox::activated, this, [this](int index) {
    aid_.cmbLdAid.pick(index);
    handled_();
  });
  connect(drvLdAid_, &QComboBox::activated, this, [this](int index) {
    aid_.drvLdAid_Change(aid_.drives[static_cast<std::size_t>(index)]);
    handled_();
  });
  connect(dirLdAid_, &QListWidget::itemActivated, this, [this](QListWidgetItem* item) {
    aid_.dirLdAid_Change(item->text().toStdString());
    handled_();
  });
  connect(flLdAid_, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
    aid_.flLdAid_Click(item->text().toStdString());
    handled_();
  });
  connect(cmdLdAid_, &QPushButton::clicked, this, [this] {
    hide();
    handled_();
  });
  render();
}

void LoadAidWindow::render() {
  {
    QSignalBlocker block(cmbLdAid_);
    if (cmbLdAid_->count() != static_cast<int>(aid_.cmbLdAid.items.size())) {
      cmbLdAid_->clear();
      for (const std::string& item : aid_.cmbLdAid.items) cmbLdAid_->addItem(QString::fromStdString(item));
    }
    cmbLdAid_->setCurrentIndex(aid_.cmbLdAid.index());
    cmbLdAid_->setEditText(QString::fromStdString(aid_.cmbText));
  }
  {
    QSignalBlocker block(drvLdAid_);
    drvLdAid_->clear();
    for (const std::string& d : aid_.drives) drvLdAid_->addItem(QString::fromStdString(d));
    drvLdAid_->setCurrentText(QString::fromStdString(aid_.drive));
  }
  // Where the lists stand: the folder's whole path, elided in its middle where it is long.
  const QString folder = QString::fromStdString(aid_.folder);
  folderLabel_->setText("Folder: " + folderLabel_->fontMetrics().elidedText(folder, Qt::ElideMiddle, width() - 80));
  folderLabel_->setToolTip(folder);
  renderItems(dirLdAid_, aid_.folders);
  renderItems(flLdAid_, aid_.files);
}

}  // namespace tessivo::qt
