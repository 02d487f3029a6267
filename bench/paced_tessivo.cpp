// The editor as app/main.cpp builds it, but for one thing: its output to the built-in
// instrument pauses after each message (50 ms, or TESSIVO_SEND_PAUSE_MS), as editors that pace
// their sends by a fixed wait do. start_bench times it beside the editor itself.
#include <QApplication>
#include <cstdlib>

#include "instrument/virtual_cs2x.h"
#include "link/port_service.h"
#include "link/rtmidi_ports.h"
#include "shell/qt/qt_app.h"
#include "shell/qt/unix_signals.h"
#include "stamped_ports.h"

int main(int argc, char** argv) {
  QApplication qapp(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  QFont font = QApplication::font();
  font.setPixelSize(11);
  QApplication::setFont(font);

  tessivo::VirtualCs2x instrument;
  tessivo::VirtualCs2xProvider builtIn(instrument);
  tessivo::bench::Stamps stamps;
  const char* pause = std::getenv("TESSIVO_SEND_PAUSE_MS");
  stamps.pauseMs = pause ? std::atoi(pause) : 50;
  tessivo::bench::StampedProvider paced(builtIn, stamps);
  tessivo::RtMidiProvider system(tessivo::chooseMidiSystem());
  tessivo::PortMidiService midi({&paced, &system});

  tessivo::qt::QtApp app(midi);
  QObject::connect(&app, &tessivo::qt::QtApp::finished, &qapp, &QApplication::quit, Qt::QueuedConnection);
  tessivo::qt::UnixSignals endOnSignal([&app] {
    app.logic().Terminate();
    app.afterHandler();
  });
  app.start();
  return qapp.exec();
}
