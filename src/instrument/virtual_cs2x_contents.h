#pragma once
// The virtual CS2x's own contents: the fields of its blocks that it reads or fills with care,
// what it holds at power-on, and the Performances stored in its four banks (the latter are
// VirtualCs2x::storedPerformance). Internal to the instrument.

#include <array>
#include <cstdint>

#include "instrument/virtual_cs2x.h"

namespace tessivo::vcs2x {

// Low address bytes of the Common blocks 60 00 40 and 60 00 60.
inline constexpr std::uint8_t kCom2Low = 0x40, kCom3Low = 0x60;
// High address bytes of the Multi Part sections: 08 pp xx and 0A pp xx.
inline constexpr std::uint8_t kXgHigh = 0x08, kXgHighA = 0x0A;

// Com0, 50 00 xx.
inline constexpr std::size_t kCom0PerfChannel = 0x00, kCom0TransmitChannel = 0x0A, kCom0LocalSwitch = 0x0B;
// Com1, 60 00 xx: the name, the filter and HPF the layers are offsets on, the arpeggiator.
inline constexpr std::size_t kNameLength = 8;
inline constexpr std::size_t kCom1Hpf = 0x1E, kCom1Cutoff = 0x1F, kCom1Resonance = 0x20, kCom1Arpeggiator = 0x33;
inline constexpr std::uint8_t kArpOff = 4, kArpOn = 5;
// Com2, 60 00 40 + xx: the three effect types, two bytes each.
inline constexpr std::size_t kCom2Reverb = 0x00, kCom2Chorus = 0x02, kCom2Variation = 0x04;
// A Layer, 60 0L xx.
inline constexpr std::size_t kLyrBankMsb = 0x00, kLyrBankLsb = 0x01, kLyrProgram = 0x02, kLyrMonoPoly = 0x03,
                             kLyrNoteShift = 0x04, kLyrDetuneHigh = 0x05, kLyrDetuneLow = 0x06, kLyrVolume = 0x07,
                             kLyrNoteLimitLow = 0x0B, kLyrNoteLimitHigh = 0x0C, kLyrVolumeGate = 0x0F,
                             kLyrCutoff = 0x11, kLyrResonance = 0x12, kLyrSwitch = 0x16, kLyrVelLimitLow = 0x1B,
                             kLyrVelLimitHigh = 0x1C, kLyrEqBassGain = 0x29, kLyrEqTrebleGain = 0x2A,
                             kLyrEqBassFreq = 0x2B, kLyrEqTrebleFreq = 0x2C;
inline constexpr std::uint8_t kLayerOn = 1;

// Com0 at power-on.
std::array<std::uint8_t, VirtualCs2x::kCom0Size> com0PowerOn();
// Multi Part `part` at power-on, by low address byte: 08 pp 00..7F and 0A pp 00..7F. Only the
// bytes of the five sections are ever seen.
std::array<std::uint8_t, 128> xgPartPowerOn(std::uint8_t part);
std::array<std::uint8_t, 128> xgPartAPowerOn();

// One of the four Bank Select LSBs of Performances.
bool isPerfBank(std::uint8_t lsb);

}  // namespace tessivo::vcs2x
