#pragma once
// A MIDI byte stream made from the fuzzer's bytes: first any bytes at all (noise: lost bytes,
// a SysEx cut off, data with no status), then whole messages as a sender on the wire puts
// them, with running status where a sender may use it and real-time bytes also inside another
// message. Whatever the noise left behind, a receiver reads the whole messages exactly, in
// order; the real-time bytes of the noise come out as they are.

#include <vector>

#include "fuzz_support.h"

namespace tessivo::fuzz {

struct StreamPlan {
  Bytes noise;
  Bytes stream;                // the whole messages on the wire, behind the noise
  std::vector<Bytes> expected;  // what a receiver reads from `stream`, in order
  std::vector<std::size_t> cuts;  // where the port hands over the next piece (offsets in noise + stream)
};

inline StreamPlan makePlan(Reader& r, std::size_t maxMessages = 96) {
  StreamPlan plan;
  const std::uint8_t noiseLength = r.byte();
  const auto noise = r.take(noiseLength % 96);
  plan.noise.assign(noise.begin(), noise.end());
  const std::uint8_t cutStep = static_cast<std::uint8_t>(r.byte() % 23 + 1);

  std::uint8_t running = 0;  // the channel status a sender may leave out
  bool first = true;         // the first message after the noise carries its status
  while (!r.empty() && plan.expected.size() < maxMessages) {
    const std::uint8_t k = r.byte();
    switch (k % 8) {
      case 0: {  // a real-time byte alone
        const auto b = static_cast<std::uint8_t>(0xF8 | (r.byte() & 0x07));
        plan.stream.push_back(b);
        plan.expected.push_back({b});
        continue;  // leaves running status and `first` as they are
      }
      case 1: {  // a SysEx; now and then a long one
        std::size_t n = r.byte();
        if (k & 0x80) n *= 37;
        Bytes m{kSysExStart};
        for (std::size_t i = 0; i < n; ++i) m.push_back(static_cast<std::uint8_t>(r.byte() & 0x7F));
        m.push_back(kSysExEnd);
        // A clock inside the SysEx comes out before it and leaves it whole.
        if ((k & 0x40) && m.size() > 2) {
          const std::size_t at = 1 + r.byte() % (m.size() - 1);
          plan.stream.insert(plan.stream.end(), m.begin(), m.begin() + static_cast<std::ptrdiff_t>(at));
          plan.stream.push_back(0xF8);
          plan.stream.insert(plan.stream.end(), m.begin() + static_cast<std::ptrdiff_t>(at), m.end());
          plan.expected.push_back({0xF8});
        } else {
          plan.stream.insert(plan.stream.end(), m.begin(), m.end());
        }
        plan.expected.push_back(m);
        running = 0;
        if (k & 0x20) plan.stream.push_back(static_cast<std::uint8_t>(r.byte() & 0x7F));  // data with no status: dropped
        break;
      }
      case 2: {  // system common: cancels running status
        static constexpr std::uint8_t kCommon[] = {0xF1, 0xF2, 0xF3, 0xF6};
        const std::uint8_t status = kCommon[r.byte() % 4];
        Bytes m{status};
        for (std::size_t i = 0; i < dataBytesOf(status); ++i) m.push_back(static_cast<std::uint8_t>(r.byte() & 0x7F));
        plan.stream.insert(plan.stream.end(), m.begin(), m.end());
        plan.expected.push_back(m);
        running = 0;  // and a data byte behind it has no status to belong to
        if (k & 0x80) plan.stream.push_back(static_cast<std::uint8_t>(r.byte() & 0x7F));
        break;
      }
      default: {  // a channel message, its status left out where running status allows
        const std::uint8_t pick = r.byte();
        const auto status = static_cast<std::uint8_t>(0x80 | ((pick & 0x7F) % 7) << 4 | (r.byte() & 0x0F));  // 8n..En
        Bytes m{status};
        for (std::size_t i = 0; i < dataBytesOf(status); ++i) m.push_back(static_cast<std::uint8_t>(r.byte() & 0x7F));
        const bool omit = !first && status == running && (pick & 0x80);
        const bool clockInside = (k % 8) == 7;  // a clock between its bytes
        Bytes wire(omit ? m.begin() + 1 : m.begin(), m.end());
        if (clockInside) {
          wire.insert(wire.begin() + (wire.size() >= 2 ? 1 : 0), 0xFA);  // before its last byte
          plan.expected.push_back({0xFA});
        }
        plan.stream.insert(plan.stream.end(), wire.begin(), wire.end());
        plan.expected.push_back(m);
        running = status;
        break;
      }
    }
    first = false;
  }
  const std::size_t total = plan.noise.size() + plan.stream.size();
  for (std::size_t at = cutStep; at < total; at += cutStep + (at % 5)) plan.cuts.push_back(at);
  return plan;
}

// The noise and the stream, in the pieces the plan cuts them into; `between` runs after the
// noise's last piece.
template <typename Deliver, typename Between>
void deliverPlan(const StreamPlan& plan, Deliver&& deliver, Between&& between) {
  auto pieces = [&](const Bytes& bytes, std::size_t offset) {
    std::size_t from = 0;
    for (std::size_t cut : plan.cuts) {
      if (cut <= offset || cut - offset <= from) continue;
      if (cut - offset >= bytes.size()) break;
      deliver(std::span<const std::uint8_t>(bytes).subspan(from, cut - offset - from));
      from = cut - offset;
    }
    if (from < bytes.size()) deliver(std::span<const std::uint8_t>(bytes).subspan(from));
  };
  pieces(plan.noise, 0);
  between();
  pieces(plan.stream, plan.noise.size());
}

}  // namespace tessivo::fuzz
