// Files that change under the program: one that vanishes or shrinks between the open dialog
// and the read, and one that has grown to gigabytes (a sparse file). A load then ends in its
// defined way with nothing half loaded, and no reader takes more from a file than its record.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "support/scripted.h"

namespace tessivo {
namespace fs = std::filesystem;

namespace {

struct Loader {
  const char* what;
  std::size_t bytes;  // the record
  std::function<void(Files&)> load;
};

const std::vector<Loader>& loaders() {
  static const std::vector<Loader> all{
      {"Workspace", 27850, [](Files& f) { f.LdWrkSpace_Click(); }},
      {"Setup", 2952, [](Files& f) { f.LdFullSetup_Click(); }},
      {"Performance", 456, [](Files& f) { f.LdPerform_Click(); }},
      {"Layer Pool", 24898, [](Files& f) { f.LdLayerPool_Click(); }},
      {"All Multis", 2496, [](Files& f) { f.LdMultAll_Click(); }},
      {"Single Multi", 192, [](Files& f) { f.LdMultDlg(9); }},
  };
  return all;
}

// Bytes the process has read so far, whatever it read them from.
std::uint64_t bytesRead() {
  std::ifstream io("/proc/self/io");
  std::string key;
  std::uint64_t value = 0;
  while (io >> key >> value)
    if (key == "rchar:") return value;
  ADD_FAILURE() << "no rchar in /proc/self/io";
  return 0;
}

class ChangingFiles : public test::StartedOnInstrument {
 protected:
  test::TempFile file;
  // What a load may change: the Multi image, the Performance, the Pool's list, the captions.
  std::string state() {
    const auto& images = form->images();
    std::string s(images.multi.bytes.begin(), images.multi.bytes.end());
    s.append(images.perf.bytes.begin(), images.perf.bytes.end());
    for (const std::string& entry : form->pool().LbxLyrPool.items) s += entry + "|";
    for (int m = 5; m <= 16; ++m) s += form->row(m).CmdMult.caption + "|";
    return s;
  }
};

}  // namespace

TEST_F(ChangingFiles, AFileThatVanishesOrShrinksAfterTheDialogLoadsNothing) {
  // Files of the right length and content: what each type's save writes.
  const std::vector<std::function<void()>> saves{
      [&] { form->files().SvWrkSpace_Click(); }, [&] { form->files().SvSetuptvf_Click(); },
      [&] { form->files().SvPerform_Click(); },  [&] { form->files().SvLayerPool_Click(); },
      [&] { form->files().SvMultAll_Click(); },  [&] { form->files().SvMultDlg(4); }};
  for (std::size_t i = 0; i < loaders().size(); ++i) {
    const Loader& loader = loaders()[i];
    SCOPED_TRACE(loader.what);
    screen.saveAnswers.push_back(file.path);
    saves[i]();
    const Bytes whole = test::readFile(file.path);
    ASSERT_EQ(whole.size(), loader.bytes);
    // The program's state apart from the file's: a reader that fills it before it knows the
    // file's length shows.
    form->row(10).CmdMult.caption = "Before";
    form->images().perf.bytes[300] ^= 0x01;
    for (std::size_t part = 4; part < 16; ++part) form->images().multi.section(part, 1)[20] ^= 0x01;
    const std::string before = state();

    // Gone between the dialog and the read: a silent end.
    screen.afterOpen = [](const std::string& path) { fs::remove(path); };
    screen.openAnswers.push_back(file.path);
    screen.boxes.clear();
    cs2x.clearLog();
    loader.load(form->files());
    EXPECT_TRUE(screen.boxes.empty());
    EXPECT_TRUE(BuiltIn::wire().empty());
    EXPECT_TRUE(state() == before) << "the load changed what the program holds";

    // Shorter by the time it is read: its length decides, not the length it had before.
    test::writeFile(file.path, whole);
    screen.afterOpen = [](const std::string& path) { fs::resize_file(path, 100); };
    screen.openAnswers.push_back(file.path);
    screen.boxes.clear();
    loader.load(form->files());  // the dialog offered again is cancelled
    screen.afterOpen = nullptr;
    if (loader.bytes == 2496) {
      // All Multis takes a short file: what it holds, then zeros.
      EXPECT_TRUE(screen.boxes.empty());
      const auto m5 = form->images().multi.section(4, 0);
      EXPECT_EQ(Bytes(m5.begin(), m5.begin() + 52), Bytes(whole.begin(), whole.begin() + 52));
      for (std::size_t part = 5; part < 16; ++part)
        for (std::size_t s = 0; s < 5; ++s) EXPECT_EQ(form->images().multi.section(part, s)[0], 0) << part << " " << s;
    } else {
      ASSERT_EQ(screen.boxes.size(), 1u);
      EXPECT_TRUE(screen.boxes[0].text.starts_with("Sorry, You have chosen a file of the wrong type."));
      EXPECT_TRUE(BuiltIn::wire().empty());
      EXPECT_TRUE(state() == before) << "the load changed what the program holds";
    }
  }
}

TEST_F(ChangingFiles, AFileGrownToGigabytesIsReadNoFurtherThanItsRecord) {
  // A Workspace at the start of four gigabytes of nothing.
  form->files().CommonDialog1.fileName.clear();
  screen.saveAnswers.push_back(file.path);
  form->files().SvWrkSpace_Click();
  fs::resize_file(file.path, std::uintmax_t{4} << 30);
  constexpr std::uint64_t kFarBelowTheFile = 1 << 20;

  struct Reader {
    std::string what;
    std::function<void()> read;
  };
  std::vector<Reader> readers;
  for (const Loader& loader : loaders())
    readers.push_back({loader.what, [&] {
                         screen.openAnswers.push_back(file.path);
                         loader.load(form->files());
                       }});
  readers.push_back({"Load Aid", [&] { form->loadAid().LdAid("*.tvw", file.path); }});
  readers.push_back({"SysEx listing", [&] {
                       screen.openAnswers.push_back(file.path);
                       form->LdSysEx_Click();
                     }});
  readers.push_back({"preferences", [&] {
                       app.pref().prefsPath = file.path;
                       app.pref().LdPrefs();
                     }});
  for (const Reader& reader : readers) {
    SCOPED_TRACE(reader.what);
    screen.boxes.clear();
    const std::uint64_t start = bytesRead();
    reader.read();
    EXPECT_LT(bytesRead() - start, kFarBelowTheFile);
    // A loader refuses the length with its message (the listing and the preferences take
    // what they read).
    if (reader.what != "SysEx listing" && reader.what != "preferences") {
      EXPECT_EQ(screen.boxes.size(), 1u);
    }
  }
}

}  // namespace tessivo
