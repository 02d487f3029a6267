// The input side: incoming bytes in pieces of any size, cut and joined into whole messages by
// the port's reader (MidiParser), then taken by the service into the queued input buffers
// (SysEx) or handed to the callback (short messages).
//
// Every message handed on is whole; behind any noise the whole messages that follow come out
// exactly and in order; the real-time bytes of the noise come out one for one; cutting the
// same bytes at once (splitMidiStream) gives the same messages. A started input fills its
// buffers in queue order with each SysEx cut at the buffer's length and nothing behind it,
// and hands every short message to the callback; a stopped one lets nothing in.

#include <cstring>

#include "common/stream_plan.h"
#include "link/port_service.h"

using namespace tessivo;
using namespace tessivo::fuzz;

namespace {

struct Calls {
  std::vector<MidiHdr*> longData;
  std::vector<std::uintptr_t> shortData;
};

std::uint32_t record(MidiHandle, std::uint32_t msg, std::uintptr_t instance, std::uintptr_t p1, std::uintptr_t) {
  auto* c = reinterpret_cast<Calls*>(instance);
  if (msg == MIM_LONGDATA) c->longData.push_back(reinterpret_cast<MidiHdr*>(p1));
  if (msg == MIM_DATA) c->shortData.push_back(p1);
  return 0;
}

struct Buffer {
  std::array<std::uint8_t, 160> bytes{};  // the buffer and a guard behind it
  MidiHdr hdr{};
};

constexpr std::uint8_t kGuard = 0xA5;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Reader r(data, size);
  const std::uint8_t flags = r.byte();
  const bool started = (flags & 0x01) == 0;  // most inputs run with the input started
  const std::size_t queued = (flags >> 1) & 0x03;
  static constexpr std::uint32_t kLengths[] = {128, 1, 3, 16, 64, 128, 9, 128};
  const std::uint32_t length = kLengths[(flags >> 3) & 0x07];
  const StreamPlan plan = makePlan(r);

  FuzzPorts ports;
  PortMidiService midi({&ports});
  Calls calls;
  MidiHandle in = 0;
  FUZZ_PROMISE(midi.midiInOpen(in, 0, &record, reinterpret_cast<std::uintptr_t>(&calls), CALLBACK_FUNCTION) == 0, "the input opens");
  std::array<Buffer, 3> buffers;
  for (std::size_t k = 0; k < queued; ++k) {
    Buffer& b = buffers[k];
    b.bytes.fill(kGuard);
    b.hdr.lpData = b.bytes.data();
    b.hdr.dwBufferLength = length;
    FUZZ_PROMISE(midi.midiInPrepareHeader(in, &b.hdr, kMidiHdrSize) == 0 && midi.midiInAddBuffer(in, &b.hdr, kMidiHdrSize) == 0,
                 "a prepared buffer is queued");
  }
  if (started) midi.midiInStart(in);

  std::size_t afterNoise = 0;
  deliverPlan(plan, [&](std::span<const std::uint8_t> piece) { ports.deliver(piece); },
              [&] { afterNoise = ports.seen.size(); });

  // What the reader made of the bytes.
  for (const Bytes& m : ports.seen) FUZZ_PROMISE(wholeMessage(m), "only whole messages are handed on");
  Bytes noiseClocks, seenClocks;
  for (std::uint8_t b : plan.noise)
    if (b >= 0xF8) noiseClocks.push_back(b);
  for (std::size_t i = 0; i < afterNoise; ++i)
    if (ports.seen[i][0] >= 0xF8) seenClocks.push_back(ports.seen[i][0]);
  FUZZ_PROMISE(seenClocks == noiseClocks, "each real-time byte comes out once, in its place");
  show("noise", {plan.noise});
  show("stream", {plan.stream});
  show("expected", plan.expected);
  show("seen", ports.seen);
  FUZZ_PROMISE(std::vector<Bytes>(ports.seen.begin() + static_cast<std::ptrdiff_t>(afterNoise), ports.seen.end()) == plan.expected,
               "after any noise the whole messages that follow come out exactly, in order");
  Bytes all = plan.noise;
  all.insert(all.end(), plan.stream.begin(), plan.stream.end());
  FUZZ_PROMISE(splitMidiStream(all) == ports.seen, "the bytes at once are cut as the bytes in pieces");

  // What the service did with them.
  std::vector<const Bytes*> sysEx;
  std::vector<std::uintptr_t> shorts;
  for (const Bytes& m : ports.seen) {
    if (m[0] == kSysExStart) {
      sysEx.push_back(&m);
    } else {
      std::uintptr_t packed = 0;
      for (std::size_t k = 0; k < m.size() && k < 3; ++k) packed |= std::uintptr_t{m[k]} << (8 * k);
      shorts.push_back(packed);
    }
  }
  const std::size_t filled = started ? std::min(queued, sysEx.size()) : 0;
  FUZZ_PROMISE(calls.longData.size() == filled, "each SysEx takes the next queued buffer, while there is one");
  FUZZ_PROMISE(calls.shortData == (started ? shorts : std::vector<std::uintptr_t>{}),
               "a started input hands every short message to the callback, a stopped one none");
  for (std::size_t k = 0; k < queued; ++k) {
    const Buffer& b = buffers[k];
    const std::size_t n = k < filled ? std::min<std::size_t>(sysEx[k]->size(), length) : 0;
    if (k < filled) {
      FUZZ_PROMISE(calls.longData[k] == &b.hdr, "buffers are filled in the order they were queued");
      FUZZ_PROMISE((b.hdr.dwFlags & MHDR_DONE) && !(b.hdr.dwFlags & MHDR_INQUEUE), "a filled buffer is done");
    }
    FUZZ_PROMISE(b.hdr.dwBytesRecorded == n, "a buffer records the SysEx up to its length");
    FUZZ_PROMISE(std::memcmp(b.bytes.data(), k < filled ? sysEx[k]->data() : b.bytes.data(), n) == 0, "a buffer holds its SysEx's first bytes");
    for (std::size_t i = n; i < b.bytes.size(); ++i) FUZZ_PROMISE(b.bytes[i] == kGuard, "nothing is written behind what was recorded");
  }
  // The buffers still queued come back done and empty.
  FUZZ_PROMISE(midi.midiInReset(in) == 0, "reset");
  FUZZ_PROMISE(calls.longData.size() == queued, "reset returns each buffer still queued");
  for (std::size_t k = 0; k < queued; ++k) {
    FUZZ_PROMISE(midi.midiInUnprepareHeader(in, &buffers[k].hdr, kMidiHdrSize) == 0, "no buffer stays queued after reset");
  }
  FUZZ_PROMISE(midi.midiInClose(in) == 0, "the input closes");
  return 0;
}
