// How long the files take: a Workspace load against the virtual CS2x paced at 320 µs a byte,
// total time against the wire time, beside the same load pausing 50 ms after each message; the
// Workspace save and the three exports (.mid, .syx, description text) against the unpaced CS2x
// apart from the re-read of the Performance each runs first, and the write (fsync, rename) alone.
#include <stdlib.h>  // mkdtemp

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "files/file_io.h"
#include "files/records.h"
#include "instrument/virtual_cs2x.h"
#include "link/port_service.h"
#include "shell/app.h"
#include "stamped_ports.h"

using namespace tessivo;
using namespace tessivo::bench;

namespace {

// A folder of its own in the temporary folder, removed at the end.
struct TempDir {
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "files_bench_XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
      std::perror("mkdtemp");
      std::exit(1);
    }
    path = pattern;
  }
  ~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
  std::filesystem::path path;
};

// The whole program on the built-in instrument, started as a user starts it: no Multi box
// checked, no Workspace at start, the performance channel 1.
struct Program : StampedInstrument {
  Program(bool paced, const std::filesystem::path& folder) : StampedInstrument(paced), app(midi, screen) {
    app.pref().prefsPath = (folder / (paced ? "paced.prefs" : "unpaced.prefs")).string();
    app.Main();
    app.OKButton_Click();
    app.Timer1_Tick();
  }
  ~Program() { app.Terminate(); }
  MainForm& form() { return *app.mainForm(); }
  void resetCounts() {
    stamps.messages = 0;
    stamps.bytes = 0;
  }

  App app;
};

// Every Multi's list one channel on from where it stands, silently, as the form does while
// loading: the load then has to send each channel.
void moveChannels(MainForm& form, MidiLink& link) {
  link.LoadingFlag = -1;
  for (int m = kFirstMulti; m <= kLastMulti; ++m) {
    ListCtl& list = form.row(m).CmbMult;
    list.setIndex((list.index() + 1) % static_cast<int>(list.items.size()));
  }
  link.LoadingFlag = 0;
}

void workspaceLoad(const std::filesystem::path& folder, int runs) {
  Program program(true, folder);
  MainForm& form = program.form();
  Files& files = form.files();
  const std::string path = (folder / "load.tvw").string();
  files.CommonDialog1.fileName = path;
  files.SvWrkSpaceFile();
  files.CurFilePath = path;

  std::printf("Workspace load against the virtual CS2x paced at 320 us a byte (31,250 baud)\n");
  std::printf("%-18s %8s %8s %11s %11s %8s %14s\n", "", "messages", "bytes", "total ms", "wire ms", "ratio",
              "added/msg us");
  // One load; the output pauses `pauseMs` after each message.
  auto once = [&](const std::string& name, bool moved, int pauseMs) {
    if (moved) moveChannels(form, program.app.link());
    program.resetCounts();
    program.stamps.pauseMs = pauseMs;
    const auto t0 = Clock::now();
    files.LdWrkSpaceFile();
    const double total = us(Clock::now() - t0) / 1000.0;
    program.stamps.pauseMs = 0;
    const long messages = program.stamps.messages, bytes = program.stamps.bytes;
    const double wire = static_cast<double>(bytes) * static_cast<double>(kWireTimePerByte.count()) / 1000.0;
    const double added = (total - wire) * 1000.0 / static_cast<double>(std::max(messages, 1L));
    std::printf("%-18s %8ld %8ld %11.2f %11.2f %8.4f %14.1f\n", name.c_str(), messages, bytes, total, wire,
                total / wire, added);
    return std::array<double, 3>{total, wire, total / wire};
  };
  for (const bool moved : {false, true}) {
    std::printf("%s\n", moved ? "-- every Multi's channel list one off the file's: the load sends the channels too"
                              : "-- channel lists as in the file: no channel message");
    std::vector<double> totals, wires, ratios;
    for (int run = 1; run <= runs; ++run) {
      const auto [total, wire, ratio] = once("run " + std::to_string(run), moved, 0);
      totals.push_back(total);
      wires.push_back(wire);
      ratios.push_back(ratio);
    }
    std::printf("%-18s %8s %8s %11.2f %11.2f %8.4f   (goal: ratio <= 1.02)\n", "median", "", "", median(totals),
                median(wires), median(ratios));
    once("50 ms pause", moved, 50);
  }
  if (program.screen.boxes) std::printf("  (%d message boxes: something failed)\n", program.screen.boxes);
}

// The record as the Workspace save builds it, by the same calls, outside Files: the Multis
// with the channels their lists show, the Performance image, the Layer Pool.
void buildWorkspace(MainForm& form, std::vector<std::uint8_t>& record) {
  std::fill(record.begin(), record.end(), 0);
  const std::span<std::uint8_t> all(record);
  for (int part = kFirstMulti - 1; part <= kLastMulti - 1; ++part) {
    auto rec = all.subspan(static_cast<std::size_t>(part - (kFirstMulti - 1)) * kMultiRecBytes, kMultiRecBytes);
    putMultiRec(rec, form.images().multi, part, form.row(part + 1).CmdMult.caption);
    rec[kReceiveChannelAt] = static_cast<std::uint8_t>(std::max(form.row(part + 1).CmbMult.index(), 0));
  }
  std::copy(form.images().perf.bytes.begin(), form.images().perf.bytes.end(), record.begin() + kMultiSetRecBytes);
  putPoolRec(all.subspan(kSetupBytes), form.pool());
}

