// The exports: the .syx and the .mid by their layouts, byte for byte where the layout fixes
// them, with checksums of their own; the description text line by line; and both MIDI files
// read by other programs (midicsv, Python's mido) when the test runs with them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "files/exports.h"
#include "shell/app.h"
#include "support/scripted.h"

namespace tessivo {
using test::hex;

namespace {
// The checksum of a bulk dump, by hand: bytes 4 to n-3 added, taken from 128.
std::uint8_t checksum(const Bytes& file, std::size_t at, std::size_t length) {
  int sum = 0;
  for (std::size_t i = at + 4; i < at + length - 2; ++i) sum += file[i];
  return static_cast<std::uint8_t>((128 - sum % 128) % 128);
}
std::string run(const std::string& command) {
  std::string out;
  if (FILE* p = ::popen(command.c_str(), "r")) {
    char buf[4096];
    for (std::size_t n; (n = std::fread(buf, 1, sizeof buf, p)) > 0;) out.append(buf, n);
    ::pclose(p);
  }
  return out;
}
}  // namespace

class Exports : public test::StartedOnInstrument {
 protected:
  test::TempFile syx, mid, txt;
  void SetUp() override {
    StartedOnInstrument::SetUp();
    // Multi 5's section 0 with a channel byte of 0 and a stale checksum; the list at 3.
    auto s0 = form->images().multi.section(4, 0);
    s0[13] = 0;
    s0[50] = 0x55;
    form->row(5).CmbMult.setIndex(3);
  }
};

TEST_F(Exports, TheSysExFileHoldsTheSixtyEightDumpsWithTheirOwnChecksums) {
  saveAs(&Files::SvSetupSyx_Click, syx.path);
  const Bytes f = test::readFile(syx.path);
  ASSERT_EQ(f.size(), 2760u);
  EXPECT_EQ(f[13], 3);  // the list's channel, and the checksum over it below
  EXPECT_EQ(form->images().multi.section(4, 0)[13], 0);  // the image keeps its bytes
  EXPECT_EQ(form->images().multi.section(4, 0)[50], 0x55);
  // Every message where the layout puts it, each with a right checksum, zeros behind 2502.
  std::size_t at = 0;
  const std::array<std::size_t, 5> multi{52, 74, 15, 23, 13};
  std::vector<std::size_t> lengths;
  for (int p = 0; p < 12; ++p) lengths.insert(lengths.end(), multi.begin(), multi.end());
  lengths.insert(lengths.end(), {56, 56, 56, 56, 37, 63, 34, 20});
  for (std::size_t i = 0; i < lengths.size(); ++i) {
    EXPECT_EQ(f[at], 0xF0) << i;
    EXPECT_EQ(f[at + lengths[i] - 1], 0xF7) << i;
    EXPECT_EQ(f[at + lengths[i] - 2], checksum(f, at, lengths[i])) << i;
    at += lengths[i];
  }
  EXPECT_EQ(at, 2502u);
  EXPECT_EQ(hex(Bytes(f.begin() + 2124, f.begin() + 2133)), hex(Bytes(form->images().perf.Lyr(1).begin(), form->images().perf.Lyr(1).begin() + 9)));
  EXPECT_EQ(Bytes(f.begin() + 2502, f.end()), Bytes(258, 0));
  EXPECT_EQ(screen.busyChanges.back(), false);
}

TEST_F(Exports, TheMidiFileIsFormatZeroWithEachDumpOneGapApart) {
  saveAs(&Files::SvSetupSyx_Click, syx.path);
  const Bytes s = test::readFile(syx.path);
  saveAs(&Files::SvSetupMid_Click, mid.path);
  const Bytes f = test::readFile(mid.path);
  ASSERT_EQ(f.size(), 2691u);
  EXPECT_EQ(hex(Bytes(f.begin(), f.begin() + 22)), "4D 54 68 64 00 00 00 06 00 00 00 01 01 E0 4D 54 72 6B 00 00 0A 6D");
  EXPECT_EQ(std::string(f.begin() + 26, f.begin() + 34), "REQPFALL");
  EXPECT_EQ(hex(Bytes(f.begin() + 42, f.begin() + 49)), "00 FF 51 03 07 A1 20");
  EXPECT_EQ(f[49], 0x1B);  // density 0: 27 ticks
  EXPECT_EQ(f[50], 0xF0);
  EXPECT_EQ(f[51], 0x33);
  EXPECT_EQ(f[103], 0x1B);
  EXPECT_EQ(hex(Bytes(f.begin() + 2687, f.end())), "00 FF 2F 00");
  // Without the event frames the track holds the .syx's messages, checksums and all.
  Bytes unframed;
  for (std::size_t at = 49; at < 2687;) {
    const std::size_t n = f[at + 2];
    unframed.push_back(0xF0);
    unframed.insert(unframed.end(), f.begin() + static_cast<std::ptrdiff_t>(at + 3), f.begin() + static_cast<std::ptrdiff_t>(at + 3 + n));
    at += 3 + n;
  }
  EXPECT_EQ(unframed, Bytes(s.begin(), s.begin() + 2502));
  // The density of the preferences picks the gap; one beyond the table gives none.
  app.pref().Slider1.value = 2;
  saveAs(&Files::SvSetupMid_Click, mid.path);
  EXPECT_EQ(test::readFile(mid.path)[49], 81);
  app.pref().Slider1.value = 9;
  saveAs(&Files::SvSetupMid_Click, mid.path);
  EXPECT_EQ(test::readFile(mid.path)[49], 0);
  EXPECT_EQ(test::readFile(mid.path).size(), 2691u);
}

TEST_F(Exports, TheDescriptionListsPerformanceMultisAndPoolInQuotedTabbedLines) {
  app.pref().cmbPerfChnl.setIndex(5);
  form->row(5).CmbMult.setIndex(4);
  form->row(5).CmdMult.caption = "Strings    M5";
  form->row(6).CmdMult.caption = "Say \"Hi\"   M6";
  saveAs(&Files::SvWrkSpaceText_Click, txt.path);
  std::string text;
  {
    const Bytes b = test::readFile(txt.path);
    text.assign(b.begin(), b.end());
  }
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = text.find("\r\n", at);
    ASSERT_NE(end, std::string::npos);
    lines.push_back(text.substr(at, end - at));
    at = end + 2;
  }
  ASSERT_EQ(lines.size(), 26u);  // an empty Pool
  const auto tabs = [](int n) { return std::string(static_cast<std::size_t>(n), '\t'); };
  EXPECT_EQ(lines[0], "\"\t Workspace Description Text" + tabs(10) + "\"");
  EXPECT_EQ(lines[1], "\"" + tabs(17) + "\"");
  EXPECT_EQ(lines[2], "\"\t" + txt.path + tabs(10) + "\"");
  EXPECT_EQ(lines[6], "\"" + tabs(3) + "Midi Channel\t  1\t" + (form->panel.CmdPrfm.caption + "          ").substr(0, 10) + tabs(6) + "\"");
  EXPECT_EQ(lines[9], "\"" + tabs(3) + "Midi Channel\t 5\tStrings   " + tabs(10) + "\"");
  EXPECT_EQ(lines[10], "\"" + tabs(3) + "Midi Channel\t 6\tSay \"Hi\"  " + tabs(10) + "\"");
  EXPECT_EQ(lines[24], "\"\tLayer Pool:" + tabs(14) + "\"");
  // Pool items in full, one line each.
  form->pool().LbxLyrPool.addItem("A long pool entry name", 0);
  saveAs(&Files::SvWrkSpaceText_Click, txt.path);
  const Bytes again = test::readFile(txt.path);
  const std::string last = "\"" + tabs(3) + "A long pool entry name" + tabs(10) + "\"\r\n";
  EXPECT_EQ(std::string(again.end() - static_cast<std::ptrdiff_t>(last.size()), again.end()), last);
}

