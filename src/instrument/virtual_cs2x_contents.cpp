#include "instrument/virtual_cs2x_contents.h"

#include <algorithm>
#include <string>

#include "data/tables.h"

namespace tessivo::vcs2x {

namespace {

// A deterministic spread of values for the stored Performances.
std::uint32_t vary(std::uint8_t bank, std::uint8_t program, unsigned block, unsigned index) {
  std::uint32_t x = (std::uint32_t{bank} << 24) ^ (std::uint32_t{program} << 16) ^ (block << 8) ^ index;
  x ^= x >> 16;
  x *= 0x7FEB352Du;
  x ^= x >> 15;
  x *= 0x846CA68Bu;
  x ^= x >> 16;
  return x;
}

// first + (value modulo count): one of `count` values from `first` on.
std::uint8_t pick(std::uint32_t value, unsigned first, unsigned count) {
  return static_cast<std::uint8_t>(first + value % count);
}

// Preset banks carry the names of the program's tables; User banks names of their own.
std::string storedName(std::uint8_t bank, std::uint8_t program) {
  if (bank == VirtualCs2x::kPreset1) return std::string(PrfNames1[program]);
  if (bank == VirtualCs2x::kPreset2) return std::string(PrfNames2[program]);
  const int number = program + 1;
  std::string name = bank == VirtualCs2x::kUser1 ? "UsrA " : "UsrB ";
  name += static_cast<char>('0' + number / 100);
  name += static_cast<char>('0' + number / 10 % 10);
  name += static_cast<char>('0' + number % 10);
  return name;
}

}  // namespace

std::array<std::uint8_t, VirtualCs2x::kCom0Size> com0PowerOn() {
  // Performance channel 1, transmit channel 1, Local on; the other bytes are system settings
  // the program only carries.
  return {
      0x00, 0x40, 0x40, 0x40, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00,
      0x7F, 0x40, 0x00, 0x00, 0x01, 0x00, 0x10, 0x11, 0x00, 0x00, 0x00, 0x00, 0x00,
  };
}

std::array<std::uint8_t, 128> xgPartPowerOn(std::uint8_t part) {
  std::array<std::uint8_t, 128> p{};
  const bool drums = part == 9;  // the part on channel 10 plays a drum kit
  const std::uint8_t section0[] = {
      0x00, drums ? std::uint8_t{0x7F} : std::uint8_t{0x00}, 0x00, 0x00,  // element reserve, bank, program
      part, 0x01, 0x01, drums ? std::uint8_t{0x02} : std::uint8_t{0x00},  // channel, poly, key on assign, mode
      0x40, 0x08, 0x00,                                                    // note shift, detune
      0x64, 0x40, 0x40, 0x40,                                              // volume, velocity sense, pan
      0x00, 0x7F,                                                          // note limits
      0x7F, 0x00, 0x28, 0x00,                                              // dry, chorus, reverb, variation
      0x40, 0x40, 0x40,                                                    // vibrato
      0x40, 0x40, 0x40, 0x40, 0x40,                                        // filter, envelope
      0x40, 0x40, 0x40, 0x0A, 0x00, 0x00,                                  // modulation wheel
      0x42, 0x40, 0x40, 0x00, 0x00, 0x00,                                  // pitch bend
  };
  static_assert(sizeof section0 == 0x29);
  std::copy(std::begin(section0), std::end(section0), p.begin());
  for (std::size_t i = 0x30; i <= 0x40; ++i) p[i] = 0x01;  // receive switches all on
  for (std::size_t i = 0x41; i <= 0x4C; ++i) p[i] = 0x40;  // scale tuning
  for (std::size_t i = 0x4D; i <= 0x66; ++i) p[i] = 0x40;  // aftertouch and assignable controls
  for (std::size_t i : {0x50, 0x51, 0x52, 0x56, 0x57, 0x58, 0x5D, 0x5E, 0x5F, 0x64, 0x65, 0x66}) p[i] = 0x00;
  p[0x59] = 0x10;  // AC1 controller number
  p[0x60] = 0x11;  // AC2 controller number
  // 67, 68: portamento off, time 0.
  for (std::size_t i = 0x69; i <= 0x6C; ++i) p[i] = 0x40;  // pitch envelope
  p[0x6D] = 0x01;                                         // velocity limits
  p[0x6E] = 0x7F;
  p[0x72] = 0x40;  // EQ bass and treble gain, flat
  p[0x73] = 0x40;
  p[0x76] = 0x0C;  // EQ bass frequency
  p[0x77] = 0x36;  // EQ treble frequency
  return p;
}

std::array<std::uint8_t, 128> xgPartAPowerOn() {
  std::array<std::uint8_t, 128> p{};
  p[0x20] = 0x40;  // HPF cutoff, centred
  return p;
}

bool isPerfBank(std::uint8_t lsb) {
  return lsb == VirtualCs2x::kPreset1 || lsb == VirtualCs2x::kUser1 || lsb == VirtualCs2x::kPreset2 ||
         lsb == VirtualCs2x::kUser2;
}

}  // namespace tessivo::vcs2x