void workspaceSave(const std::filesystem::path& folder, int count) {
  Program program(false, folder);
  MainForm& form = program.form();
  Files& files = form.files();
  form.performance().DspPerf();  // warm-up

  // Each save whole; and from the last message of its DspPerf (the performance channel, sent
  // last) entering the output port to the save's return: the building and the write.
  struct Save {
    const char* name;
    const char* file;
    void (Files::*run)();
    std::vector<double> whole, afterRead;
  };
  std::vector<Save> kinds{{"Workspace (.tvw)", "save.tvw", &Files::SvWrkSpaceFile, {}, {}},
                          {"Setup as Midi type 0 (.mid)", "setup.mid", &Files::SvSetupMidFile, {}, {}},
                          {"Setup as Sys-Ex (.syx)", "setup.syx", &Files::SvSetupSyxFile, {}, {}},
                          {"Workspace description text (.txt)", "desc.txt", &Files::SvWrkSpaceTextFile, {}, {}}};
  for (Save& kind : kinds) {  // the files exist from here on, as after a first save
    files.CommonDialog1.fileName = (folder / kind.file).string();
    (files.*kind.run)();
  }
  for (int i = 0; i < count; ++i) {
    for (Save& kind : kinds) {  // in turn, so that a slow spell of the disk falls on all alike
      files.CommonDialog1.fileName = (folder / kind.file).string();
      const auto t0 = Clock::now();
      (files.*kind.run)();
      const auto t1 = Clock::now();
      kind.whole.push_back(us(t1 - t0));
      kind.afterRead.push_back(us(t1 - at(program.stamps.requestOut.load())));
    }
  }
  files.CommonDialog1.fileName = (folder / "save.tvw").string();
  std::vector<double> reads;
  for (int i = 0; i < count; ++i) {
    const auto t0 = Clock::now();
    form.performance().DspPerf();
    reads.push_back(us(Clock::now() - t0));
  }
  // The load with no wire time: what it costs besides the bytes going out.
  files.CurFilePath = files.CommonDialog1.fileName;
  std::vector<double> loads;
  for (int i = 0; i < count; ++i) {
    const auto t0 = Clock::now();
    files.LdWrkSpaceFile();
    loads.push_back(us(Clock::now() - t0));
  }
  std::vector<std::uint8_t> record(kWorkspaceBytes);
  std::vector<double> builds, writes;
  const std::string writePath = (folder / "write.tvw").string();
  long failed = 0;
  for (int i = 0; i < count; ++i) {
    const auto t0 = Clock::now();
    buildWorkspace(form, record);
    const auto t1 = Clock::now();
    if (!writeRecord(writePath, record)) ++failed;
    const auto t2 = Clock::now();
    builds.push_back(us(t1 - t0));
    writes.push_back(us(t2 - t1));
  }
  // What the program's save wrote is what the same calls build.
  std::vector<std::uint8_t> saved(kWorkspaceBytes);
  const bool same = readRecord(files.CommonDialog1.fileName, saved) && saved == record;

  std::printf("\nSaves and exports against the virtual CS2x, not paced; %d of each, in us\n", count);
  std::printf("%-58s %10s %10s %10s %10s\n", "", "median", "p90", "min", "max");
  auto row = [](const char* name, const std::vector<double>& v) {
    std::printf("%-58s %10.1f %10.1f %10.1f %10.1f\n", name, median(v), percentile(v, 0.9),
                *std::min_element(v.begin(), v.end()), *std::max_element(v.begin(), v.end()));
  };
  row("DspPerf alone (every save runs it first)", reads);
  for (const Save& kind : kinds) {
    std::printf("-- %s\n", kind.name);
    row("  whole", kind.whole);
    row("  after its DspPerf's last message (goal 5 ms)", kind.afterRead);
  }
  std::printf("-- of the Workspace save\n");
  row("  record building (the save's calls, outside Files)", builds);
  row("  write alone (temporary file, fsync, rename)", writes);
  row("LdWrkSpaceFile, not paced (the load besides its wire time)", loads);
  // A save that wrote nothing would look fast: each once more where no file stands, and the
  // size of what it wrote.
  for (const Save& kind : kinds) {
    const auto file = folder / kind.file;
    std::error_code error;
    std::filesystem::remove(file, error);
    files.CommonDialog1.fileName = file.string();
    (files.*kind.run)();
    const auto size = std::filesystem::file_size(file, error);
    std::printf("%s: %s, %s\n", kind.file, kind.name,
                error ? "NOTHING WRITTEN" : (std::to_string(size) + " bytes").c_str());
  }
  std::printf("Files written to %s; %s\n", folder.c_str(),
              same ? "the save's file equals the record built outside Files" : "THE SAVE'S FILE DIFFERS from the record built outside Files");
  if (failed) std::printf("  (%ld writes failed)\n", failed);
  if (program.screen.boxes) std::printf("  (%d message boxes: something failed)\n", program.screen.boxes);
}

}  // namespace

int main(int argc, char** argv) {
  const int saves = argc > 1 ? std::max(1, std::atoi(argv[1])) : 200;
  const TempDir folder;
  workspaceLoad(folder.path, 3);
  workspaceSave(folder.path, saves);
  return 0;
}
