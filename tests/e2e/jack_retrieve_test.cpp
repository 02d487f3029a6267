// End to end over JACK: the program's RtMidi ports read a whole Performance and a Multi from
// the virtual CS2x running as its own program behind JACK ports.
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include "e2e/jack_side.h"
#include "perform/performance.h"

extern char** environ;

namespace tessivo {

namespace {
// The virtual CS2x tool as a child process; it says "ready" once its ports are open.
class InstrumentProcess {
 public:
  explicit InstrumentProcess(const std::string& name) {
    int out[2];
    if (pipe(out) != 0) return;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, out[0]);
    std::string tool = VIRTUAL_CS2X_TOOL;
    std::vector<char*> argv{tool.data(), const_cast<char*>("--jack"), const_cast<char*>("--name"),
                            const_cast<char*>(name.c_str()), nullptr};
    if (posix_spawn(&pid_, tool.c_str(), &actions, nullptr, argv.data(), environ) != 0) pid_ = -1;
    posix_spawn_file_actions_destroy(&actions);
    close(out[1]);
    stdout_ = fdopen(out[0], "r");
  }
  ~InstrumentProcess() {
    if (pid_ > 0) {
      kill(pid_, SIGTERM);
      int status = 0;
      waitpid(pid_, &status, 0);
    }
    if (stdout_) fclose(stdout_);
  }
  bool waitReady() {
    if (pid_ <= 0 || !stdout_) return false;
    char line[256];
    while (fgets(line, sizeof line, stdout_))
      if (std::string(line).rfind("ready", 0) == 0) return true;
    return false;
  }

 private:
  pid_t pid_ = -1;
  FILE* stdout_ = nullptr;
};

}  // namespace

TEST(JackRetrieve, AWholePerformanceAndAMultiComeFromTheInstrumentBehindJack) {
  ASSERT_TRUE(jackServerRunning()) << "the test needs a JACK server (tests/e2e/with_jackd.sh)";
  InstrumentProcess instrument("E2E-CS2x");
  ASSERT_TRUE(instrument.waitReady());

  test::JackSide side;
  MidiLink& link = side.link;
  Images& images = side.images;
  PerfPanel panel;
  Performance perf(link, images.perf, panel, {[] { return 2; }, [] { return false; }, {}});
  ASSERT_TRUE(side.open("E2E-CS2x In", "E2E-CS2x Out"));
  std::this_thread::sleep_for(std::chrono::milliseconds(100));  // JACK finishes the connections

  const auto t0 = std::chrono::steady_clock::now();
  panel.CmbPrgm.addItem("x");
  perf.OptPreset_Click();
  panel.CmbPrgm.pick(1);  // Preset 1, program 1
  const auto elapsed = std::chrono::steady_clock::now() - t0;
  EXPECT_TRUE(side.screen.boxes.empty());
  EXPECT_EQ(panel.CmdPrfm.caption, "I'mReady");
  EXPECT_EQ(link.List1.size(), 63u + 34 + 20 + 4 * 56 + 37);  // every block came whole
  const auto com1 = images.perf.Com1();
  EXPECT_EQ(com1[0], 0xF0);
  EXPECT_EQ(com1[62], 0xF7);
  EXPECT_EQ(com1[61], SyxChksum(std::span<const std::uint8_t>(com1.data(), 63)));
  EXPECT_EQ(images.perf.Com0()[PerfImage::kPerfChannelAt], 2);
  // Prompt replies: far below the two seconds a missing one would cost each of the eight blocks.
  EXPECT_LT(elapsed, std::chrono::seconds(4));

  link.RtrvMlt(5);
  EXPECT_EQ(images.multi.section(4, 1)[0], 0xF0);
  EXPECT_EQ(images.multi.section(4, 1)[73], 0xF7);
  EXPECT_EQ(images.multi.section(4, 4)[12], 0xF7);
  EXPECT_TRUE(side.screen.boxes.empty());
  side.close();
}

}  // namespace tessivo
