// The service of the running program over the built-in instrument: device numbering, the
// header rules of both directions, input start and stop, and the thru path.
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "support/scripted.h"

namespace tessivo {
using test::InBuffer;

namespace {
struct Received {
  std::atomic<int> longData{0}, shortData{0};
  std::atomic<std::uintptr_t> lastShort{0};
};
std::uint32_t recordCallback(MidiHandle, std::uint32_t msg, std::uintptr_t inst, std::uintptr_t p1, std::uintptr_t) {
  auto* r = reinterpret_cast<Received*>(inst);
  if (msg == MIM_LONGDATA) ++r->longData;
  if (msg == MIM_DATA) ++r->shortData, r->lastShort = p1;
  return 0;
}

// A second device family, so that numbering across families can be seen; it opens nothing.
class TwoPorts : public PortProvider {
 public:
  std::vector<std::string> inputNames() override { return {"System In 1", std::string(40, 'x')}; }
  std::vector<std::string> outputNames() override { return {"System Out 1"}; }
  std::unique_ptr<InPort> openInput(std::size_t, MMRESULT& e) override { return e = MIDIERR_NODEVICE, nullptr; }
  std::unique_ptr<OutPort> openOutput(std::size_t, MMRESULT& e) override { return e = MIDIERR_NODEVICE, nullptr; }
};
}  // namespace

class Service : public ::testing::Test {
 protected:
  VirtualCs2x cs2x;
  VirtualCs2xProvider builtIn{cs2x};
  TwoPorts system;
  PortMidiService midi{{&builtIn, &system}};
  Received rx;
  MidiHandle in = 0, out = 0;

  void SetUp() override {
    ASSERT_EQ(midi.midiOutOpen(out, 0), MMSYSERR_NOERROR);
    ASSERT_EQ(midi.midiInOpen(in, 0, &recordCallback, reinterpret_cast<std::uintptr_t>(&rx), CALLBACK_FUNCTION),
              MMSYSERR_NOERROR);
  }
};

TEST_F(Service, DevicesAreNumberedAcrossFamiliesWithTheBuiltInInstrumentFirst) {
  std::string in0, out1, in2;
  ASSERT_EQ(midi.midiInGetNumDevs() * 10 + midi.midiOutGetNumDevs(), 32u);
  EXPECT_EQ(midi.midiInGetDevCaps(0, in0) | midi.midiOutGetDevCaps(1, out1) | midi.midiInGetDevCaps(2, in2), MMSYSERR_NOERROR);
  EXPECT_EQ((std::vector<std::string>{in0, out1}), (std::vector<std::string>{"Virtual CS2x (built-in)", "System Out 1"}));
  EXPECT_EQ(in2.size(), 31u);  // a name is cut to the 32 bytes of szPname
  EXPECT_EQ(midi.midiOutGetDevCaps(2, in2), MMSYSERR_BADDEVICEID);
}

TEST_F(Service, FailuresComeBackAsCodes) {
  MidiHandle h = 99;
  EXPECT_EQ(midi.midiOutOpen(h, 1), MIDIERR_NODEVICE);
  EXPECT_EQ(h, 0u);
  EXPECT_EQ(midi.midiOutOpen(h, 7), MMSYSERR_BADDEVICEID);
  EXPECT_EQ(midi.midiOutOpen(h, 0), MMSYSERR_ALLOCATED);
  EXPECT_EQ(midi.midiInOpen(h, 0, nullptr, 0, 0), MMSYSERR_ALLOCATED);
  InBuffer b;  // calls on a handle that is not open, and a long message with no prepared header
  EXPECT_EQ(midi.midiOutPrepareHeader(0, &b.hdr, kMidiHdrSize), MMSYSERR_INVALHANDLE);
  EXPECT_EQ(midi.midiInPrepareHeader(0, &b.hdr, kMidiHdrSize), MMSYSERR_INVALHANDLE);
  EXPECT_EQ(midi.midiConnect(0, 0), MMSYSERR_INVALHANDLE);
  EXPECT_EQ(midi.midiInClose(0), MMSYSERR_INVALHANDLE);
  EXPECT_EQ(midi.midiOutLongMsg(out, &b.hdr, kMidiHdrSize), MIDIERR_UNPREPARED);
  EXPECT_TRUE(cs2x.log().empty());
  std::string text;  // every code of the vocabulary has a text that fits the platform's buffer
  for (MMRESULT code : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 10u, 11u, 64u, 65u, 66u, 67u, 68u, 69u, 70u, 71u})
    EXPECT_TRUE(midi.midiOutGetErrorText(code, text) == MMSYSERR_NOERROR && !text.empty() && text.size() < 128) << code;
  EXPECT_EQ(midi.midiInGetErrorText(12345, text), MMSYSERR_BADERRNUM);
}

