// The own file types against the built-in instrument: records built by hand from their tables
// and compared byte for byte with what the writers wrote, loads compared by images, list,
// captions and wire, the length test of every type, and a save into a missing folder.
#include <gtest/gtest.h>

#include <filesystem>

#include "files/file_io.h"
#include "shell/app.h"
#include "support/scripted.h"

namespace tessivo {
using Texts = std::vector<std::string>;
namespace fs = std::filesystem;

// The record tables: where each section of a Multi record starts and how many bytes it holds.
constexpr std::array<std::size_t, 5> kAt{0, 53, 128, 144, 168}, kLength{52, 74, 15, 23, 13};

class FileTypes : public test::StartedOnInstrument {
 protected:
  test::TempFile a, b;
  Files* files = nullptr;

  void SetUp() override {
    StartedOnInstrument::SetUp();
    app.pref().cmbPerfChnl.setIndex(2);
    files = &form->files();
    // Every Multi different: its sections marked with its part, its own name and channel.
    for (int m = 5; m <= 16; ++m) {
      for (std::size_t s = 0; s < 5; ++s) {
        auto section = part(m - 1, s);
        for (std::size_t i = 9; i + 2 < kLength[s]; ++i) section[i] = static_cast<std::uint8_t>((m * 7 + i + s) & 0x7F);
      }
      form->row(m).CmdMult.caption = (m == 6 ? std::string("Strings   ") : ("Sound " + std::to_string(m) + "    ").substr(0, 10)) + " M" + std::to_string(m);
      form->row(m).CmbMult.setIndex((m * 3) % 16);
    }
    // Three Pool entries whose list order is not their slot order.
    LayerPool& pool = form->pool();
    form->panel.TxtLyr[0].text = "Bright Pad";
    for (int i = 0; i < 3; ++i) form->DragDrop("LbxLyrPool", "TxtLyr1");
    pool.LbxLyrPool.items = {"Alpha", "Bravo Long Name", "Charlie"};
    pool.LbxLyrPool.itemData = {2, 0, 1};
    screen.boxes.clear();
  }
  std::span<std::uint8_t> part(int p, std::size_t s) { return form->images().multi.section(static_cast<std::size_t>(p), s); }
  // A Workspace of the present state, built from the record tables.
  Bytes expectedWorkspace() {
    Bytes w(27850, 0);
    for (int i = 0; i < 12; ++i) {
      const std::size_t at = static_cast<std::size_t>(i) * 192;
      for (std::size_t s = 0; s < 5; ++s) {
        const auto section = part(i + 4, s);
        std::copy(section.begin(), section.begin() + static_cast<std::ptrdiff_t>(kLength[s]), w.begin() + static_cast<std::ptrdiff_t>(at + kAt[s]));
      }
      w[at + 13] = static_cast<std::uint8_t>(form->row(i + 5).CmbMult.index());
      const std::string name = form->row(i + 5).CmdMult.caption.substr(0, 10);
      std::copy(name.begin(), name.end(), w.begin() + static_cast<std::ptrdiff_t>(at + 182));
    }
    const auto& perf = form->images().perf.bytes;
    std::copy(perf.begin(), perf.end(), w.begin() + 2496);
    const LayerPool& pool = form->pool();
    for (std::size_t k = 0; k < 129; ++k) {
      const std::size_t at = 2952 + k * 192;
      std::copy(pool.Pool[k].body.begin(), pool.Pool[k].body.end(), w.begin() + static_cast<std::ptrdiff_t>(at));
      if (k < pool.LbxLyrPool.items.size()) {
        const std::string name = (pool.LbxLyrPool.items[k] + "          ").substr(0, 10);
        std::copy(name.begin(), name.end(), w.begin() + static_cast<std::ptrdiff_t>(at + 182));
        w[27720 + k] = static_cast<std::uint8_t>(pool.LbxLyrPool.itemData[k]);
      }
    }
    w[27849] = static_cast<std::uint8_t>(pool.LbxLyrPool.items.size());
    return w;
  }
};

TEST_F(FileTypes, AWorkspaceHoldsTheRecordsByTheirTablesAndASetupIsItsFirstPart) {
  saveAs(&Files::SvWrkSpace_Click, a.path);
  const Bytes expected = expectedWorkspace();  // after the save's DspPerf read the Performance
  const Bytes written = test::readFile(a.path);
  ASSERT_EQ(written.size(), 27850u);
  EXPECT_EQ(written, expected);
  EXPECT_EQ(screen.busyChanges, (std::vector<bool>{true, false}));
  EXPECT_EQ(screen.dialogs.back().flags, 2);
  EXPECT_EQ(screen.dialogs.back().filter, "Tessivo Workspace (*.tvw)|*.tvw");
  // A Setup is the Workspace's first 2952 bytes; a second save gives the same bytes.
  saveAs(&Files::SvSetuptvf_Click, b.path);
  EXPECT_EQ(test::readFile(b.path), Bytes(written.begin(), written.begin() + 2952));
  saveAs(&Files::SvWrkSpace_Click, b.path);
  EXPECT_EQ(test::readFile(b.path), written);
}

TEST_F(FileTypes, AWorkspaceLoadSendsMultisThenChannelsThenThePerformanceAndRefillsThePool) {
  saveAs(&Files::SvWrkSpace_Click, a.path);
  const Bytes saved = test::readFile(a.path);
  // Change everything the file holds.
  form->multis().InitMltall_Click();
  form->pool().Clear();
  form->edit().EditMult_Click(7);
  app.link().SndSysEx(Bytes{0xF0, 0x43, 0x10, 0x63, 0x60, 0x00, 0x33, 0x00, 0xF7});
  loadFrom(&Files::LdWrkSpace_Click, a.path);
  EXPECT_FALSE(form->edit().visible);
  EXPECT_EQ(screen.dialogs.back().flags, 4);
  EXPECT_EQ(screen.dialogs.back().filter, "Tessivo WorkSpace (*.tvw)|*.tvw");
  // The wire: 60 dumps M5 first (their frames: the wiring's Load rows), the channel messages of
  // the lists that moved, then the Performance Com0 .. Lyr4.
  const Texts wire = BuiltIn::wire();
  ASSERT_GE(wire.size(), 60u + 8);
  const std::size_t channels = wire.size() - 68;
  EXPECT_EQ(channels, 12u);  // every list moved back from its initialised channel
  EXPECT_EQ(wire[60], "F0 43 10 4C 08 04 04 0F F7");
  const Texts perfAddresses{"50 00 00", "60 00 00", "60 00 40", "60 00 60", "60 01 00", "60 02 00", "60 03 00", "60 04 00"};
  for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(wire[60 + channels + i].substr(18, 8), perfAddresses[i]) << i;
  // The Pool's slots in use and no others.
  for (int slot = 0; slot < 128; ++slot) EXPECT_EQ(form->pool().PoolFree[static_cast<std::size_t>(slot)], slot < 3 ? 0 : 256) << slot;
  EXPECT_TRUE(screen.boxes.empty());
  // Images, names, channels and the Pool as the file holds them: saved again, the same bytes.
  saveAs(&Files::SvWrkSpace_Click, b.path);
  EXPECT_EQ(test::readFile(b.path), saved);
}

TEST_F(FileTypes, ASetupLoadLeavesThePoolAndAChannelThatIsNoChannelEndsIt) {
  saveAs(&Files::SvSetuptvf_Click, a.path);
  Bytes setup = test::readFile(a.path);
  form->pool().Clear();
  loadFrom(&Files::LdFullSetup_Click, a.path);
  EXPECT_TRUE(form->pool().LbxLyrPool.items.empty());
  setup[192 * 3 + 13] = 0x10;  // M8 with no channel: the load stops there
  test::writeFile(b.path, setup);
  form->row(9).CmbMult.setIndex(0);
  loadFrom(&Files::LdFullSetup_Click, b.path);
  EXPECT_EQ(form->row(9).CmbMult.index(), 0);
  const Texts wire = BuiltIn::wire();
  EXPECT_EQ(wire.size(), 60u);  // the channels of M5..M7 had not moved, and no Performance
  EXPECT_TRUE(screen.boxes.empty());
}

TEST_F(FileTypes, EveryTypeRefusesAWrongLengthWithItsMessageAndOffersItsDialogAgain) {
  struct Case {
    std::function<void(Files&)> load;
    std::size_t length;
    const char* extension;
  };
  for (const Case& c : std::vector<Case>{{&Files::LdWrkSpace_Click, 2952, ".tvw"},
                                         {&Files::LdFullSetup_Click, 27850, ".tvf"},
                                         {&Files::LdPerform_Click, 457, ".tvx"},
                                         {&Files::LdLayerPool_Click, 27850, ".tvp"},
                                         {&Files::LdMultAll_Click, 18201, ".tvm"},
                                         {[](Files& f) { f.LdMultDlg(8); }, 191, ".tvs"}}) {
    test::writeFile(a.path, Bytes(c.length, 0x11));
    screen.boxes.clear();
    screen.dialogs.clear();
    screen.openAnswers.push_back(a.path);
    cs2x.clearLog();
    c.load(*files);  // then Cancel in the dialog offered again
    ASSERT_EQ(screen.boxes.size(), 1u) << c.extension;
    EXPECT_EQ(screen.boxes[0].text, std::string("Sorry, You have chosen a file of the wrong type. Please choose a file with the extension ") + c.extension);
    EXPECT_EQ(screen.dialogs.size(), 2u) << c.extension;
    EXPECT_TRUE(BuiltIn::wire().empty()) << c.extension;
  }
  // All Multis takes any file up to 18200 bytes: a Setup's first 2496 bytes are its Multis.
  saveAs(&Files::SvSetuptvf_Click, b.path);
  Bytes big = test::readFile(b.path);
  big.resize(18200, 0);
  test::writeFile(a.path, big);
  form->multis().InitMltall_Click();
  screen.boxes.clear();
  loadFrom(&Files::LdMultAll_Click, a.path);
  EXPECT_TRUE(screen.boxes.empty());
  EXPECT_EQ(form->row(6).CmdMult.caption, "Strings    M6");
}

TEST_F(FileTypes, ASingleMultiGoesToAnyPlaceKeepingThatPlacesChannel) {
  saveAs(&Files::SvMultAll_Click, b.path);
  screen.saveAnswers.push_back(a.path);
  files->SvMultDlg(4);
  const Bytes m5 = test::readFile(a.path);
  ASSERT_EQ(m5.size(), 192u);
  EXPECT_EQ(screen.dialogs.back().filter,
            "All Files (*.*)|*.*|Tessivo Files(*.tvx)|*.tvx|Sys-Ex Files (*.syx)|*.syx|Layer Pools (*.tvp)|*.tvp");
  Bytes fromAll = test::readFile(b.path);
  fromAll.resize(192);
  fromAll[13] = part(4, 0)[13];  // an All Multis file holds the list's channel, a single Multi the image's byte
  EXPECT_EQ(m5, fromAll);
  const std::uint8_t channel9 = part(8, 0)[13];
  screen.openAnswers.push_back(a.path);
  cs2x.clearLog();
  files->LdMultDlg(8);
  EXPECT_EQ(form->row(9).CmdMult.caption, "Sound 5    M9");
  for (std::size_t s = 0; s < 5; ++s) EXPECT_EQ(part(8, s)[7], 8);
  EXPECT_EQ(part(8, 0)[13], channel9);
  const Texts wire = BuiltIn::wire();
  ASSERT_EQ(wire.size(), 5u);
  for (const std::string& m : wire) EXPECT_EQ(m.substr(21, 2), "08");
  // Saved from M9 now, the file differs from M5's only in the part bytes (and the channel, which
  // a single Multi keeps as the image holds it).
  screen.saveAnswers.push_back(b.path);
  files->SvMultDlg(8);
  const Bytes m9 = test::readFile(b.path);
  std::vector<std::size_t> differ;
  for (std::size_t i = 0; i < 192; ++i)
    if (m5[i] != m9[i]) differ.push_back(i);
  EXPECT_EQ(differ, (std::vector<std::size_t>{7, 13, 53 + 7, 128 + 7, 144 + 7, 168 + 7}));
}

TEST_F(FileTypes, APoolFileKeepsOrderTextsAndFreeSlots) {
  saveAs(&Files::SvLayerPool_Click, a.path);
  const Bytes pool = test::readFile(a.path);
  ASSERT_EQ(pool.size(), 24898u);
  form->pool().Clear();
  loadFrom(&Files::LdLayerPool_Click, a.path);
  EXPECT_TRUE(BuiltIn::wire().empty());
  EXPECT_EQ(form->pool().LbxLyrPool.itemData, (std::vector<int>{2, 0, 1}));
  EXPECT_EQ(form->pool().lowestFree(), 3);
  // A slot that does not exist ends the list at its position, in silence.
  Bytes broken = pool;
  broken[24768 + 1] = 200;
  test::writeFile(b.path, broken);
  loadFrom(&Files::LdLayerPool_Click, b.path);
  EXPECT_EQ(form->pool().LbxLyrPool.items, Texts{"Alpha     "});
  EXPECT_EQ(form->pool().lowestFree(), 0);
  EXPECT_TRUE(screen.boxes.empty());
  // So does a slot listed twice: two entries on one record would free it for the next drop
  // when either is deleted.
  broken[24768 + 1] = 2;
  test::writeFile(b.path, broken);
  loadFrom(&Files::LdLayerPool_Click, b.path);
  EXPECT_EQ(form->pool().LbxLyrPool.itemData, (std::vector<int>{2}));
  EXPECT_EQ(form->pool().lowestFree(), 0);
}

TEST_F(FileTypes, APerformanceLoadSendsItsSectionsWithThePreferencesChannel) {
  Bytes perf(form->images().perf.bytes.begin(), form->images().perf.bytes.end());
  perf[228 + 9] = 7;   // saved on channel 8
  perf[31] = 2;        // Layer 1 switch 2: off
  perf[88] = 1;
  perf[145] = 0x7F;
  perf[202] = 1;
  const std::string name = "Test\x01Prf";
  std::copy(name.begin(), name.end(), perf.begin() + 275);
  test::writeFile(a.path, perf);
  form->effects().EditEffcts_Click();
  loadFrom(&Files::LdPerform_Click, a.path);
  EXPECT_FALSE(form->effects().visible);
  EXPECT_EQ(form->images().perf.Com0()[9], 2);
  const Texts wire = BuiltIn::wire();
  ASSERT_EQ(wire.size(), 8u);
  EXPECT_EQ(wire[0].substr(0, 26), "F0 43 00 63 00 1A 50 00 00");
  EXPECT_EQ(wire[0].substr(27, 2), "02");
  EXPECT_EQ(wire[7].substr(18, 8), "60 04 00");
  EXPECT_EQ(form->panel.CmdPrfm.caption, name);
  EXPECT_EQ(form->panel.TxtLyr[0].text, "         ");
  EXPECT_FALSE(form->panel.CmdLyr[0].enabled);
  EXPECT_EQ(form->panel.TxtLyr[1].text, name + "B");
  EXPECT_FALSE(form->panel.CmdLyr[2].enabled);
}

// A full disk, an unwritable folder and a killed save are in tests/faults, for every type.
TEST_F(FileTypes, ASaveIntoAFolderThatDoesNotExistWritesNothingAndSaysNothing) {
  saveAs(&Files::SvPerform_Click, "/nowhere/at/all.tvx");
  EXPECT_FALSE(fs::exists("/nowhere/at/all.tvx"));
  EXPECT_TRUE(screen.boxes.empty());
}

TEST_F(FileTypes, AtStartTheChosenWorkspaceFillsTheMultisInsteadOfTheBoxes) {
  saveAs(&Files::SvWrkSpace_Click, a.path);
  test::writeFile(b.path, Bytes(27849, 0));
  app.ExitRequested();  // the built-in instrument takes one program at a time
  auto start = [&](const std::string& path, bool checked) {
    test::Events ev;
    test::ScriptedScreen scr{ev};
    App next(midi, scr);
    next.pref().prefsPath = prefs.path;
    next.Main();
    next.pref().ChkLdFile.value = 1;
    next.pref().TxtLdFile.text = path + "      ";  // the record's filling blanks
    next.pref().ChkMlt(9).value = checked ? 1 : 0;
    next.OKButton_Click();
    cs2x.clearLog();
    next.Timer1_Tick();
    std::size_t requests = 0, dumps = 0;
    for (const std::string& m : BuiltIn::wire()) {
      requests += m.starts_with("F0 43 20 4C");
      dumps += m.starts_with("F0 43 00 4C");
    }
    next.ExitRequested();
    return std::tuple{scr.texts(), requests, dumps, next.mainForm() ? next.mainForm()->pool().LbxLyrPool.items.size() : 0u};
  };
  const auto [boxes, requests, dumps, entries] = start(a.path, true);
  EXPECT_EQ(requests, 0u);
  EXPECT_EQ(dumps, 60u);
  EXPECT_EQ(entries, 3u);
  const auto [wrongBoxes, wrongRequests, wrongDumps, wrongEntries] = start(b.path, true);
  ASSERT_FALSE(wrongBoxes.empty());
  EXPECT_EQ(wrongBoxes[0], MainForm::kStartupWrongType);
  EXPECT_EQ(wrongRequests, 5u);  // Multi 9 from the instrument
  EXPECT_EQ(wrongDumps, 55u);    // the others initialised
  const auto [missingBoxes, missingRequests, missingDumps, missingEntries] = start("/nowhere/at/all.tvw", false);
  EXPECT_EQ(missingBoxes.size(), 1u);  // the exit question alone
  EXPECT_EQ(missingDumps, 60u);
}

// The Load Aid walks a folder: the five types, the matching names, one click a load by the
// reader of the pattern, whatever the file is called.
TEST_F(FileTypes, TheLoadAidLoadsAClickedFileByTheReaderOfItsPattern) {
  const fs::path folder = fs::path(a.path + ".d");
  fs::create_directories(folder / "sub");
  saveAs(&Files::SvPerform_Click, (folder / "one.tvx").string());
  saveAs(&Files::SvWrkSpace_Click, (folder / "two.tvw").string());
  test::writeFile((folder / "short.tvw").string(), Bytes(100, 0));
  LoadAid& aid = form->loadAid();
  form->edit().EditMult_Click(6);
  form->LdAidSub_Click();
  EXPECT_FALSE(form->edit().visible);
  aid.Form_Load(folder.string());
  EXPECT_EQ(aid.cmbLdAid.index(), -1);
  EXPECT_EQ(aid.cmbText, "Workspace     |*.tvw");
  EXPECT_EQ(aid.files, (Texts{"short.tvw", "two.tvw"}));
  EXPECT_EQ(aid.folders, (Texts{"..", "sub"}));
  // Untouched, the list loads as a Workspace; twice clicked, twice sent.
  for (int i = 0; i < 2; ++i) {
    cs2x.clearLog();
    aid.flLdAid_Click("two.tvw");
    EXPECT_EQ(BuiltIn::wire().size(), 68u) << i;
  }
  // (Another type, a click that loads and a folder entered: the wiring table's Load Aid test; a
  // wrong length: the faults' reads.) A pattern of no type does nothing.
  cs2x.clearLog();
  aid.LdAid("*.tvs", (folder / "one.tvx").string());
  EXPECT_TRUE(BuiltIn::wire().empty());
  fs::remove_all(folder);
}

}  // namespace tessivo
