// The preferences record: its layout byte for byte, what a missing, short, long or
// nonsensical file gives, and where it lives for a program in its build tree or installed. The round trip through the controls is the preferences' wiring.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/scripted.h"

namespace tessivo {

class Prefs : public ::testing::Test {
 protected:
  test::Events events;
  test::ScriptedMidi midi{events};
  test::ScriptedScreen screen{events};
  test::TempFile file;

  // One program start up to the preferences form.
  std::unique_ptr<App> start() { return start(file.path); }
  std::unique_ptr<App> start(const std::string& prefsPath) {
    auto app = std::make_unique<App>(midi, screen, [](int) {});
    app->pref().prefsPath = prefsPath;
    app->Main();
    return app;
  }
};

TEST_F(Prefs, AMissingFileGivesTheDefaultsAndOkWritesEachSettingAtItsPlace) {
  auto app = start();
  EXPECT_FALSE(std::filesystem::exists(file.path));
  app->OKButton_Click();
  Bytes expected(169, 0);  // checks, devices, load flag; the path and 18 reserved bytes blank; two words
  std::fill(expected.begin() + 18, expected.begin() + 163, ' ');
  EXPECT_EQ(test::readFile(file.path), expected);

  PrefForm& p = app->pref();
  for (int m : {5, 8, 16}) p.ChkMlt(m).value = 1;
  p.ChkLdFile.value = 1;
  p.TxtLdFile.text = "/home/me/set.tvw";
  p.Combo1.setIndex(1);
  p.cmbPerfChnl.setIndex(12);  // silent: the program has not started
  p.Slider1.value = 3;
  app->OKButton_Click();
  EXPECT_TRUE(midi.sent.empty());
  const Bytes r = test::readFile(file.path);
  ASSERT_EQ(r.size(), 169u);
  EXPECT_EQ(test::hex(Bytes(r.begin(), r.begin() + 18)), "01 00 00 01 00 00 00 00 00 00 00 01 00 01 00 01 00 00");
  EXPECT_EQ(std::string(r.begin() + 18, r.begin() + 35), "/home/me/set.tvw ");
  EXPECT_EQ(test::hex(Bytes(r.begin() + 163, r.end())), "03 00 00 00 0C 00");
  // The path comes back blank-filled to its 127 characters; the workspace is the path alone.
  auto next = start();
  EXPECT_EQ(next->pref().TxtLdFile.text, "/home/me/set.tvw" + std::string(127 - 16, ' '));
  EXPECT_EQ(next->pref().workspacePath(), "/home/me/set.tvw");
  // A longer path is cut to its 127 characters.
  next->pref().TxtLdFile.text = std::string(130, 'p');
  next->pref().SvPrefs();
  EXPECT_EQ(start()->pref().TxtLdFile.text, std::string(127, 'p'));
}

TEST_F(Prefs, OutOfRangeValuesReadAsZeroAndAnUnknownDeviceAsTheFirst) {
  PrefsRecord r{};
  setRecordWord(r, kPrefDensity, 9);
  setRecordWord(r, kPrefPerfChannel, 16);
  r[kPrefInDevice] = 7;  // the scripted service has two devices
  r[kPrefOutDevice] = 200;
  test::writeFile(file.path, Bytes(r.begin(), r.end()));
  auto app = start();
  EXPECT_EQ(app->pref().Slider1.value, 0);
  EXPECT_EQ(app->pref().cmbPerfChnl.text(), " 1");
  EXPECT_EQ(app->pref().Combo1.index(), 0);
  EXPECT_EQ(app->pref().Combo2.index(), 0);
  setRecordWord(r, kPrefPerfChannel, -1);
  test::writeFile(file.path, Bytes(r.begin(), r.end()));
  EXPECT_EQ(start()->pref().cmbPerfChnl.index(), 0);
}

TEST_F(Prefs, FilesOfAnyLengthOrContentStartTheProgramAndALongerFileKeepsItsTail) {
  for (std::size_t length : {0u, 1u, 20u, 168u, 169u, 5000u}) {
    Bytes junk(length);
    for (std::size_t i = 0; i < length; ++i) junk[i] = static_cast<std::uint8_t>(i * 37 + 11);
    test::writeFile(file.path, junk);
    auto app = start();
    app->OKButton_Click();
    app->Timer1_Tick();
    EXPECT_NE(app->mainForm(), nullptr) << length;
    EXPECT_GE(std::filesystem::file_size(file.path), 169u);
  }
  Bytes longer(300, 0x77);
  std::fill(longer.begin(), longer.begin() + 169, 0);
  test::writeFile(file.path, longer);
  start()->OKButton_Click();
  const Bytes all = test::readFile(file.path);
  ASSERT_EQ(all.size(), 300u);
  EXPECT_EQ(all[18], ' ');
  EXPECT_EQ(Bytes(all.begin() + 169, all.end()), Bytes(131, 0x77));
}

TEST_F(Prefs, BrowseOffersWorkspacesAndCancelKeepsThePath) {
  auto app = start();
  app->pref().TxtLdFile.text = "old.tvw";
  app->pref().CmdBrowse_Click();
  EXPECT_EQ(app->pref().TxtLdFile.text, "old.tvw");
  ASSERT_EQ(screen.dialogs.size(), 1u);
  EXPECT_EQ(screen.dialogs[0].filter, "Tessivo Workspace (*.tvw)|*.tvw");
  EXPECT_EQ(screen.dialogs[0].filterIndex, 2);
  EXPECT_EQ(screen.dialogs[0].flags, 4);
}

// A scratch folder with a program folder in it, removed with all it holds.
struct ScratchFolder {
  ScratchFolder() { std::filesystem::create_directories(program); }
  ~ScratchFolder() {
    std::error_code ec;
    std::filesystem::remove_all(root.path, ec);
  }
  test::TempFile root;
  std::string program = root.path + "/bin";
};

TEST(PrefsPlace, TheMarkerKeepsTheRecordBesideTheProgramElseTheUsersConfigurationFolderHoldsIt) {
  ScratchFolder scratch;
  const std::string& bin = scratch.program;
  const std::string inConfig = "/home/u/.config/tessivo/tessivo.ini";
  EXPECT_EQ(prefsPathFor(bin, "/x/cfg", "/home/u"), "/x/cfg/tessivo/tessivo.ini");
  // An unset, empty or relative XDG_CONFIG_HOME is ignored.
  EXPECT_EQ(prefsPathFor(bin, nullptr, "/home/u"), inConfig);
  EXPECT_EQ(prefsPathFor(bin, "", "/home/u"), inConfig);
  EXPECT_EQ(prefsPathFor(bin, "cfg", "/home/u"), inConfig);
  // No folder of the user's at all: beside the program, where a save may fail but nothing else.
  EXPECT_EQ(prefsPathFor(bin, nullptr, nullptr), bin + "/tessivo.ini");
  EXPECT_EQ(prefsPathFor(bin, "", ""), bin + "/tessivo.ini");
  // A writable program folder decides nothing (root's /usr/bin is); the marker alone does.
  std::ofstream(scratch.root.path + "/" + kPrefsBesideMarker);
  EXPECT_EQ(prefsPathFor(bin, "/x/cfg", "/home/u"), "/x/cfg/tessivo/tessivo.ini");
  std::ofstream(bin + "/" + kPrefsBesideMarker);
  EXPECT_EQ(prefsPathFor(bin, "/x/cfg", "/home/u"), bin + "/tessivo.ini");
  EXPECT_EQ(prefsPathFor(bin, nullptr, nullptr), bin + "/tessivo.ini");
}

TEST_F(Prefs, TheFirstSaveMakesTheConfigurationFolderForTheUserAloneAndTheNextStartReadsIt) {
  ScratchFolder scratch;
  const std::string config = scratch.root.path + "/home/.config";
  const std::string path = prefsPathFor(scratch.program, nullptr, (scratch.root.path + "/home").c_str());
  ASSERT_EQ(path, config + "/tessivo/tessivo.ini");
  auto app = start(path);
  app->pref().Slider1.value = 2;
  app->OKButton_Click();
  ASSERT_EQ(std::filesystem::file_size(path), 169u);
  for (const std::string& folder : {config, config + "/tessivo"})
    EXPECT_EQ(std::filesystem::status(folder).permissions(), std::filesystem::perms::owner_all) << folder;
  EXPECT_EQ(start(path)->pref().Slider1.value, 2);
  EXPECT_FALSE(std::filesystem::exists(scratch.program + "/tessivo.ini"));

  // A file where the folder should be: the save fails, the program goes on.
  std::ofstream(scratch.root.path + "/blocked");
  const std::string blocked = scratch.root.path + "/blocked/tessivo/tessivo.ini";
  EXPECT_FALSE(writePrefsRecord(blocked, PrefsRecord{}));
  app = start(blocked);
  app->OKButton_Click();
  app->Timer1_Tick();
  EXPECT_NE(app->mainForm(), nullptr);
}

}  // namespace tessivo
