#include "data/multi_template.h"

#include <algorithm>
#include <cmath>

namespace tessivo {

namespace {
// The default bytes of the five sections, checksums as they stand (those of part 8 with
// receive channel 8), which stay fixed when the part and channel bytes change.
constexpr std::array<std::uint8_t, 52> kDefaultSection0{{
    0xF0, 0x43, 0x00, 0x4C, 0x00, 0x29, 0x08, 0x10, 0x00, 0x00, 0x00, 0x00, 0x00, 0x10, 0x01, 0x01,
    0x00, 0x40, 0x08, 0x00, 0x64, 0x40, 0x40, 0x40, 0x00, 0x7F, 0x7F, 0x00, 0x28, 0x00, 0x40, 0x40,
    0x40, 0x40, 0x40, 0x40, 0x40, 0x40, 0x40, 0x40, 0x40, 0x0A, 0x00, 0x00, 0x42, 0x40, 0x40, 0x00,
    0x00, 0x00, 0x1F, 0xF7,
}};
constexpr std::array<std::uint8_t, 74> kDefaultSection1{{
    0xF0, 0x43, 0x00, 0x4C, 0x00, 0x3F, 0x08, 0x10, 0x30, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01,
    0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x40, 0x40, 0x40, 0x40, 0x40, 0x40,
    0x40, 0x40, 0x40, 0x40, 0x40, 0x40, 0x40, 0x40, 0x40, 0x00, 0x00, 0x00, 0x40, 0x40, 0x40, 0x00,
    0x00, 0x00, 0x10, 0x40, 0x40, 0x40, 0x00, 0x00, 0x00, 0x11, 0x40, 0x40, 0x40, 0x00, 0x00, 0x00,
    0x00, 0x00, 0x40, 0x40, 0x40, 0x40, 0x01, 0x7F, 0x4F, 0xF7,
}};
constexpr std::array<std::uint8_t, 15> kDefaultSection2{{
    0xF0, 0x43, 0x00, 0x4C, 0x00, 0x04, 0x08, 0x10, 0x70, 0x00, 0x00, 0x40, 0x40, 0x7C, 0xF7,
}};
constexpr std::array<std::uint8_t, 23> kDefaultSection3{{
    0xF0, 0x43, 0x00, 0x4C, 0x00, 0x0C, 0x08, 0x10, 0x74, 0x00, 0x00, 0x0C, 0x36, 0x00, 0x00, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x2E, 0xF7,
}};
constexpr std::array<std::uint8_t, 13> kDefaultSection4{{
    0xF0, 0x43, 0x00, 0x4C, 0x00, 0x02, 0x0A, 0x10, 0x20, 0x40, 0x00, 0x0C, 0xF7,
}};

// Fields of a Layer section (the data byte of address 60 0L d at 9 + d) that a Multi Part takes.
constexpr std::size_t kLyrVoiceAt = 9;  // bank MSB, bank LSB, program
constexpr std::size_t kLyrMonoPolyAt = 12;
constexpr std::size_t kLyrNoteShiftAt = 13;  // note shift, detune in two bytes
constexpr std::size_t kLyrVolumeAt = 16;
constexpr std::size_t kLyrVelocitySenseAt = 17;  // depth, offset, pan, note limits: five bytes
constexpr std::size_t kLyrChorusSendAt = 22;
constexpr std::size_t kLyrReverbSendAt = 23;
constexpr std::size_t kLyrVolumeGateAt = 24;  // 0: the volume is not taken
constexpr std::size_t kLyrCutoffAt = 26;      // offsets on the Performance's filter
constexpr std::size_t kLyrResonanceAt = 27;
constexpr std::size_t kLyrAmpEgAt = 28;
constexpr std::size_t kLyrPitchEgAt = 32;  // six bytes
constexpr std::size_t kLyrEqGainAt = 50;   // 60 0L 29, 2A
constexpr std::size_t kLyrEqFrequencyAt = 52;  // 60 0L 2B, 2C
// Fields of the Performance's Com1 (60 00 d at 9 + d).
constexpr std::size_t kPerfHighPassAt = 39;
constexpr std::size_t kPerfCutoffAt = 40;
constexpr std::size_t kPerfResonanceAt = 41;
constexpr std::uint8_t kCentre = 0x40;  // LFO values of a part that takes a Layer
constexpr int kHighPassBase = 68;

// Copies `count` bytes from offset `from` of `src` to offset `to` of `dst`.
void copyField(std::span<std::uint8_t> dst, std::size_t to, std::span<const std::uint8_t> src, std::size_t from,
               std::size_t count) {
  std::copy_n(src.begin() + static_cast<std::ptrdiff_t>(from), count, dst.begin() + static_cast<std::ptrdiff_t>(to));
}

// A data byte on the wire: above 127 it would read as a status byte, so a sum is held to the
// range at both ends.
std::uint8_t limit127(int value) { return static_cast<std::uint8_t>(std::clamp(value, 0, 127)); }
}  // namespace

std::span<const std::uint8_t> defaultSection(int section) {
  switch (section) {
    case 0: return kDefaultSection0;
    case 1: return kDefaultSection1;
    case 2: return kDefaultSection2;
    case 3: return kDefaultSection3;
    case 4: return kDefaultSection4;
    default: return {};
  }
}

std::uint8_t halfToEven(std::uint8_t value) {
  // value / 2 to the nearest whole number, a tie going to the even one
  const int half = value / 2;
  if (value % 2 == 0) return static_cast<std::uint8_t>(half);
  return static_cast<std::uint8_t>(half % 2 == 0 ? half : half + 1);
}

void LyrTemplate::InitLyrTmpl() {
  bytes.fill(0);
  for (int s = 0; s < kTemplateSections; ++s) {
    const auto d = defaultSection(s);
    std::copy(d.begin(), d.end(), section(s).begin());
  }
}

void LyrTemplate::LyrToTmpl(std::span<const std::uint8_t> L, std::span<const std::uint8_t> P) {
  auto s0 = section(0), s1 = section(1), s2 = section(2), s3 = section(3), s4 = section(4);
  copyField(s0, kVoiceAt, L, kLyrVoiceAt, 3);
  s0[kReceiveChannelAt] = kNoChannel;
  s0[kMonoPolyAt] = L[kLyrMonoPolyAt];
  copyField(s0, kNoteShiftAt, L, kLyrNoteShiftAt, 3);
  if (L[kLyrVolumeGateAt] > 0) s0[kVolumeAt] = halfToEven(L[kLyrVolumeAt]);
  copyField(s0, kVelocitySenseAt, L, kLyrVelocitySenseAt, 5);
  s0[kDryLevelAt] = 0;
  s0[kChorusSendAt] = L[kLyrChorusSendAt];
  s0[kReverbSendAt] = L[kLyrReverbSendAt];
  s0[kVariationSendAt] = 0;
  std::fill_n(s0.begin() + kVibratoAt, 3, kCentre);
  // The layer's filter is an offset on the Performance's: two values of 0x40 give 0x41.
  s0[kCutoffAt] = limit127(P[kPerfCutoffAt] + L[kLyrCutoffAt] - 63);
  s0[kResonanceAt] = limit127(P[kPerfResonanceAt] + L[kLyrResonanceAt] - 63);
  copyField(s0, kAmpEgAt, L, kLyrAmpEgAt, 3);
  copyField(s1, kPitchEgAt, L, kLyrPitchEgAt, 6);
  copyField(s2, kEqGainAt, L, kLyrEqGainAt, 2);
  copyField(s3, kEqFrequencyAt, L, kLyrEqFrequencyAt, 2);
  s4[kHighPassAt] = limit127(P[kPerfHighPassAt] / 2 + kHighPassBase);
}

void LyrTemplate::MltToTmpl(MultiImage& image, int partIndex) {
  for (int s = 0; s < kTemplateSections; ++s) {
    const auto src = image.section(static_cast<std::size_t>(partIndex), static_cast<std::size_t>(s));
    const std::size_t n = kMultiSections[static_cast<std::size_t>(s)].length;
    std::copy(src.begin(), src.begin() + static_cast<std::ptrdiff_t>(n), section(s).begin());
  }
}

}  // namespace tessivo
