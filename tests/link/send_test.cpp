// The send path: its three sources, its bounds, the three endings of the unprepare loop, the
// failure boxes and their text, the device lists, and the input callback with its flag.
#include <gtest/gtest.h>

#include <thread>

#include "link/midi_link.h"
#include "support/scripted.h"

namespace tessivo {
using Texts = std::vector<std::string>;

class SendPath : public ::testing::Test, protected test::ScriptedLink {};

// Mode 0 sends the given bytes as they stand, mode 1 a Multi section and mode 2 the send
// buffer, each at its section's length.
TEST_F(SendPath, EachModeSendsItsSourceInOneLongMessageAndNothingOutsideItsBounds) {
  const Bytes programChange{0xB0, 0x00, 0x3F, 0xB0, 0x20, 0x40, 0x00, 0xC0, 0x00};
  link.SndSysEx(programChange);
  link.SndSysEx(Bytes(128, 0x11));
  auto section = images.multi.section(15, 4);  // part index 15 (M16), section 4: 13 bytes
  for (std::size_t i = 0; i < section.size(); ++i) section[i] = static_cast<std::uint8_t>(i + 1);
  link.SndSysExData({}, 1, 15, 4);
  for (std::size_t i = 0; i < link.SndBuf.size(); ++i) link.SndBuf[i] = static_cast<std::uint8_t>(i);
  link.SndSysExData({}, 2, 0, 9);   // a Layer: 56 bytes, though its array holds 57
  link.SndSysExData({}, 2, 0, 10);  // index 10 is never set: an empty message
  EXPECT_EQ(midi.sent, (std::vector<Bytes>{programChange, Bytes(128, 0x11), Bytes(section.begin(), section.begin() + 13),
                                           Bytes(link.SndBuf.begin(), link.SndBuf.begin() + 56), {}}));
  EXPECT_EQ(midi.calls["midiOutPrepareHeader"] * 10 + midi.calls["midiOutUnprepareHeader"], 55);
  link.SndSysEx(Bytes(129, 0x11));
  const std::int16_t outside[][3] = {{1, 17, 0}, {1, -1, 0}, {1, 4, 6}, {2, 0, 11}, {3, 0, 0}};
  for (const auto& o : outside) link.SndSysExData({}, o[0], o[1], o[2]);
  EXPECT_EQ(midi.calls["midiOutPrepareHeader"], 5);
  EXPECT_TRUE(screen.boxes.empty());
  EXPECT_TRUE(sleeps.empty());
}

TEST_F(SendPath, UnprepareEndsOnElevenOnDoneOrAfter400TriesWithOneBox) {
  const struct { std::vector<MMRESULT> script; bool always; int calls; std::size_t waits, boxes; } cases[] = {
      {{MMSYSERR_INVALPARAM}, false, 1, 0, 0},
      {{MIDIERR_STILLPLAYING, MIDIERR_STILLPLAYING, MIDIERR_STILLPLAYING}, false, 4, 3, 0},  // a wait after each
      {{MIDIERR_STILLPLAYING}, true, 402, 400, 1},  // the first call and 401 tries
  };
  for (const auto& c : cases) {
    midi.calls.clear();
    sleeps.clear();
    screen.boxes.clear();
    for (MMRESULT r : c.script) c.always ? midi.failAlways("midiOutUnprepareHeader", r) : midi.failOnce("midiOutUnprepareHeader", r);
    link.SndSysEx(Bytes{0xF0, 0xF7});
    EXPECT_EQ(midi.calls["midiOutUnprepareHeader"], c.calls);
    EXPECT_EQ(sleeps, std::vector<int>(c.waits, 5));
    ASSERT_EQ(screen.boxes.size(), c.boxes);
  }
  EXPECT_EQ(screen.boxes[0].text.substr(0, 36), "Operation: midiOutUnprepareHeader \r\n");
}

TEST_F(SendPath, FailuresShowTheirBoxesAndAFailedPrepareSendsNothingButAFailedSendStillUnprepares) {
  midi.failOnce("midiOutPrepareHeader", MMSYSERR_INVALHANDLE);
  link.SndSysEx(Bytes{0xF0, 0xF7});
  EXPECT_EQ(midi.calls["midiOutLongMsg"] + midi.calls["midiOutUnprepareHeader"], 0);
  midi.failOnce("midiOutLongMsg", MIDIERR_NOTREADY);
  link.SndSysEx(Bytes{0xF0, 0xF7});
  EXPECT_EQ(midi.calls["midiOutUnprepareHeader"], 1);
  link.MidiInErr("InStop", 5);
  link.MidiOutErr("Reset", -1);  // a code is widened from 16 bits with its sign
  EXPECT_EQ(screen.texts(), (Texts{MidiLink::errorBoxText("Out Prepare ", "out error 5"),
                                   MidiLink::errorBoxText("MidiOutLongMsg ", "out error 67"),
                                   MidiLink::errorBoxText("InStop", "in error 5"),
                                   MidiLink::errorBoxText("Reset", "out error -1")}));
  EXPECT_EQ(screen.boxes[0].title, kAppTitle);
  EXPECT_EQ(screen.boxes[0].buttons, MsgButtons::Ok);
  EXPECT_EQ(screen.boxes[0].icon, MsgIcon::None);
  // The label, CR LF, and the code's text in 132 places, cut to the 127 characters that the
  // platform's 128-byte buffer holds.
  EXPECT_EQ(MidiLink::errorBoxText("Open", "The device is not open."),
            "Operation: Open\r\nThe device is not open." + std::string(132 - 23, ' '));
  EXPECT_EQ(MidiLink::errorBoxText("X", std::string(200, 'e')), "Operation: X\r\n" + std::string(127, 'e') + std::string(5, ' '));
}

TEST_F(SendPath, DeviceListsStopAtTheFirstFailingCapabilityCall) {
  Texts ins, outs;
  midi.inNames = {"A", "B", "C"};
  midi.script["midiInGetDevCaps"] = {0, 0, MMSYSERR_NODRIVER};
  link.ListInDevs([&](const std::string& n) { ins.push_back(n); });
  midi.failOnce("midiOutGetDevCaps", MMSYSERR_BADDEVICEID);
  link.ListOutDevs([&](const std::string& n) { outs.push_back(n); });
  EXPECT_EQ(ins, (Texts{"A", "B"}));
  EXPECT_TRUE(outs.empty());
  EXPECT_EQ(screen.texts(), (Texts{"midiInGetDevCaps Error: 6", "midiOutGetDevCaps Error: 2"}));
}

// The callback runs on the driver's thread while the event thread waits for the flag.
TEST(InputCallback, OnlyALongMessageRaisesTheFlagAndItWakesTheWaiter) {
  using namespace std::chrono_literals;
  WakeFlag flag;
  const auto inst = reinterpret_cast<std::uintptr_t>(&flag);
  MidiLink::MidiInCB(1, MIM_DATA, inst, 0x7F4090, 0);
  MidiLink::MidiInCB(1, MIM_OPEN, inst, 0, 0);
  EXPECT_FALSE(flag.waitRaised(20ms));
  std::thread driver([inst] {
    std::this_thread::sleep_for(50ms);
    MidiLink::MidiInCB(1, MIM_LONGDATA, inst, 0, 0);
  });
  const auto t0 = std::chrono::steady_clock::now();
  EXPECT_TRUE(flag.waitRaised(30s));
  EXPECT_LT(std::chrono::steady_clock::now() - t0, 15s);  // woken, not timed out
  driver.join();
}

}  // namespace tessivo
