#pragma once
// frmAbout: the program's title, version and notices, OK and the system information tool.
// Modeless; OK or Escape closes it.

#include <QDialog>

namespace tessivo {
class Screen;
}

namespace tessivo::qt {

class AboutWindow : public QDialog {
  Q_OBJECT
 public:
  explicit AboutWindow(Screen& screen, QWidget* parent = nullptr);
};

}  // namespace tessivo::qt
