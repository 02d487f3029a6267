#pragma once
// A MIDI receiver's reading of a byte stream: the bytes go in as they come, in pieces of any
// size, and whole messages come out. Channel and system common messages by their data counts,
// with running status; real-time bytes (F8..FF) at once, also from inside another message;
// SysEx from F0 to F7. A SysEx that a status byte other than a real-time one interrupts, or
// that grows beyond kMaxSysEx, is broken and dropped whole; the byte that ended it counts as
// what it is, so a new F0 starts the next SysEx. So are data bytes with no status before them
// and a message whose data stop short.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tessivo {

class MidiParser {
 public:
  static constexpr std::size_t kMaxSysEx = 64 * 1024;  // F0 and F7 included

  // Takes one byte; returns the message that it completes, or nothing. The message stays
  // valid until the next call.
  std::span<const std::uint8_t> push(std::uint8_t byte);
  // Hands every message that `bytes` complete to `emit`, in order.
  template <typename Emit>
  void feed(std::span<const std::uint8_t> bytes, Emit&& emit) {
    for (std::uint8_t b : bytes)
      if (const auto m = push(b); !m.empty()) emit(m);
  }
  // Forgets a message in progress, as after bytes were lost.
  void reset();

 private:
  std::vector<std::uint8_t> sysEx_;
  bool inSysEx_ = false;
  bool sysExTooLong_ = false;
  std::array<std::uint8_t, 3> message_{};
  std::size_t have_ = 0, length_ = 0;  // bytes of message_ so far, and its whole length
  std::uint8_t running_ = 0;           // running status; 0 when there is none
  std::uint8_t realTime_ = 0;
};

}  // namespace tessivo
