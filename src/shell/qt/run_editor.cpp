#include "shell/qt/run_editor.h"

#include "link/port_service.h"
#include "link/rtmidi_ports.h"
#include "shell/qt/qt_app.h"
#include "shell/qt/unix_signals.h"

namespace tessivo::qt {

int runEditor(QApplication& qapp, PortProvider& builtIn) {
  QApplication::setQuitOnLastWindowClosed(false);  // the program ends when its logic says so
  RtMidiProvider system(chooseMidiSystem());
  PortMidiService midi({&builtIn, &system});

  QtApp app(midi);  // it sets the forms' small standard font
  QObject::connect(&app, &QtApp::finished, &qapp, &QApplication::quit, Qt::QueuedConnection);
  // A logout, Ctrl-C or a closed terminal ends the run as Exit does: ports closed in order.
  UnixSignals endOnSignal([&app] {
    app.logic().Terminate();
    app.afterHandler();
  });
  app.start();
  return qapp.exec();
}

}  // namespace tessivo::qt
