// The frame of a run: preferences, splash, the start timer, the order in which the start
// opens, connects and shows, its failure paths, and the exit.
#include <gtest/gtest.h>

#include <algorithm>

#include "shell/prefs.h"
#include "support/scripted.h"

namespace tessivo {
using test::Events;
using Texts = std::vector<std::string>;

class Startup : public ::testing::Test, protected test::ScriptedProgram {
 protected:
  // Main, OK and the timer's tick; returns the events of the tick alone.
  Events startToMainForm() {
    app.Main();
    app.OKButton_Click();
    const std::size_t before = events.size();
    app.Timer1_Tick();
    return Events(events.begin() + static_cast<std::ptrdiff_t>(before), events.end());
  }
  static std::string box(const char* label, const char* text) { return MidiLink::errorBoxText(label, text); }
};

TEST_F(Startup, MainShowsThePreferencesAndOkTheSplashAndTheHiddenMainFormBeforeAnyPortOpens) {
  app.Main();
  EXPECT_EQ(events, (Events{"midiInGetDevCaps 0", "midiInGetDevCaps 1", "midiOutGetDevCaps 0", "midiOutGetDevCaps 1",
                            "create frmPref", "show frmPref"}));
  EXPECT_EQ(app.mainForm(), nullptr);
  events.clear();
  app.OKButton_Click();
  EXPECT_EQ(events, (Events{"create frmSplash", "show frmSplash", "create CS2x", "timer 1000", "hide frmPref"}));
  EXPECT_NE(app.mainForm(), nullptr);
}

TEST_F(Startup, TheOneTickOpensOutputThenInputReadsAndLastConnectsAndShowsTheMainForm) {
  const auto tick = startToMainForm();
  ASSERT_GE(tick.size(), 10u);
  EXPECT_EQ(Events(tick.begin(), tick.begin() + 3), (Events{"timer 0", "midiOutOpen 0", "midiInOpen 0 callback"}));
  // The thru path comes on once, at the end, before the channel goes out and the form shows.
  EXPECT_EQ(std::count(tick.begin(), tick.end(), "midiConnect"), 1);
  EXPECT_EQ(Events(tick.end() - 8, tick.end()),
            (Events{"midiConnect", "midiInStart", "midiOutPrepareHeader", "midiOutLongMsg F0 43 10 63 50 00 00 00 F7",
                    "unload frmSplash", "show CS2x", "unload frmSplash", "show CS2x"}));
  const std::size_t before = events.size();
  app.Timer1_Tick();  // the timer ticks once in a run
  EXPECT_EQ(events.size(), before);
}

TEST_F(Startup, AFailedOutputEndsTheStartButTheFormShowsAndTheExitClosesNothingThatNeverOpened) {
  midi.failOnce("midiOutOpen", MMSYSERR_ALLOCATED);
  const auto tick = startToMainForm();
  EXPECT_EQ(tick, (Events{"timer 0", "midiOutOpen 0", "box Operation: Open", "unload frmSplash", "show CS2x"}));
  EXPECT_EQ(app.link().LoadingFlag, -1);  // stays set: the start never finished
  events.clear();
  app.ExitRequested();
  EXPECT_EQ(midi.midiCalls(), (Events{"midiDisconnect", "midiInStop"}));
  EXPECT_EQ(screen.texts(), (Texts{box("Open", "out error 4"), "Do you really want to exit program?",
                                   box("InStop", "in error 5")}));
}

TEST_F(Startup, AFailedInputIsReportedAndTheStartGoesOnWithSendsOnly) {
  midi.failOnce("midiInOpen", MMSYSERR_ALLOCATED);
  startToMainForm();
  // The sends work; each of the sixteen Performance blocks fails at its first input call,
  // and so does the thru connection.
  Texts expected{box("Open", "in error 4")};
  expected.insert(expected.end(), 16, box("InPrepHdr", "in error 5"));
  expected.push_back(box("Connect", "in error 5"));
  EXPECT_EQ(screen.texts(), expected);
  // channel 0, program, 2 x DspPerf, twelve Multis of five defaults, channel
  EXPECT_EQ(midi.calls["midiOutLongMsg"], 1 + 1 + 2 * 2 + 12 * 5 + 1);
}

TEST_F(Startup, AFailedInputStartIsReported) {
  midi.failOnce("midiInStart", MMSYSERR_ERROR);
  startToMainForm();
  EXPECT_EQ(screen.texts(), Texts{box("InStart", "in error 1")});
}

TEST_F(Startup, ClosingThePreferencesAtTheFirstStartEndsTheProgram) {
  app.Main();
  app.PrefClosed();
  EXPECT_TRUE(app.finished());
  EXPECT_EQ(std::count(events.begin(), events.end(), "create CS2x"), 0);
  EXPECT_EQ(midi.calls["midiOutOpen"] + midi.calls["midiInOpen"], 0);
}

TEST_F(Startup, ThePreferencesClosedLaterOnlyHide) {
  startToMainForm();
  events.clear();
  app.StrtupPref_Click();
  app.PrefClosed();
  EXPECT_EQ(events, (Events{"show frmPref", "hide frmPref"}));
  EXPECT_FALSE(app.finished());
}

TEST_F(Startup, ExitAsksAndOnOkClosesThePortsInOrder) {
  startToMainForm();
  events.clear();
  const std::size_t sentBefore = midi.sent.size();
  EXPECT_TRUE(app.ExitRequested());
  EXPECT_EQ(events, (Events{"box Do you really want to exit program?", "midiDisconnect", "midiInStop", "midiInClose",
                            "midiOutReset", "midiOutClose", "unload frmPref", "unload frmLoadAid", "unload CS2x"}));
  EXPECT_TRUE(app.finished());
  EXPECT_EQ(midi.sent.size(), sentBefore);  // no All Notes Off at exit
}

TEST_F(Startup, ASignalClosesThePortsInTheExitsOrderWithoutQuestionOrBoxAndOnlyOnce) {
  startToMainForm();
  events.clear();
  const std::size_t sentBefore = midi.sent.size();
  midi.failOnce("midiOutReset", MMSYSERR_ERROR);  // nobody may be there to answer its box
  app.Terminate();
  EXPECT_EQ(events, (Events{"midiDisconnect", "midiInStop", "midiInClose", "midiOutReset", "midiOutClose", "timer 0",
                            "unload frmSplash", "unload frmPref", "unload frmLoadAid", "unload CS2x"}));
  EXPECT_TRUE(app.finished());
  EXPECT_EQ(midi.sent.size(), sentBefore);
  // The exit question still open when the signal came: its answer closes nothing twice.
  events.clear();
  app.ExitRequested();
  EXPECT_EQ(midi.midiCalls(), Events{});
}

TEST_F(Startup, ASignalBeforeThePortsOpenEndsTheProgramWithoutAnyMidiCall) {
  app.Main();
  app.OKButton_Click();  // the splash stands, the start timer has not ticked yet
  app.Terminate();
  EXPECT_TRUE(app.finished());
  app.Timer1_Tick();  // a tick already on its way starts nothing
  EXPECT_EQ(midi.calls["midiOutOpen"] + midi.calls["midiInStop"] + midi.calls["midiInClose"], 0);
}

TEST_F(Startup, ExitReportsEachFailedCloseAndGoesOn) {
  startToMainForm();
  midi.failOnce("midiInStop", MMSYSERR_INVALHANDLE);
  midi.failOnce("midiInClose", MIDIERR_STILLPLAYING);
  midi.failOnce("midiOutReset", MMSYSERR_ERROR);
  midi.failOnce("midiOutClose", MMSYSERR_NOMEM);
  app.ExitRequested();
  EXPECT_EQ(screen.texts(), (Texts{"Do you really want to exit program?", box("InStop", "in error 5"),
                                   box("Close", "in error 65"), box("Reset", "out error 1"), box("Close", "out error 7")}));
  EXPECT_TRUE(app.finished());
}

}  // namespace tessivo
