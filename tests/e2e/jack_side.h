#pragma once
// The program's side over a JACK server: the service over the RtMidi ports (after any other
// providers), a link with its images and length tables, and its boxes on a scripted screen.
// Made after the peer's ports exist, as the service lists its devices once.
#include <gtest/gtest.h>

#include <thread>

#include "link/rtmidi_ports.h"
#include "support/scripted.h"

namespace tessivo::test {

struct JackSide {
  explicit JackSide(std::vector<PortProvider*> providers = {}) : midi((providers.push_back(&jack), providers)) {
    link.attachImages(&images);
    link.setLengthTables();
  }
  // Opens, as the start does, the output and then the input with the link's callback, on the
  // devices whose names hold the given parts; then lets JACK finish the connections.
  bool open(const std::string& outPart, const std::string& inPart) {
    const std::int32_t outDev = deviceNamed(midi, false, outPart), inDev = deviceNamed(midi, true, inPart);
    const bool opened = outDev >= 0 && inDev >= 0 &&
                        midi.midiOutOpen(link.MidiOutHnd, static_cast<std::uint32_t>(outDev)) == MMSYSERR_NOERROR &&
                        midi.midiInOpen(link.MidiInHnd, static_cast<std::uint32_t>(inDev), &MidiLink::MidiInCB,
                                        link.callbackInstance(), CALLBACK_FUNCTION) == MMSYSERR_NOERROR;
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    return opened;
  }
  void close() {
    midi.midiInStop(link.MidiInHnd);
    midi.midiInClose(link.MidiInHnd);
    midi.midiOutClose(link.MidiOutHnd);
  }

  RtMidiProvider jack{MidiSystem::Jack};
  PortMidiService midi;
  Events events;
  ScriptedScreen screen{events};
  MidiLink link{midi, screen};
  Images images;
};

}  // namespace tessivo::test
