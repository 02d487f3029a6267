#pragma once
// The sliders of the edit and effects panels as one table: each stands for one byte of an image
// section and one parameter address of the instrument. A family fixes how the slider's value
// becomes the byte, the byte becomes the value, and the value shows in the text box beside it.

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "link/messages.h"

namespace tessivo {

enum class Family {
  Plain,   // 0..127, the byte itself
  Signed,  // -64..63, the byte less 64
  EqGain,  // -12..12 dB, spread over the byte by 5.33333
  EqFreq,  // the byte, shown by HzText
  Pan,     // the byte; 0 is random pan
  Detune,  // -128..127 tenths, two nibbles
};

// What a slider's release sends (pp the part, aa the address low byte, vv the byte):
enum class MsgForm {
  Xg,        // F0 43 10 4C 08 pp aa vv F7
  XgHpf,     // F0 43 10 4C 0A pp 20 vv F7
  XgDetune,  // F0 43 10 4C 08 pp 09 hi lo F7
  Effect,    // F0 43 10 63 60 00 aa vv F7, on Com2 of the Performance
};

struct SliderRow {
  std::string_view control;  // the slider, as the form names it
  std::string_view caption;
  int page;                  // tab of the edit panel 1..3; 0 for the effects panel
  std::string_view textBox;
  int min, max;
  Family family;
  int section;               // of the Multi Part; -1 for Com2
  std::size_t offset;        // of the byte within the section (the first of two for Detune)
  MsgForm form;
  std::uint8_t address;      // aa
};

inline constexpr std::size_t kEditSliders = 32;
inline constexpr std::size_t kSliderRows = 35;

// The 32 sliders of the edit panel, page by page, then the three of the effects panel.
extern const std::array<SliderRow, kSliderRows> kSliderMap;

// The row of a slider by its control name; nothing for a name that is no slider of the map.
std::optional<std::size_t> sliderRow(std::string_view control);

// The EQ gain transforms, kept as the instrument's editor has always computed them: 5.33333 as
// written, and 63 on the way back, so each gain from -12 to 12 comes back as itself.
std::uint8_t eqGainByte(int value);
int eqGainValue(std::uint8_t byte);

// The text of a value in the text box of its family: "64", "-5", " 5db", "  32 Hz", "Rand",
// "-0.1".
std::string familyText(Family family, int value);

// The slider value that the byte(s) at `offset` of `section` stand for.
int loadValue(const SliderRow& row, std::span<const std::uint8_t> section);
// Writes the byte(s) of `value` at `offset` of `section`; the checksum stays as it is.
void storeValue(const SliderRow& row, std::span<std::uint8_t> section, int value);
// The message of `value` for part index `part` (ignored by the effects sliders).
Bytes sliderMessage(const SliderRow& row, std::uint8_t part, int value);

}  // namespace tessivo
