#pragma once
// A flag that one thread raises and another waits on. Raising is one atomic exchange, plus a
// wake-up call into the kernel only when a waiter sleeps: no lock and no allocation, so a MIDI
// driver's thread (or JACK's process thread) may raise it. The waiter wakes as soon as the
// flag rises (a futex on Linux; elsewhere short sleeps).

#include <atomic>
#include <chrono>
#include <cstdint>

namespace tessivo {

class WakeFlag {
 public:
  // The flag as a 16-bit word: 0, or -1 (0xFFFF) once raised.
  std::int16_t load() const { return (word_.load(std::memory_order_acquire) & kRaised) ? -1 : 0; }
  void clear() { word_.fetch_and(~kRaised, std::memory_order_acq_rel); }
  void raise() {
    if (word_.exchange(kRaised, std::memory_order_acq_rel) & kSleeper) wakeAll();
  }
  // Waits at most `timeout` for the flag; true when it is raised.
  bool waitRaised(std::chrono::nanoseconds timeout);

 private:
  static constexpr std::uint32_t kRaised = 0xFFFF;
  static constexpr std::uint32_t kSleeper = 0x10000;  // a waiter sleeps on the word
  void wakeAll();
  std::atomic<std::uint32_t> word_{0};
};

}  // namespace tessivo
