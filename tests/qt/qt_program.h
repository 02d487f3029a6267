#pragma once
// The Qt program against the built-in instrument under the offscreen platform, as the Qt
// tests start it, and the look-up of a widget by its name.
#include <gtest/gtest.h>

#include <QPushButton>
#include <QTest>
#include <stdexcept>

#include "shell/qt/qt_app.h"
#include "support/scripted.h"

namespace tessivo::qt {

// A widget that must be there; a missing one ends the test with its name.
template <typename W>
W* child(QObject* parent, const QString& name) {
  auto* w = parent->findChild<W*>(name);
  if (w == nullptr) throw std::runtime_error("no " + name.toStdString());
  return w;
}

class QtProgram : public ::testing::Test, protected test::BuiltIn {
 protected:
  QtApp app{midi};
  test::TempFile prefs;

  QtProgram() { app.logic().pref().prefsPath = prefs.path; }

  // OK on the first preferences, then the start reads the instrument; the main form once shown.
  MainWindow* startMainForm() {
    app.start();
    child<QPushButton>(app.prefWindow(), "OKButton")->click();
    MainWindow* main = app.mainWindow();
    if (main == nullptr || !QTest::qWaitFor([&] { return main->isVisible(); }, 60000)) return nullptr;
    return main;
  }
};

}  // namespace tessivo::qt
