#pragma once
// The whole editor on a QApplication, as a musician runs it.
#include <QApplication>

#include "link/ports.h"

namespace tessivo::qt {

// Device 0 of both MIDI lists is `builtIn` (the virtual instrument, or a stand-in for it); the
// system's ports (ALSA, else JACK) follow it. Returns the event loop's exit code once the
// program has ended, by Exit or by a signal from outside.
int runEditor(QApplication& qapp, PortProvider& builtIn);

}  // namespace tessivo::qt
