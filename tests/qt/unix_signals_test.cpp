// A signal from outside ends the running program through the event loop, as Exit does once
// its question is answered: the MIDI ports close in the exit's order, no box is shown.
#include <gtest/gtest.h>

#include <QPushButton>
#include <QTest>
#include <csignal>

#include "qt/qt_program.h"
#include "shell/qt/unix_signals.h"

namespace tessivo::qt {

TEST(UnixSignals, SigtermEndsTheStartedProgramWithItsPortsClosedInOrderAndOnlyOnce) {
  test::Events events;
  test::ScriptedMidi midi{events};
  // Every dump request answered at once, so the start does not wait two seconds a block.
  midi.answer = [](const Bytes& m) -> std::optional<Bytes> {
    if (m.size() > 2 && m[2] == kDumpRequest) return Bytes{kSysExStart, kSysExEnd};
    return std::nullopt;
  };
  QtApp app{midi};
  test::TempFile prefs;
  app.logic().pref().prefsPath = prefs.path;
  int ends = 0;
  UnixSignals watch([&] {
    ++ends;
    app.logic().Terminate();
    app.afterHandler();
  });
  ASSERT_TRUE(watch.installed());
  bool finished = false;
  QObject::connect(&app, &QtApp::finished, [&] { finished = true; });

  app.start();
  child<QPushButton>(app.prefWindow(), "OKButton")->click();
  ASSERT_TRUE(QTest::qWaitFor([&] { return app.mainWindow() && app.mainWindow()->isVisible(); }, 20000));
  events.clear();

  ::raise(SIGTERM);  // handled by the watcher: the process goes on until the loop has run
  ::raise(SIGINT);
  ASSERT_TRUE(QTest::qWaitFor([&] { return finished; }, 5000));
  QTest::qWait(50);
  EXPECT_EQ(ends, 1);
  EXPECT_EQ(midi.midiCalls(),
            (test::Events{"midiDisconnect", "midiInStop", "midiInClose", "midiOutReset", "midiOutClose"}));
  EXPECT_EQ(app.mainWindow(), nullptr);
}

}  // namespace tessivo::qt
