// The send path: its three sources, its bounds, the three endings of the unprepare loop, the
// failure boxes and their text, the device lists and the input callback.
#include <gtest/gtest.h>

#include "data/images.h"
#include "link/midi_link.h"
#include "support/scripted.h"

namespace tessivo {
using test::hex;

class SendPath : public ::testing::Test {
 protected:
  test::Events events;
  test::ScriptedMidi midi{events};
  test::ScriptedScreen screen{events};
  int sleeps = 0;
  MidiLink link{midi, screen, [this](int ms) {
                  EXPECT_EQ(ms, 5);
                  ++sleeps;
                }};
  Images images;

  void SetUp() override {
    link.setLengthTables();
    link.attachImages(&images);
    link.MidiOutHnd = 0x0B;
    link.MidiInHnd = 0x0A;
  }
};

TEST_F(SendPath, ModeZeroSendsTheSequenceAsItStandsInOneLongMessage) {
  const Bytes programChange{0xB0, 0x00, 0x3F, 0xB0, 0x20, 0x40, 0x00, 0xC0, 0x00};
  link.SndSysEx(programChange);
  ASSERT_EQ(midi.sent.size(), 1u);
  EXPECT_EQ(midi.sent[0], programChange);
  EXPECT_EQ(midi.calls["midiOutPrepareHeader"], 1);
  EXPECT_EQ(midi.calls["midiOutUnprepareHeader"], 1);
  EXPECT_TRUE(screen.boxes.empty());
  EXPECT_EQ(sleeps, 0);
}

TEST_F(SendPath, ModeZeroTakesExactly128BytesAndRefusesMore) {
  link.SndSysEx(Bytes(128, 0x11));
  ASSERT_EQ(midi.sent.size(), 1u);
  EXPECT_EQ(midi.sent[0].size(), 128u);
  link.SndSysEx(Bytes(129, 0x11));
  EXPECT_EQ(midi.sent.size(), 1u);
}

TEST_F(SendPath, ModeOneSendsAMultiSectionAtItsLength) {
  // part index 15 (M16), section 4: 13 bytes
  auto section = images.multi.section(15, 4);
  for (std::size_t i = 0; i < section.size(); ++i) section[i] = static_cast<std::uint8_t>(i + 1);
  link.SndSysExData({}, 1, 15, 4);
  ASSERT_EQ(midi.sent.size(), 1u);
  EXPECT_EQ(midi.sent[0].size(), 13u);
  EXPECT_EQ(midi.sent[0].front(), 1);
  EXPECT_EQ(midi.sent[0].back(), 13);
}

TEST_F(SendPath, ModeTwoSendsTheBufferAtTheSectionsLength) {
  for (std::size_t i = 0; i < link.SndBuf.size(); ++i) link.SndBuf[i] = static_cast<std::uint8_t>(i);
  link.SndSysExData({}, 2, 0, 9);  // a Layer: 56 bytes, though its array holds 57
  ASSERT_EQ(midi.sent.size(), 1u);
  EXPECT_EQ(midi.sent[0].size(), 56u);
  link.SndSysExData({}, 2, 0, 10);  // index 10 is never set: an empty message
  ASSERT_EQ(midi.sent.size(), 2u);
  EXPECT_TRUE(midi.sent[1].empty());
}

TEST_F(SendPath, SourcesOutsideTheirBoundsSendNothing) {
  link.SndSysExData({}, 1, 17, 0);
  link.SndSysExData({}, 1, -1, 0);
  link.SndSysExData({}, 1, 4, 6);
  link.SndSysExData({}, 2, 0, 11);
  link.SndSysExData({}, 3, 0, 0);
  EXPECT_TRUE(midi.sent.empty());
  EXPECT_EQ(midi.calls["midiOutPrepareHeader"], 0);
}

TEST_F(SendPath, UnprepareAnsweringElevenEndsTheSendWithoutABox) {
  midi.failOnce("midiOutUnprepareHeader", MMSYSERR_INVALPARAM);
  link.SndSysEx(Bytes{0xF0, 0xF7});
  EXPECT_EQ(midi.calls["midiOutUnprepareHeader"], 1);
  EXPECT_EQ(sleeps, 0);
  EXPECT_TRUE(screen.boxes.empty());
}

TEST_F(SendPath, UnprepareStillPlayingIsTriedAgainUntilDone) {
  for (int i = 0; i < 3; ++i) midi.failOnce("midiOutUnprepareHeader", MIDIERR_STILLPLAYING);
  link.SndSysEx(Bytes{0xF0, 0xF7});
  EXPECT_EQ(midi.calls["midiOutUnprepareHeader"], 4);
  EXPECT_EQ(sleeps, 3);  // one wait after each further try, the successful one included
  EXPECT_TRUE(screen.boxes.empty());
}

TEST_F(SendPath, UnprepareRefusingForMoreThan400TriesGivesOneBox) {
  midi.failAlways("midiOutUnprepareHeader", MIDIERR_STILLPLAYING);
  link.SndSysEx(Bytes{0xF0, 0xF7});
  EXPECT_EQ(midi.calls["midiOutUnprepareHeader"], 402);  // the first call and 401 tries
  EXPECT_EQ(sleeps, 400);
  ASSERT_EQ(screen.boxes.size(), 1u);
  EXPECT_EQ(screen.boxes[0].text.substr(0, 36), "Operation: midiOutUnprepareHeader \r\n");
}

TEST_F(SendPath, FailedPrepareSendsNothing) {
  midi.failOnce("midiOutPrepareHeader", MMSYSERR_INVALHANDLE);
  link.SndSysEx(Bytes{0xF0, 0xF7});
  EXPECT_EQ(midi.calls["midiOutLongMsg"], 0);
  EXPECT_EQ(midi.calls["midiOutUnprepareHeader"], 0);
  ASSERT_EQ(screen.boxes.size(), 1u);
  EXPECT_EQ(screen.boxes[0].text, MidiLink::errorBoxText("Out Prepare ", "out error 5"));
}

TEST_F(SendPath, FailedLongMessageIsReportedAndTheHeaderStillUnprepared) {
  midi.failOnce("midiOutLongMsg", MIDIERR_NOTREADY);
  link.SndSysEx(Bytes{0xF0, 0xF7});
  EXPECT_EQ(midi.calls["midiOutUnprepareHeader"], 1);
  ASSERT_EQ(screen.boxes.size(), 1u);
  EXPECT_EQ(screen.boxes[0].text, MidiLink::errorBoxText("MidiOutLongMsg ", "out error 67"));
}

TEST(ErrorBox, LabelCrLfAndTheTextPaddedTo132) {
  const std::string text = MidiLink::errorBoxText("Open", "The device is not open.");
  EXPECT_EQ(text.substr(0, 17), "Operation: Open\r\n");
  EXPECT_EQ(text.size(), 17u + 132u);
  EXPECT_EQ(text.substr(17, 23), "The device is not open.");
  EXPECT_EQ(text.find_first_not_of(' ', 40), std::string::npos);
  // A text longer than the platform's 128-byte buffer is cut to 127 characters.
  EXPECT_EQ(MidiLink::errorBoxText("X", std::string(200, 'e')).size(), std::string("Operation: X\r\n").size() + 132);
}

TEST_F(SendPath, BoxesShowOkAloneNoIconAndTheApplicationTitle) {
  link.MidiInErr("InStop", 5);
  link.MidiOutErr("Reset", -1);  // a code is widened from 16 bits with its sign
  ASSERT_EQ(screen.boxes.size(), 2u);
  EXPECT_EQ(screen.boxes[0].text, MidiLink::errorBoxText("InStop", "in error 5"));
  EXPECT_EQ(screen.boxes[0].title, kAppTitle);
  EXPECT_EQ(screen.boxes[0].buttons, MsgButtons::Ok);
  EXPECT_EQ(screen.boxes[0].icon, MsgIcon::None);
  EXPECT_EQ(screen.boxes[1].text, MidiLink::errorBoxText("Reset", "out error -1"));
}

TEST_F(SendPath, DeviceListsStopAtTheFirstFailingCapabilityCall) {
  std::vector<std::string> ins, outs;
  midi.inNames = {"A", "B", "C"};
  midi.script["midiInGetDevCaps"] = {0, 0, MMSYSERR_NODRIVER};
  link.ListInDevs([&](const std::string& n) { ins.push_back(n); });
  EXPECT_EQ(ins, (std::vector<std::string>{"A", "B"}));
  ASSERT_EQ(screen.boxes.size(), 1u);
  EXPECT_EQ(screen.boxes[0].text, "midiInGetDevCaps Error: 6");

  midi.script["midiOutGetDevCaps"] = {MMSYSERR_BADDEVICEID};
  link.ListOutDevs([&](const std::string& n) { outs.push_back(n); });
  EXPECT_TRUE(outs.empty());
  ASSERT_EQ(screen.boxes.size(), 2u);
  EXPECT_EQ(screen.boxes[1].text, "midiOutGetDevCaps Error: 2");
}

TEST_F(SendPath, RequestSendersBuildTheDumpRequests) {
  link.ReqPerfBlock(kKindCom0);
  link.ReqPerfBlock(kKindLyr4);
  link.ReqMltSctn(16, 4);
  link.ReqMltSctn(5, 5);  // no request for a sixth section
  ASSERT_EQ(midi.sent.size(), 3u);
  EXPECT_EQ(hex(midi.sent[0]), "F0 43 20 63 50 00 00 F7");
  EXPECT_EQ(hex(midi.sent[1]), "F0 43 20 63 60 04 00 F7");
  EXPECT_EQ(hex(midi.sent[2]), "F0 43 20 4C 0A 0F 20 F7");
}

TEST(InputCallback, OnlyALongMessageRaisesTheFlag) {
  LongDataSignal flag;
  const auto inst = reinterpret_cast<std::uintptr_t>(&flag);
  EXPECT_EQ(MidiLink::MidiInCB(1, MIM_DATA, inst, 0x7F4090, 0), 0u);
  EXPECT_EQ(MidiLink::MidiInCB(1, MIM_OPEN, inst, 0, 0), 0u);
  EXPECT_EQ(flag.load(), 0);
  EXPECT_EQ(MidiLink::MidiInCB(1, MIM_LONGDATA, inst, 0, 0), 0u);
  EXPECT_EQ(flag.load(), -1);
}

}  // namespace tessivo
