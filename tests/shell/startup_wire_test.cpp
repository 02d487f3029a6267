// A whole start against the built-in virtual CS2x: what reaches the instrument, in order, and
// what the main form holds afterwards.
#include <gtest/gtest.h>

#include "support/scripted.h"

namespace tessivo {
using test::hex;
using Texts = std::vector<std::string>;

class StartAgainstInstrument : public ::testing::Test, protected test::BuiltIn {
 protected:
  explicit StartAgainstInstrument(VirtualCs2xOptions options = {}) : test::BuiltIn(options) {}
  test::Events events;
  test::ScriptedScreen screen{events};
  int polls = 0;
  // A silent instrument's waits are counted, not slept; otherwise a reply ends each wait.
  App app{midi, screen, cs2x.options().silent ? SleepFn([this](int) { ++polls; }) : SleepFn()};
  test::TempFile prefs;

  MainForm& start(int perfChannel, std::initializer_list<int> multis = {}) {
    app.pref().prefsPath = prefs.path;
    app.Main();
    app.pref().cmbPerfChnl.setIndex(perfChannel);
    for (int m : multis) app.pref().ChkMlt(m).value = 1;
    app.OKButton_Click();
    app.Timer1_Tick();
    return *app.mainForm();
  }
};

// DspPerf reads its eight blocks between channel 0 and the chosen channel; the start runs it
// twice. Then each Multi in turn, M5 first: the checked Multi 9 read, the others given their
// defaults as five XG bulk dumps, with no channel message (the form is loading); last the
// performance channel. Every list shows its part's channel.
TEST_F(StartAgainstInstrument, TheWireCarriesProgramChangeTwoReadsTheMultisAndTheChannelInOrder) {
  MainForm& form = start(3, {9});
  Texts expected{"F0 43 10 63 50 00 00 00 F7", "B0 00 3F", "B0 20 40", "C0 00"};
  for (int pass = 0; pass < 2; ++pass)
    expected.insert(expected.end(), {"F0 43 10 63 50 00 00 00 F7", "F0 43 20 63 60 00 00 F7", "F0 43 20 63 60 00 40 F7",
                                     "F0 43 20 63 60 00 60 F7", "F0 43 20 63 60 01 00 F7", "F0 43 20 63 60 02 00 F7",
                                     "F0 43 20 63 60 03 00 F7", "F0 43 20 63 60 04 00 F7", "F0 43 20 63 50 00 00 F7",
                                     "F0 43 10 63 50 00 00 03 F7"});
  const Texts sent = wire();
  ASSERT_EQ(sent.size(), expected.size() + 60 + 1);
  EXPECT_EQ(Texts(sent.begin(), sent.begin() + static_cast<std::ptrdiff_t>(expected.size())), expected);
  std::string multis, expectedMultis;  // per Multi message: 'i' a default dump, 'r' a request, and its address
  for (auto m = sent.begin() + static_cast<std::ptrdiff_t>(expected.size()); m != sent.end() - 1; ++m)
    multis += (m->rfind("F0 43 00 4C", 0) == 0 ? "i" + m->substr(18, 8) : m->substr(0, 11) + m->substr(12, 8)) + ", ";
  for (int part = 4; part <= 15; ++part)
    for (const char* address : {"08 %02X 00", "08 %02X 30", "08 %02X 70", "08 %02X 74", "0A %02X 20"}) {
      char a[16];
      std::snprintf(a, sizeof a, address, part);
      expectedMultis += (part == 8 ? "F0 43 20 4C" : "i") + std::string(a) + ", ";
    }
  EXPECT_EQ(multis, expectedMultis);
  EXPECT_EQ(sent.back(), "F0 43 10 63 50 00 00 03 F7");
  EXPECT_TRUE(screen.boxes.empty());
  EXPECT_TRUE(cs2x.thruOn());  // once the start is over
  EXPECT_EQ(form.images().perf.Com0()[PerfImage::kPerfChannelAt], 3);
  // The images hold the instrument's blocks whole.
  const auto& image = form.images().perf.bytes;
  EXPECT_EQ(hex(Bytes(image.begin() + PerfImage::kCom1At, image.begin() + PerfImage::kCom1At + 9)),
            "F0 43 00 63 00 34 60 00 00");
  const auto section0 = form.images().multi.section(8, 0);
  EXPECT_EQ(section0[0], 0xF0);
  EXPECT_EQ(form.row(9).CmbMult.index(), section0[13]);
  for (int m : {5, 8, 10, 16}) EXPECT_EQ(form.row(m).CmbMult.index(), m - 1) << m;
}

class StartSilent : public StartAgainstInstrument {
 protected:
  StartSilent() : StartAgainstInstrument({.silent = true}) {}
};

TEST_F(StartSilent, ASilentInstrumentGivesZeroBlocksAndNoBox) {
  MainForm& form = start(0);
  EXPECT_EQ(polls, 16 * 400);
  EXPECT_TRUE(screen.boxes.empty());
  EXPECT_EQ(form.panel.CmdPrfm.caption, std::string(8, '\0'));
  for (const auto& layer : form.panel.CmdLyr) EXPECT_FALSE(layer.enabled);
  EXPECT_TRUE(app.link().List1.empty());
}

}  // namespace tessivo
