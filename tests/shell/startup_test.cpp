// The frame of a run: preferences, splash, the start timer, the order in which Form_Loadx
// opens, connects and shows, its failure paths, and the exit.
#include <gtest/gtest.h>

#include <algorithm>

#include "shell/app.h"
#include "support/scripted.h"

namespace tessivo {

class Startup : public ::testing::Test {
 protected:
  test::Events events;
  test::ScriptedMidi midi{events};
  test::ScriptedScreen screen{events};
  App app{midi, screen, [](int) {}};
  test::TempFile prefs;

  void SetUp() override { app.pref().prefsPath = prefs.path; }

  // Main, OK and the timer's tick; returns the events of the tick alone.
  test::Events startToMainForm(const std::function<void()>& beforeOk = {}) {
    app.Main();
    if (beforeOk) beforeOk();
    app.OKButton_Click();
    const std::size_t before = events.size();
    app.Timer1_Tick();
    return test::Events(events.begin() + static_cast<std::ptrdiff_t>(before), events.end());
  }
  static bool has(const test::Events& ev, const std::string& e) {
    return std::find(ev.begin(), ev.end(), e) != ev.end();
  }
};

TEST_F(Startup, MainShowsThePreferencesWithBothDeviceListsAtTheFirstDevice) {
  app.Main();
  EXPECT_TRUE(app.StartingUp);
  EXPECT_EQ(app.pref().Combo1.items, (std::vector<std::string>{"In A", "In B"}));
  EXPECT_EQ(app.pref().Combo2.items, (std::vector<std::string>{"Out A", "Out B"}));
  EXPECT_EQ(app.pref().Combo1.index(), 0);
  EXPECT_EQ(app.pref().Combo2.index(), 0);
  EXPECT_EQ(events, (test::Events{"midiInGetDevCaps 0", "midiInGetDevCaps 1", "midiOutGetDevCaps 0",
                                  "midiOutGetDevCaps 1", "create frmPref", "show frmPref"}));
  EXPECT_EQ(app.mainForm(), nullptr);
}

TEST_F(Startup, OkShowsTheSplashCreatesTheMainFormHiddenAndStartsTheTimer) {
  app.Main();
  events.clear();
  app.OKButton_Click();
  EXPECT_FALSE(app.StartingUp);
  EXPECT_EQ(events, (test::Events{"create frmSplash", "show frmSplash", "create CS2x", "timer 1000", "hide frmPref"}));
  ASSERT_NE(app.mainForm(), nullptr);
  EXPECT_TRUE(midi.midiCalls().empty());  // nothing opens before the timer ticks
}

TEST_F(Startup, TheTickOpensOutputThenInputReadsAndLastConnectsAndShowsTheMainForm) {
  const auto tick = startToMainForm([&] {
    app.pref().Combo1.setIndex(1);
    app.pref().Combo2.setIndex(1);
  });
  ASSERT_GE(tick.size(), 10u);
  EXPECT_EQ(test::Events(tick.begin(), tick.begin() + 3), (test::Events{"timer 0", "midiOutOpen 1", "midiInOpen 1 callback"}));
  // The thru path comes on once, at the end, before the channel goes out and the form shows.
  EXPECT_EQ(std::count(tick.begin(), tick.end(), "midiConnect"), 1);
  EXPECT_EQ(test::Events(tick.end() - 7, tick.end()),
            (test::Events{"midiInStart", "midiOutPrepareHeader", "midiOutLongMsg F0 43 10 63 50 00 00 00 F7",
                          "unload frmSplash", "show CS2x", "unload frmSplash", "show CS2x"}));
  EXPECT_EQ(*(tick.end() - 8), "midiConnect");
  EXPECT_EQ(app.link().MidiOutDev, 1);
  EXPECT_EQ(app.link().MidiInDev, 1);
  EXPECT_EQ(app.link().LoadingFlag, 0);
  EXPECT_TRUE(screen.boxes.empty());
  EXPECT_FALSE(screen.busy);
}

TEST_F(Startup, TheTimerTicksOnceInARun) {
  startToMainForm();
  const std::size_t before = events.size();
  app.Timer1_Tick();
  EXPECT_EQ(events.size(), before);
}

TEST_F(Startup, TheMainFormIsFilledForItsFirstShowing) {
  startToMainForm();
  MainForm& form = *app.mainForm();
  for (int m = 5; m <= 16; ++m) {
    EXPECT_EQ(form.row(m).CmdMult.caption, "Multi Part M" + std::to_string(m));
    ASSERT_EQ(form.row(m).CmbMult.items.size(), 16u);
    EXPECT_EQ(form.row(m).CmbMult.items.front(), " 1");
    EXPECT_EQ(form.row(m).CmbMult.items.back(), " 16");
  }
  EXPECT_EQ(form.row(5).CmbMult.index(), 0);
  EXPECT_EQ(form.row(8).CmbMult.index(), 0);
  EXPECT_EQ(form.row(9).CmbMult.index(), 4);
  EXPECT_EQ(form.row(12).CmbMult.index(), 4);
  EXPECT_EQ(form.row(13).CmbMult.index(), 8);
  EXPECT_EQ(form.row(16).CmbMult.index(), 8);
  ASSERT_EQ(form.CmbMidNtNo.items.size(), 128u);
  EXPECT_EQ(form.CmbMidNtNo.items[0], " 0");
  EXPECT_EQ(form.CmbMidNtNo.items[127], " 127");
  EXPECT_EQ(form.CmbMidNtNo.index(), 67);
  EXPECT_EQ(form.CmbMidVel.index(), 127);
  EXPECT_FALSE(form.SSTab1Visible);
  EXPECT_FALSE(form.List1Visible);
  EXPECT_TRUE(std::all_of(form.pool().PoolFree.begin(), form.pool().PoolFree.begin() + 128, [](auto f) { return f == 256; }));
  EXPECT_EQ(form.SldNt.value, 60);
  EXPECT_EQ(form.SldVel.value, 0);
  const std::int16_t sctn[] = {52, 74, 15, 23, 13, 63, 34, 20, 37, 56, 0};
  for (int i = 0; i < 11; ++i) EXPECT_EQ(app.link().SctnLen[static_cast<std::size_t>(i)], sctn[i]) << i;
  const std::int16_t rtrv[] = {56, 56, 56, 56, 37, 63, 34, 20};
  for (int i = 0; i < 8; ++i) EXPECT_EQ(app.link().RtrvLen[static_cast<std::size_t>(i)], rtrv[i]) << i;
}

TEST_F(Startup, AFailedOutputEndsTheStartButTheFormStillShows) {
  midi.failOnce("midiOutOpen", MMSYSERR_ALLOCATED);
  const auto tick = startToMainForm();
  EXPECT_EQ(tick, (test::Events{"timer 0", "midiOutOpen 0", "box Operation: Open", "unload frmSplash", "show CS2x"}));
  EXPECT_EQ(screen.boxes[0].text, MidiLink::errorBoxText("Open", "out error 4"));
  EXPECT_EQ(app.link().MidiOutHnd, 0u);
  EXPECT_EQ(app.link().MidiInHnd, 0u);
  EXPECT_EQ(app.link().LoadingFlag, -1);  // stays set: the start never finished
  // Every later send reports its failure at the prepare step.
  midi.failAlways("midiOutPrepareHeader", MMSYSERR_INVALHANDLE);
  app.link().SndSysEx(Bytes{0xF0, 0x43, 0x10, 0x63, 0x50, 0x00, 0x00, 0x00, 0xF7});
  EXPECT_EQ(screen.boxes.back().text, MidiLink::errorBoxText("Out Prepare ", "out error 5"));
}

TEST_F(Startup, AFailedInputIsReportedAndTheStartGoesOnWithSendsOnly) {
  midi.failOnce("midiInOpen", MMSYSERR_ALLOCATED);
  startToMainForm();
  // The sends work; each of the sixteen Performance blocks fails at its first input call,
  // and so does the thru connection.
  ASSERT_EQ(screen.boxes.size(), 18u);
  EXPECT_EQ(screen.boxes[0].text, MidiLink::errorBoxText("Open", "in error 4"));
  for (std::size_t i = 1; i <= 16; ++i) EXPECT_EQ(screen.boxes[i].text, MidiLink::errorBoxText("InPrepHdr", "in error 5"));
  EXPECT_EQ(screen.boxes[17].text, MidiLink::errorBoxText("Connect", "in error 5"));
  EXPECT_EQ(midi.calls["midiOutLongMsg"], 1 + 1 + 2 * 2 + 1);  // channel 0, program, 2 x DspPerf, channel
  EXPECT_EQ(app.link().LoadingFlag, 0);
}

TEST_F(Startup, AFailedInputStartIsReported) {
  midi.failOnce("midiInStart", MMSYSERR_ERROR);
  startToMainForm();
  ASSERT_EQ(screen.boxes.size(), 1u);
  EXPECT_EQ(screen.boxes[0].text, MidiLink::errorBoxText("InStart", "in error 1"));
}

TEST_F(Startup, ClosingThePreferencesAtTheFirstStartEndsTheProgram) {
  app.Main();
  app.PrefClosed();
  EXPECT_TRUE(app.finished());
  EXPECT_FALSE(has(events, "show frmSplash"));
  EXPECT_FALSE(has(events, "create CS2x"));
  EXPECT_EQ(midi.calls["midiOutOpen"] + midi.calls["midiInOpen"], 0);
}

TEST_F(Startup, ThePreferencesLaterOnlyHideAndOkStartsNothingNew) {
  startToMainForm();
  events.clear();
  app.StrtupPref_Click();
  app.OKButton_Click();
  app.StrtupPref_Click();
  app.PrefClosed();
  EXPECT_EQ(events, (test::Events{"show frmPref", "hide frmPref", "show frmPref", "hide frmPref"}));
  EXPECT_FALSE(app.finished());
}

TEST_F(Startup, ExitAsksAndCancelKeepsEverythingRunning) {
  startToMainForm();
  events.clear();
  screen.answers.push_back(MsgAnswer::Cancel);
  EXPECT_FALSE(app.ExitRequested());
  EXPECT_EQ(events, (test::Events{"box Do you really want to exit program?"}));
  EXPECT_EQ(screen.boxes.back().title, "Exit");
  EXPECT_EQ(screen.boxes.back().buttons, MsgButtons::OkCancel);
  EXPECT_EQ(screen.boxes.back().icon, MsgIcon::Question);
  EXPECT_FALSE(app.finished());
}

TEST_F(Startup, ExitClosesThePortsInOrder) {
  startToMainForm();
  events.clear();
  const std::size_t sentBefore = midi.sent.size();
  EXPECT_TRUE(app.ExitRequested());
  EXPECT_EQ(events, (test::Events{"box Do you really want to exit program?", "midiDisconnect", "midiInStop",
                                  "midiInClose", "midiOutReset", "midiOutClose", "unload frmPref", "unload CS2x"}));
  EXPECT_TRUE(app.finished());
  EXPECT_EQ(midi.sent.size(), sentBefore);  // no All Notes Off at exit
}

TEST_F(Startup, ExitReportsEachFailedCloseAndGoesOn) {
  startToMainForm();
  midi.failOnce("midiInStop", MMSYSERR_INVALHANDLE);
  midi.failOnce("midiInClose", MIDIERR_STILLPLAYING);
  midi.failOnce("midiOutReset", MMSYSERR_ERROR);
  midi.failOnce("midiOutClose", MMSYSERR_NOMEM);
  app.ExitRequested();
  ASSERT_EQ(screen.boxes.size(), 5u);
  EXPECT_EQ(screen.boxes[1].text, MidiLink::errorBoxText("InStop", "in error 5"));
  EXPECT_EQ(screen.boxes[2].text, MidiLink::errorBoxText("Close", "in error 65"));
  EXPECT_EQ(screen.boxes[3].text, MidiLink::errorBoxText("Reset", "out error 1"));
  EXPECT_EQ(screen.boxes[4].text, MidiLink::errorBoxText("Close", "out error 7"));
  EXPECT_TRUE(app.finished());
}

TEST_F(Startup, ExitAfterAFailedOutputClosesNothingThatNeverOpened) {
  midi.failOnce("midiOutOpen", MMSYSERR_ALLOCATED);
  startToMainForm();
  events.clear();
  app.ExitRequested();
  const auto calls = midi.midiCalls();
  EXPECT_EQ(calls, (test::Events{"midiDisconnect", "midiInStop"}));
  EXPECT_EQ(screen.boxes.back().text, MidiLink::errorBoxText("InStop", "in error 5"));
}

}  // namespace tessivo
