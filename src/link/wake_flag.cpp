#include "link/wake_flag.h"

#include <algorithm>
#include <thread>

#if defined(__linux__)
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <ctime>
#endif

namespace tessivo {

static_assert(sizeof(std::atomic<std::uint32_t>) == sizeof(std::uint32_t) &&
                  std::atomic<std::uint32_t>::is_always_lock_free,
              "the kernel waits on the atomic's own 32 bits");

namespace {

#if defined(__linux__)
std::uint32_t* futexWord(std::atomic<std::uint32_t>& word) { return reinterpret_cast<std::uint32_t*>(&word); }

// Sleeps while the word still holds `expected`, at most `timeout`; any wake, change or signal
// ends it early, which the caller's loop sorts out.
void sleepOn(std::atomic<std::uint32_t>& word, std::uint32_t expected, std::chrono::nanoseconds timeout) {
  const auto s = std::chrono::duration_cast<std::chrono::seconds>(timeout);
  timespec relative{static_cast<std::time_t>(s.count()), static_cast<long>((timeout - s).count())};
  ::syscall(SYS_futex, futexWord(word), FUTEX_WAIT_PRIVATE, expected, &relative, nullptr, 0);
}

void wakeSleepers(std::atomic<std::uint32_t>& word) {
  ::syscall(SYS_futex, futexWord(word), FUTEX_WAKE_PRIVATE, INT32_MAX, nullptr, nullptr, 0);
}
#else
// Without a futex: look again every 100 µs.
void sleepOn(std::atomic<std::uint32_t>&, std::uint32_t, std::chrono::nanoseconds timeout) {
  std::this_thread::sleep_for(std::min<std::chrono::nanoseconds>(timeout, std::chrono::microseconds(100)));
}
void wakeSleepers(std::atomic<std::uint32_t>&) {}
#endif

}  // namespace

void WakeFlag::wakeAll() { wakeSleepers(word_); }

bool WakeFlag::waitRaised(std::chrono::nanoseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  std::uint32_t v = word_.load(std::memory_order_acquire);
  while (!(v & kRaised)) {
    // The sleeper bit goes on before the sleep, so a raise in between finds it and wakes us;
    // a raise that came first changed the word, and the sleep returns at once.
    if (!(v & kSleeper)) {
      if (!word_.compare_exchange_weak(v, v | kSleeper, std::memory_order_acq_rel)) continue;
      v |= kSleeper;
    }
    const auto left = deadline - std::chrono::steady_clock::now();
    if (left <= std::chrono::nanoseconds::zero()) return false;
    sleepOn(word_, v, left);
    v = word_.load(std::memory_order_acquire);
  }
  return true;
}

}  // namespace tessivo
