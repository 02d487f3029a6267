// The system ports against a real JACK server: a program-side port pair talks to a peer
// client, with SysEx sent whole, the thru path passing whatever is played on, and a broken
// SysEx from the peer costing nothing.
#include <gtest/gtest.h>
#include <rtmidi/RtMidi.h>

#include <condition_variable>
#include <mutex>

#include "e2e/jack_side.h"

namespace tessivo {
using namespace std::chrono_literals;
using Hexes = std::vector<std::string>;

namespace {
// The other end: a JACK client with a port each way. As the instrument it answers each dump
// request with the reply it was given.
class Peer {
 public:
  Peer() {
    in_.ignoreTypes(false, false, false);
    in_.setCallback(&Peer::callback, this);
    out_.openVirtualPort("to-tessivo");
    in_.openVirtualPort("from-tessivo");
  }
  void send(const Bytes& m) { out_.sendMessage(m.data(), m.size()); }
  void answerRequestsWith(const Bytes& reply) {
    std::lock_guard lock(mutex_);
    reply_ = reply;
  }
  // Waits for `count` messages (at most two seconds); what came from message `from` on.
  Hexes waitFor(std::size_t count, std::size_t from) {
    std::unique_lock lock(mutex_);
    cv_.wait_for(lock, 2s, [&] { return got_.size() >= count; });
    return test::hex(std::vector<Bytes>(got_.begin() + static_cast<std::ptrdiff_t>(std::min(from, got_.size())), got_.end()));
  }

 private:
  static void callback(double, std::vector<unsigned char>* m, void* user) {
    auto* self = static_cast<Peer*>(user);
    std::lock_guard lock(self->mutex_);
    self->got_.emplace_back(m->begin(), m->end());
    if (!self->reply_.empty() && m->size() > 3 && (*m)[0] == kSysExStart && (*m)[2] == kDumpRequest)
      self->out_.sendMessage(self->reply_.data(), self->reply_.size());
    self->cv_.notify_all();
  }
  // What the callback touches exists before the ports, whose JACK thread runs the callback.
  std::mutex mutex_;
  std::condition_variable cv_;
  std::vector<Bytes> got_;
  Bytes reply_;
  RtMidiOut out_{RtMidi::UNIX_JACK, "Peer"};
  RtMidiIn in_{RtMidi::UNIX_JACK, "Peer"};
};
}  // namespace

TEST(JackLink, SysExGoesOutWholeThruPassesEverythingAndABrokenSysExSwallowsNothing) {
  ASSERT_TRUE(jackServerRunning()) << "the test needs a JACK server (tests/e2e/with_jackd.sh)";
  Peer peer;
  VirtualCs2x cs2x;
  VirtualCs2xProvider builtIn(cs2x);
  test::JackSide side({&builtIn});
  MidiLink& link = side.link;
  ASSERT_TRUE(side.open("from-tessivo", "to-tessivo"));

  // Out: a whole 74-byte bulk dump, and a program change in one long message.
  const Bytes dump = bulkDump(kModelXg, {0x08, 0x04, 0x30}, Bytes(63, 0x55));
  link.SndSysEx(dump);
  link.SndSysEx(Bytes{0xB0, 0x00, 0x3F, 0xC0, 0x07});
  EXPECT_EQ(peer.waitFor(3, 0), (Hexes{test::hex(dump), "B0 00 3F", "C0 07"}));

  // Thru: what is played into the input comes out at the output in order, clock and all.
  link.ConnectThru();
  const Bytes note{0x90, 0x3C, 0x64};
  const std::vector<Bytes> played{note, {0xF8}, {0xFA}, {0xF2, 0x10, 0x02}, {0xF8}, {0xF1, 0x21},
                                  {0xF0, 0x43, 0x10, 0x63, 0x60, 0x00, 0x33, 0x01, 0xF7}, {0xFE}, {0xF8}, {0xFC},
                                  {0xFB}, {0x80, 0x3C, 0x00}};
  for (const Bytes& m : played) peer.send(m);
  EXPECT_EQ(peer.waitFor(15, 3), test::hex(played));

  // A reply whose F7 was lost (here: a lone F0) costs nothing more: played notes still pass
  // and the next block comes whole.
  const Bytes com1 = bulkDump(kModelCs2x, {0x60, 0x00, 0x00}, Bytes(52, 0x21));
  peer.answerRequestsWith(com1);
  peer.send(Bytes{kSysExStart});
  peer.send(note);
  peer.waitFor(16, 0);             // through before the block cuts thru
  peer.send(Bytes{kSysExStart});  // and one right before the reply
  link.RtrvBlock(kKindCom1, 0, 0);
  EXPECT_EQ(Bytes(side.images.perf.Com1().begin(), side.images.perf.Com1().begin() + 63), com1);
  EXPECT_EQ(link.List1.size(), 63u);
  peer.send(note);
  EXPECT_EQ(peer.waitFor(18, 15), (Hexes{test::hex(note), "F0 43 20 63 60 00 00 F7", test::hex(note)}));
  EXPECT_TRUE(side.screen.boxes.empty());
  side.close();
}

TEST(JackLink, NoServerMeansNoPortsAndNoCrash) {
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
  previous ? ::setenv("JACK_DEFAULT_SERVER", server.c_str(), 1) : ::unsetenv("JACK_DEFAULT_SERVER");
}

}  // namespace tessivo
