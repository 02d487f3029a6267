// The JACK server stopped under open ports: sending, a retrieve and closing the ports all end
// in their own time, without a crash. The server is stopped from here, so this program runs
// alone against a server of its own (tests/e2e/with_jackd.sh exports its pid).
#include <gtest/gtest.h>
#include <rtmidi/RtMidi.h>
#include <signal.h>

#include <cstdlib>

#include "e2e/jack_side.h"

namespace tessivo {
using namespace std::chrono_literals;

TEST(JackGone, SendsRetrievesAndClosesEndInTimeAfterTheServerStops) {
  ASSERT_TRUE(jackServerRunning()) << "the test needs a JACK server (tests/e2e/with_jackd.sh)";
  const char* pidText = std::getenv("TESSIVO_JACKD_PID");
  ASSERT_NE(pidText, nullptr);
  // A peer with a port each way, left behind: libjack cannot close a port once its server has gone.
  (new RtMidiOut(RtMidi::UNIX_JACK, "Peer"))->openVirtualPort("to-tessivo");
  (new RtMidiIn(RtMidi::UNIX_JACK, "Peer"))->openVirtualPort("from-tessivo");
  test::JackSide side;
  MidiLink& link = side.link;
  ASSERT_TRUE(side.open("from-tessivo", "to-tessivo"));
  ASSERT_EQ(side.midi.midiInStart(link.MidiInHnd), MMSYSERR_NOERROR);

  // Stopped as a user stops it, and at once far more sent than the port's buffer holds: the
  // server cycles no more, so the sender waits a second at most before the port refuses.
  ASSERT_EQ(kill(static_cast<pid_t>(std::atol(pidText)), SIGTERM), 0);
  const auto sending = std::chrono::steady_clock::now();
  for (int i = 0; i < 3000; ++i) link.SndSysEx(Bytes{0xF0, 0x43, 0x10, 0x63, 0x50, 0x00, 0x00, 0x01, 0xF7});
  EXPECT_LT(std::chrono::steady_clock::now() - sending, 3s);
  // The server waits up to five seconds for its clients, so the wait here is longer.
  const auto giveUp = std::chrono::steady_clock::now() + 15s;
  while (jackServerRunning() && std::chrono::steady_clock::now() < giveUp) std::this_thread::sleep_for(50ms);
  ASSERT_FALSE(jackServerRunning());

  const auto t0 = std::chrono::steady_clock::now();
  link.RtrvBlock(kKindCom1, 0, 0);  // nobody answers: about two seconds, then zeros
  EXPECT_EQ(side.images.perf.Com1()[0], 0x00);
  side.close();
  EXPECT_LT(std::chrono::steady_clock::now() - t0, 5s);
  // Each send the port refused has said so in its box.
  ASSERT_FALSE(side.screen.boxes.empty());
  EXPECT_LE(side.screen.boxes.size(), 3001u);
  for (const auto& box : side.screen.boxes) EXPECT_NE(box.text.find("Operation: MidiOutLongMsg "), std::string::npos);
}

}  // namespace tessivo
