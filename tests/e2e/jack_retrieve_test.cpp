// End to end over JACK: the program's RtMidi ports read a whole Performance and a Multi from
// the virtual CS2x running as its own program behind JACK ports.
#include <gtest/gtest.h>
#include <signal.h>

#include <cstdio>
#include <string_view>

#include "e2e/instrument_process.h"
#include "e2e/jack_side.h"

namespace tessivo {

TEST(JackRetrieve, AWholePerformanceAndAMultiComeFromTheInstrumentBehindJack) {
  ASSERT_TRUE(jackServerRunning()) << "the test needs a JACK server (tests/e2e/with_jackd.sh)";
  test::InstrumentProcess instrument("E2E-CS2x");
  ASSERT_TRUE(instrument.waitReady());
  test::JackSide side;
  MidiLink& link = side.link;
  ASSERT_TRUE(side.open("E2E-CS2x In", "E2E-CS2x Out"));

  const auto t0 = std::chrono::steady_clock::now();
  link.SndSysEx(paramChange(kModelCs2x, kAddrPerfChannel, 2));
  for (const PerfBlock& b : kPerfBlocks) link.RtrvBlock(b.kind, 0, 0);
  EXPECT_EQ(link.List1.size(), 63u + 34 + 20 + 4 * 56 + 37);  // every block came whole
  EXPECT_EQ(side.images.perf.Com0()[PerfImage::kPerfChannelAt], 2);
  link.RtrvMlt(5);
  EXPECT_EQ(link.List1.size(), 52u + 74 + 15 + 23 + 13);
  EXPECT_EQ(side.images.multi.section(4, 1)[73], 0xF7);
  // Prompt replies: far below the two seconds a missing one would cost each of the thirteen blocks.
  EXPECT_LT(std::chrono::steady_clock::now() - t0, std::chrono::seconds(4));
  EXPECT_TRUE(side.screen.boxes.empty());
  side.close();
}

}  // namespace tessivo
