#include "edit/slider_map.h"

#include <cmath>

#include "data/tables.h"

namespace tessivo {

namespace {
using F = Family;
using M = MsgForm;
constexpr double kEqGainStep = 5.33333;
constexpr std::uint8_t kXgPartHigh = 0x08, kXgHpfHigh = 0x0A, kXgHpfLow = 0x20;
constexpr std::uint8_t kEffectHigh = 0x60;
constexpr int kDetuneBias = 128;  // the two nibbles hold value + 128
}  // namespace

// control, caption, page, text box, limits, family, section, offset, message form, address
const std::array<SliderRow, kSliderRows> kSliderMap{{
    {"SldEqBGain", "Bass Gain", 1, "TxtEqBGain", -12, 12, F::EqGain, 2, 11, M::Xg, 0x72},
    {"SldEqBFreq", "Bass Freq", 1, "TxtEqBFreq", 4, 40, F::EqFreq, 3, 11, M::Xg, 0x76},
    {"SldEqTGain", "Treble Gain", 1, "Text10", -12, 12, F::EqGain, 2, 12, M::Xg, 0x73},
    {"SldEqTFreq", "Treble Freq", 1, "Text9", 28, 58, F::EqFreq, 3, 12, M::Xg, 0x77},
    {"SldEqHPF", "HPF Cutoff Freq", 1, "Text8", -64, 63, F::Signed, 4, 9, M::XgHpf, 0x20},
    {"SldEqFiltrFreq", "Filter Freq", 1, "Text7", -64, 63, F::Signed, 0, 33, M::Xg, 0x18},
    {"SldEqFltrRes", "Filter Res", 1, "Text6", -64, 63, F::Signed, 0, 34, M::Xg, 0x19},
    {"SldEgAttk", "EG Attack", 1, "Text5", -64, 63, F::Signed, 0, 35, M::Xg, 0x1A},
    {"SldEgDcay", "EG Decay", 1, "Text4", -64, 63, F::Signed, 0, 36, M::Xg, 0x1B},
    {"SldEgRles", "EG Release", 1, "Text3", -64, 63, F::Signed, 0, 37, M::Xg, 0x1C},
    {"SldLvVol", "Volume", 1, "Text2", 0, 127, F::Plain, 0, 20, M::Xg, 0x0B},
    {"SldLvPan", "Pan", 1, "Text1", 0, 127, F::Pan, 0, 23, M::Xg, 0x0E},
    {"SldEffDry", "Dry Level", 2, "Text25", 0, 127, F::Plain, 0, 26, M::Xg, 0x11},
    {"SldEffChorus", "Chorus Send", 2, "Text24", 0, 127, F::Plain, 0, 27, M::Xg, 0x12},
    {"SldEffRvrb", "Reverb Send", 2, "Text14", 0, 127, F::Plain, 0, 28, M::Xg, 0x13},
    {"SldEffVar", "Variation Send", 2, "Text15", 0, 127, F::Plain, 0, 29, M::Xg, 0x14},
    {"SldLfoRate", "Rate", 2, "Text16", -64, 63, F::Signed, 0, 30, M::Xg, 0x15},
    {"SldLfoDepth", "Depth", 2, "Text17", -64, 63, F::Signed, 0, 31, M::Xg, 0x16},
    {"SldLfoDelay", "Delay", 2, "Text18", -64, 63, F::Signed, 0, 32, M::Xg, 0x17},
    {"SldPegInit", "PEG Init Lev", 2, "Text20", -64, 63, F::Signed, 1, 66, M::Xg, 0x69},
    {"SldPegAtck", "PEG Attack", 2, "Text19", -64, 63, F::Signed, 1, 67, M::Xg, 0x6A},
    {"SldPegRlsLev", "PEG Release Lev", 2, "Text21", -64, 63, F::Signed, 1, 68, M::Xg, 0x6B},
    {"SldPegRlsTime", "PEG Release Time", 2, "Text22", -64, 63, F::Signed, 1, 69, M::Xg, 0x6C},
    {"SldPortTime", "Time", 2, "Text23", 0, 127, F::Plain, 1, 65, M::Xg, 0x68},
    {"SldVelSnsDpth", "Sense Depth", 3, "Text11", 0, 127, F::Plain, 0, 21, M::Xg, 0x0C},
    {"SldVelSnsOfst", "Sense Offset", 3, "Text12", 0, 127, F::Plain, 0, 22, M::Xg, 0x0D},
    {"SldVelLmtLo", "Limit Low", 3, "Text13", 0, 127, F::Plain, 1, 70, M::Xg, 0x6D},
    {"SldVelLmtHi", "Limit High", 3, "Text26", 0, 127, F::Plain, 1, 71, M::Xg, 0x6E},
    {"SldNtShft", "Shift", 3, "Text27", 0, 127, F::Plain, 0, 17, M::Xg, 0x08},
    {"SldNtLmLo", "Limit Low", 3, "Text28", 0, 127, F::Plain, 0, 24, M::Xg, 0x0F},
    {"SldNtLmHi", "Limit High", 3, "Text29", 0, 127, F::Plain, 0, 25, M::Xg, 0x10},
    {"SldNtDtn", "Detune", 3, "Text33", -128, 127, F::Detune, 0, 18, M::XgDetune, 0x09},
    {"SldEffSndCtoR", "Send Chorus to Rvrb", 0, "Text30", 0, 127, F::Plain, -1, 29, M::Effect, 0x54},
    {"SldEffVarRvbSnd", "Vari Reverb Send", 0, "Text31", 0, 127, F::Plain, -1, 30, M::Effect, 0x55},
    {"SldEffVarChrSnd", "Vari Chorus Send", 0, "Text32", 0, 127, F::Plain, -1, 31, M::Effect, 0x56},
}};

std::optional<std::size_t> sliderRow(std::string_view control) {
  for (std::size_t i = 0; i < kSliderMap.size(); ++i)
    if (kSliderMap[i].control == control) return i;
  return std::nullopt;
}

std::uint8_t eqGainByte(int value) {
  return static_cast<std::uint8_t>(static_cast<int>(std::floor(value * kEqGainStep + 64)));
}

int eqGainValue(std::uint8_t byte) { return static_cast<int>(std::floor((byte - 63) / kEqGainStep)); }

std::string familyText(Family family, int value) {
  switch (family) {
    case Family::EqGain:
      return (value < 0 ? "-" : " ") + std::to_string(std::abs(value)) + "db";
    case Family::EqFreq:
      return HzText(static_cast<std::int16_t>(value));
    case Family::Pan:
      return value == 0 ? "Rand" : std::to_string(value);
    case Family::Detune: {
      // Tenths: as many decimals as the value needs, so each step shows as 0.1.
      const int tenths = std::abs(value) % 10;
      std::string text = (value < 0 ? "-" : "") + std::to_string(std::abs(value) / 10);
      if (tenths != 0) text += "." + std::to_string(tenths);
      return text;
    }
    case Family::Plain:
    case Family::Signed:
      break;
  }
  return std::to_string(value);
}

int loadValue(const SliderRow& row, std::span<const std::uint8_t> section) {
  const std::uint8_t b = section[row.offset];
  switch (row.family) {
    case Family::Signed: return b - 64;
    case Family::EqGain: return eqGainValue(b);
    case Family::Detune: return b * 16 + section[row.offset + 1] - kDetuneBias;
    case Family::Plain:
    case Family::EqFreq:
    case Family::Pan:
      break;
  }
  return b;
}

namespace {
// The byte of a one-byte family; a value beyond the byte's reach keeps to its 7 bits.
std::uint8_t byteOf(Family family, int value) {
  switch (family) {
    case Family::Signed: return static_cast<std::uint8_t>((value + 64) & 0x7F);
    case Family::EqGain: return static_cast<std::uint8_t>(eqGainByte(value) & 0x7F);
    default: return static_cast<std::uint8_t>(value & 0x7F);
  }
}
std::uint8_t detuneHigh(int value) { return static_cast<std::uint8_t>(((value + kDetuneBias) >> 4) & 0x0F); }
std::uint8_t detuneLow(int value) { return static_cast<std::uint8_t>((value + kDetuneBias) & 0x0F); }
}  // namespace

void storeValue(const SliderRow& row, std::span<std::uint8_t> section, int value) {
  if (row.family == Family::Detune) {
    section[row.offset] = detuneHigh(value);
    section[row.offset + 1] = detuneLow(value);
  } else {
    section[row.offset] = byteOf(row.family, value);
  }
}

Bytes sliderMessage(const SliderRow& row, std::uint8_t part, int value) {
  switch (row.form) {
    case MsgForm::XgHpf:
      return paramChange(kModelXg, {kXgHpfHigh, part, kXgHpfLow}, byteOf(row.family, value));
    case MsgForm::XgDetune:
      return paramChange2(kModelXg, {kXgPartHigh, part, row.address}, detuneHigh(value), detuneLow(value));
    case MsgForm::Effect:
      return paramChange(kModelCs2x, {kEffectHigh, 0x00, row.address}, byteOf(row.family, value));
    case MsgForm::Xg:
      break;
  }
  return paramChange(kModelXg, {kXgPartHigh, part, row.address}, byteOf(row.family, value));
}

}  // namespace tessivo
