// A Layer in Multi Part form: the default sections with their fixed checksums, every step of
// the conversion of a Layer, and the copy of a Multi Part.
#include <gtest/gtest.h>

#include "data/multi_template.h"
#include "link/messages.h"
#include "support/scripted.h"

namespace tessivo {
using test::hex;

namespace {
Bytes bytesOf(std::span<const std::uint8_t> s, std::size_t from, std::size_t to) {
  return Bytes(s.begin() + static_cast<std::ptrdiff_t>(from), s.begin() + static_cast<std::ptrdiff_t>(to));
}

// A Layer section of 56 message bytes with every data byte set from its offset, and a Com1.
struct Sources {
  std::array<std::uint8_t, 57> L{};
  std::array<std::uint8_t, 64> P{};
  Sources() {
    for (std::size_t i = 9; i < 54; ++i) L[i] = static_cast<std::uint8_t>(i);
    L[24] = 1;  // volume gate open
    P[39] = 20;
    P[40] = 0x40;
    P[41] = 0x40;
  }
  LyrTemplate convert() const {
    LyrTemplate t;
    t.InitLyrTmpl();
    t.LyrToTmpl(L, P);
    return t;
  }
};
}  // namespace

TEST(LyrTemplate, DefaultsAreTheBytesOfANewPartWithFixedChecksums) {
  LyrTemplate t;
  t.bytes.fill(0xEE);
  t.InitLyrTmpl();
  EXPECT_EQ(hex(bytesOf(t.section(2), 0, 16)), "F0 43 00 4C 00 04 08 10 70 00 00 40 40 7C F7 00");
  EXPECT_EQ(hex(bytesOf(t.section(4), 0, 14)), "F0 43 00 4C 00 02 0A 10 20 40 00 0C F7 00");
  auto s0 = t.section(0);
  EXPECT_EQ(s0[kPartByteAt], kNoPart);
  EXPECT_EQ(s0[kReceiveChannelAt], kNoChannel);
  EXPECT_EQ(s0[kVolumeAt], 0x64);
  EXPECT_EQ(s0[52], 0);  // the spare byte behind each message
  // The fixed checksums are those of part 8 with receive channel 8.
  for (int s = 0; s < 5; ++s) {
    Bytes m(defaultSection(s).begin(), defaultSection(s).end());
    m[kPartByteAt] = 8;
    if (s == 0) m[kReceiveChannelAt] = 8;
    EXPECT_EQ(SyxChksum(m), m[m.size() - 2]) << s;
  }
}

TEST(LyrTemplate, LayerFieldsLandAtTheirOffsetsAndTheRestKeepsItsDefault) {
  LyrTemplate t = Sources().convert();
  auto s0 = t.section(0);
  EXPECT_EQ(hex(bytesOf(s0, 10, 16)), "09 0A 0B 10 0C 01");  // voice, no channel, mono/poly, same note key: default
  // Volume halved, dry 0, var 0, three defaults, the filter sums, EG and a carried default.
  EXPECT_EQ(hex(bytesOf(s0, 17, 39)), "0D 0E 0F 08 11 12 13 14 15 00 16 17 00 40 40 40 1B 1C 1C 1D 1E 40");
  EXPECT_EQ(s0[50], 0x1F);  // the checksum is not recomputed
  EXPECT_EQ(hex(bytesOf(t.section(1), 66, 72)), "20 21 22 23 24 25");
  EXPECT_EQ(hex(bytesOf(t.section(2), 11, 13)), "32 33");
  EXPECT_EQ(hex(bytesOf(t.section(3), 11, 13)), "34 35");
  EXPECT_EQ(t.section(2)[7], kNoPart);
}

TEST(LyrTemplate, VolumeIsHalvedTiesToEvenOnlyWhenTheGateIsOpen) {
  Sources src;
  for (const auto& [volume, half] : {std::pair{1, 0}, {3, 2}, {100, 50}, {125, 62}, {127, 64}}) {
    src.L[16] = static_cast<std::uint8_t>(volume);
    EXPECT_EQ(src.convert().section(0)[kVolumeAt], half) << volume;
  }
  src.L[24] = 0;
  src.L[16] = 10;
  EXPECT_EQ(src.convert().section(0)[kVolumeAt], 0x64);
}

TEST(LyrTemplate, FilterSumsAndHighPassStayWithin0To127) {
  Sources src;
  src.P[40] = 127;
  src.L[26] = 127;
  EXPECT_EQ(src.convert().section(0)[33], 127);
  // Below zero the byte stays a data byte: 0, never a wrapped 0xC1.
  src.P[41] = 0;
  for (const auto& [value, sum] : {std::pair{0, 0}, {63, 0}, {64, 1}}) {
    src.L[27] = static_cast<std::uint8_t>(value);
    EXPECT_EQ(src.convert().section(0)[34], sum) << value;
  }
  // The high pass is the whole part of cutoff / 2 + 68.
  for (const auto& [cutoff, highPass] : {std::pair{0, 68}, {20, 78}, {118, 127}, {119, 127}}) {
    src.P[39] = static_cast<std::uint8_t>(cutoff);
    EXPECT_EQ(src.convert().section(4)[9], highPass) << cutoff;
  }
}

TEST(LyrTemplate, AMultiPartIsCopiedByMessageLengthLeavingTheSpareBytes) {
  MultiImage image;
  for (std::size_t s = 0; s < 6; ++s) {
    auto sec = image.section(6, s);
    std::fill(sec.begin(), sec.end(), static_cast<std::uint8_t>(0xA0 + s));
  }
  LyrTemplate t;
  t.InitLyrTmpl();
  t.MltToTmpl(image, 6);
  EXPECT_EQ(t.section(0)[51], 0xA0);
  EXPECT_EQ(t.section(0)[52], 0);  // spare byte as it was
  EXPECT_EQ(t.section(1)[73], 0xA1);
  EXPECT_EQ(t.section(4)[12], 0xA4);
  EXPECT_EQ(t.section(4)[13], 0);
}

}  // namespace tessivo
