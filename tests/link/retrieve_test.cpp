// Block retrieval: the order of the input calls around a request, the copy by the block's
// length, the log lines of List1, a silent instrument, and every failure on the way.
#include <gtest/gtest.h>

#include <algorithm>

#include "data/images.h"
#include "link/midi_link.h"
#include "support/scripted.h"

namespace tessivo {
using test::hex;

class Retrieve : public ::testing::Test {
 protected:
  test::Events events;
  test::ScriptedMidi midi{events};
  test::ScriptedScreen screen{events};
  int polls = 0;
  MidiLink link{midi, screen, [this](int) { ++polls; }};
  Images images;

  void SetUp() override {
    link.setLengthTables();
    link.attachImages(&images);
    link.MidiOutHnd = 0x0B;
    MidiHandle in = 0;
    midi.midiInOpen(in, 0, &MidiLink::MidiInCB, link.callbackInstance(), CALLBACK_FUNCTION);
    link.MidiInHnd = in;
    events.clear();
  }
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
};

TEST_F(Retrieve, InputIsArmedAndThruCutBeforeTheRequestAndRestoredAfterTheReply) {
  answerWith(com1Reply());
  link.RtrvBlock(kKindCom1, 0, 0);
  EXPECT_EQ(midi.midiCalls(),
            (test::Events{"midiInPrepareHeader", "midiInAddBuffer", "midiDisconnect", "midiInStop", "midiInStart",
                          "midiOutPrepareHeader", "midiOutLongMsg F0 43 20 63 60 00 00 F7", "midiInStop", "midiInReset",
                          "midiInUnprepareHeader", "midiConnect", "midiInStart"}));
  EXPECT_EQ(polls, 0);  // the reply ended the wait before the first poll
  EXPECT_TRUE(screen.boxes.empty());
}

TEST_F(Retrieve, TheReplyIsCopiedWholeOverItsSectionFrameIncluded) {
  const Bytes reply = com1Reply();
  answerWith(reply);
  link.RtrvBlock(kKindCom1, 0, 0);
  const auto com1 = images.perf.Com1();
  EXPECT_EQ(Bytes(com1.begin(), com1.begin() + 63), reply);
  EXPECT_EQ(com1[63], 0);  // the byte behind the message is carried
  EXPECT_EQ(images.perf.perfName(), " !\"#$%&'");
}

TEST_F(Retrieve, LogLinesGiveOffsetFromTheFirstDataByteInHexAndTheByteTwice) {
  answerWith(com1Reply());
  link.RtrvBlock(kKindCom1, 0, 0);
  ASSERT_EQ(link.List1.size(), 63u);
  EXPECT_EQ(link.List1[0], "Sys Ex  Com1  FFF7   0    240  F0");
  EXPECT_EQ(link.List1[6], "Sys Ex  Com1  FFFD   6    96  60");
  EXPECT_EQ(link.List1[8], "Sys Ex  Com1  FFFF   8    0  0");
  EXPECT_EQ(link.List1[9], "Sys Ex  Com1  0   9    32  20");
  EXPECT_EQ(link.List1[62], "Sys Ex  Com1  35   62    247  F7");
  EXPECT_EQ(MidiLink::logLine("Mlt 5 2", 27, 0x0A), "Sys Ex  Mlt 5 2  11   26    10  A");
}

TEST_F(Retrieve, ASilentInstrumentCostsFourHundredPollsAndLeavesZerosUpToTheLength) {
  auto com0 = images.perf.Com0();
  std::fill(com0.begin(), com0.end(), 0x55);
  link.RtrvBlock(kKindCom0, 0, 0);
  EXPECT_EQ(polls, 400);
  EXPECT_TRUE(std::all_of(com0.begin(), com0.begin() + 37, [](auto b) { return b == 0; }));
  EXPECT_EQ(com0[37], 0x55);  // behind the length nothing changes
  EXPECT_TRUE(link.List1.empty());
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

  Bytes tooLong(150, 0x11);
  answerWith(tooLong);
  link.List1.clear();
  link.RtrvBlock(kKindCom3, 0, 0);
  const auto com3 = images.perf.Com3();
  EXPECT_EQ(com3[19], 0x11);
  EXPECT_EQ(com3[20], 0);  // 20 bytes copied, no more
  EXPECT_EQ(link.List1.size(), 128u);  // what the driver took: its 128 bytes
}

TEST_F(Retrieve, WhileTheFormFillsTheThruPathStaysOffBetweenBlocks) {
  link.LoadingFlag = -1;
  answerWith(com1Reply());
  link.RtrvBlock(kKindCom1, 0, 0);
  EXPECT_EQ(midi.calls["midiConnect"], 0);
  EXPECT_EQ(midi.midiCalls().back(), "midiInUnprepareHeader");
}

TEST_F(Retrieve, AMultiSectionLandsInItsPartWithItsLabel) {
  const Bytes reply = bulkDump(kModelXg, {0x08, 0x04, 0x70}, Bytes{1, 2, 3, 4});
  answerWith(reply);
  link.RtrvBlock(kKindMulti, 5, 2);
  EXPECT_EQ(midi.sent.back(), (Bytes{0xF0, 0x43, 0x20, 0x4C, 0x08, 0x04, 0x70, 0xF7}));
  const auto section = images.multi.section(4, 2);
  EXPECT_EQ(Bytes(section.begin(), section.begin() + 15), reply);
  EXPECT_EQ(link.List1[0].substr(0, 17), "Sys Ex  Mlt 5 2  ");
}

TEST_F(Retrieve, AMultiIsFiveRequestsForItsPartIndexAfterClearingTheLog) {
  link.List1 = {"old line"};
  answerWith(Bytes{0xF0, 0x43, 0xF7});
  link.RtrvMlt(9);
  ASSERT_EQ(midi.sent.size(), 5u);
  EXPECT_EQ(hex(midi.sent[0]), "F0 43 20 4C 08 08 00 F7");
  EXPECT_EQ(hex(midi.sent[4]), "F0 43 20 4C 0A 08 20 F7");
  EXPECT_EQ(link.List1.size(), 15u);  // three bytes from each of the five replies
  EXPECT_EQ(link.List1[0].substr(0, 17), "Sys Ex  Mlt 9 0  ");
}

TEST_F(Retrieve, AnyOtherKindSendsTheParameterRequestAndChangesNoImage) {
  int requests = 0;
  link.ReqParm = [&] {
    ++requests;
    link.SndSysEx(parmRequest({0x08, 0x04, 0x18}));
  };
  answerWith(Bytes{0xF0, 0x43, 0x10, 0x4C, 0x08, 0x04, 0x18, 0x40, 0xF7});
  const PerfImage before = images.perf;
  link.RtrvBlock(16, 0, 0);
  EXPECT_EQ(requests, 1);
  EXPECT_EQ(images.perf.bytes, before.bytes);
  ASSERT_EQ(link.List1.size(), 9u);
  EXPECT_EQ(link.List1[0], "Sys Ex  Parm retrieve  FFF7   0    240  F0");
}

TEST_F(Retrieve, FailuresBeforeTheRequestEndTheCallAndLeaveTheImage) {
  auto com1 = images.perf.Com1();
  std::fill(com1.begin(), com1.end(), 0x55);
  midi.failOnce("midiInPrepareHeader", MMSYSERR_NOMEM);
  link.RtrvBlock(kKindCom1, 0, 0);
  midi.failOnce("midiInAddBuffer", MIDIERR_STILLPLAYING);
  link.RtrvBlock(kKindCom1, 0, 0);
  EXPECT_TRUE(midi.sent.empty());
  EXPECT_EQ(com1[0], 0x55);
  ASSERT_EQ(screen.boxes.size(), 2u);
  EXPECT_EQ(screen.boxes[0].text, MidiLink::errorBoxText("InPrepHdr", "in error 7"));
  EXPECT_EQ(screen.boxes[1].text, MidiLink::errorBoxText("InAddBuff", "in error 65"));
}

TEST_F(Retrieve, StopStartAndResetFailuresAreReportedAndTheBlockGoesOn) {
  answerWith(com1Reply());
  midi.failOnce("midiInStop", MMSYSERR_ERROR);
  midi.failOnce("midiInStart", MMSYSERR_ERROR);
  midi.script["midiInStop"].push_back(MMSYSERR_NOMEM);
  midi.failOnce("midiInReset", MMSYSERR_INVALHANDLE);
  link.RtrvBlock(kKindCom1, 0, 0);
  ASSERT_EQ(screen.boxes.size(), 4u);
  EXPECT_EQ(screen.boxes[0].text, MidiLink::errorBoxText("InStop", "in error 1"));
  EXPECT_EQ(screen.boxes[1].text, MidiLink::errorBoxText("InStart", "in error 1"));
  EXPECT_EQ(screen.boxes[2].text, MidiLink::errorBoxText("InStop", "in error 7"));
  EXPECT_EQ(screen.boxes[3].text, MidiLink::errorBoxText("InReset", "in error 5"));
  EXPECT_EQ(images.perf.Com1()[0], 0xF0);
  EXPECT_EQ(link.List1.size(), 63u);
}

TEST_F(Retrieve, AFailedUnprepareEndsBeforeTheCopyTheLogAndTheReconnection) {
  answerWith(com1Reply());
  midi.failOnce("midiInUnprepareHeader", MIDIERR_STILLPLAYING);
  link.RtrvBlock(kKindCom1, 0, 0);
  EXPECT_EQ(images.perf.Com1()[0], 0);
  EXPECT_TRUE(link.List1.empty());
  EXPECT_EQ(midi.calls["midiConnect"], 0);
  ASSERT_EQ(screen.boxes.size(), 1u);
  EXPECT_EQ(screen.boxes[0].text, MidiLink::errorBoxText("InUnPrepHdr", "in error 65"));
}

TEST_F(Retrieve, AFailedReconnectionSkipsTheInputStart) {
  answerWith(com1Reply());
  midi.failOnce("midiConnect", MMSYSERR_INVALHANDLE);
  link.RtrvBlock(kKindCom1, 0, 0);
  EXPECT_EQ(midi.midiCalls().back(), "midiConnect");
  ASSERT_EQ(screen.boxes.size(), 1u);
  EXPECT_EQ(screen.boxes[0].text, MidiLink::errorBoxText("Connect", "in error 5"));
}

TEST_F(Retrieve, ALongMessageBeforeTheRequestDoesNotEndTheWait) {
  link.LongDataFlag.raise();  // something arrived outside a block
  link.RtrvBlock(kKindCom2, 0, 0);
  EXPECT_EQ(polls, 400);  // the flag was cleared before the request
}

}  // namespace tessivo
