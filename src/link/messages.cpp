#include "link/messages.h"

#include "link/midi_parser.h"

namespace tessivo {

Bytes paramChange(std::uint8_t model, Address a, std::uint8_t data) {
  return {kSysExStart, kYamahaId, kParamChange, model, a.high, a.mid, a.low, data, kSysExEnd};
}

Bytes paramChange2(std::uint8_t model, Address a, std::uint8_t data1, std::uint8_t data2) {
  return {kSysExStart, kYamahaId, kParamChange, model, a.high, a.mid, a.low,
          data1,       data2,     kSysExEnd};
}

Bytes dumpRequest(std::uint8_t model, Address a) {
  return {kSysExStart, kYamahaId, kDumpRequest, model, a.high, a.mid, a.low, kSysExEnd};
}

Bytes parmRequest(Address a) {
  return {kSysExStart, kYamahaId, kParamRequest, kModelXg, a.high, a.mid, a.low, kSysExEnd};
}

Bytes bulkDump(std::uint8_t model, Address a, std::span<const std::uint8_t> data) {
  Bytes m(kBulkFrameBytes + data.size(), 0);
  m[0] = kSysExStart;
  m[1] = kYamahaId;
  m[2] = kBulkDump;
  m[3] = model;
  m[4] = static_cast<std::uint8_t>((data.size() >> 7) & 0x7F);
  m[5] = static_cast<std::uint8_t>(data.size() & 0x7F);
  m[6] = a.high;
  m[7] = a.mid;
  m[8] = a.low;
  for (std::size_t i = 0; i < data.size(); ++i) m[kBulkDataOffset + i] = data[i];
  m[m.size() - 2] = SyxChksum(m);
  m[m.size() - 1] = kSysExEnd;
  return m;
}

std::uint8_t SyxChksum(std::span<const std::uint8_t> message) {
  if (message.size() < kBulkFrameBytes) return 0;
  unsigned sum = 0;
  for (std::size_t i = 4; i + 2 < message.size(); ++i) sum += message[i];
  return static_cast<std::uint8_t>((128 - sum % 128) % 128);
}

const PerfBlock* perfBlock(std::int16_t kind) {
  for (const PerfBlock& b : kPerfBlocks)
    if (b.kind == kind) return &b;
  return nullptr;
}

Bytes multiSectionRequest(std::int16_t part, std::int16_t section) {
  const MultiSection& s = kMultiSections.at(static_cast<std::size_t>(section));
  return dumpRequest(kModelXg, {s.high, static_cast<std::uint8_t>(part - 1), s.low});
}

Bytes allNotesOffSequence() {
  Bytes m;
  for (std::uint8_t c = 0; c < 16; ++c) m.insert(m.end(), {static_cast<std::uint8_t>(kControlChange + c), kCtlAllNotesOff, 0x00});
  return m;
}

Bytes testNoteOffSequence(std::uint8_t note, std::uint8_t velocity) {
  Bytes m;
  for (std::uint8_t c = 0; c < 16; ++c) m.insert(m.end(), {static_cast<std::uint8_t>(kNoteOff + c), note, velocity});
  for (std::uint8_t c = 4; c < 16; ++c) m.insert(m.end(), {static_cast<std::uint8_t>(kNoteOff + c), note, velocity});
  return m;
}

std::vector<Bytes> splitMidiStream(std::span<const std::uint8_t> stream) {
  std::vector<Bytes> out;
  MidiParser parser;
  parser.feed(stream, [&out](std::span<const std::uint8_t> m) { out.emplace_back(m.begin(), m.end()); });
  return out;
}

}  // namespace tessivo
