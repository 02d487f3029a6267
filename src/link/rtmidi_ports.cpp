#include "link/rtmidi_ports.h"

#include <rtmidi/RtMidi.h>

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <unistd.h>

#include "link/jack_clients.h"
#include "link/midi_parser.h"

namespace tessivo {

const char* midiSystemName(MidiSystem system) {
  switch (system) {
    case MidiSystem::Alsa: return "ALSA";
    case MidiSystem::Jack: return "JACK";
    default: return "none";
  }
}

namespace {

RtMidi::Api rtApi(MidiSystem system) {
  return system == MidiSystem::Alsa ? RtMidi::LINUX_ALSA : RtMidi::UNIX_JACK;
}

// RtMidi reports through this callback instead of printing and throwing; any report during
// a call marks that call as failed.
struct ErrorTrap {
  std::atomic<bool> raised{false};
  std::string text;
  static void callback(RtMidiError::Type, const std::string& errorText, void* user) {
    auto* self = static_cast<ErrorTrap*>(user);
    self->text = errorText;
    self->raised = true;
  }
};

template <typename Rt>
std::vector<std::string> portNames(MidiSystem system, const std::string& client) {
  std::vector<std::string> names;
  if (system == MidiSystem::None) return names;
  try {
    Rt rt(rtApi(system), client);
    ErrorTrap trap;
    rt.setErrorCallback(&ErrorTrap::callback, &trap);
    const unsigned count = rt.getPortCount();
    for (unsigned i = 0; i < count && !trap.raised; ++i) names.push_back(rt.getPortName(i));
    if (trap.raised) names.clear();
  } catch (const RtMidiError&) {
    names.clear();
  }
  return names;
}

// Opens `rt` at the port called `name`: found by name, since port numbers move when other
// programs come and go.
template <typename Rt>
bool openByName(Rt& rt, ErrorTrap& trap, const std::string& name, const std::string& portName) {
  const unsigned count = rt.getPortCount();
  for (unsigned i = 0; i < count && !trap.raised; ++i) {
    if (rt.getPortName(i) == name) {
      rt.openPort(i, portName);
      return !trap.raised && rt.isPortOpen();
    }
  }
  return false;
}

// An ALSA input. RtMidi's ALSA input hands over whole events, but joins the event behind a
// SysEx without F7 to it ("F0 .. 90 40 7F"), so its messages go through a parser of our own,
// which takes them apart again as a MIDI receiver would.
class RtIn : public InPort {
 public:
  RtIn(MidiSystem system, const std::string& client) : rt_(rtApi(system), client) {
    rt_.setErrorCallback(&ErrorTrap::callback, &trap_);
    rt_.ignoreTypes(false, false, false);  // thru passes SysEx, clock and active sensing too
    rt_.setCallback(&RtIn::callback, this);
  }
  // Closing joins RtMidi's input thread; the callback is let go only after that, since the
  // thread reads it without a lock.
  ~RtIn() override {
    rt_.closePort();
    rt_.cancelCallback();
  }
  bool open(const std::string& name) { return openByName(rt_, trap_, name, "MIDI In"); }
  void setSink(Sink sink) override {
    std::lock_guard lock(mutex_);
    sink_ = std::move(sink);
  }

 private:
  static void callback(double, std::vector<unsigned char>* message, void* user) {
    auto* self = static_cast<RtIn*>(user);
    if (!message) return;
    std::lock_guard lock(self->mutex_);
    self->parser_.feed(*message, [self](std::span<const std::uint8_t> m) {
      if (self->sink_) self->sink_(m);
    });
  }
  RtMidiIn rt_;
  ErrorTrap trap_;
  std::mutex mutex_;
  MidiParser parser_;
  Sink sink_;
};

// An ALSA output (JACK's is the program's own client, jack_clients.h).
class RtOut : public OutPort {
 public:
  RtOut(MidiSystem system, const std::string& client) : rt_(rtApi(system), client) {
    rt_.setErrorCallback(&ErrorTrap::callback, &trap_);
  }
  ~RtOut() override { rt_.closePort(); }
  bool open(const std::string& name) { return openByName(rt_, trap_, name, "MIDI Out"); }
  bool send(std::span<const std::uint8_t> message) override {
    trap_.raised = false;
    rt_.sendMessage(message.data(), message.size());
    return !trap_.raised;
  }

 private:
  RtMidiOut rt_;
  ErrorTrap trap_;
};

}  // namespace

bool alsaSequencerAvailable() {
  if (::access("/dev/snd/seq", R_OK | W_OK) != 0) return false;  // spares ALSA's complaints
  try {
    RtMidiIn probe(RtMidi::LINUX_ALSA, "Tessivo probe");
    return true;
  } catch (const RtMidiError&) {
    return false;
  }
}

MidiSystem chooseMidiSystem() {
  if (alsaSequencerAvailable()) return MidiSystem::Alsa;
  if (jackServerRunning()) return MidiSystem::Jack;
  return MidiSystem::None;
}

RtMidiProvider::RtMidiProvider(MidiSystem system, std::string clientName)
    : system_(system), clientName_(std::move(clientName)) {
  ::setenv("JACK_NO_START_SERVER", "1", 0);  // a look at the port list must never start a server
  if (system_ == MidiSystem::Jack) {
    watch_ = JackWatch::open();
    if (!watch_) system_ = MidiSystem::None;
  }
  inNames_ = portNames<RtMidiIn>(system_, clientName_);
  outNames_ = portNames<RtMidiOut>(system_, clientName_);
}

std::unique_ptr<InPort> RtMidiProvider::openInput(std::size_t index, MMRESULT& error) {
  error = MIDIERR_NODEVICE;
  if (index >= inNames_.size()) return nullptr;
  // A JACK server that went away since the list was read must not be touched: libjack crashes
  // on a client that could not connect.
  if (watch_ && watch_->serverGone()) return nullptr;
  if (system_ == MidiSystem::Jack) {
    auto port = openJackInput(clientName_, inNames_[index], watch_);
    if (port) error = MMSYSERR_NOERROR;
    return port;
  }
  try {
    auto port = std::make_unique<RtIn>(system_, clientName_);
    if (!port->open(inNames_[index])) return nullptr;
    error = MMSYSERR_NOERROR;
    return port;
  } catch (const RtMidiError&) {
    return nullptr;
  }
}

std::unique_ptr<OutPort> RtMidiProvider::openOutput(std::size_t index, MMRESULT& error) {
  error = MIDIERR_NODEVICE;
  if (index >= outNames_.size()) return nullptr;
  if (watch_ && watch_->serverGone()) return nullptr;
  if (system_ == MidiSystem::Jack) {
    auto port = openJackOutput(clientName_, outNames_[index], watch_);
    if (port) error = MMSYSERR_NOERROR;
    return port;
  }
  try {
    auto port = std::make_unique<RtOut>(system_, clientName_);
    if (!port->open(outNames_[index])) return nullptr;
    error = MMSYSERR_NOERROR;
    return port;
  } catch (const RtMidiError&) {
    return nullptr;
  }
}

}  // namespace tessivo
