// Seed corpora for the fuzz targets, made by the program itself: each own file type as its
// writer saves it, the preferences record as OK writes it, a Sys-Ex export for the listing,
// the virtual CS2x's replies to every block request, and MIDI streams of real messages.
//
//   make_seeds DIR    writes DIR/<target>/seed-*

#include <filesystem>
#include <iostream>

#include "common/program_rig.h"
#include "shell/debug_tools.h"

using namespace tessivo;
using namespace tessivo::fuzz;
namespace fs = std::filesystem;

namespace {

fs::path root;

void seed(const std::string& target, const std::string& name, const Bytes& bytes) {
  fs::create_directories(root / target);
  writeBytes((root / target / ("seed-" + name)).string(), bytes);
}

void saved(ProgramRig& rig, const std::string& target, const std::string& name, void (Files::*click)()) {
  const std::string path = scratchPath("seed-" + name);
  rig.program().screen.saveAnswers.push_back(path);
  (rig.form().files().*click)();
  seed(target, name, readBytes(path));
  fs::remove(path);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: make_seeds DIR\n";
    return 2;
  }
  root = argv[1];
  VirtualCs2x cs2x;
  ProgramRig rig;

  // The six file types as the program saves them.
  saved(rig, "fuzz_file_workspace", "saved.tvw", &Files::SvWrkSpace_Click);
  saved(rig, "fuzz_file_setup", "saved.tvf", &Files::SvSetuptvf_Click);
  saved(rig, "fuzz_file_performance", "saved.tvx", &Files::SvPerform_Click);
  saved(rig, "fuzz_file_layer_pool", "saved.tvp", &Files::SvLayerPool_Click);
  saved(rig, "fuzz_file_all_multis", "saved.tvm", &Files::SvMultAll_Click);
  {
    const std::string path = scratchPath("seed-single.tvs");
    rig.program().screen.saveAnswers.push_back(path);
    rig.form().files().SvMultDlg(8);
    seed("fuzz_file_single_multi", "saved.tvs", readBytes(path));
    fs::remove(path);
  }
  saved(rig, "fuzz_sysex_listing", "setup.syx", &Files::SvSetupSyx_Click);
  {  // beyond what the listing reads
    const Bytes syx = readBytes((root / "fuzz_sysex_listing" / "seed-setup.syx").string());
    Bytes longer;
    while (longer.size() <= kSysExListingLimit) longer.insert(longer.end(), syx.begin(), syx.end());
    seed("fuzz_sysex_listing", "beyond-limit.syx", longer);
  }

  // The preferences as OK writes them: as they stand, and with Multis, a Workspace and a channel.
  PrefForm& pref = rig.program().app.pref();
  const std::string prefsPath = pref.prefsPath;
  pref.SvPrefs();
  seed("fuzz_prefs", "started.ini", readBytes(prefsPath));
  pref.ChkMlt(6).value = 1;
  pref.ChkMlt(16).value = 1;
  pref.ChkLdFile.value = 1;
  pref.TxtLdFile.text = "/nowhere/set.tvw";
  pref.cmbPerfChnl.setIndex(9);
  pref.Slider1.value = 2;
  pref.SvPrefs();
  seed("fuzz_prefs", "workspace.ini", readBytes(prefsPath));

  // Every block's reply as the instrument sends it, behind the target's kind, part, section
  // and flags bytes.
  for (const PerfBlock& b : kPerfBlocks) {
    Bytes s{static_cast<std::uint8_t>(b.kind + 1), 0, 1, 0};
    const Bytes reply = cs2x.block(b.address);
    s.insert(s.end(), reply.begin(), reply.end());
    seed("fuzz_retrieve", b.label, s);
  }
  for (std::uint8_t section = 0; section < 5; ++section) {
    const MultiSection& m = kMultiSections[section];
    Bytes s{kKindMulti + 1, 9, static_cast<std::uint8_t>(section + 1), 0};
    const Bytes reply = cs2x.block({m.high, 8, m.low});
    s.insert(s.end(), reply.begin(), reply.end());
    seed("fuzz_retrieve", "multi9-" + std::to_string(section), s);
  }

  // Real streams as the noise in front of planned messages: a reply, notes with running
  // status, clocks, a SysEx cut off by a note.
  const Bytes com1 = cs2x.block(kPerfBlocks[0].address);
  const std::vector<Bytes> streams{
      Bytes(com1.begin(), com1.begin() + std::min<std::size_t>(com1.size(), 90)),
      {0x90, 0x3C, 0x40, 0x3E, 0x40, 0xF8, 0x40, 0x00, 0x80, 0x3C, 0x00, 0xC3, 0x05, 0x06, 0xFE},
      {0xF0, 0x43, 0x10, 0x4C, 0x90, 0x40, 0x7F, 0xF7, 0xF0, 0x7E, 0x7F, 0x09, 0x01, 0xF7},
  };
  // Planned messages: a SysEx, a note on and its running-status twin, a clock, a song position.
  const Bytes plan{0x01, 0x05, 0x10, 0x20, 0x30, 0x40, 0x50, 0x03, 0x10, 0x00, 0x3C, 0x40,
                   0x03, 0x90, 0x00, 0x3E, 0x40, 0x00, 0x00, 0x02, 0x01, 0x10, 0x20, 0x07, 0x30, 0x02, 0x05};
  int k = 0;
  for (const Bytes& noise : streams) {
    ++k;
    Bytes in{0x00, static_cast<std::uint8_t>(noise.size())};
    in.insert(in.end(), noise.begin(), noise.end());
    in.push_back(static_cast<std::uint8_t>(k * 3));
    in.insert(in.end(), plan.begin(), plan.end());
    seed("fuzz_midi_input", "stream" + std::to_string(k), in);
    Bytes thru{0x0F, 0x08, 0x90, 0x40, 0x7F, 0xF0, 0x43, 0xF7, 0x00, 0x00};  // own sends: a note, a SysEx
    thru.insert(thru.end(), in.begin() + 1, in.end());
    seed("fuzz_thru", "stream" + std::to_string(k), thru);
  }
  std::cout << "seeds written to " << root.string() << "\n";
  return 0;
}
