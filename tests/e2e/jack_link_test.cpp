// The RtMidi backend against a real JACK server: a program-side port pair talks to a peer
// client, with SysEx sent and received whole, and the thru path passing played notes on.
#include <gtest/gtest.h>
#include <rtmidi/RtMidi.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "e2e/jack_side.h"

namespace tessivo {
using namespace std::chrono_literals;

namespace {
// The other end: a JACK client with one output and one input port of its own.
class Peer {
 public:
  Peer() : out_(RtMidi::UNIX_JACK, "Peer"), in_(RtMidi::UNIX_JACK, "Peer") {
    in_.ignoreTypes(false, true, true);
    in_.setCallback(&Peer::callback, this);
    out_.openVirtualPort("to-tessivo");
    in_.openVirtualPort("from-tessivo");
  }
  void send(const Bytes& m) { out_.sendMessage(m.data(), m.size()); }
  // Waits for `count` messages (at most two seconds) and returns what came.
  std::vector<Bytes> waitFor(std::size_t count) {
    std::unique_lock lock(mutex_);
    cv_.wait_for(lock, 2s, [&] { return got_.size() >= count; });
    return got_;
  }

 private:
  static void callback(double, std::vector<unsigned char>* m, void* user) {
    auto* self = static_cast<Peer*>(user);
    std::lock_guard lock(self->mutex_);
    self->got_.emplace_back(m->begin(), m->end());
    self->cv_.notify_all();
  }
  RtMidiOut out_;
  RtMidiIn in_;
  std::mutex mutex_;
  std::condition_variable cv_;
  std::vector<Bytes> got_;
};

}  // namespace

TEST(JackLink, SysExGoesOutAndComesInWholeAndThruPassesNotes) {
  ASSERT_TRUE(jackServerRunning()) << "the test needs a JACK server (tests/e2e/with_jackd.sh)";
  Peer peer;
  VirtualCs2x cs2x;
  VirtualCs2xProvider builtIn(cs2x);
  test::JackSide side({&builtIn});
  ASSERT_EQ(side.jack.system(), MidiSystem::Jack);
  PortMidiService& midi = side.midi;
  MidiLink& link = side.link;
  ASSERT_TRUE(side.open("from-tessivo", "to-tessivo"));
  std::this_thread::sleep_for(100ms);  // let JACK finish the connections

  // Out: a whole 74-byte bulk dump and a program change in one long message.
  const Bytes dump = bulkDump(kModelXg, {0x08, 0x04, 0x30}, Bytes(63, 0x55));
  link.SndSysEx(dump);
  link.SndSysEx(Bytes{0xB0, 0x00, 0x3F, 0xC0, 0x07});
  auto got = peer.waitFor(3);
  ASSERT_EQ(got.size(), 3u);
  EXPECT_EQ(got[0], dump);
  EXPECT_EQ(got[1], (Bytes{0xB0, 0x00, 0x3F}));
  EXPECT_EQ(got[2], (Bytes{0xC0, 0x07}));

  // In: an armed buffer takes the peer's SysEx whole and the flag rises.
  test::InBuffer buffer;
  ASSERT_EQ(test::arm(midi, link.MidiInHnd, buffer), 0u);
  link.LongDataFlag.clear();
  const Bytes reply = bulkDump(kModelCs2x, {0x60, 0x00, 0x00}, Bytes(52, 0x21));
  peer.send(reply);
  for (int i = 0; i < 400 && link.LongDataFlag.load() == 0; ++i) std::this_thread::sleep_for(5ms);
  EXPECT_EQ(link.LongDataFlag.load(), -1);
  midi.midiInStop(link.MidiInHnd);
  midi.midiInReset(link.MidiInHnd);
  ASSERT_EQ(midi.midiInUnprepareHeader(link.MidiInHnd, &buffer.hdr, kMidiHdrSize), 0u);
  EXPECT_EQ(buffer.recorded(), reply);

  // Thru: a note played into the input comes out at the output.
  ASSERT_EQ(midi.midiConnect(link.MidiInHnd, link.MidiOutHnd), 0u);
  ASSERT_EQ(midi.midiInStart(link.MidiInHnd), 0u);
  peer.send(Bytes{0x90, 0x3C, 0x64});
  got = peer.waitFor(4);
  ASSERT_EQ(got.size(), 4u);
  EXPECT_EQ(got[3], (Bytes{0x90, 0x3C, 0x64}));

  midi.midiDisconnect(link.MidiInHnd, link.MidiOutHnd);
  EXPECT_EQ(midi.midiInStop(link.MidiInHnd), 0u);
  EXPECT_EQ(midi.midiInClose(link.MidiInHnd), 0u);
  EXPECT_EQ(midi.midiOutReset(link.MidiOutHnd), 0u);
  EXPECT_EQ(midi.midiOutClose(link.MidiOutHnd), 0u);
  EXPECT_TRUE(side.screen.boxes.empty());
}

TEST(JackLink, NoServerMeansNoPortsAndNoCrash) {
  // A server name that nobody runs: the provider lists nothing and opens nothing.
  const char* previous = ::getenv("JACK_DEFAULT_SERVER");
  const std::string server = previous ? previous : "";
  ::setenv("JACK_DEFAULT_SERVER", "tessivo-nobody-runs-this", 1);
  EXPECT_FALSE(jackServerRunning());
  RtMidiProvider jack(MidiSystem::Jack);
  EXPECT_EQ(jack.system(), MidiSystem::None);
  EXPECT_TRUE(jack.inputNames().empty());
  MMRESULT err = 0;
  EXPECT_EQ(jack.openOutput(0, err), nullptr);
  EXPECT_NE(err, 0u);
  if (previous) ::setenv("JACK_DEFAULT_SERVER", server.c_str(), 1);
  else ::unsetenv("JACK_DEFAULT_SERVER");
}

}  // namespace tessivo
