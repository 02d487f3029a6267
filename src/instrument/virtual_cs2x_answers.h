#pragma once
// The virtual CS2x's way back to the program: its answers go out one after the other on a
// thread of their own, after the reply latency and, when paced, after the wire time of the
// request and of every answer before them. Never from the caller's thread: the program sends
// while holding its output lock, and an answer enters the program's input, which takes its own.

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <span>
#include <thread>

#include "link/messages.h"
#include "link/ports.h"

namespace tessivo {

class AnswerLine {
 public:
  using Clock = std::chrono::steady_clock;

  AnswerLine(std::chrono::microseconds latency, bool paced);
  // Stops the thread; answers still queued are dropped.
  ~AnswerLine();
  AnswerLine(const AnswerLine&) = delete;
  AnswerLine& operator=(const AnswerLine&) = delete;

  // Queues the answer to a request of `requestBytes` bytes that had come in at `received`.
  void post(Bytes answer, Clock::time_point received, std::size_t requestBytes);
  // Where answers go; empty drops them. Returns once nothing is inside the old sink any more
  // (unless called from inside it).
  void setSink(InPort::Sink sink);
  // Hands `message` to the sink at once, on the caller's thread.
  void transmit(std::span<const std::uint8_t> message);
  // Blocks until every queued answer has gone out or been dropped. Not from inside a sink.
  void waitIdle();

 private:
  struct Answer {
    Bytes bytes;
    Clock::time_point ready;  // may start going out from here
  };
  void run();

  const std::chrono::microseconds latency_;
  const bool paced_;
  std::mutex mutex_;
  std::condition_variable wake_, idle_;
  std::deque<Answer> queue_;
  InPort::Sink sink_;
  std::size_t pending_ = 0;  // queued plus the one being handed over
  bool delivering_ = false;
  int transmitting_ = 0;  // transmit() calls inside the sink
  bool stop_ = false;
  std::thread worker_;  // last: starts once everything above is there
};

}  // namespace tessivo
