// Block retrieval: the order of the input calls around a request, the copy by the block's
// length, the log lines of List1, a silent instrument, and every failure on the way.
#include <gtest/gtest.h>

#include <algorithm>

#include "link/midi_link.h"
#include "support/scripted.h"

namespace tessivo {
using test::hex;
using Texts = std::vector<std::string>;

class Retrieve : public ::testing::Test, protected test::ScriptedLink {
 protected:
  // The instrument answers every request with `reply`.
  void answerWith(const Bytes& reply) {
    midi.answer = [reply](const Bytes& request) -> std::optional<Bytes> {
      if (request.size() >= 3 && request[2] >= 0x20) return reply;
      return std::nullopt;
    };
  }
  static Bytes com1Reply() {
    Bytes data(52);
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<std::uint8_t>(0x20 + i);
    return bulkDump(kModelCs2x, {0x60, 0x00, 0x00}, data);
  }
  static std::string box(const char* label, const char* text) { return MidiLink::errorBoxText(label, text); }
};

TEST_F(Retrieve, InputIsArmedAndThruCutAroundTheRequestAndTheReplyCopiedAndLogged) {
  const Bytes reply = com1Reply();
  answerWith(reply);
  auto com1 = images.perf.Com1();
  com1[63] = 0x55;
  link.RtrvBlock(kKindCom1, 0, 0);
  EXPECT_EQ(midi.midiCalls(),
            (Texts{"midiInPrepareHeader", "midiInAddBuffer", "midiDisconnect", "midiInStop", "midiInStart",
                   "midiOutPrepareHeader", "midiOutLongMsg F0 43 20 63 60 00 00 F7", "midiInStop", "midiInReset",
                   "midiInUnprepareHeader", "midiConnect", "midiInStart"}));
  EXPECT_TRUE(sleeps.empty());  // the reply ended the wait before the first poll
  EXPECT_TRUE(screen.boxes.empty());
  // The whole message over its section, frame included; the byte behind it stays.
  EXPECT_EQ(Bytes(com1.begin(), com1.begin() + 63), reply);
  EXPECT_EQ(com1[63], 0x55);
  // One line a byte: offset from the first data byte in hex, index, the byte in decimal and hex.
  ASSERT_EQ(link.List1.size(), 63u);
  EXPECT_EQ(link.List1[0], "Sys Ex  Com1  FFF7   0    240  F0");
  EXPECT_EQ(link.List1[8], "Sys Ex  Com1  FFFF   8    0  0");
  EXPECT_EQ(link.List1[9], "Sys Ex  Com1  0   9    32  20");
  EXPECT_EQ(link.List1[62], "Sys Ex  Com1  35   62    247  F7");
}

TEST_F(Retrieve, NoReplyCostsFourHundredPollsAndLeavesZerosUpToTheLengthAndLoadingKeepsThruOff) {
  auto com0 = images.perf.Com0();
  std::fill(com0.begin(), com0.end(), 0x55);
  link.LongDataFlag.raise();  // something arrived outside a block: cleared before the request
  link.LoadingFlag = -1;      // while the form fills, the thru path stays off between blocks
  link.RtrvBlock(kKindCom0, 0, 0);
  EXPECT_EQ(sleeps, std::vector<int>(400, 5));
  EXPECT_TRUE(std::all_of(com0.begin(), com0.begin() + 37, [](auto b) { return b == 0; }));
  EXPECT_EQ(com0[37], 0x55);  // behind the length nothing changes
  EXPECT_TRUE(link.List1.empty());
  EXPECT_EQ(midi.midiCalls().back(), "midiInUnprepareHeader");
  EXPECT_TRUE(screen.boxes.empty());
}

TEST_F(Retrieve, AShortReplyLeavesZerosAndALongOneIsCutToTheBlocksLength) {
  auto lyr2 = images.perf.Lyr(2);
  std::fill(lyr2.begin(), lyr2.end(), 0x55);
  answerWith(Bytes{0xF0, 0x43, 0x00, 0x63, 0xF7});
  link.RtrvBlock(kKindLyr2, 0, 0);
  EXPECT_EQ(hex(Bytes(lyr2.begin(), lyr2.begin() + 6)), "F0 43 00 63 F7 00");
  EXPECT_EQ(lyr2[55], 0);
  EXPECT_EQ(lyr2[56], 0x55);
  EXPECT_EQ(link.List1.size(), 5u);
  answerWith(Bytes(150, 0x11));
  link.List1.clear();
  link.RtrvBlock(kKindCom3, 0, 0);
  EXPECT_EQ(images.perf.Com3()[19], 0x11);
  EXPECT_EQ(images.perf.Com3()[20], 0);  // 20 bytes copied, no more
  EXPECT_EQ(link.List1.size(), 128u);    // what the driver took: its 128 bytes
}

TEST_F(Retrieve, MultiSectionsLandInTheirPartWithTheirLabelAndAMultiIsFiveAfterClearingTheLog) {
  const Bytes reply = bulkDump(kModelXg, {0x08, 0x04, 0x70}, Bytes{1, 2, 3, 4});
  answerWith(reply);
  link.RtrvBlock(kKindMulti, 5, 2);
  EXPECT_EQ(hex(midi.sent), std::vector<std::string>{"F0 43 20 4C 08 04 70 F7"});
  const auto section = images.multi.section(4, 2);
  EXPECT_EQ(Bytes(section.begin(), section.begin() + 15), reply);
  EXPECT_EQ(link.List1[0].substr(0, 17), "Sys Ex  Mlt 5 2  ");
  midi.sent.clear();
  answerWith(Bytes{0xF0, 0x43, 0xF7});
  link.RtrvMlt(9);
  link.ReqMltSctn(9, 5);  // a part has no sixth section to ask for
  ASSERT_EQ(midi.sent.size(), 5u);
  for (std::int16_t s = 0; s < 5; ++s) EXPECT_EQ(midi.sent[static_cast<std::size_t>(s)], multiSectionRequest(9, s));
  EXPECT_EQ(link.List1.size(), 15u);  // three bytes from each of the five replies, the old ones gone
  EXPECT_EQ(link.List1[0].substr(0, 17), "Sys Ex  Mlt 9 0  ");
}

// Its wire and its count of log lines are pinned where the debug row's button sends it.
TEST_F(Retrieve, AnyOtherKindSendsTheParameterRequestChangesNoImageAndHasItsLabel) {
  link.ReqParm = [&] { link.SndSysEx(parmRequest({0x08, 0x04, 0x18})); };
  answerWith(paramChange(kModelXg, {0x08, 0x04, 0x18}, 0x40));
  const PerfImage before = images.perf;
  link.RtrvBlock(16, 0, 0);
  EXPECT_EQ(images.perf.bytes, before.bytes);
  EXPECT_EQ(link.List1.at(0), "Sys Ex  Parm retrieve  FFF7   0    240  F0");
}

// A failed prepare or add ends the call before the request, a failed unprepare before the copy
// and the thru path, a failed reconnection before the input starts; the rest only report.
TEST_F(Retrieve, EachFailingInputCallHasItsBoxAndEndsTheCallOnlyWhereNothingCanGoOn) {
  answerWith(com1Reply());
  midi.failOnce("midiInPrepareHeader", MMSYSERR_NOMEM);
  link.RtrvBlock(kKindCom1, 0, 0);
  midi.failOnce("midiInAddBuffer", MIDIERR_STILLPLAYING);
  link.RtrvBlock(kKindCom1, 0, 0);
  EXPECT_TRUE(midi.sent.empty());
  midi.failOnce("midiInUnprepareHeader", MIDIERR_STILLPLAYING);
  link.RtrvBlock(kKindCom1, 0, 0);
  EXPECT_EQ(images.perf.Com1()[0], 0);
  EXPECT_TRUE(link.List1.empty());
  EXPECT_EQ(midi.calls["midiConnect"], 0);

  midi.script["midiInStop"] = {MMSYSERR_ERROR, MMSYSERR_NOMEM};
  midi.failOnce("midiInStart", MMSYSERR_ERROR);
  midi.failOnce("midiInReset", MMSYSERR_INVALHANDLE);
  midi.failOnce("midiConnect", MMSYSERR_INVALHANDLE);
  link.RtrvBlock(kKindCom1, 0, 0);
  EXPECT_EQ(images.perf.Com1()[0], 0xF0);
  EXPECT_EQ(link.List1.size(), 63u);
  EXPECT_EQ(midi.midiCalls().back(), "midiConnect");
  EXPECT_EQ(screen.texts(), (Texts{box("InPrepHdr", "in error 7"), box("InAddBuff", "in error 65"),
                                   box("InUnPrepHdr", "in error 65"), box("InStop", "in error 1"),
                                   box("InStart", "in error 1"), box("InStop", "in error 7"),
                                   box("InReset", "in error 5"), box("Connect", "in error 5")}));
}

}  // namespace tessivo
