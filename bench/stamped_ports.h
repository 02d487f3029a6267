#pragma once
// What the benchmarks put between the program and the virtual CS2x: a screen that answers
// every box at once and counts them, and ports that note when a message enters the output port
// and when one comes back in, and how many messages and bytes went out. The output can also
// pause after each message, as editors that pace their sends by a fixed wait do.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include "instrument/virtual_cs2x.h"

#include "link/port_service.h"
#include "link/screen.h"

namespace tessivo::bench {

using Clock = std::chrono::steady_clock;

class QuietScreen : public Screen {
 public:
  int boxes = 0;
  MsgAnswer messageBox(const std::string&, const std::string&, MsgButtons, MsgIcon) override {
    ++boxes;
    return MsgAnswer::Ok;
  }
  void createForm(FormId) override {}
  void showForm(FormId) override {}
  void hideForm(FormId) override {}
  void unloadForm(FormId) override {}
  void setBusy(bool) override {}
  void startTimer(int) override {}
  bool showOpen(FileDialog&) override { return false; }
  bool showSave(FileDialog&) override { return false; }
};

struct Stamps {
  std::atomic<Clock::rep> requestOut{0}, replyIn{0};  // the latest message out, the latest in
  std::atomic<long> messages{0}, bytes{0};             // what went out
  std::atomic<int> pauseMs{0};                         // a fixed pause after each message out
};

class StampedIn : public InPort {
 public:
  StampedIn(std::unique_ptr<InPort> inner, Stamps& stamps) : inner_(std::move(inner)), stamps_(stamps) {}
  void setSink(Sink sink) override {
    if (!sink) return inner_->setSink(nullptr);
    inner_->setSink([this, sink](std::span<const std::uint8_t> m) {
      stamps_.replyIn = Clock::now().time_since_epoch().count();
      sink(m);
    });
  }
  void stateChanged(bool started, bool thru) override { inner_->stateChanged(started, thru); }

 private:
  std::unique_ptr<InPort> inner_;
  Stamps& stamps_;
};

class StampedOut : public OutPort {
 public:
  StampedOut(std::unique_ptr<OutPort> inner, Stamps& stamps) : inner_(std::move(inner)), stamps_(stamps) {}
  bool send(std::span<const std::uint8_t> m) override {
    stamps_.requestOut = Clock::now().time_since_epoch().count();
    ++stamps_.messages;
    stamps_.bytes += static_cast<long>(m.size());
    const bool sent = inner_->send(m);
    // The pause comes before the service waits out the wire time; the sender is held for the
    // sum either way.
    if (const int pause = stamps_.pauseMs; pause > 0) std::this_thread::sleep_for(std::chrono::milliseconds(pause));
    return sent;
  }
  std::chrono::nanoseconds wireTime(std::size_t bytes) const override { return inner_->wireTime(bytes); }

 private:
  std::unique_ptr<OutPort> inner_;
  Stamps& stamps_;
};

class StampedProvider : public PortProvider {
 public:
  StampedProvider(PortProvider& inner, Stamps& stamps) : inner_(inner), stamps_(stamps) {}
  std::vector<std::string> inputNames() override { return inner_.inputNames(); }
  std::vector<std::string> outputNames() override { return inner_.outputNames(); }
  std::unique_ptr<InPort> openInput(std::size_t i, MMRESULT& e) override {
    auto p = inner_.openInput(i, e);
    return p ? std::make_unique<StampedIn>(std::move(p), stamps_) : nullptr;
  }
  std::unique_ptr<OutPort> openOutput(std::size_t i, MMRESULT& e) override {
    auto p = inner_.openOutput(i, e);
    return p ? std::make_unique<StampedOut>(std::move(p), stamps_) : nullptr;
  }

 private:
  PortProvider& inner_;
  Stamps& stamps_;
};

// The built-in instrument behind stamped ports, with a screen that answers every box.
struct StampedInstrument {
  explicit StampedInstrument(bool paced, std::chrono::microseconds latency = {})
      : cs2x({.silent = false, .replyLatency = latency, .paced = paced}) {}
  VirtualCs2x cs2x;
  VirtualCs2xProvider builtIn{cs2x};
  Stamps stamps;
  StampedProvider provider{builtIn, stamps};
  PortMidiService midi{{&provider}};
  QuietScreen screen;
};

inline double us(Clock::duration d) { return std::chrono::duration<double, std::micro>(d).count(); }
// The value below which the fraction `p` of `v` lies (the nearest rank below).
inline double percentile(std::vector<double> v, double p) {
  std::sort(v.begin(), v.end());
  return v[static_cast<std::size_t>(p * static_cast<double>(v.size() - 1))];
}
inline double median(std::vector<double> v) { return percentile(std::move(v), 0.5); }

// A stamp as a point in time.
inline Clock::time_point at(Clock::rep stamp) { return Clock::time_point(Clock::duration(stamp)); }

}  // namespace tessivo::bench
