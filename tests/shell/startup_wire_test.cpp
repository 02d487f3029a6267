// A whole start against the built-in virtual CS2x: what reaches the instrument, in order, and
// what the main form shows afterwards.
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

// DspPerf reads its eight blocks between channel 0 and the chosen channel; the start runs it twice.
TEST_F(StartAgainstInstrument, TheWireCarriesProgramChangeTwoReadsAndTheChannelInOrder) {
  start(3);
  Texts expected{"F0 43 10 63 50 00 00 00 F7", "B0 00 3F", "B0 20 40", "C0 00"};
  for (int pass = 0; pass < 2; ++pass)
    expected.insert(expected.end(), {"F0 43 10 63 50 00 00 00 F7", "F0 43 20 63 60 00 00 F7", "F0 43 20 63 60 00 40 F7",
                                     "F0 43 20 63 60 00 60 F7", "F0 43 20 63 60 01 00 F7", "F0 43 20 63 60 02 00 F7",
                                     "F0 43 20 63 60 03 00 F7", "F0 43 20 63 60 04 00 F7", "F0 43 20 63 50 00 00 F7",
                                     "F0 43 10 63 50 00 00 03 F7"});
  // Then no Multi box checked: each Multi gets its defaults, M5 first, as five XG bulk dumps
  // with no channel message between (the form is loading); last the performance channel.
  const Texts sent = wire();
  ASSERT_EQ(sent.size(), expected.size() + 60 + 1);
  EXPECT_EQ(Texts(sent.begin(), sent.begin() + static_cast<std::ptrdiff_t>(expected.size())), expected);
  const std::array<std::string, 5> addresses{"08 %02X 00", "08 %02X 30", "08 %02X 70", "08 %02X 74", "0A %02X 20"};
  for (int part = 4; part <= 15; ++part)
    for (std::size_t s = 0; s < 5; ++s) {
      const std::string& dump = sent[expected.size() + static_cast<std::size_t>(part - 4) * 5 + s];
      char address[16];
      std::snprintf(address, sizeof address, addresses[s].c_str(), part);
      EXPECT_EQ(dump.substr(0, 11), "F0 43 00 4C") << dump;
      EXPECT_EQ(dump.substr(18, 8), address) << dump;
    }
  EXPECT_EQ(sent[expected.size() + 3 * 5].substr(0, 47), "F0 43 00 4C 00 29 08 07 00 00 00 00 00 07 01 01");
  EXPECT_EQ(sent.back(), "F0 43 10 63 50 00 00 03 F7");
  EXPECT_TRUE(screen.boxes.empty());
  EXPECT_EQ(cs2x.performanceChannel(), 3);
  EXPECT_EQ(app.mainForm()->images().perf.Com0()[PerfImage::kPerfChannelAt], 3);
  // The instrument's input runs with thru on once the start is over.
  EXPECT_TRUE(cs2x.inputStarted());
  EXPECT_TRUE(cs2x.thruOn());
}

TEST_F(StartAgainstInstrument, TheFormShowsTheFirstPresetAndItsLayersAndAProgramChangesIt) {
  MainForm& form = start(0);
  EXPECT_EQ(form.panel.CmdPrfm.caption, "Ministry");
  EXPECT_EQ(form.panel.TxtLyr[0].text, "MinistryA");
  PerfImage& image = form.images().perf;
  for (int layer = 1; layer <= 4; ++layer)
    EXPECT_EQ(form.panel.CmdLyr[static_cast<std::size_t>(layer - 1)].enabled, image.layerSwitch(layer) == 1) << layer;
  // The image holds the instrument's blocks whole.
  EXPECT_EQ(hex(Bytes(image.bytes.begin() + PerfImage::kCom1At, image.bytes.begin() + PerfImage::kCom1At + 9)),
            "F0 43 00 63 00 34 60 00 00");
  EXPECT_EQ(image.Com0()[PerfImage::kPerfChannelAt], 0);
  EXPECT_EQ(app.link().List1.size(), 63u + 34 + 20 + 4 * 56 + 37);

  form.performance().OptBank2_Click();
  form.panel.CmbPrgm.pick(5);
  EXPECT_EQ(form.panel.CmdPrfm.caption, "Pno&Str ");
  form.performance().OptUser_Click();
  form.panel.CmbPrgm.pick(127);
  EXPECT_EQ(form.panel.CmdPrfm.caption.size(), 8u);
  EXPECT_NE(form.panel.CmdPrfm.caption, "Pno&Str ");
  EXPECT_TRUE(screen.boxes.empty());
}

// Multi 9 alone checked: defaults for M5..M8, M9 read, defaults for M10..M16, in that order,
// and every list shows its part's channel without a channel message.
TEST_F(StartAgainstInstrument, ACheckedMultiIsReadInItsPlaceAmongTheInitialisedAndEveryChannelShown) {
  MainForm& form = start(0, {9});
  std::string parts;  // per Multi message: 'i' a default dump, 'r' a request, with the part
  for (const auto& m : wire()) {
    if (m.rfind("F0 43 00 4C", 0) == 0) parts += "i" + m.substr(21, 2) + " ";
    else if (m.rfind("F0 43 20 4C", 0) == 0) parts += "r" + m.substr(15, 2) + " ";
    EXPECT_NE(m.rfind("F0 43 10 4C", 0), 0u) << "an XG parameter change while loading: " << m;
  }
  std::string expected;
  for (int part = 4; part <= 15; ++part)
    for (int s = 0; s < 5; ++s) expected += (part == 8 ? "r" : "i") + hex(Bytes{static_cast<std::uint8_t>(part)}) + " ";
  EXPECT_EQ(parts, expected);
  const auto section0 = form.images().multi.section(8, 0);
  EXPECT_EQ(section0[0], 0xF0);
  EXPECT_EQ(form.row(9).CmbMult.index(), section0[13]);
  for (int m : {5, 8, 10, 16}) EXPECT_EQ(form.row(m).CmbMult.index(), m - 1) << m;
}

TEST_F(StartAgainstInstrument, NoGestureLeavesANoteSoundingAfterTheNextDrop) {
  MainForm& form = start(0);
  form.audition().CmdMult_Press(9, form.row(9).CmbMult.index());
  form.audition().CmdMult_Press(13, form.row(13).CmbMult.index());
  form.audition().CmdPrfm_Press();  // a release that never came
  EXPECT_EQ(cs2x.soundingNotes().size(), 3u);
  form.DragDrop("CmdLyr2", "CmdMult9");  // dropped on a plain target
  EXPECT_TRUE(cs2x.soundingNotes().empty());
  form.audition().CmdLyr_Press(1);
  form.audition().CmdLyr_Release(1);
  EXPECT_TRUE(cs2x.soundingNotes().empty());
  // The auditioned Layer's siblings come back as they were read.
  for (int layer = 2; layer <= 4; ++layer)
    EXPECT_EQ(cs2x.layerSwitch(layer), form.performance().LyrOnTbl[static_cast<std::size_t>(layer)]) << layer;
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
