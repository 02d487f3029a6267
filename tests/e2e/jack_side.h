#pragma once
// The program's side over a JACK server: the service over the RtMidi ports (after any other
// providers), a link with its images and length tables, and its boxes on a scripted screen.
// Made after the peer's ports exist, as the service lists its devices once.
#include <gtest/gtest.h>

#include "link/rtmidi_ports.h"
#include "support/scripted.h"

namespace tessivo::test {

struct JackSide {
  explicit JackSide(std::vector<PortProvider*> providers = {}) : midi(withJack(std::move(providers))) {
    link.attachImages(&images);
    link.setLengthTables();
  }

  // Opens the output and the input on the devices whose names hold the given parts, as the
  // start does: output first, then input with the link's callback.
  ::testing::AssertionResult open(const std::string& outPart, const std::string& inPart) {
    const std::int32_t outDev = deviceNamed(midi, false, outPart);
    const std::int32_t inDev = deviceNamed(midi, true, inPart);
    if (outDev < 0 || inDev < 0) return ::testing::AssertionFailure() << "no device " << outPart << " / " << inPart;
    if (MMRESULT r = midi.midiOutOpen(link.MidiOutHnd, static_cast<std::uint32_t>(outDev)))
      return ::testing::AssertionFailure() << "midiOutOpen gave " << r;
    if (MMRESULT r = midi.midiInOpen(link.MidiInHnd, static_cast<std::uint32_t>(inDev), &MidiLink::MidiInCB,
                                     link.callbackInstance(), CALLBACK_FUNCTION))
      return ::testing::AssertionFailure() << "midiInOpen gave " << r;
    return ::testing::AssertionSuccess();
  }
  std::vector<PortProvider*> withJack(std::vector<PortProvider*> providers) {
    providers.push_back(&jack);
    return providers;
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