// Other programs read the exports: midicsv and mido find format 0, 480 ticks, one track, the
// tempo, the time signature and 68 SysEx events a gap apart; mido reads the .syx as 68 messages.
TEST_F(Exports, OtherProgramsReadTheMidiFileAndTheSysExFile) {
  if (std::system("command -v midicsv >/dev/null 2>&1") != 0 || std::system("/usr/bin/python3 -c 'import mido' 2>/dev/null") != 0)
    GTEST_SKIP() << "midicsv and python3-mido are not installed (scripts/install-deps.sh installs them)";
  saveAs(&Files::SvSetupMid_Click, mid.path);
  saveAs(&Files::SvSetupSyx_Click, syx.path);
  const std::string csv = run("midicsv " + mid.path);
  EXPECT_NE(csv.find("0, 0, Header, 0, 1, 480"), std::string::npos) << csv.substr(0, 200);
  EXPECT_NE(csv.find("Tempo, 500000"), std::string::npos);
  EXPECT_NE(csv.find("Time_signature, 4, 2, 24, 8"), std::string::npos);
  std::size_t events = 0;
  for (std::size_t at = csv.find("System_exclusive"); at != std::string::npos; at = csv.find("System_exclusive", at + 1)) ++events;
  EXPECT_EQ(events, 68u);
  EXPECT_NE(csv.find("1, 1836, End_track"), std::string::npos);  // 68 gaps of 27 ticks
  const std::string py =
      "import mido,sys\n"
      "m=mido.MidiFile(sys.argv[1])\n"
      "s=[x for x in m.tracks[0] if x.type=='sysex']\n"
      "print(m.type,m.ticks_per_beat,len(m.tracks),len(s),sorted(set(x.time for x in s)))\n"
      "x=mido.read_syx_file(sys.argv[2])\n"
      "ok=all((128-sum(v.data[3:-1])%128)%128==v.data[-1] for v in x)\n"
      "print(len(x),ok)\n";
  {
    std::ofstream(mid.path + ".py") << py;
  }
  const std::string out = run("/usr/bin/python3 " + mid.path + ".py " + mid.path + " " + syx.path);
  std::remove((mid.path + ".py").c_str());
  EXPECT_EQ(out, "0 480 1 68 [27]\n68 True\n");
}

}  // namespace tessivo
