// How much time the program adds to reading the instrument. A start-up reads the Performance
// twice (16 blocks) against the virtual CS2x paced at the MIDI wire rate. Each block is timed
// at four points: its start, the request reaching the port, the reply leaving the port for the
// program, and its end. What lies between the middle two is the instrument's (wire time of
// request and reply at 320 µs a byte, its latency); the rest is what the program adds. The same
// run with a 5 ms polling wait shows what waking on the reply saves.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <numeric>
#include <thread>
#include <vector>

#include "data/images.h"
#include "instrument/virtual_cs2x.h"
#include "link/midi_link.h"
#include "link/port_service.h"
#include "stamped_ports.h"
#include "perform/performance.h"

using namespace tessivo;
using namespace tessivo::bench;

namespace {

struct Result {
  std::vector<double> overheadUs;  // per block
  double totalMs = 0, instrumentMs = 0;
  int boxes = 0;
};

Result run(std::chrono::microseconds latency, bool polling, int rounds) {
  StampedInstrument rig(true, latency);
  PortMidiService& midi = rig.midi;
  QuietScreen& screen = rig.screen;
  Stamps& stamps = rig.stamps;
  // The polling variant waits its full 5 ms between looks at the flag.
  SleepFn sleep;
  if (polling) sleep = [](int ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); };
  MidiLink link(midi, screen, sleep);
  Images images;
  link.attachImages(&images);
  link.setLengthTables();
  midi.midiOutOpen(link.MidiOutHnd, 0);
  midi.midiInOpen(link.MidiInHnd, 0, &MidiLink::MidiInCB, link.callbackInstance(), CALLBACK_FUNCTION);
  link.LoadingFlag = -1;  // as during the start: no thru between blocks

  Result result;
  for (int round = 0; round < rounds; ++round) {
    for (int pass = 0; pass < 2; ++pass) {  // a start reads the Performance twice
      for (const PerfBlock& block : kPerfBlocks) {
        const auto t0 = Clock::now();
        link.RtrvBlock(block.kind, 0, 0);
        const auto t3 = Clock::now();
        const double whole = us(t3 - t0);
        const double own = us(at(stamps.replyIn.load()) - at(stamps.requestOut.load()));
        result.overheadUs.push_back(whole - own);
        result.totalMs += whole / 1000.0;
        result.instrumentMs += own / 1000.0;
      }
    }
  }
  result.boxes = screen.boxes;
  midi.midiInClose(link.MidiInHnd);
  midi.midiOutClose(link.MidiOutHnd);
  return result;
}

void report(const char* name, const Result& r, int rounds) {
  const double mean = std::accumulate(r.overheadUs.begin(), r.overheadUs.end(), 0.0) / static_cast<double>(r.overheadUs.size());
  std::printf("%-28s %8.3f %8.3f %8.3f %10.1f %10.1f %10.2f\n", name, percentile(r.overheadUs, 0.5) / 1000.0,
              percentile(r.overheadUs, 0.9) / 1000.0, mean / 1000.0, r.totalMs / rounds, r.instrumentMs / rounds,
              (r.totalMs - r.instrumentMs) / rounds);
  if (r.boxes) std::printf("  (%d message boxes: something failed)\n", r.boxes);
}

}  // namespace

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 10;
  std::printf("Start-up retrieval (16 blocks) against the virtual CS2x at 31,250 baud, %d runs\n", rounds);
  std::printf("%-28s %8s %8s %8s %10s %10s %10s\n", "", "med ms", "p90 ms", "mean ms", "start ms", "instr ms",
              "added ms");
  std::printf("%-28s %8s %8s %8s %10s %10s %10s\n", "", "(added per block)", "", "", "(whole start)", "", "");
  report("wake on reply, 0 latency", run(std::chrono::microseconds(0), false, rounds), rounds);
  report("wake on reply, 2 ms latency", run(std::chrono::microseconds(2000), false, rounds), rounds);
  report("5 ms polling, 0 latency", run(std::chrono::microseconds(0), true, rounds), rounds);
  return 0;
}
