// The output fails in the middle of a Workspace load: every message it refuses says so in one
// box, the messages after it go out, the images hold what the file held, and a send after
// the output is back reaches the instrument.
#include <gtest/gtest.h>

#include "support/scripted.h"

namespace tessivo {

namespace {
// Where a Workspace holds its Multis, its Performance and its Pool.
constexpr std::size_t kMultisEnd = 2496, kPerfEnd = 2952;
}  // namespace

TEST(OutputFails, AWorkspaceLoadGoesOnAfterRefusedSendsAndTheProgramStaysUsable) {
  VirtualCs2x cs2x;
  VirtualCs2xProvider builtIn(cs2x);
  test::FailingOutputs outs(builtIn);
  PortMidiService midi({&outs});
  test::Events events;
  test::ScriptedScreen screen(events);
  test::TempFile prefs, file, multis, pool;
  App app(midi, screen);
  app.pref().prefsPath = prefs.path;
  app.Main();
  app.OKButton_Click();
  app.Timer1_Tick();
  app.pref().cmbPerfChnl.setIndex(3);
  MainForm& form = *app.mainForm();
  Files& files = form.files();
  // A Workspace that differs from the program's state in every part: names, channels, Pool.
  for (int m = 5; m <= 16; ++m) {
    form.row(m).CmdMult.caption = "Loaded " + std::to_string(m);
    form.row(m).CmbMult.setIndex((m * 5) % 16);
  }
  form.panel.TxtLyr[1].text = "Pad";
  form.DragDrop("LbxLyrPool", "TxtLyr2");
  screen.saveAnswers.push_back(file.path);
  files.SvWrkSpace_Click();
  const Bytes saved = test::readFile(file.path);
  ASSERT_EQ(saved.size(), 27850u);
  form.multis().InitMltall_Click();
  form.pool().Clear();
  ASSERT_TRUE(screen.boxes.empty());

  // The output refuses the load's messages 20 to 49, then takes them again.
  const int first = outs.handed;
  outs.beforeSend = [&](int before) { outs.failing = before - first >= 20 && before - first < 50; };
  cs2x.clearLog();
  screen.openAnswers.push_back(file.path);
  files.LdWrkSpace_Click();
  outs.beforeSend = nullptr;
  const int handed = outs.handed - first;
  ASSERT_GE(handed, 68);  // 60 dumps, the channels, the Performance's 8 sections
  EXPECT_EQ(outs.refused, 30);
  // One box for each refused message, and none of another kind.
  ASSERT_EQ(screen.boxes.size(), 30u);
  for (const test::Box& box : screen.boxes) EXPECT_TRUE(box.text.starts_with("Operation: MidiOutLongMsg \r\n")) << box.text;
  cs2x.waitIdle();
  EXPECT_EQ(cs2x.log().size(), static_cast<std::size_t>(handed - 30));  // the others all went out

  // The images hold what the file held, refused sends or not.
  screen.saveAnswers.push_back(multis.path);
  files.SvMultAll_Click();
  EXPECT_EQ(test::readFile(multis.path), Bytes(saved.begin(), saved.begin() + kMultisEnd));
  screen.saveAnswers.push_back(pool.path);
  files.SvLayerPool_Click();
  EXPECT_EQ(test::readFile(pool.path), Bytes(saved.begin() + kPerfEnd, saved.end()));
  Bytes perf(saved.begin() + kMultisEnd, saved.begin() + kPerfEnd);
  perf[PerfImage::kCom0At + PerfImage::kPerfChannelAt] = 3;  // the preferences' channel wins
  EXPECT_EQ(Bytes(form.images().perf.bytes.begin(), form.images().perf.bytes.end()), perf);

  // The output is back: the next send goes out and says nothing.
  screen.boxes.clear();
  form.edit().EditMult_Click(7);
  cs2x.waitIdle();
  cs2x.clearLog();
  form.edit().sliders[0].value = 42;
  form.edit().MouseUp(0);
  cs2x.waitIdle();
  EXPECT_EQ(cs2x.log().size(), 1u);
  EXPECT_TRUE(screen.boxes.empty());
  app.ExitRequested();
}

}  // namespace tessivo
