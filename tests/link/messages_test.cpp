// The message forms on the wire, the bulk dump checksum and the splitting of a long message.
#include <gtest/gtest.h>

#include "link/messages.h"
#include "support/scripted.h"

namespace tessivo {
using test::hex;

TEST(MessageForms, FramesCarryKindModelAddressAndData) {
  EXPECT_EQ(hex(paramChange(kModelCs2x, {0x50, 0x00, 0x00}, 0x05)), "F0 43 10 63 50 00 00 05 F7");
  EXPECT_EQ(hex(paramChange2(kModelCs2x, {0x60, 0x00, 0x40}, 0x01, 0x10)), "F0 43 10 63 60 00 40 01 10 F7");
  EXPECT_EQ(hex(paramChange(kModelXg, {0x08, 0x0F, 0x11}, 0x7F)), "F0 43 10 4C 08 0F 11 7F F7");
  EXPECT_EQ(hex(dumpRequest(kModelCs2x, {0x60, 0x01, 0x00})), "F0 43 20 63 60 01 00 F7");
  EXPECT_EQ(hex(parmRequest({0x08, 0x04, 0x18})), "F0 43 30 4C 08 04 18 F7");
}

TEST(MessageForms, DataBytesAboveSevenBitsAreNotMasked) {
  EXPECT_EQ(paramChange(kModelXg, {0x08, 0x04, 0x0B}, 0xC8)[7], 0xC8);
}

TEST(MessageForms, PerformanceRequestsAndLengthsFollowTheBlockTable) {
  const char* expected[] = {"F0 43 20 63 60 00 00 F7", "F0 43 20 63 60 00 40 F7", "F0 43 20 63 60 00 60 F7",
                            "F0 43 20 63 60 01 00 F7", "F0 43 20 63 60 02 00 F7", "F0 43 20 63 60 03 00 F7",
                            "F0 43 20 63 60 04 00 F7", nullptr, "F0 43 20 63 50 00 00 F7"};
  const int lengths[] = {63, 34, 20, 56, 56, 56, 56, 0, 37};
  for (std::int16_t kind = 0; kind <= 8; ++kind) {
    const PerfBlock* b = perfBlock(kind);
    if (kind == kKindMulti) {
      EXPECT_EQ(b, nullptr);
      continue;
    }
    ASSERT_NE(b, nullptr) << kind;
    EXPECT_EQ(hex(dumpRequest(kModelCs2x, b->address)), expected[kind]) << kind;
    EXPECT_EQ(b->length, lengths[kind]) << kind;
  }
  EXPECT_EQ(perfBlock(9), nullptr);
  EXPECT_EQ(perfBlock(-1), nullptr);
}

TEST(MessageForms, MultiSectionRequestsUseThePartNumberLessOne) {
  EXPECT_EQ(hex(multiSectionRequest(5, 0)), "F0 43 20 4C 08 04 00 F7");
  EXPECT_EQ(hex(multiSectionRequest(9, 1)), "F0 43 20 4C 08 08 30 F7");
  EXPECT_EQ(hex(multiSectionRequest(12, 2)), "F0 43 20 4C 08 0B 70 F7");
  EXPECT_EQ(hex(multiSectionRequest(13, 3)), "F0 43 20 4C 08 0C 74 F7");
  EXPECT_EQ(hex(multiSectionRequest(16, 4)), "F0 43 20 4C 0A 0F 20 F7");
}

TEST(Checksum, BulkDumpSumsFromCountToLastDataByte) {
  // Com3-sized dump: 9 data bytes at 60 00 60.
  const Bytes data{0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09};
  const Bytes m = bulkDump(kModelCs2x, {0x60, 0x00, 0x60}, data);
  ASSERT_EQ(m.size(), 20u);
  EXPECT_EQ(hex(Bytes(m.begin(), m.begin() + 9)), "F0 43 00 63 00 09 60 00 60");
  // 0x09 + 0x60 + 0x60 + 45 = 246; 246 % 128 = 118; 128 - 118 = 10
  EXPECT_EQ(m[18], 0x0A);
  EXPECT_EQ(m[19], 0xF7);
  // The sum of everything from the count through the checksum is a multiple of 128.
  unsigned sum = 0;
  for (std::size_t i = 4; i < m.size() - 1; ++i) sum += m[i];
  EXPECT_EQ(sum % 128, 0u);
}

TEST(Checksum, ASumThatIsAlreadyAMultipleOf128GivesZeroNot128) {
  Bytes m{0xF0, 0x43, 0x00, 0x63, 0x00, 0x01, 0x60, 0x00, 0x1F, 0x00, 0x00, 0xF7};
  // 0x01 + 0x60 + 0x1F = 128
  EXPECT_EQ(SyxChksum(m), 0);
  EXPECT_EQ(SyxChksum(Bytes{0xF0, 0xF7}), 0);  // too short to hold a frame
}

TEST(Checksum, CountUsesTwoSevenBitBytes) {
  const Bytes data(130, 0);
  const Bytes m = bulkDump(kModelXg, {0x08, 0x04, 0x00}, data);
  EXPECT_EQ(m[4], 0x01);
  EXPECT_EQ(m[5], 0x02);
}

TEST(StreamSplitting, SeveralChannelMessagesInOneLongMessage) {
  const Bytes stream{0xB0, 0x00, 0x3F, 0xB0, 0x20, 0x40, 0x00, 0xC0, 0x00};
  const auto parts = splitMidiStream(stream);
  ASSERT_EQ(parts.size(), 3u);
  EXPECT_EQ(hex(parts[0]), "B0 00 3F");
  EXPECT_EQ(hex(parts[1]), "B0 20 40");
  EXPECT_EQ(hex(parts[2]), "C0 00");  // the lone 00 began a B0 message that C0 cut short
  const auto running = splitMidiStream(Bytes{0x90, 0x3C, 0x40, 0x3E, 0x40});
  ASSERT_EQ(running.size(), 2u);
  EXPECT_EQ(hex(running[1]), "90 3E 40");
}

TEST(StreamSplitting, SysExStaysWholeBetweenShortMessages) {
  const Bytes stream{0x90, 0x43, 0x7F, 0xF0, 0x43, 0x10, 0x63, 0x50, 0x00, 0x00, 0x00, 0xF7, 0x80, 0x43, 0x00};
  const auto parts = splitMidiStream(stream);
  ASSERT_EQ(parts.size(), 3u);
  EXPECT_EQ(hex(parts[1]), "F0 43 10 63 50 00 00 00 F7");
  EXPECT_EQ(hex(parts[2]), "80 43 00");
}

TEST(StreamSplitting, BrokenInputGivesWhatIsThereWithoutReadingPastTheEnd) {
  EXPECT_TRUE(splitMidiStream(Bytes{0x00, 0x12, 0x7F}).empty());  // data with no status
  const auto unterminated = splitMidiStream(Bytes{0xF0, 0x43, 0x10});
  ASSERT_EQ(unterminated.size(), 1u);
  EXPECT_EQ(hex(unterminated[0]), "F0 43 10");
  EXPECT_TRUE(splitMidiStream(Bytes{0x90, 0x40}).empty());  // cut short at the end
  const auto realtime = splitMidiStream(Bytes{0x90, 0x40, 0xF8, 0x7F});
  ASSERT_EQ(realtime.size(), 2u);  // a clock byte inside a message is its own message
  EXPECT_EQ(hex(realtime[0]), "F8");
  EXPECT_EQ(hex(realtime[1]), "90 40 7F");
}

}  // namespace tessivo
