// A flood into the program's input over a real JACK port, from a client of its own: notes,
// timing clock and SysEx at a few thousand messages a second, while the musician releases
// sliders and changes channels. Thru passes every message in the order it came, none is lost,
// the program's own messages all go out too, and the resident memory stays where it was once
// the run has settled. TESSIVO_FLOOD_SECONDS sets the flood's length (25 s by default).
#include <gtest/gtest.h>
#include <rtmidi/RtMidi.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <mutex>

#include "faults/jack_program.h"

namespace tessivo {
using namespace std::chrono_literals;

namespace {

// Message `k` of the flood: mostly notes carrying their number, a clock every fifth, a SysEx
// of a non-commercial maker every hundredth, of 8 to 135 bytes.
Bytes floodMessage(std::uint64_t k) {
  const auto lo = static_cast<std::uint8_t>(k & 0x7F), hi = static_cast<std::uint8_t>((k >> 7) & 0x7F);
  if (k % 100 == 99) {
    Bytes sysEx{0xF0, 0x7D, lo, hi, static_cast<std::uint8_t>((k >> 14) & 0x7F)};
    sysEx.resize(7 + k % 128, static_cast<std::uint8_t>(k % 127));
    sysEx.push_back(0xF7);
    return sysEx;
  }
  if (k % 5 == 4) return {0xF8};
  return {static_cast<std::uint8_t>(k % 2 ? 0x80 : 0x90), lo, hi};
}
bool isFlood(const Bytes& m) {
  return m == Bytes{0xF8} || (m.size() > 1 && m[0] == 0xF0 && m[1] == 0x7D) || (m[0] & 0xE0) == 0x80;
}

std::size_t residentBytes() {
  std::ifstream statm("/proc/self/statm");
  std::size_t size = 0, resident = 0;
  statm >> size >> resident;
  return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

// The other end: floods the program's input, takes what the program's output sends, checks
// the flood's order as it comes (nothing is kept), and until told otherwise answers the start's
// requests as the instrument would.
class FloodPeer {
 public:
  FloodPeer() {
    out_.setErrorCallback(&FloodPeer::sendError, this);
    in_.ignoreTypes(false, false, false);
    in_.setCallback(&FloodPeer::received, this);
    out_.openVirtualPort("to-tessivo");
    in_.openVirtualPort("from-tessivo");
    cs2x_.setAnswerSink([this](std::span<const std::uint8_t> m) { send(Bytes(m.begin(), m.end())); });
  }
  ~FloodPeer() { cs2x_.setAnswerSink(nullptr); }
  void send(const Bytes& m) {
    std::lock_guard lock(sendMutex_);
    out_.sendMessage(m.data(), m.size());
  }
  void stopAnswering() { answering_ = false; }

  std::atomic<std::uint64_t> floodIn{0}, ownIn{0}, outOfOrder{0}, sendErrors{0};
  std::mutex firstWrongMutex;
  std::string firstWrong;

 private:
  static void received(double, std::vector<unsigned char>* message, void* user) {
    auto* self = static_cast<FloodPeer*>(user);
    const Bytes m(message->begin(), message->end());
    if (self->answering_) self->cs2x_.receive(m);
    if (m.empty() || !isFlood(m)) {
      ++self->ownIn;
      return;
    }
    const std::uint64_t k = self->floodIn++;
    if (m != floodMessage(k) && self->outOfOrder++ == 0) {
      std::lock_guard lock(self->firstWrongMutex);
      self->firstWrong = "message " + std::to_string(k) + ": " + test::hex(m) + " instead of " + test::hex(floodMessage(k));
    }
  }
  static void sendError(RtMidiError::Type, const std::string&, void* user) { ++static_cast<FloodPeer*>(user)->sendErrors; }

  RtMidiOut out_{RtMidi::UNIX_JACK, "FloodPeer"};
  RtMidiIn in_{RtMidi::UNIX_JACK, "FloodPeer"};
  std::mutex sendMutex_;
  std::atomic<bool> answering_{true};
  VirtualCs2x cs2x_;
};

}  // namespace

TEST(Flood, ThruKeepsEveryMessageInOrderWhileEditingAndMemoryStaysFlat) {
  ASSERT_TRUE(jackServerRunning()) << "the test needs a JACK server (tests/e2e/with_jackd.sh)";
  const char* secondsText = std::getenv("TESSIVO_FLOOD_SECONDS");
  const auto seconds = std::chrono::seconds(secondsText ? std::max(5, std::atoi(secondsText)) : 25);
  FloodPeer peer;
  test::JackProgram program;
  ASSERT_TRUE(program.start("to-tessivo", "from-tessivo"));
  peer.stopAnswering();
  ASSERT_TRUE(program.screen.boxes.empty());
  MainForm& form = program.form();
  form.edit().EditMult_Click(8);

  // The flood: 30 messages every 10 ms, from a thread of its own.
  std::atomic<bool> flooding{true};
  std::uint64_t floodOut = 0;
  std::thread flood([&] {
    auto next = std::chrono::steady_clock::now();
    while (flooding) {
      for (int i = 0; i < 30; ++i) peer.send(floodMessage(floodOut++));
      next += 10ms;
      std::this_thread::sleep_until(next);
    }
  });

  // The musician: a slider let go every 10 ms, now and then a Multi's channel changed. The
  // memory counts once the run has settled (buffers grown, logs at their bounds).
  const auto start = std::chrono::steady_clock::now();
  const auto settled = start + 5s, end = start + seconds;
  std::size_t rssSettled = 0, rssPeak = 0, edits = 0;
  while (std::chrono::steady_clock::now() < end) {
    const std::size_t row = edits % 32;
    form.edit().sliders[row].value = static_cast<int>((edits * 7) % (form.edit().sliders[row].max + 1));
    form.edit().MouseUp(row);
    if (edits % 50 == 0) form.row(5 + static_cast<int>(edits / 50 % 12)).CmbMult.setIndex(static_cast<int>(edits / 50 % 16));
    ++edits;
    std::this_thread::sleep_for(10ms);
    if (rssSettled == 0 && std::chrono::steady_clock::now() >= settled) rssSettled = residentBytes();
    if (rssSettled != 0) rssPeak = std::max(rssPeak, residentBytes());
  }
  flooding = false;
  flood.join();
  const std::size_t rssEnd = residentBytes();

  // Everything the program's output was handed arrives; then it is counted.
  const auto giveUp = std::chrono::steady_clock::now() + 10s;
  while (peer.floodIn + peer.ownIn < static_cast<std::uint64_t>(program.outs.handed) ||
         peer.floodIn < floodOut) {
    if (std::chrono::steady_clock::now() > giveUp) break;
    std::this_thread::sleep_for(50ms);
  }
  std::printf("flood: %llu messages in %lld s, %zu edits; resident %.1f MiB settled, %.1f MiB at the end, peak %.1f MiB\n",
              static_cast<unsigned long long>(floodOut), static_cast<long long>(seconds.count()), edits,
              rssSettled / 1048576.0, rssEnd / 1048576.0, rssPeak / 1048576.0);
  EXPECT_EQ(peer.sendErrors, 0u);  // the flood itself left whole
  EXPECT_EQ(peer.floodIn, floodOut);
  EXPECT_EQ(peer.outOfOrder, 0u) << peer.firstWrong;
  EXPECT_EQ(peer.floodIn + peer.ownIn, static_cast<std::uint64_t>(program.outs.handed.load()));
  EXPECT_GE(peer.ownIn, edits);
  EXPECT_EQ(program.outs.refused, 0);
  EXPECT_TRUE(program.screen.boxes.empty());
  // A few thousand messages a second for the whole run leave the memory where it settled.
  EXPECT_LT(rssPeak, rssSettled + (std::size_t{2} << 20));
  EXPECT_TRUE(program.app.ExitRequested());
}

}  // namespace tessivo
