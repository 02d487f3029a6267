// The JACK server stops in the middle of a Workspace load and in the middle of a retrieve,
// between two messages, with the instrument (the virtual CS2x as a program of its own) behind
// its ports. Each case stops its server, so each runs as a program of its own
// (tests/e2e/with_jackd.sh, one case at a time).
#include <gtest/gtest.h>
#include <signal.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "e2e/instrument_process.h"
#include "faults/jack_program.h"

namespace tessivo {
using namespace std::chrono_literals;

namespace {

// Stops the server as a user does and returns once it has gone and the program's watch has
// seen a second without a cycle.
void stopServer() {
  const char* pid = std::getenv("TESSIVO_JACKD_PID");
  ASSERT_NE(pid, nullptr);
  ASSERT_EQ(kill(static_cast<pid_t>(std::atol(pid)), SIGTERM), 0);
  const auto giveUp = std::chrono::steady_clock::now() + 15s;
  while (jackServerRunning() && std::chrono::steady_clock::now() < giveUp) std::this_thread::sleep_for(50ms);
  ASSERT_FALSE(jackServerRunning());
  std::this_thread::sleep_for(1200ms);
}

class JackGoneMidway : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(jackServerRunning()) << "the test needs a JACK server (tests/e2e/with_jackd.sh)";
    ASSERT_TRUE(instrument.waitReady());
    program = std::make_unique<test::JackProgram>();  // its device lists hold the instrument's ports
    ASSERT_TRUE(program->start("Gone-CS2x Out", "Gone-CS2x In"));
    ASSERT_TRUE(program->screen.boxes.empty());
  }
  // Every box so far is a refused message's, one for each of the program's own. (As its server
  // goes, libjack may hand the input a dead writer's last events again; thru passes them on to
  // a port that refuses them, with no box, as thru never shows one.)
  void expectOneBoxForEachRefusedMessage() {
    EXPECT_EQ(program->screen.boxes.size(), static_cast<std::size_t>(program->outs.refusedHere.load()));
    for (const test::Box& box : program->screen.boxes)
      EXPECT_TRUE(box.text.starts_with("Operation: MidiOutLongMsg \r\n")) << box.text;
  }
  test::InstrumentProcess instrument{"Gone-CS2x"};
  std::unique_ptr<test::JackProgram> program;
};

}  // namespace

TEST_F(JackGoneMidway, AWorkspaceLoadEndsWithTheFilesContentsInTheImages) {
  test::TempFile file, multis, pool;
  Files& files = program->form().files();
  for (int m = 5; m <= 16; ++m) program->form().row(m).CmdMult.caption = "Gone " + std::to_string(m);
  program->screen.saveAnswers.push_back(file.path);
  files.SvWrkSpace_Click();
  const Bytes saved = test::readFile(file.path);
  ASSERT_EQ(saved.size(), 27850u);
  program->form().multis().InitMltall_Click();

  const int first = program->outs.handed;
  program->outs.beforeSend = [&](int before) {
    if (before - first == 20) stopServer();
  };
  program->screen.openAnswers.push_back(file.path);
  files.LdWrkSpace_Click();
  program->outs.beforeSend = nullptr;
  EXPECT_EQ(program->outs.refused, program->outs.handed - first - 20);  // each message after the stop
  EXPECT_GE(program->outs.refused, 48);
  expectOneBoxForEachRefusedMessage();

  // What the file held is in the images (the two saves that read nothing from the instrument).
  program->screen.saveAnswers.push_back(multis.path);
  files.SvMultAll_Click();
  EXPECT_EQ(test::readFile(multis.path), Bytes(saved.begin(), saved.begin() + 2496));
  program->screen.saveAnswers.push_back(pool.path);
  files.SvLayerPool_Click();
  EXPECT_EQ(test::readFile(pool.path), Bytes(saved.begin() + 2952, saved.end()));
  for (int m = 5; m <= 16; ++m) EXPECT_TRUE(program->form().row(m).CmdMult.caption.starts_with("Gone " + std::to_string(m) + " ")) << m;

  // Still usable: an edit says that it could not go out, and the exit ends.
  program->form().edit().EditMult_Click(6);
  program->form().edit().MouseUp(3);
  expectOneBoxForEachRefusedMessage();
  EXPECT_TRUE(program->app.ExitRequested());
}

TEST_F(JackGoneMidway, ARetrieveEndsAsZerosAfterTheBlockThatCame) {
  auto section = [&](std::size_t s) { return program->form().images().multi.section(6, s); };
  for (std::size_t s = 0; s < 5; ++s) std::fill(section(s).begin(), section(s).end(), 0x55);
  const int first = program->outs.handed;
  program->outs.beforeSend = [&](int before) {
    if (before - first == 1) stopServer();  // after the first section's request
  };
  program->form().RtrvMulti_Click(7);
  program->outs.beforeSend = nullptr;
  EXPECT_EQ(program->outs.refusedHere, 4);
  expectOneBoxForEachRefusedMessage();
  // The first section as the instrument sent it, the others zeros where their reply would be.
  EXPECT_EQ(section(0)[0], 0xF0);
  EXPECT_EQ(section(0)[51], 0xF7);
  const std::array<std::size_t, 5> lengths{52, 74, 15, 23, 13};
  for (std::size_t s = 1; s < 5; ++s) {
    EXPECT_TRUE(std::all_of(section(s).begin(), section(s).begin() + lengths[s], [](std::uint8_t b) { return b == 0; })) << s;
    EXPECT_EQ(section(s)[lengths[s]], 0x55) << s;
  }
  EXPECT_TRUE(program->app.ExitRequested());
}

}  // namespace tessivo
