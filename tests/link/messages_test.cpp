// The message forms on the wire, the bulk dump checksum, and the reading of a byte stream
// into messages on the way out (a long message) and in (what the ports deliver).
#include <gtest/gtest.h>

#include "link/messages.h"
#include "link/midi_parser.h"
#include "support/scripted.h"

namespace tessivo {
using test::hex;
using Hexes = std::vector<std::string>;

// The forms of the whole wire are pinned where a start or the controls send them (each Multi
// section's request by the Retrieve menu's rows); here what those leave out: a data byte goes
// out as given.
TEST(MessageForms, DataIsNotMasked) {
  EXPECT_EQ(hex(paramChange(kModelXg, {0x08, 0x04, 0x0B}, 0xC8)), "F0 43 10 4C 08 04 0B C8 F7");
}

TEST(Checksum, BulkDumpSumsFromCountToLastDataByteWithTwoByteCount) {
  EXPECT_EQ(hex(bulkDump(kModelCs2x, {0x60, 0x00, 0x60}, Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9})),
            "F0 43 00 63 00 09 60 00 60 01 02 03 04 05 06 07 08 09 0A F7");  // 128 - (246 % 128)
  EXPECT_EQ(hex(bulkDump(kModelXg, {0x08, 0x04, 0x00}, Bytes(130, 0))).substr(0, 17), "F0 43 00 4C 01 02");
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
      {{{0x90, 0x40, 0x7F, 0xF2, 0x10, 0x02, 0x41, 0xF1, 0x21, 0xF6, 0x42, 0xF3, 0x05, 0xF5, 0x06}},
       {"90 40 7F", "F2 10 02", "F1 21", "F6", "F3 05", "F5"}},
      // a broken SysEx is dropped and what ended it counts
      {{{0xF0, 0x43, 0x10, 0x90, 0x40, 0x7F}}, {"90 40 7F"}},
      {{{0xF0}, reply, {0x90, 0x40, 0x7F}}, {hex(reply), "90 40 7F"}},
      // real-time bytes pass at once and leave the SysEx whole; the pieces of one join
      {{{0xF0, 0x43, 0xF8}, {0x10, 0xFE}, {0xFF, 0x63, 0xF7}, {0xF0, 0xF7}}, {"F8", "FE", "FF", "F0 43 10 63 F7", "F0 F7"}},
  };
  for (const auto& c : cases) EXPECT_EQ(parsed(c.deliveries), c.messages) << hex(c.deliveries.front());
}

TEST(MidiParsing, ASysExBeyondTheBoundOrCutByLostBytesIsDroppedAndTheNextOneIsWhole) {
  Bytes longest(MidiParser::kMaxSysEx, 0x01), tooLong(MidiParser::kMaxSysEx + 1, 0x02);
  longest.front() = tooLong.front() = 0xF0;
  longest.back() = tooLong.back() = 0xF7;
  EXPECT_EQ(parsed({longest, tooLong, {0xF0, 0x43, 0xF7}}), (Hexes{hex(longest), "F0 43 F7"}));
  for (const Bytes& before : {Bytes{0xF0, 0x43, 0x10}, Bytes{0x90, 0x40, 0x7F, 0x41}}) {  // a SysEx, a running status
    MidiParser parser;
    parser.feed(before, [](auto) {});
    parser.reset();
    EXPECT_EQ(parsed({{0x7F, 0x63, 0xF7, 0xF0, 0x43, 0xF7}}, parser), Hexes{"F0 43 F7"}) << hex(before);
  }
}

}  // namespace tessivo
