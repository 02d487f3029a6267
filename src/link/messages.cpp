#include "link/messages.h"

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

namespace {
// Data bytes that follow a status byte; -1 for SysEx.
int dataCount(std::uint8_t status) {
  if (status == kSysExStart) return -1;
  if (status < 0xF0) {
    const std::uint8_t kind = status & 0xF0;
    return (kind == 0xC0 || kind == 0xD0) ? 1 : 2;
  }
  switch (status) {
    case 0xF1:
    case 0xF3:
      return 1;
    case 0xF2:
      return 2;
    default:
      return 0;  // F4..F6, F7 on its own, real-time bytes
  }
}
}  // namespace

std::vector<Bytes> splitMidiStream(std::span<const std::uint8_t> stream) {
  std::vector<Bytes> out;
  std::uint8_t running = 0;
  std::size_t i = 0;
  while (i < stream.size()) {
    std::uint8_t b = stream[i];
    if (b == kSysExStart) {
      std::size_t j = i + 1;
      while (j < stream.size() && stream[j] != kSysExEnd) ++j;
      const std::size_t end = j < stream.size() ? j + 1 : j;
      out.emplace_back(stream.begin() + static_cast<std::ptrdiff_t>(i),
                       stream.begin() + static_cast<std::ptrdiff_t>(end));
      running = 0;
      i = end;
      continue;
    }
    Bytes msg;
    int count;
    if (b & 0x80) {
      count = dataCount(b);
      if (b < 0xF0) running = b;
      else if (b < 0xF8) running = 0;  // system common cancels running status
      msg.push_back(b);
      ++i;
    } else {
      if (running == 0) {  // stray data byte
        ++i;
        continue;
      }
      count = dataCount(running);
      msg.push_back(running);
    }
    std::vector<Bytes> realtime;  // clock and other real-time bytes may stand inside a message
    for (int k = 0; k < count && i < stream.size(); ++i) {
      if (stream[i] >= 0xF8) {
        realtime.push_back({stream[i]});
      } else if (stream[i] & 0x80) {
        break;
      } else {
        msg.push_back(stream[i]);
        ++k;
      }
    }
    out.insert(out.end(), realtime.begin(), realtime.end());
    // A message whose data bytes stop short is dropped, as a receiver on the wire drops it.
    if (msg.size() == static_cast<std::size_t>(count) + 1) out.push_back(std::move(msg));
  }
  return out;
}

}  // namespace tessivo