namespace tessivo {

VirtualCs2x::PerfData VirtualCs2x::storedPerformance(std::uint8_t bank, std::uint8_t program) {
  using namespace vcs2x;
  PerfData p;
  program &= 0x7F;
  const auto v = [&](unsigned block, unsigned index) { return vary(bank, program, block, index); };

  // Every byte some value first; then the fields that have a narrower range or a meaning.
  for (std::size_t i = 0; i < kCom1Size; ++i) p.com1[i] = pick(v(0, i), 0, 128);
  const std::string name = storedName(bank, program);
  for (std::size_t i = 0; i < kNameLength; ++i)
    p.com1[i] = i < name.size() ? static_cast<std::uint8_t>(name[i] & 0x7F) : ' ';
  p.com1[kCom1Hpf] = pick(v(0, kCom1Hpf), 0, 64);
  p.com1[kCom1Cutoff] = pick(v(0, kCom1Cutoff), 0x20, 0x60);
  p.com1[kCom1Resonance] = pick(v(0, kCom1Resonance), 0, 0x60);
  p.com1[kCom1Arpeggiator] = (v(0, kCom1Arpeggiator) & 1) ? kArpOn : kArpOff;

  for (std::size_t i = 0; i < kCom2Size; ++i) p.com2[i] = pick(v(1, i), 0, 128);
  const EffectType& reverb = RvrbTbl[v(1, kCom2Reverb) % RvrbTbl.size()];
  const EffectType& chorus = ChrsTbl[v(1, kCom2Chorus) % ChrsTbl.size()];
  const EffectType& variation = VarTbl[v(1, kCom2Variation) % VarTbl.size()];
  p.com2[kCom2Reverb] = reverb.high;
  p.com2[kCom2Reverb + 1] = reverb.low;
  p.com2[kCom2Chorus] = chorus.high;
  p.com2[kCom2Chorus + 1] = chorus.low;
  p.com2[kCom2Variation] = variation.high;
  p.com2[kCom2Variation + 1] = variation.low;

  for (std::size_t i = 0; i < kCom3Size; ++i) p.com3[i] = pick(v(2, i), 0, 128);

  for (unsigned layer = 1; layer <= 4; ++layer) {
    auto& l = p.layers[layer - 1];
    const unsigned block = 2 + layer;
    const auto at = [&](std::size_t field, unsigned first, unsigned count) { l[field] = pick(v(block, field), first, count); };
    for (std::size_t i = 0; i < kLayerSize; ++i) at(i, 0, 128);
    const bool on = layer == 1 || (program + layer) % 5 != 0;
    l[kLyrBankMsb] = kPerfBankMsb;  // the instrument's own voices, preset voice bank 1 or 2
    at(kLyrBankLsb, 0, 2);
    l[kLyrMonoPoly] = v(block, kLyrMonoPoly) % 8 == 0 ? std::uint8_t{0} : std::uint8_t{1};  // mostly poly
    at(kLyrNoteShift, 0x34, 25);                                 // ±12 semitones
    at(kLyrDetuneHigh, 7, 2);                                    // two nibbles: a little below or above 08 00
    at(kLyrDetuneLow, 0, 16);
    at(kLyrVolume, 0x50, 0x30);
    at(kLyrNoteLimitLow, 0, 0x24);
    at(kLyrNoteLimitHigh, 0x60, 0x20);
    if (on) at(kLyrVolumeGate, 1, 127);
    else l[kLyrVolumeGate] = 0;
    at(kLyrCutoff, 0x20, 0x60);
    at(kLyrResonance, 0, 0x60);
    // An unused layer holds 0 or, as some stored ones do, 7F.
    l[kLyrSwitch] = on ? kLayerOn : (v(block, kLyrSwitch) % 3 == 0 ? std::uint8_t{0x7F} : std::uint8_t{0});
    at(kLyrVelLimitLow, 1, 0x20);
    at(kLyrVelLimitHigh, 0x60, 0x20);
    at(kLyrEqBassGain, 0x34, 25);  // 40 ± 12 dB
    at(kLyrEqTrebleGain, 0x34, 25);
    at(kLyrEqBassFreq, 4, 37);     // frequency codes 4..40
    at(kLyrEqTrebleFreq, 28, 31);  // and 28..58
  }
  return p;
}

}  // namespace tessivo
