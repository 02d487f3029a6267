// The system ports against a real JACK server: a program-side port pair talks to a peer
// client, with SysEx sent whole, the thru path passing whatever is played on, and a broken
// SysEx from the peer costing nothing. Replies coming in whole: jack_retrieve_test.
#include <gtest/gtest.h>
#include <rtmidi/RtMidi.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "e2e/jack_side.h"

namespace tessivo {
using namespace std::chrono_literals;

namespace {
// The other end: a JACK client with one output and one input port of its own. As the
// instrument it answers each dump request with the reply it was given.
class Peer {
 public:
  Peer() : out_(RtMidi::UNIX_JACK, "Peer"), in_(RtMidi::UNIX_JACK, "Peer") {
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
    if (!self->reply_.empty() && m->size() > 3 && (*m)[0] == kSysExStart && (*m)[2] == kDumpRequest)
      self->out_.sendMessage(self->reply_.data(), self->reply_.size());
    self->cv_.notify_all();
  }
  RtMidiOut out_;
  RtMidiIn in_;
  std::mutex mutex_;
  std::condition_variable cv_;
  std::vector<Bytes> got_;
  Bytes reply_;
};

}  // namespace

TEST(JackLink, SysExGoesOutWholeThruPassesEverythingAndABrokenSysExSwallowsNothing) {
  ASSERT_TRUE(jackServerRunning()) << "the test needs a JACK server (tests/e2e/with_jackd.sh)";
  Peer peer;
  VirtualCs2x cs2x;
  VirtualCs2xProvider builtIn(cs2x);
  test::JackSide side({&builtIn});
  ASSERT_EQ(side.jack.system(), MidiSystem::Jack);
  MidiLink& link = side.link;
  ASSERT_TRUE(side.open("from-tessivo", "to-tessivo"));
  std::this_thread::sleep_for(100ms);  // let JACK finish the connections

  // Out: a whole 74-byte bulk dump and a program change in one long message.
  const Bytes dump = bulkDump(kModelXg, {0x08, 0x04, 0x30}, Bytes(63, 0x55));
  link.SndSysEx(dump);
  link.SndSysEx(Bytes{0xB0, 0x00, 0x3F, 0xC0, 0x07});
  auto got = peer.waitFor(3);
  ASSERT_EQ(test::hex(got), (std::vector<std::string>{test::hex(dump), "B0 00 3F", "C0 07"}));

  // Thru: what is played into the input comes out at the output, clock and all.
  link.ConnectThru();
  const Bytes note{0x90, 0x3C, 0x64};
  const std::vector<Bytes> played{note, {0xF8}, {0xFA}, {0xF2, 0x10, 0x02}, {0xF8}, {0xF1, 0x21},
                                  {0xF0, 0x43, 0x10, 0x63, 0x60, 0x00, 0x33, 0x01, 0xF7}, {0xFE}, {0xF8}, {0xFC},
                                  {0xFB}, {0x80, 0x3C, 0x00}};
  for (const Bytes& m : played) peer.send(m);
  got = peer.waitFor(15);
  const auto from = [&got](std::size_t i) {  // what the peer received from message i on
    return test::hex(std::vector<Bytes>(got.begin() + static_cast<std::ptrdiff_t>(std::min(i, got.size())), got.end()));
  };
  EXPECT_EQ(from(3), test::hex(played));

  // A reply whose F7 was lost (here: a lone F0) costs nothing more: played notes still pass
  // and the next block comes whole.
  const Bytes com1 = bulkDump(kModelCs2x, {0x60, 0x00, 0x00}, Bytes(52, 0x21));
  peer.answerRequestsWith(com1);
  peer.send(Bytes{kSysExStart});
  peer.send(note);
  peer.waitFor(16);  // through before the block cuts thru
  peer.send(Bytes{kSysExStart});  // and one right before the reply
  link.RtrvBlock(kKindCom1, 0, 0);
  const auto block = side.images.perf.Com1();
  EXPECT_EQ(Bytes(block.begin(), block.begin() + 63), com1);
  EXPECT_EQ(link.List1.size(), 63u);
  peer.send(note);
  got = peer.waitFor(18);
  EXPECT_EQ(from(15), test::hex({note, dumpRequest(kModelCs2x, perfBlock(kKindCom1)->address), note}));
  EXPECT_TRUE(side.screen.boxes.empty());
  side.close();
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
