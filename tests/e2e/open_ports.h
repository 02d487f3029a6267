#pragma once
// Opens the link's output and input on the devices whose names hold the given parts, as the
// start does: output first, then input with the link's callback.
#include <gtest/gtest.h>

#include "link/midi_link.h"
#include "support/scripted.h"

namespace tessivo::test {

inline ::testing::AssertionResult openPortsNamed(MidiService& midi, MidiLink& link, const std::string& outPart,
                                                 const std::string& inPart) {
  const std::int32_t outDev = deviceNamed(midi, false, outPart);
  const std::int32_t inDev = deviceNamed(midi, true, inPart);
  if (outDev < 0 || inDev < 0) return ::testing::AssertionFailure() << "no device named " << outPart << " / " << inPart;
  if (MMRESULT r = midi.midiOutOpen(link.MidiOutHnd, static_cast<std::uint32_t>(outDev)); r != MMSYSERR_NOERROR)
    return ::testing::AssertionFailure() << "midiOutOpen gave " << r;
  if (MMRESULT r = midi.midiInOpen(link.MidiInHnd, static_cast<std::uint32_t>(inDev), &MidiLink::MidiInCB,
                                   link.callbackInstance(), CALLBACK_FUNCTION);
      r != MMSYSERR_NOERROR)
    return ::testing::AssertionFailure() << "midiInOpen gave " << r;
  return ::testing::AssertionSuccess();
}

}  // namespace tessivo::test
