#include "instrument/virtual_cs2x_answers.h"

#include <algorithm>
#include <utility>

#include "instrument/virtual_cs2x.h"

namespace tessivo {

AnswerLine::AnswerLine(std::chrono::microseconds latency, bool paced)
    : latency_(latency), paced_(paced), worker_(&AnswerLine::run, this) {}

AnswerLine::~AnswerLine() {
  {
    std::lock_guard lock(mutex_);
    stop_ = true;
  }
  wake_.notify_all();
  worker_.join();
}

void AnswerLine::post(Bytes answer, Clock::time_point received, std::size_t requestBytes) {
  auto ready = received + latency_;
  // A paced request is whole only when its last byte has come in.
  if (paced_) ready += kWireTimePerByte * static_cast<long>(requestBytes);
  std::lock_guard lock(mutex_);
  queue_.push_back({std::move(answer), ready});
  ++pending_;
  wake_.notify_one();
}

void AnswerLine::run() {
  std::unique_lock lock(mutex_);
  Clock::time_point lineFree{};  // paced: when the last answer's bytes have gone out
  for (;;) {
    wake_.wait(lock, [&] { return stop_ || !queue_.empty(); });
    if (stop_) break;
    Answer answer = std::move(queue_.front());
    queue_.pop_front();
    auto due = answer.ready;
    if (paced_) {
      due = std::max(due, lineFree) + kWireTimePerByte * static_cast<long>(answer.bytes.size());
      lineFree = due;
    }
    if (wake_.wait_until(lock, due, [&] { return stop_; })) break;
    InPort::Sink sink = sink_;
    delivering_ = true;
    lock.unlock();
    if (sink) sink(answer.bytes);  // never under our own lock: the receiver takes its own
    sink = nullptr;
    lock.lock();
    delivering_ = false;
    --pending_;
    idle_.notify_all();
  }
  queue_.clear();
  pending_ = 0;
  idle_.notify_all();
}

void AnswerLine::setSink(InPort::Sink sink) {
  std::unique_lock lock(mutex_);
  sink_ = std::move(sink);
  // The old sink's owner may go once this returns: nothing may still be inside it.
  if (std::this_thread::get_id() != worker_.get_id())
    idle_.wait(lock, [&] { return !delivering_ && transmitting_ == 0; });
}

void AnswerLine::transmit(std::span<const std::uint8_t> message) {
  InPort::Sink sink;
  {
    std::lock_guard lock(mutex_);
    sink = sink_;
    if (!sink) return;
    ++transmitting_;
  }
  sink(message);  // never under our own lock: the receiver takes its own
  sink = nullptr;
  std::lock_guard lock(mutex_);
  --transmitting_;
  idle_.notify_all();
}

void AnswerLine::waitIdle() {
  std::unique_lock lock(mutex_);
  idle_.wait(lock, [&] { return pending_ == 0; });
}

}  // namespace tessivo
