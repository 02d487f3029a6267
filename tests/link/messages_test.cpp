// The message forms on the wire, the bulk dump checksum, and the reading of a byte stream
// into messages on the way out (a long message) and in (what the ports deliver).
#include <gtest/gtest.h>

#include <algorithm>

#include "link/messages.h"
#include "link/midi_parser.h"
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

namespace {
// The messages a parser makes of `deliveries`, fed one after the other.
Hexes parsed(const std::vector<Bytes>& deliveries, MidiParser parser = {}) {
  std::vector<Bytes> out;
  for (const Bytes& d : deliveries)
    parser.feed(d, [&](std::span<const std::uint8_t> m) { out.emplace_back(m.begin(), m.end()); });
  return hex(out);
}
}  // namespace

// Deliveries as the input ports make them: JACK events, and RtMidi's ALSA messages, which join
// the event behind a SysEx without F7 to it.
TEST(MidiParsing, BytesComeOutAsTheMessagesAReceiverOnTheWireReads) {
  const Bytes reply = bulkDump(kModelCs2x, {0x60, 0x00, 0x60}, Bytes(9, 0x22));
  const struct {
    std::vector<Bytes> deliveries;
    Hexes messages;
  } cases[] = {
      {{{0x90, 0x3C, 0x40, 0x3E, 0x40, 0xD0, 0x10, 0x11}}, {"90 3C 40", "90 3E 40", "D0 10", "D0 11"}},
      {{{0x00, 0x12, 0x7F, 0xF7}, {0x90, 0x40}}, {}},  // data with no status, an end with no SysEx, cut short
      {{{0x90, 0x40, 0xF8, 0x7F}}, {"F8", "90 40 7F"}},   // a clock byte inside a message stands alone
      // system common messages cancel running status
      {{{0x90, 0x40, 0x7F, 0xF2, 0x10, 0x02, 0x41, 0xF1, 0x21, 0xF6, 0x42}}, {"90 40 7F", "F2 10 02", "F1 21", "F6"}},
      // a broken SysEx is dropped and what ended it counts
      {{{0xF0, 0x43, 0x10, 0x90, 0x40, 0x7F}}, {"90 40 7F"}},
      {{{0xF0}, reply, {0x90, 0x40, 0x7F}}, {hex(reply), "90 40 7F"}},
      // real-time bytes pass at once and leave the SysEx whole; the pieces of one join
      {{{0xF0, 0x43, 0xF8}, {0x10, 0xFE}, {0xFF, 0x63, 0xF7}, {0xF0, 0xF7}}, {"F8", "FE", "FF", "F0 43 10 63 F7", "F0 F7"}},
  };
  for (const auto& c : cases) EXPECT_EQ(parsed(c.deliveries), c.messages) << hex(c.deliveries.front());
  // A long message on the way out: the lone 00 began a B0 message that C0 cut short, and a
  // SysEx that never ends goes nowhere.
  EXPECT_EQ(hex(splitMidiStream(Bytes{0xB0, 0x00, 0x3F, 0xB0, 0x20, 0x40, 0x00, 0xC0, 0x00})),
            (Hexes{"B0 00 3F", "B0 20 40", "C0 00"}));
  EXPECT_EQ(hex(splitMidiStream(Bytes{0x90, 0x3C, 0x40, 0xF0, 0x43, 0x10})), Hexes{"90 3C 40"});
}

TEST(MidiParsing, ASysExBeyondTheBoundOrCutByLostBytesIsDroppedAndTheNextOneIsWhole) {
  Bytes longest(MidiParser::kMaxSysEx, 0x01);
  longest.front() = 0xF0;
  longest.back() = 0xF7;
  Bytes tooLong = longest;
  tooLong.insert(tooLong.end() - 1, 0x02);
  EXPECT_EQ(parsed({longest, tooLong, {0xF0, 0x43, 0xF7}}), (Hexes{hex(longest), "F0 43 F7"}));
  // Bytes lost on the way: what was being gathered is forgotten, a SysEx and a running status alike.
  for (const Bytes& before : {Bytes{0xF0, 0x43, 0x10}, Bytes{0x90, 0x40, 0x7F, 0x41}}) {
    MidiParser parser;
    parser.feed(before, [](auto) {});
    parser.reset();
    EXPECT_EQ(parsed({{0x7F, 0x63, 0xF7, 0xF0, 0x43, 0xF7}}, parser), Hexes{"F0 43 F7"}) << hex(before);
  }
}

TEST(MidiParsing, AnyBytesInAnyPiecesComeOutAsTheSameWellFormedMessages) {
  std::uint32_t seed = 12345;
  auto next = [&seed] { return seed = seed * 1103515245u + 12345u; };
  const auto wellFormed = [](const Bytes& m) {
    const bool sysEx = m[0] == 0xF0;
    const bool data = std::all_of(m.begin() + 1, m.end() - sysEx, [](std::uint8_t b) { return b < 0x80; });
    const std::size_t length = m[0] >= 0xF4 ? 1 : (m[0] & 0xE0) == 0xC0 || m[0] == 0xF1 || m[0] == 0xF3 ? 2 : 3;
    return m[0] >= 0x80 && data && (sysEx ? m.back() == 0xF7 : m.size() == length);
  };
  for (int round = 0; round < 300; ++round) {
    Bytes stream(next() % 400);
    for (auto& b : stream) b = static_cast<std::uint8_t>((next() >> 16) & (next() % 3 ? 0x7F : 0xFF));
    std::vector<Bytes> whole, pieces;
    MidiParser a, b;
    a.feed(stream, [&](auto m) { whole.emplace_back(m.begin(), m.end()); });
    for (std::size_t i = 0, n = 0; i < stream.size(); i += n) {
      n = std::min<std::size_t>(1 + next() % 7, stream.size() - i);
      b.feed(std::span(stream).subspan(i, n), [&](auto m) { pieces.emplace_back(m.begin(), m.end()); });
    }
    ASSERT_EQ(whole, pieces) << hex(stream);
    for (const Bytes& m : whole) ASSERT_TRUE(wellFormed(m)) << hex(m);
  }
}

}  // namespace tessivo
