// A signal from outside ends the running program through the event loop, as Exit does once
// its question is answered: the MIDI ports close in the exit's order, no box is shown.
#include <gtest/gtest.h>

#include <csignal>

#include "qt/qt_program.h"
#include "shell/qt/unix_signals.h"

namespace tessivo::qt {

TEST_F(ScriptedQtProgram, SigtermEndsTheStartedProgramWithItsPortsClosedInOrderAndOnlyOnce) {
  int ends = 0;
  UnixSignals watch([&] { ++ends, app.logic().Terminate(), app.afterHandler(); });
  ASSERT_TRUE(watch.installed());
  bool finished = false;
  QObject::connect(&app, &QtApp::finished, [&] { finished = true; });
  ASSERT_NE(startMainForm(), nullptr);
  events.clear();

  ::raise(SIGTERM);  // handled by the watcher: the process goes on until the loop has run
  ::raise(SIGINT);
  ASSERT_TRUE(QTest::qWaitFor([&] { return finished; }, 5000));
  QTest::qWait(50);
  EXPECT_EQ(ends, 1);
  EXPECT_EQ(midi.midiCalls(), (test::Events{"midiDisconnect", "midiInStop", "midiInClose", "midiOutReset", "midiOutClose"}));
  EXPECT_EQ(app.mainWindow(), nullptr);
  EXPECT_TRUE(answers.asked.isEmpty());
}

}  // namespace tessivo::qt
