#pragma once
// frmSplash: stands on the screen while the program reads the instrument. Reacts to nothing.

#include <QWidget>

namespace tessivo::qt {

class SplashWindow : public QWidget {
  Q_OBJECT
 public:
  SplashWindow();
};

}  // namespace tessivo::qt