TEST_F(Service, AnArmedBufferTakesTheNextSysExWholeOrCutAndAStoppedInputLetsNothingIn) {
  InBuffer b, small, idle;
  ASSERT_EQ(test::arm(midi, in, b), MMSYSERR_NOERROR);
  EXPECT_EQ(midi.midiInUnprepareHeader(in, &b.hdr, kMidiHdrSize), MIDIERR_STILLPLAYING);
  cs2x.transmit(Bytes{0x90, 0x40, 0x7F});  // a played note is a short message
  EXPECT_EQ(rx.shortData * 10 + rx.longData, 10);
  EXPECT_EQ(rx.lastShort.load(), 0x7F4090u);
  const Bytes reply = bulkDump(kModelCs2x, {0x60, 0x00, 0x60}, Bytes(9, 0x22));
  cs2x.transmit(reply);
  cs2x.transmit(reply);  // no buffer left: nothing more is recorded
  EXPECT_EQ(rx.longData.load(), 1);
  EXPECT_EQ(b.recorded(), reply);
  EXPECT_TRUE(b.hdr.dwFlags & MHDR_DONE);
  EXPECT_EQ(midi.midiInStop(in) | midi.midiInUnprepareHeader(in, &b.hdr, kMidiHdrSize), MMSYSERR_NOERROR);
  test::arm(midi, in, small);
  cs2x.transmit(bulkDump(kModelXg, {0x08, 0x04, 0x00}, Bytes(150, 0x01)));
  EXPECT_EQ(small.hdr.dwBytesRecorded, 128u);
  EXPECT_EQ(small.bytes[128], 0);

  midi.midiInStop(in);
  test::arm(midi, in, idle, false);
  cs2x.transmit(Bytes{0xF0, 0x43, 0xF7});  // input stopped
  EXPECT_EQ(midi.midiInClose(in), MIDIERR_STILLPLAYING);  // a buffer is still queued
  EXPECT_EQ(midi.midiInReset(in), MMSYSERR_NOERROR);      // and comes back done and empty
  EXPECT_TRUE(idle.hdr.dwFlags & MHDR_DONE);
  EXPECT_EQ(rx.longData.load(), 3);
  EXPECT_EQ(idle.hdr.dwBytesRecorded, 0u);
  EXPECT_EQ(midi.midiInUnprepareHeader(in, &idle.hdr, kMidiHdrSize) | midi.midiInClose(in), MMSYSERR_NOERROR);
}

// Thru sends from the player's thread while the program sends its own, and an answer passes
// thru from the instrument's own answering thread back into the instrument.
TEST_F(Service, ThruPassesInputOnlyWhileConnectedAndStartedAndDoesNotInterleaveWithOwnSends) {
  const Bytes played{0xF0, 0x7E, 0x01, 0x02, 0x03, 0xF7};
  cs2x.transmit(played);  // neither connected nor started
  ASSERT_EQ(midi.midiConnect(in, out), MMSYSERR_NOERROR);
  cs2x.transmit(played);  // connected, not started
  EXPECT_TRUE(cs2x.log().empty());
  ASSERT_EQ(midi.midiInStart(in), MMSYSERR_NOERROR);
  EXPECT_TRUE(cs2x.inputStarted() && cs2x.thruOn());
  std::thread player([&] {
    for (int i = 0; i < 200; ++i) cs2x.transmit(played);
  });
  for (int i = 0; i < 200; ++i) ASSERT_EQ(test::sendLong(midi, out, paramChange(kModelCs2x, kAddrPerfChannel, 0)), 0u);
  player.join();
  auto log = cs2x.log();
  ASSERT_EQ(log.size(), 400u);
  EXPECT_EQ(std::count_if(log.begin(), log.end(), [&](const auto& m) { return m.bytes == played; }), 200);
  for (const auto& m : log) EXPECT_TRUE(m.bytes == played || m.bytes.size() == 9u);

  InBuffer b;
  ASSERT_EQ(test::arm(midi, in, b), MMSYSERR_NOERROR);
  const Bytes request = dumpRequest(kModelXg, {0x08, 0x07, 0x00}), answer = cs2x.block({0x08, 0x07, 0x00});
  ASSERT_EQ(test::sendLong(midi, out, request), MMSYSERR_NOERROR);
  cs2x.waitIdle();
  EXPECT_EQ(b.recorded(), answer);
  log = cs2x.log();
  EXPECT_EQ(test::hex({log[400].bytes, log[401].bytes}), test::hex({request, answer}));

  midi.midiDisconnect(in, out);
  EXPECT_FALSE(cs2x.thruOn());
  cs2x.transmit(played);
  EXPECT_EQ(cs2x.log().size(), 402u);
}

TEST(PacedService, ALongMessageTakesItsWireTimeBeforeTheCallReturns) {
  test::BuiltIn paced({.paced = true});
  MidiHandle h = 0;
  ASSERT_EQ(paced.midi.midiOutOpen(h, 0), 0u);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(test::sendLong(paced.midi, h, bulkDump(kModelCs2x, {0x60, 0x00, 0x00}, Bytes(89, 0))), MMSYSERR_NOERROR);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::microseconds(32000));  // 100 bytes at 320 µs
}

}  // namespace tessivo
