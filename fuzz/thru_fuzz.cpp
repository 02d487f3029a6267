// Thru: what arrives at the input goes out of the output while the two are connected and the
// input runs, serialised with the program's own long messages.
//
// The output is handed whole messages only: what came in, message by message in the order it
// came (behind any noise, exactly the messages sent), and the program's own sends cut into
// their messages at the moment they were made. A thru path that is not connected, or an input
// that is stopped, forwards nothing; a disconnected one forwards nothing more.

#include "common/stream_plan.h"
#include "link/port_service.h"

using namespace tessivo;
using namespace tessivo::fuzz;

namespace {

void sendOwn(MidiService& midi, MidiHandle out, Bytes bytes) {
  MidiHdr hdr{};
  hdr.lpData = bytes.data();
  hdr.dwBufferLength = static_cast<std::uint32_t>(bytes.size());
  FUZZ_PROMISE(midi.midiOutPrepareHeader(out, &hdr, kMidiHdrSize) == 0, "an own send is prepared");
  FUZZ_PROMISE(midi.midiOutLongMsg(out, &hdr, kMidiHdrSize) == 0, "an own send goes out");
  FUZZ_PROMISE(midi.midiOutUnprepareHeader(out, &hdr, kMidiHdrSize) == 0, "an own send is unprepared");
}

void append(std::vector<Bytes>& to, const std::vector<Bytes>& from) { to.insert(to.end(), from.begin(), from.end()); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Reader r(data, size);
  const std::uint8_t flags = r.byte();
  const bool connected = (flags & 0x03) != 0, started = (flags & 0x0C) != 0;  // mostly both
  const auto first = r.take(r.byte() % 48);
  const auto second = r.take(r.byte() % 48);
  const Bytes own1(first.begin(), first.end()), own2(second.begin(), second.end());
  const StreamPlan plan = makePlan(r);

  FuzzPorts ports;
  PortMidiService midi({&ports});
  MidiHandle in = 0, out = 0;
  FUZZ_PROMISE(midi.midiOutOpen(out, 0) == 0 && midi.midiInOpen(in, 0, nullptr, 0, 0) == 0, "the ports open");
  if (connected) FUZZ_PROMISE(midi.midiConnect(in, out) == 0, "the thru path connects");
  if (started) midi.midiInStart(in);
  const bool thru = connected && started;
  FUZZ_PROMISE(ports.thru == connected && ports.started == started, "the port is told the input's state");

  std::size_t afterNoise = 0;
  deliverPlan(plan, [&](std::span<const std::uint8_t> piece) { ports.deliver(piece); },
              [&] {
                afterNoise = ports.seen.size();
                sendOwn(midi, out, own1);
              });
  sendOwn(midi, out, own2);

  for (const Bytes& m : ports.sent) FUZZ_PROMISE(wholeMessage(m), "the output is handed whole messages only");
  std::vector<Bytes> expected;
  if (thru) expected.assign(ports.seen.begin(), ports.seen.begin() + static_cast<std::ptrdiff_t>(afterNoise));
  append(expected, splitMidiStream(own1));
  if (thru) append(expected, plan.expected);
  append(expected, splitMidiStream(own2));
  FUZZ_PROMISE(ports.sent == expected, "thru forwards what came in, whole and in order, between the program's own sends");

  // Cut, nothing more goes out.
  const std::size_t before = ports.sent.size();
  midi.midiDisconnect(in, out);
  FUZZ_PROMISE(!ports.thru, "the port is told the thru path is off");
  ports.deliver(plan.stream);
  FUZZ_PROMISE(ports.sent.size() == before, "a disconnected thru path forwards nothing");
  midi.midiInClose(in);
  midi.midiOutClose(out);
  return 0;
}
