// How quickly an edit reaches the instrument. First, a slider release against the unpaced
// virtual CS2x: the time from MouseUp to the message entering the output port, and until the
// next release can be taken, beside the same releases with a 50 ms pause after each message.
// Second, Initialise All against the CS2x paced at 320 µs a byte: total time against the wire
// time, and once more with the 50 ms pause after each message, really run.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "data/images.h"
#include "data/multi_template.h"
#include "edit/edit_panel.h"
#include "edit/slider_map.h"
#include "instrument/virtual_cs2x.h"
#include "link/midi_link.h"
#include "link/numtext.h"
#include "link/port_service.h"
#include "stamped_ports.h"
#include "pool/layer_pool.h"
#include "pool/multis.h"

using namespace tessivo;
using namespace tessivo::bench;

namespace {

// The program's pieces as the main form puts them together, on the built-in instrument.
struct Rig : StampedInstrument {
  explicit Rig(bool paced)
      : StampedInstrument(paced),
        link(midi, screen),
        edit(link, images, [this](int multi) -> ButtonCtl& { return buttons[static_cast<std::size_t>(multi - kFirstMulti)]; }),
        pool(link, images, tmpl, {}),
        multis(link, images, pool, edit) {
    link.attachImages(&images);
    link.setLengthTables();
    midi.midiOutOpen(link.MidiOutHnd, 0);
  }
  ~Rig() { midi.midiOutClose(link.MidiOutHnd); }

  MidiLink link;
  Images images;
  std::array<ButtonCtl, kMultiRows> buttons;
  LyrTemplate tmpl;
  EditPanel edit;
  LayerPool pool;
  Multis multis;
};

struct Releases {
  std::vector<double> toPort, toNext;  // µs from MouseUp
  long missing = 0;                    // releases whose message never reached the port
};

// `count` releases over all 35 sliders, each with a value of its own range; the output pauses
// `pauseMs` after each message, as an editor that paces its messages by a fixed wait would.
Releases release(Rig& rig, int count, int pauseMs) {
  rig.stamps.pauseMs = pauseMs;
  Releases r;
  for (int i = 0; i < count; ++i) {
    const auto row = static_cast<std::size_t>(i) % kSliderRows;
    SliderCtl& s = rig.edit.sliders[row];
    s.value = s.min + (i * 7) % (s.max - s.min + 1);
    const long before = rig.stamps.messages;
    const auto t0 = Clock::now();
    rig.edit.MouseUp(row);
    const auto t1 = Clock::now();
    if (rig.stamps.messages != before + 1) {
      ++r.missing;
      continue;
    }
    r.toPort.push_back(us(at(rig.stamps.requestOut.load()) - t0));
    r.toNext.push_back(us(t1 - t0));
  }
  rig.stamps.pauseMs = 0;
  return r;
}

void printReleases(const char* name, const Releases& r) {
  std::printf("%-34s %6zu %9.1f %9.1f %9.1f   %9.1f %9.1f %9.1f\n", name, r.toPort.size(), median(r.toPort),
              percentile(r.toPort, 0.99), *std::max_element(r.toPort.begin(), r.toPort.end()), median(r.toNext),
              percentile(r.toNext, 0.99), *std::max_element(r.toNext.begin(), r.toNext.end()));
  if (r.missing) std::printf("  (%ld releases sent nothing or more than one message)\n", r.missing);
}

void sliderReleases(int count) {
  Rig rig(false);
  rig.edit.EditMult_Click(7);
  release(rig, 200, 0);  // warm-up, not counted
  const Releases now = release(rig, count, 0);
  const Releases paused = release(rig, 100, 50);
  std::printf("Slider release -> message entering the output port (virtual CS2x, not paced), M7 open\n");
  std::printf("%-34s %6s %29s   %29s\n", "", "n", "to the port (us)", "until the next release (us)");
  std::printf("%-34s %6s %9s %9s %9s   %9s %9s %9s\n", "", "", "median", "p99", "max", "median", "p99", "max");
  printReleases("sent at once", now);
  printReleases("50 ms pause after each message", paused);
  if (rig.screen.boxes) std::printf("  (%d message boxes: something failed)\n", rig.screen.boxes);
}

void initialiseAll(int runs) {
  Rig rig(true);
  // The channel lists as at start-up, each part already on its own channel: InitMlt finds
  // nothing to change, so no channel message goes out. The edit panel stays closed.
  rig.link.LoadingFlag = -1;
  for (int m = kFirstMulti; m <= kLastMulti; ++m) {
    ListCtl& list = rig.multis.row(m).CmbMult;
    for (int ch = 1; ch <= 16; ++ch) list.addItem(signedText(ch));
    list.setIndex(m - 1);
  }
  rig.link.LoadingFlag = 0;

  std::printf("\nInitialise All (12 parts x 5 XG bulk dumps) against the virtual CS2x paced at 320 us a byte\n");
  std::printf("%-16s %8s %8s %11s %11s %8s %14s\n", "", "messages", "bytes", "total ms", "wire ms", "ratio",
              "added/msg us");
  auto once = [&rig](const char* name, int pauseMs) {
    rig.stamps.messages = 0;
    rig.stamps.bytes = 0;
    rig.stamps.pauseMs = pauseMs;
    const auto t0 = Clock::now();
    rig.multis.InitMltall_Click();
    const double total = us(Clock::now() - t0) / 1000.0;
    rig.stamps.pauseMs = 0;
    const double wire = static_cast<double>(rig.stamps.bytes) * static_cast<double>(kWireTimePerByte.count()) / 1000.0;
    const double added = (total - wire) * 1000.0 / static_cast<double>(std::max(rig.stamps.messages.load(), 1L));
    std::printf("%-16s %8ld %8ld %11.2f %11.2f %8.4f %14.1f\n", name, rig.stamps.messages.load(), rig.stamps.bytes.load(),
                total, wire, total / wire, added);
    return std::array<double, 3>{total, wire, total / wire};
  };
  std::vector<double> totals, wires, ratios;
  for (int run = 1; run <= runs; ++run) {
    const auto [total, wire, ratio] = once(("run " + std::to_string(run)).c_str(), 0);
    totals.push_back(total);
    wires.push_back(wire);
    ratios.push_back(ratio);
  }
  std::printf("%-16s %8s %8s %11.2f %11.2f %8.4f   (goal: ratio <= 1.02)\n", "median", "", "", median(totals),
              median(wires), median(ratios));
  once("50 ms pause", 50);
  if (rig.screen.boxes) std::printf("  (%d message boxes: something failed)\n", rig.screen.boxes);
}

}  // namespace

int main(int argc, char** argv) {
  const int releases = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5000;
  sliderReleases(releases);
  initialiseAll(3);
  return 0;
}
