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
  expected.push_back("F0 43 10 63 50 00 00 03 F7");
  EXPECT_EQ(wire(), expected);
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

TEST_F(StartAgainstInstrument, ACheckedMultiIsReadAndItsChannelShown) {
  MainForm& form = start(0, {9});
  int multiRequests = 0;
  for (const auto& m : wire())
    if (m.rfind("F0 43 20 4C", 0) == 0) {
      ++multiRequests;
      EXPECT_EQ(m.substr(15, 2), "08") << m;  // part index 8 for Multi 9
    }
  EXPECT_EQ(multiRequests, 5);
  const auto section0 = form.images().multi.section(8, 0);
  EXPECT_EQ(section0[0], 0xF0);
  EXPECT_EQ(form.row(9).CmbMult.index(), section0[13]);
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
