// The editor as app/main.cpp runs it, but for one thing: its output to the built-in
// instrument pauses after each message (50 ms, or TESSIVO_SEND_PAUSE_MS), as editors that pace
// their sends by a fixed wait do. start_bench times it beside the editor itself.
#include <QApplication>
#include <cstdlib>

#include "instrument/virtual_cs2x.h"
#include "shell/qt/run_editor.h"
#include "stamped_ports.h"

int main(int argc, char** argv) {
  QApplication qapp(argc, argv);
  tessivo::VirtualCs2x instrument;
  tessivo::VirtualCs2xProvider builtIn(instrument);
  tessivo::bench::Stamps stamps;
  const char* pause = std::getenv("TESSIVO_SEND_PAUSE_MS");
  stamps.pauseMs = pause ? std::atoi(pause) : 50;
  tessivo::bench::StampedProvider paced(builtIn, stamps);
  return tessivo::qt::runEditor(qapp, paced);
}
