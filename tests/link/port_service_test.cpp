// The service of the running program over the built-in instrument: device numbering, the
// header rules of both directions, input start and stop, and the thru path.
#include <gtest/gtest.h>

#include <thread>

#include "support/scripted.h"

namespace tessivo {
using test::hex;
using test::InBuffer;

namespace {
struct Received {
  std::atomic<int> longData{0}, shortData{0};
  std::atomic<std::uintptr_t> lastShort{0};
};
std::uint32_t recordCallback(MidiHandle, std::uint32_t msg, std::uintptr_t inst, std::uintptr_t p1, std::uintptr_t) {
  auto* r = reinterpret_cast<Received*>(inst);
  if (msg == MIM_LONGDATA) ++r->longData;
  if (msg == MIM_DATA) {
    ++r->shortData;
    r->lastShort = p1;
  }
  return 0;
}

// A second device family, so that numbering across families can be seen.
class TwoPorts : public PortProvider {
 public:
  std::vector<std::string> inputNames() override { return {"System In 1", std::string(40, 'x')}; }
  std::vector<std::string> outputNames() override { return {"System Out 1"}; }
  std::unique_ptr<InPort> openInput(std::size_t, MMRESULT& e) override {
    e = MIDIERR_NODEVICE;
    return nullptr;
  }
  std::unique_ptr<OutPort> openOutput(std::size_t, MMRESULT& e) override {
    e = MIDIERR_NODEVICE;
    return nullptr;
  }
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
  std::string name;
  ASSERT_EQ(midi.midiInGetNumDevs(), 3u);
  ASSERT_EQ(midi.midiOutGetNumDevs(), 2u);
  EXPECT_EQ(midi.midiInGetDevCaps(0, name), MMSYSERR_NOERROR);
  EXPECT_EQ(name, "Virtual CS2x (built-in)");
  EXPECT_EQ(midi.midiOutGetDevCaps(1, name), MMSYSERR_NOERROR);
  EXPECT_EQ(name, "System Out 1");
  EXPECT_EQ(midi.midiInGetDevCaps(2, name), MMSYSERR_NOERROR);
  EXPECT_EQ(name.size(), 31u);  // a name is cut to the 32 bytes of szPname
  EXPECT_EQ(midi.midiOutGetDevCaps(2, name), MMSYSERR_BADDEVICEID);
}

TEST_F(Service, FailuresComeBackAsCodes) {
  MidiHandle h = 99;
  EXPECT_EQ(midi.midiOutOpen(h, 1), MIDIERR_NODEVICE);
  EXPECT_EQ(h, 0u);
  EXPECT_EQ(midi.midiOutOpen(h, 7), MMSYSERR_BADDEVICEID);
  EXPECT_EQ(midi.midiOutOpen(h, 0), MMSYSERR_ALLOCATED);
  EXPECT_EQ(midi.midiInOpen(h, 0, nullptr, 0, 0), MMSYSERR_ALLOCATED);
  // Calls on a handle that is not open.
  InBuffer b;
  EXPECT_EQ(midi.midiOutPrepareHeader(0, &b.hdr, kMidiHdrSize), MMSYSERR_INVALHANDLE);
  EXPECT_EQ(midi.midiInPrepareHeader(0, &b.hdr, kMidiHdrSize), MMSYSERR_INVALHANDLE);
  EXPECT_EQ(midi.midiConnect(0, 0), MMSYSERR_INVALHANDLE);
  EXPECT_EQ(midi.midiInClose(0), MMSYSERR_INVALHANDLE);
  // A long message needs a prepared header.
  EXPECT_EQ(midi.midiOutLongMsg(out, &b.hdr, kMidiHdrSize), MIDIERR_UNPREPARED);
  EXPECT_TRUE(cs2x.log().empty());
  // Every code of the vocabulary has a text that fits the platform's buffer.
  std::string text;
  for (MMRESULT code : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 10u, 11u, 64u, 65u, 66u, 67u, 68u, 69u, 70u, 71u}) {
    EXPECT_EQ(midi.midiOutGetErrorText(code, text), MMSYSERR_NOERROR) << code;
    EXPECT_FALSE(text.empty());
    EXPECT_LT(text.size(), 128u);
  }
  EXPECT_EQ(midi.midiInGetErrorText(12345, text), MMSYSERR_BADERRNUM);
}

TEST_F(Service, AnArmedBufferTakesTheNextSysExWholeOrCutAndTheCallbackIsTold) {
  InBuffer b;
  ASSERT_EQ(test::arm(midi, in, b), MMSYSERR_NOERROR);
  EXPECT_EQ(midi.midiInUnprepareHeader(in, &b.hdr, kMidiHdrSize), MIDIERR_STILLPLAYING);

  cs2x.transmit(Bytes{0x90, 0x40, 0x7F});  // a played note is a short message
  EXPECT_EQ(rx.shortData.load(), 1);
  EXPECT_EQ(rx.lastShort.load(), 0x7F4090u);
  EXPECT_EQ(rx.longData.load(), 0);

  const Bytes reply = bulkDump(kModelCs2x, {0x60, 0x00, 0x60}, Bytes(9, 0x22));
  cs2x.transmit(reply);
  EXPECT_EQ(rx.longData.load(), 1);
  EXPECT_EQ(b.recorded(), reply);
  EXPECT_TRUE(b.hdr.dwFlags & MHDR_DONE);
  cs2x.transmit(reply);  // no buffer left: nothing more is recorded
  EXPECT_EQ(rx.longData.load(), 1);
  EXPECT_EQ(midi.midiInStop(in), MMSYSERR_NOERROR);
  EXPECT_EQ(midi.midiInUnprepareHeader(in, &b.hdr, kMidiHdrSize), MMSYSERR_NOERROR);

  InBuffer small;
  test::arm(midi, in, small);
  cs2x.transmit(bulkDump(kModelXg, {0x08, 0x04, 0x00}, Bytes(150, 0x01)));
  EXPECT_EQ(small.hdr.dwBytesRecorded, 128u);
  EXPECT_EQ(small.bytes[128], 0);
}

TEST_F(Service, AStoppedInputLetsNothingInAndResetReturnsTheBufferEmpty) {
  InBuffer b;
  test::arm(midi, in, b, false);
  cs2x.transmit(Bytes{0xF0, 0x43, 0xF7});  // input not started
  EXPECT_EQ(b.hdr.dwBytesRecorded, 0u);
  EXPECT_EQ(midi.midiInClose(in), MIDIERR_STILLPLAYING);  // a buffer is still queued
  EXPECT_EQ(midi.midiInReset(in), MMSYSERR_NOERROR);
  EXPECT_TRUE(b.hdr.dwFlags & MHDR_DONE);
  EXPECT_EQ(b.hdr.dwBytesRecorded, 0u);
  EXPECT_EQ(midi.midiInUnprepareHeader(in, &b.hdr, kMidiHdrSize), MMSYSERR_NOERROR);
  EXPECT_EQ(midi.midiInClose(in), MMSYSERR_NOERROR);
}

TEST_F(Service, ThruPassesInputToOutputOnlyWhileConnectedAndStarted) {
  const Bytes note{0x90, 0x3C, 0x64};
  cs2x.transmit(note);  // neither connected nor started
  ASSERT_EQ(midi.midiConnect(in, out), MMSYSERR_NOERROR);
  cs2x.transmit(note);  // connected, not started
  EXPECT_TRUE(cs2x.log().empty());
  ASSERT_EQ(midi.midiInStart(in), MMSYSERR_NOERROR);
  EXPECT_TRUE(cs2x.inputStarted());
  EXPECT_TRUE(cs2x.thruOn());
  cs2x.transmit(note);
  ASSERT_EQ(cs2x.log().size(), 1u);
  EXPECT_EQ(cs2x.log()[0].bytes, note);
  midi.midiDisconnect(in, out);
  EXPECT_FALSE(cs2x.thruOn());
  cs2x.transmit(note);
  EXPECT_EQ(cs2x.log().size(), 1u);
}

TEST_F(Service, ThruFromAnotherThreadDoesNotInterleaveWithOwnSends) {
  midi.midiConnect(in, out);
  midi.midiInStart(in);
  const Bytes played{0xF0, 0x7E, 0x01, 0x02, 0x03, 0xF7};
  std::thread player([&] {
    for (int i = 0; i < 200; ++i) cs2x.transmit(played);
  });
  for (int i = 0; i < 200; ++i)
    ASSERT_EQ(test::sendLong(midi, out, {0xF0, 0x43, 0x10, 0x63, 0x50, 0x00, 0x00, 0x00, 0xF7}), 0u);
  player.join();
  const auto log = cs2x.log();
  ASSERT_EQ(log.size(), 400u);
  for (const auto& m : log) EXPECT_TRUE(m.bytes == played || m.bytes.size() == 9u);
}

TEST(PacedService, ALongMessageTakesItsWireTimeBeforeTheCallReturns) {
  test::BuiltIn paced({.paced = true});
  MidiHandle h = 0;
  ASSERT_EQ(paced.midi.midiOutOpen(h, 0), 0u);
  Bytes bytes(100, 0x00);
  bytes.front() = 0xF0;
  bytes.back() = 0xF7;
  MidiHdr hdr{.lpData = bytes.data(), .dwBufferLength = 100};
  const auto start = std::chrono::steady_clock::now();
  paced.midi.midiOutPrepareHeader(h, &hdr, kMidiHdrSize);
  paced.midi.midiOutLongMsg(h, &hdr, kMidiHdrSize);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::microseconds(32000));  // 100 bytes at 320 µs
  EXPECT_EQ(paced.midi.midiOutUnprepareHeader(h, &hdr, kMidiHdrSize), MMSYSERR_NOERROR);
}

}  // namespace tessivo
