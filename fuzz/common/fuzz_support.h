#pragma once
// What the fuzz targets share: the check that ends a run on a broken promise, a scratch file
// of the process's own, the rules of a whole MIDI message, and a port family whose input is
// fed from the fuzzer's bytes and whose output records what it was handed.

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "link/messages.h"
#include "link/midi_parser.h"
#include "link/ports.h"

namespace tessivo::fuzz {

// A promise of the program that this input broke: libFuzzer keeps the input as a crash.
#define FUZZ_PROMISE(cond, what)                                                          \
  do {                                                                                    \
    if (!(cond)) {                                                                        \
      std::fprintf(stderr, "broken promise at %s:%d: %s\n  (%s)\n", __FILE__, __LINE__, \
                   what, #cond);                                                          \
      __builtin_trap();                                                                   \
    }                                                                                     \
  } while (0)

// A file in the temporary folder that belongs to this process alone.
inline std::string scratchPath(const std::string& name) {
  const char* dir = std::getenv("TMPDIR");
  return std::string(dir && *dir ? dir : "/tmp") + "/tessivo-fuzz-" + std::to_string(::getpid()) + "-" + name;
}

// A scratch file that cannot be written is the rig's failure, not the program's: said so, and
// the run ends before a load of a missing file could count as a broken promise.
inline void writeBytes(const std::string& path, std::span<const std::uint8_t> bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  out.close();
  if (!out) {
    std::fprintf(stderr, "fuzz rig: cannot write %s (the scratch folder is gone?); not a finding\n", path.c_str());
    std::abort();
  }
}

inline Bytes readBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), {});
}

// The data bytes a message of this status carries (not for F0, F7 or real-time bytes), by
// the MIDI tables: Cn and Dn one, F1 and F3 one, F2 two, F6 (and the undefined F4, F5) none,
// every other channel message two.
inline std::size_t dataBytesOf(std::uint8_t status) {
  if (status < 0xF0) return (status & 0xE0) == 0xC0 ? 1 : 2;
  if (status == 0xF1 || status == 0xF3) return 1;
  if (status == 0xF2) return 2;
  return 0;
}

// A message a receiver may hand on: a real-time byte alone; a SysEx from F0 to F7 with only
// data bytes between them and within the bound; a status byte with its exact count of data.
inline bool wholeMessage(std::span<const std::uint8_t> m) {
  if (m.empty() || m[0] < 0x80) return false;
  if (m[0] >= 0xF8) return m.size() == 1;
  if (m[0] == 0xF0) {
    if (m.size() < 2 || m.back() != 0xF7 || m.size() > MidiParser::kMaxSysEx) return false;
    for (std::size_t i = 1; i + 1 < m.size(); ++i)
      if (m[i] >= 0x80) return false;
    return true;
  }
  if (m[0] == 0xF7) return false;
  if (m.size() != 1 + dataBytesOf(m[0])) return false;
  for (std::size_t i = 1; i < m.size(); ++i)
    if (m[i] >= 0x80) return false;
  return true;
}

// With TESSIVO_FUZZ_VERBOSE set, messages are printed before a check, to read a finding by.
inline void show(const char* label, const std::vector<Bytes>& messages) {
  if (!std::getenv("TESSIVO_FUZZ_VERBOSE")) return;
  std::fprintf(stderr, "%s:", label);
  for (const Bytes& m : messages) {
    std::fprintf(stderr, " [");
    for (std::size_t i = 0; i < m.size(); ++i) std::fprintf(stderr, i ? " %02X" : "%02X", m[i]);
    std::fprintf(stderr, "]");
  }
  std::fprintf(stderr, "\n");
}

// Reads the fuzzer's bytes front to back.
class Reader {
 public:
  Reader(const std::uint8_t* data, std::size_t size) : p_(data), n_(size) {}
  bool empty() const { return n_ == 0; }
  std::size_t left() const { return n_; }
  std::uint8_t byte() {
    if (n_ == 0) return 0;
    --n_;
    return *p_++;
  }
  std::span<const std::uint8_t> take(std::size_t count) {
    count = std::min(count, n_);
    std::span<const std::uint8_t> s(p_, count);
    p_ += count;
    n_ -= count;
    return s;
  }
  std::span<const std::uint8_t> rest() { return take(n_); }

 private:
  const std::uint8_t* p_;
  std::size_t n_;
};

// One input and one output device. The input reads what it is given as a port does that hands
// over pieces of a byte stream (RtMidi's ALSA input, a JACK port): through a MidiParser of its
// own, whole messages to the service's sink. The output keeps every message it is handed and
// may act on it (an instrument that answers).
class FuzzPorts : public PortProvider {
 public:
  struct In : InPort {
    FuzzPorts* owner;
    MidiParser parser;
    Sink sink;
    explicit In(FuzzPorts* o) : owner(o) {}
    ~In() override { owner->in_ = nullptr; }
    void setSink(Sink s) override { sink = std::move(s); }
    void stateChanged(bool started, bool thru) override {
      owner->started = started;
      owner->thru = thru;
    }
  };
  struct Out : OutPort {
    FuzzPorts* owner;
    explicit Out(FuzzPorts* o) : owner(o) {}
    bool send(std::span<const std::uint8_t> message) override {
      owner->sent.emplace_back(message.begin(), message.end());
      if (owner->onSend) owner->onSend(message);
      return true;
    }
  };

  std::vector<std::string> inputNames() override { return {"Fuzz In"}; }
  std::vector<std::string> outputNames() override { return {"Fuzz Out"}; }
  std::unique_ptr<InPort> openInput(std::size_t, MMRESULT&) override {
    auto p = std::make_unique<In>(this);
    in_ = p.get();
    return p;
  }
  std::unique_ptr<OutPort> openOutput(std::size_t, MMRESULT&) override { return std::make_unique<Out>(this); }

  // A piece of the incoming byte stream, as the port's thread would hand it over.
  void deliver(std::span<const std::uint8_t> piece) {
    if (!in_) return;
    in_->parser.feed(piece, [this](std::span<const std::uint8_t> m) {
      seen.emplace_back(m.begin(), m.end());
      if (in_->sink) in_->sink(m);
    });
  }

  std::vector<Bytes> seen;  // what the input's reader made of the bytes, message by message
  std::vector<Bytes> sent;  // what the output was handed, message by message
  std::function<void(std::span<const std::uint8_t>)> onSend;
  bool started = false, thru = false;  // as the service last told the input

 private:
  In* in_ = nullptr;
};

}  // namespace tessivo::fuzz
