// Tessivo: editor and librarian for the CS2x. Device 0 of both MIDI lists is the built-in
// virtual instrument; the system's ports (ALSA, else JACK) follow it.
#include <QApplication>

#include "instrument/virtual_cs2x.h"
#include "link/port_service.h"
#include "link/rtmidi_ports.h"
#include "shell/qt/qt_app.h"
#include "shell/qt/unix_signals.h"

int main(int argc, char** argv) {
  QApplication qapp(argc, argv);
#ifdef TESSIVO_APP_ID
  QGuiApplication::setDesktopFileName(TESSIVO_APP_ID);  // ties the windows to the menu entry and its icon
#endif
  QApplication::setQuitOnLastWindowClosed(false);  // the program ends when its logic says so
  QFont font = QApplication::font();
  font.setPixelSize(11);  // the forms' layout is made for a small standard font
  QApplication::setFont(font);

  tessivo::VirtualCs2x instrument;
  tessivo::VirtualCs2xProvider builtIn(instrument);
  tessivo::RtMidiProvider system(tessivo::chooseMidiSystem());
  tessivo::PortMidiService midi({&builtIn, &system});

  tessivo::qt::QtApp app(midi);
  QObject::connect(&app, &tessivo::qt::QtApp::finished, &qapp, &QApplication::quit, Qt::QueuedConnection);
  // A logout, Ctrl-C or a closed terminal ends the run as Exit does: ports closed in order.
  tessivo::qt::UnixSignals endOnSignal([&app] {
    app.logic().Terminate();
    app.afterHandler();
  });
  app.start();
  return qapp.exec();
}
