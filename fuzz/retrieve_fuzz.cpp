// Block retrieval against an instrument whose reply is any bytes at all, of any length, in
// pieces as a port hands them over; the block asked for is any kind, part and section.
//
// The request of the kind goes out and nothing else; the first whole SysEx that arrives ends
// the wait (none: the whole two seconds of polls); its first bytes, at most the driver's 128,
// lie over the block's section for the block's length, zeros where the reply was shorter, and
// no other byte of either image moves; List1 has a line for each byte recorded; no box; the
// thru path is back on afterwards unless the form is loading.

#include <cstring>

#include "common/fuzz_support.h"
#include "data/images.h"
#include "link/port_service.h"
#include "support/scripted.h"

using namespace tessivo;
using namespace tessivo::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Reader r(data, size);
  const auto kind = static_cast<std::int16_t>(r.byte() % 12 - 1);     // -1..10
  const auto part = static_cast<std::int16_t>(r.byte() % 19);         // 0..18
  const auto section = static_cast<std::int16_t>(r.byte() % 13 - 1);  // -1..11
  const std::uint8_t flags = r.byte();
  const auto replyBytes = r.rest();
  const Bytes reply(replyBytes.begin(), replyBytes.end());

  FuzzPorts ports;
  PortMidiService midi({&ports});
  test::Events events;
  test::ScriptedScreen screen(events);
  int polls = 0;
  bool replied = false;
  // The reply arrives while the link waits for it.
  MidiLink link(midi, screen, [&](int) {
    ++polls;
    if (replied) return;
    replied = true;
    const std::size_t step = flags % 7 + 1;
    for (std::size_t at = 0; at < reply.size(); at += step)
      ports.deliver(std::span<const std::uint8_t>(reply).subspan(at, std::min(step, reply.size() - at)));
  });
  Images images;
  for (std::size_t i = 0; i < images.perf.bytes.size(); ++i) images.perf.bytes[i] = static_cast<std::uint8_t>(i * 7 + 1);
  for (std::size_t i = 0; i < images.multi.bytes.size(); ++i) images.multi.bytes[i] = static_cast<std::uint8_t>(i * 5 + 3);
  link.setLengthTables();
  link.attachImages(&images);
  FUZZ_PROMISE(midi.midiOutOpen(link.MidiOutHnd, 0) == 0, "the output opens");
  FUZZ_PROMISE(midi.midiInOpen(link.MidiInHnd, 0, &MidiLink::MidiInCB, link.callbackInstance(), CALLBACK_FUNCTION) == 0,
               "the input opens");
  if (flags & 0x08) link.ConnectThru();  // the thru path on, as between two retrievals
  link.LoadingFlag = (flags & 0x10) ? -1 : 0;
  const Bytes parm = parmRequest({0x08, 0x04, 0x18});
  link.ReqParm = [&] { link.SndSysEx(parm); };

  // Where the block lands, and how many bytes of it.
  const auto dest = images.blockDestination(kind, part, section);
  std::size_t count = 0;
  Bytes request;
  if (const PerfBlock* b = perfBlock(kind)) {
    count = static_cast<std::size_t>(b->length);
    request = dumpRequest(kModelCs2x, b->address);
  } else if (kind == kKindMulti) {
    if (section >= 0 && section <= 10) count = static_cast<std::size_t>(link.SctnLen[static_cast<std::size_t>(section)]);
    if (section >= 0 && section <= 4) request = multiSectionRequest(part, section);
  } else {
    request = parm;
  }
  const Images before = images;

  link.RtrvBlock(kind, part, section);

  FUZZ_PROMISE(screen.boxes.empty(), "a reply of any content shows no box");
  FUZZ_PROMISE(ports.sent == splitMidiStream(request), "the block's request goes out, nothing else");
  const Bytes* first = nullptr;
  for (const Bytes& m : ports.seen)
    if (m[0] == kSysExStart) {
      first = &m;
      break;
    }
  FUZZ_PROMISE(polls == (first ? 1 : kReplyPolls), "the first SysEx ends the wait, else the wait runs out");
  const std::size_t recorded = first ? std::min<std::size_t>(first->size(), 128) : 0;
  FUZZ_PROMISE(link.List1.size() == recorded, "one log line for each byte recorded");

  Images expected = before;
  if (!dest.empty() && count > 0) {
    const std::size_t n = std::min({count, dest.size(), std::size_t{129}});
    std::uint8_t* at = dest.data() >= images.perf.bytes.data() && dest.data() < images.perf.bytes.data() + PerfImage::kSize
                           ? expected.perf.bytes.data() + (dest.data() - images.perf.bytes.data())
                           : expected.multi.bytes.data() + (dest.data() - images.multi.bytes.data());
    for (std::size_t i = 0; i < n; ++i) at[i] = i < recorded ? (*first)[i] : 0;
  }
  FUZZ_PROMISE(images.perf.bytes == expected.perf.bytes, "the reply lands on its block's section alone, by the block's length");
  FUZZ_PROMISE(images.multi.bytes == expected.multi.bytes, "the reply lands on its Multi section alone, by the section's length");

  if (link.LoadingFlag == 0) FUZZ_PROMISE(ports.thru && ports.started, "the thru path is back on after the block");
  else FUZZ_PROMISE(!ports.thru && !ports.started, "while the form loads the thru path stays off");
  return 0;
}
