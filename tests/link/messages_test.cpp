// The message forms on the wire, the bulk dump checksum and the splitting of a long message.
#include <gtest/gtest.h>

#include "link/messages.h"
#include "support/scripted.h"

namespace tessivo {
using test::hex;
using Hexes = std::vector<std::string>;

TEST(MessageForms, FramesCarryKindModelAddressAndData) {
  EXPECT_EQ(hex(paramChange(kModelCs2x, {0x50, 0x00, 0x00}, 0x05)), "F0 43 10 63 50 00 00 05 F7");
  EXPECT_EQ(hex(paramChange2(kModelCs2x, {0x60, 0x00, 0x40}, 0x01, 0x10)), "F0 43 10 63 60 00 40 01 10 F7");
  EXPECT_EQ(hex(paramChange(kModelXg, {0x08, 0x0F, 0x11}, 0x7F)), "F0 43 10 4C 08 0F 11 7F F7");
  EXPECT_EQ(hex(paramChange(kModelXg, {0x08, 0x04, 0x0B}, 0xC8)), "F0 43 10 4C 08 04 0B C8 F7");  // not masked
  EXPECT_EQ(hex(dumpRequest(kModelCs2x, {0x60, 0x01, 0x00})), "F0 43 20 63 60 01 00 F7");
  EXPECT_EQ(hex(parmRequest({0x08, 0x04, 0x18})), "F0 43 30 4C 08 04 18 F7");
  // A Multi section by part number 5..16: the part index is one less.
  EXPECT_EQ(hex(multiSectionRequest(5, 0)), "F0 43 20 4C 08 04 00 F7");
  EXPECT_EQ(hex(multiSectionRequest(9, 1)), "F0 43 20 4C 08 08 30 F7");
  EXPECT_EQ(hex(multiSectionRequest(12, 2)), "F0 43 20 4C 08 0B 70 F7");
  EXPECT_EQ(hex(multiSectionRequest(13, 3)), "F0 43 20 4C 08 0C 74 F7");
  EXPECT_EQ(hex(multiSectionRequest(16, 4)), "F0 43 20 4C 0A 0F 20 F7");
}

TEST(MessageForms, PerformanceRequestsAndLengthsFollowTheBlockTable) {
  const char* addresses[] = {"60 00 00", "60 00 40", "60 00 60", "60 01 00", "60 02 00",
                             "60 03 00", "60 04 00", nullptr,    "50 00 00"};
  const int lengths[] = {63, 34, 20, 56, 56, 56, 56, 0, 37};
  for (std::int16_t kind = 0; kind <= 8; ++kind) {
    const PerfBlock* b = perfBlock(kind);
    if (kind == kKindMulti) {
      EXPECT_EQ(b, nullptr);
      continue;
    }
    ASSERT_NE(b, nullptr) << kind;
    EXPECT_EQ(hex(dumpRequest(kModelCs2x, b->address)), std::string("F0 43 20 63 ") + addresses[kind] + " F7");
    EXPECT_EQ(b->length, lengths[kind]) << kind;
  }
  EXPECT_EQ(perfBlock(9), nullptr);
  EXPECT_EQ(perfBlock(-1), nullptr);
}

TEST(Checksum, BulkDumpSumsFromCountToLastDataByteWithTwoByteCount) {
  // Com3-sized dump: 9 data bytes at 60 00 60.
  const Bytes m = bulkDump(kModelCs2x, {0x60, 0x00, 0x60}, Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9});
  EXPECT_EQ(hex(m), "F0 43 00 63 00 09 60 00 60 01 02 03 04 05 06 07 08 09 0A F7");  // 128 - (246 % 128)
  const Bytes xg = bulkDump(kModelXg, {0x08, 0x04, 0x00}, Bytes(130, 0));
  EXPECT_EQ(hex(Bytes(xg.begin(), xg.begin() + 6)), "F0 43 00 4C 01 02");
  // A sum that is already a multiple of 128 gives 0, not 128.
  EXPECT_EQ(SyxChksum(Bytes{0xF0, 0x43, 0x00, 0x63, 0x00, 0x01, 0x60, 0x00, 0x1F, 0x00, 0x00, 0xF7}), 0);
  EXPECT_EQ(SyxChksum(Bytes{0xF0, 0xF7}), 0);  // too short to hold a frame
}

TEST(StreamSplitting, MessagesComeApartByStatusWithoutReadingPastTheEnd) {
  const struct {
    Bytes stream;
    Hexes parts;
  } cases[] = {
      // the lone 00 began a B0 message that C0 cut short
      {{0xB0, 0x00, 0x3F, 0xB0, 0x20, 0x40, 0x00, 0xC0, 0x00}, {"B0 00 3F", "B0 20 40", "C0 00"}},
      {{0x90, 0x3C, 0x40, 0x3E, 0x40}, {"90 3C 40", "90 3E 40"}},  // running status
      {{0x90, 0x43, 0x7F, 0xF0, 0x43, 0x10, 0x63, 0x50, 0x00, 0x00, 0x00, 0xF7, 0x80, 0x43, 0x00},
       {"90 43 7F", "F0 43 10 63 50 00 00 00 F7", "80 43 00"}},
      {{0x00, 0x12, 0x7F}, {}},                       // data with no status
      {{0xF0, 0x43, 0x10}, {"F0 43 10"}},             // unterminated SysEx
      {{0x90, 0x40}, {}},                             // cut short at the end
      {{0x90, 0x40, 0xF8, 0x7F}, {"F8", "90 40 7F"}},  // a clock byte inside a message stands alone
  };
  for (const auto& c : cases) EXPECT_EQ(hex(splitMidiStream(c.stream)), c.parts) << hex(c.stream);
}

}  // namespace tessivo
