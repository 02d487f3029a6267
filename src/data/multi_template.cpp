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
  s0[10] = L[9];
  s0[11] = L[10];
  s0[12] = L[11];
  s0[13] = kNoChannel;
  s0[14] = L[12];
  s0[17] = L[13];
  s0[18] = L[14];
  s0[19] = L[15];
  if (L[24] > 0) s0[20] = halfToEven(L[16]);  // the layer's volume gate
  for (int i = 0; i < 5; ++i) s0[static_cast<std::size_t>(21 + i)] = L[static_cast<std::size_t>(17 + i)];
  s0[26] = 0;  // dry level
  s0[27] = L[22];
  s0[28] = L[23];
  s0[29] = 0;  // variation send
  s0[30] = s0[31] = s0[32] = 0x40;  // LFO
  // The layer's filter is an offset on the Performance's: two values of 0x40 give 0x41.
  s0[33] = limit127(P[40] + L[26] - 63);
  s0[34] = limit127(P[41] + L[27] - 63);
  s0[35] = L[28];
  s0[36] = L[29];
  s0[37] = L[30];
  for (int i = 0; i < 6; ++i) s1[static_cast<std::size_t>(66 + i)] = L[static_cast<std::size_t>(32 + i)];
  s2[11] = L[50];
  s2[12] = L[51];
  s3[11] = L[52];
  s3[12] = L[53];
  s4[9] = limit127(P[39] / 2 + 68);
}

void LyrTemplate::MltToTmpl(MultiImage& image, int partIndex) {
  for (int s = 0; s < kTemplateSections; ++s) {
    const auto src = image.section(static_cast<std::size_t>(partIndex), static_cast<std::size_t>(s));
    const std::size_t n = kMultiSections[static_cast<std::size_t>(s)].length;
    std::copy(src.begin(), src.begin() + static_cast<std::ptrdiff_t>(n), section(s).begin());
  }
}

}  // namespace tessivo
