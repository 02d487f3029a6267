#pragma once
// LyrTmpl: the work area in which a Layer of the Performance, a Layer Pool entry and a Multi
// Part meet, as the five sections of a Multi Part, each cut to its message length plus one
// byte (53, 75, 16, 24, 14: 182 bytes). Offsets within a section are those of MultiImage.

#include <array>
#include <cstdint>
#include <span>

#include "data/images.h"

namespace tessivo {

inline constexpr int kTemplateSections = 5;
inline constexpr std::array<std::size_t, 5> kTemplateSectionBytes{53, 75, 16, 24, 14};
inline constexpr std::size_t kTemplateBytes = 182;
inline constexpr std::uint8_t kNoChannel = 0x10;  // receive channel of a part not yet assigned
inline constexpr std::uint8_t kNoPart = 0x10;     // part byte of a Layer that belongs to no part

// Fields of the Multi sections by their offset in the message: the data byte of address
// 08 pp d stands at 9 + d (section 0 starts at d = 00, section 1 at 30, 2 at 70, 3 at 74, and
// section 4 at 0A pp 20).
inline constexpr std::size_t kPartByteAt = 7;  // every section: the part index
// Section 0.
inline constexpr std::size_t kVoiceAt = 10;           // bank MSB, bank LSB, program
inline constexpr std::size_t kReceiveChannelAt = 13;
inline constexpr std::size_t kMonoPolyAt = 14;
inline constexpr std::size_t kNoteShiftAt = 17;       // note shift, then detune in two bytes
inline constexpr std::size_t kVolumeAt = 20;
inline constexpr std::size_t kVelocitySenseAt = 21;   // depth, offset, pan, note limit low and high
inline constexpr std::size_t kDryLevelAt = 26;
inline constexpr std::size_t kChorusSendAt = 27;
inline constexpr std::size_t kReverbSendAt = 28;
inline constexpr std::size_t kVariationSendAt = 29;
inline constexpr std::size_t kVibratoAt = 30;         // rate, depth, delay
inline constexpr std::size_t kCutoffAt = 33;
inline constexpr std::size_t kResonanceAt = 34;
inline constexpr std::size_t kAmpEgAt = 35;           // attack, decay, release
// Section 1.
inline constexpr std::size_t kPitchEgAt = 66;         // pitch EG levels and times, velocity limits
// Sections 2 and 3.
inline constexpr std::size_t kEqGainAt = 11;          // section 2: bass and treble gain
inline constexpr std::size_t kEqFrequencyAt = 11;     // section 3: bass and treble frequency
// Section 4.
inline constexpr std::size_t kHighPassAt = 9;

// The default message of a Multi section 0..4, as a new part holds it.
std::span<const std::uint8_t> defaultSection(int section);

// value / 2 to the nearest whole number, a tie going to the even one (63.5 → 64, 62.5 → 62).
std::uint8_t halfToEven(std::uint8_t value);

class LyrTemplate {
 public:
  std::array<std::uint8_t, kTemplateBytes> bytes{};

  std::span<std::uint8_t> section(int s) {
    std::size_t at = 0;
    for (int i = 0; i < s; ++i) at += kTemplateSectionBytes[static_cast<std::size_t>(i)];
    return {bytes.data() + at, kTemplateSectionBytes[static_cast<std::size_t>(s)]};
  }

  // The default bytes of every section.
  void InitLyrTmpl();
  // A Layer in Multi Part form: L is the Layer's section (LyrSrc), P the Performance's Com1.
  // What it does not set keeps its default, so InitLyrTmpl runs first.
  void LyrToTmpl(std::span<const std::uint8_t> L, std::span<const std::uint8_t> P);
  // The five sections of part `partIndex` (4..15), each by its message length.
  void MltToTmpl(MultiImage& image, int partIndex);
};

}  // namespace tessivo
