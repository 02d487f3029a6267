#include "shell/qt/about_window.h"

#include <QFrame>
#include <QLabel>
#include <QProcess>
#include <QPushButton>

#include "link/screen.h"
#include "shell/about.h"
#include "shell/qt/gestures.h"
#include "shell/qt/names.h"
#include "shell/qt/twips.h"

namespace tessivo::qt {

namespace {
constexpr const char* kDescription =
    "This program is given as it is, with no guarantee that it is fit for any purpose. By using it "
    "you hold its makers harmless for whatever it does to your instrument, your files or your "
    "music. Questions and reports: the project's issue tracker.";
constexpr const char* kDisclaimer =
    "Tessivo is free software of its makers. CS2x is a trademark of its owner; this program is not "
    "made or endorsed by the instrument's maker.";
}  // namespace

AboutWindow::AboutWindow(Screen& screen, QWidget* parent) : QDialog(parent) {
  setObjectName("frmAbout");
  setWindowTitle(QString("About ") + kAppTitle);
  setAttribute(Qt::WA_DeleteOnClose);
  setFixedSize(px(5730), px(4245));

  auto* icon = new QLabel(this);
  uncaptioned(icon, "picIcon");
  icon->setPixmap(dragPixmap());
  place(icon, 240, 240, 540, 540);

  auto* title = new QLabel(kAppTitle, this);
  title->setObjectName("lblTitle");
  QFont bold = title->font();
  bold.setBold(true);
  title->setFont(bold);
  placeLabel(title, 1050, 225, 3885, 210);
  auto* version = new QLabel(QString::fromStdString(versionText()), this);
  version->setObjectName("lblVersion");
  placeLabel(version, 1050, 450, 3885, 225);
  auto* description = new QLabel(kDescription, this);
  description->setObjectName("lblDescription");
  placeWrapped(description, 1080, 1125, 3885, 1650);

  // An engraved rule: a dark line with a light one under it.
  auto* dark = new QFrame(this);
  dark->setObjectName("Line1_0");
  dark->setFrameShape(QFrame::HLine);
  dark->setFrameShadow(QFrame::Sunken);
  place(dark, 120, 2985, 5490, 30);
  auto* disclaimer = new QLabel(kDisclaimer, this);
  disclaimer->setObjectName("lblDisclaimer");
  placeWrapped(disclaimer, 240, 3120, 3960, 900);

  auto* ok = new QPushButton("OK", this);
  ok->setObjectName("cmdOK");
  ok->setDefault(true);
  place(ok, 4320, 3240, 1260, 345);
  connect(ok, &QPushButton::clicked, this, &QDialog::close);  // Escape closes it as well
  auto* sysInfo = new QPushButton("&System Info...", this);
  sysInfo->setObjectName("cmdSysInfo");
  place(sysInfo, 4320, 3720, 1245, 345);
  connect(sysInfo, &QPushButton::clicked, this, [&screen] {
    StartSysInfo(screen, onPath, [](const std::string& tool) { return QProcess::startDetached(QString::fromStdString(tool), {}); });
  });
}

}  // namespace tessivo::qt
