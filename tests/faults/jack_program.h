#pragma once
// The whole program over a JACK server of the test's own: its service holds the system's
// JACK ports behind outputs that count (and can refuse) what they are handed, its screen is
// scripted, and it starts with the MIDI In and Out devices whose names hold the given parts.
#include <gtest/gtest.h>

#include <thread>

#include "link/rtmidi_ports.h"
#include "support/scripted.h"

namespace tessivo::test {

struct JackProgram {
  JackProgram() { app.pref().prefsPath = prefs.path; }
  // Main, the devices, OK and the tick; false when a device is missing.
  bool start(const std::string& inPart, const std::string& outPart) {
    const std::int32_t in = deviceNamed(midi, true, inPart), out = deviceNamed(midi, false, outPart);
    if (in < 0 || out < 0) return false;
    app.Main();
    app.pref().Combo1.setIndex(in);
    app.pref().Combo2.setIndex(out);
    app.OKButton_Click();
    app.Timer1_Tick();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));  // JACK finishes the connections
    return app.mainForm() != nullptr;
  }
  MainForm& form() { return *app.mainForm(); }

  RtMidiProvider jack{MidiSystem::Jack};
  FailingOutputs outs{jack};
  PortMidiService midi{{&outs}};
  Events events;
  ScriptedScreen screen{events};
  App app{midi, screen};
  TempFile prefs;
};

}  // namespace tessivo::test
