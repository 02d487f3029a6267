// The preferences record: its layout byte for byte, and what a missing, short, long or
// nonsensical file gives. The round trip through the controls is the preferences' wiring.
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
  std::unique_ptr<App> start() {
    auto app = std::make_unique<App>(midi, screen, [](int) {});
    app->pref().prefsPath = file.path;
    app->Main();
    return app;
  }
  Bytes fileBytes() const {
    std::ifstream in(file.path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), {});
  }
  void write(const Bytes& bytes) {
    std::ofstream out(file.path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  }
};

TEST_F(Prefs, AMissingFileGivesTheDefaultsAndOkWritesEachSettingAtItsPlace) {
  auto app = start();
  EXPECT_FALSE(std::filesystem::exists(file.path));
  app->OKButton_Click();
  Bytes expected(169, 0);  // checks, devices, load flag; the path and 18 reserved bytes blank; two words
  std::fill(expected.begin() + 18, expected.begin() + 163, ' ');
  EXPECT_EQ(fileBytes(), expected);

  PrefForm& p = app->pref();
  for (int m : {5, 8, 16}) p.ChkMlt(m).value = 1;
  p.ChkLdFile.value = 1;
  p.TxtLdFile.text = "/home/me/set.tvw";
  p.Combo1.setIndex(1);
  p.cmbPerfChnl.setIndex(12);  // silent: the program has not started
  p.Slider1.value = 3;
  app->OKButton_Click();
  EXPECT_TRUE(midi.sent.empty());
  const Bytes r = fileBytes();
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
  write(Bytes(r.begin(), r.end()));
  auto app = start();
  EXPECT_EQ(app->pref().Slider1.value, 0);
  EXPECT_EQ(app->pref().cmbPerfChnl.text(), " 1");
  EXPECT_EQ(app->pref().Combo1.index(), 0);
  EXPECT_EQ(app->pref().Combo2.index(), 0);
  setRecordWord(r, kPrefPerfChannel, -1);
  write(Bytes(r.begin(), r.end()));
  EXPECT_EQ(start()->pref().cmbPerfChnl.index(), 0);
}

TEST_F(Prefs, FilesOfAnyLengthOrContentStartTheProgramAndALongerFileKeepsItsTail) {
  for (std::size_t length : {0u, 1u, 20u, 168u, 169u, 5000u}) {
    Bytes junk(length);
    for (std::size_t i = 0; i < length; ++i) junk[i] = static_cast<std::uint8_t>(i * 37 + 11);
    write(junk);
    auto app = start();
    app->OKButton_Click();
    app->Timer1_Tick();
    EXPECT_NE(app->mainForm(), nullptr) << length;
    EXPECT_GE(std::filesystem::file_size(file.path), 169u);
  }
  Bytes longer(300, 0x77);
  std::fill(longer.begin(), longer.begin() + 169, 0);
  write(longer);
  start()->OKButton_Click();
  const Bytes all = fileBytes();
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

}  // namespace tessivo
