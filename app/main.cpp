// Tessivo: editor and librarian for the CS2x. Device 0 of both MIDI lists is the built-in
// virtual instrument; the system's ports (ALSA, else JACK) follow it.
#include <QApplication>

#include "instrument/virtual_cs2x.h"
#include "shell/qt/run_editor.h"

int main(int argc, char** argv) {
  QApplication qapp(argc, argv);
#ifdef TESSIVO_APP_ID
  QGuiApplication::setDesktopFileName(TESSIVO_APP_ID);  // ties the windows to the menu entry and its icon
#endif
  tessivo::VirtualCs2x instrument;
  tessivo::VirtualCs2xProvider builtIn(instrument);
  return tessivo::qt::runEditor(qapp, builtIn);
}
