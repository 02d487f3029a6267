#include "link/rtmidi_ports.h"

#include <jack/jack.h>
#include <rtmidi/RtMidi.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <unistd.h>
#include <mutex>

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

// JACK prints its own complaints when no server runs; the callers' answers say it all.
void quietJack() {
  jack_set_error_function([](const char*) {});
  jack_set_info_function([](const char*) {});
}

}  // namespace

// A client of its own that follows the server's cycles. JACK's shutdown notice does not always
// reach a client (a server that is stopping may fail to write it), so the cycles are what
// counts: a server that has run none for a while is gone, or as good as gone for a sender.
// The ports opened while it watches belong to that server, even when another one starts
// under the same name.
class JackWatch {
 public:
  static std::shared_ptr<JackWatch> open() {
    quietJack();
    jack_status_t status{};
    jack_client_t* client = jack_client_open("tessivo-watch", JackNoStartServer, &status);
    if (!client) return nullptr;
    auto watch = std::shared_ptr<JackWatch>(new JackWatch(client));
    jack_on_shutdown(client, &JackWatch::shutdown, watch.get());
    jack_set_process_callback(client, &JackWatch::cycle, watch.get());
    if (jack_activate(client) != 0) watch->gone_ = true;
    return watch;
  }
  ~JackWatch() {
    if (!serverGone()) jack_client_close(client_);
  }
  // Cheap enough for every message.
  bool stopped() const {
    return gone_ || std::chrono::steady_clock::now().time_since_epoch().count() - lastCycle_ > kStill.count();
  }
  // Stopped, or found out by asking: a killed server may still seem to be in its last cycle.
  bool serverGone() const { return stopped() || !jackServerRunning(); }

 private:
  // A dummy or sound card driver cycles every few milliseconds; a second of stillness is no
  // hiccup.
  static constexpr std::chrono::steady_clock::duration kStill = std::chrono::seconds(1);
  explicit JackWatch(jack_client_t* client) : client_(client) {}
  static void shutdown(void* watch) { static_cast<JackWatch*>(watch)->gone_ = true; }
  static int cycle(jack_nframes_t, void* watch) {
    static_cast<JackWatch*>(watch)->lastCycle_ = std::chrono::steady_clock::now().time_since_epoch().count();
    return 0;
  }
  jack_client_t* client_;
  std::atomic<bool> gone_{false};
  std::atomic<std::chrono::steady_clock::rep> lastCycle_{
      std::chrono::steady_clock::now().time_since_epoch().count()};
};

namespace {

// A port of a JACK client whose server has gone can be neither closed nor destroyed: libjack
// crashes on it. Such a port object is left behind, a few hundred bytes for a rare event; true
// when that was done.
template <typename Rt>
bool leftBehind(std::unique_ptr<Rt>& rt, const std::shared_ptr<JackWatch>& watch) {
  if (!watch || !watch->serverGone()) return false;
  static std::mutex mutex;
  static std::vector<std::unique_ptr<Rt>>* orphans = new std::vector<std::unique_ptr<Rt>>;
  std::lock_guard lock(mutex);
  orphans->push_back(std::move(rt));
  return true;
}

class RtIn : public InPort {
 public:
  RtIn(MidiSystem system, const std::string& client, std::shared_ptr<JackWatch> watch)
      : rt_(std::make_unique<RtMidiIn>(rtApi(system), client)), watch_(std::move(watch)) {
    rt_->setErrorCallback(&ErrorTrap::callback, &trap_);
    rt_->ignoreTypes(false, true, true);  // SysEx in; timing clock and active sensing out
    rt_->setCallback(&RtIn::callback, this);
  }
  ~RtIn() override {
    if (leftBehind(rt_, watch_)) return;
    rt_->cancelCallback();
    rt_->closePort();
  }
  bool open(const std::string& name) { return openByName(*rt_, trap_, name, "MIDI In"); }
  void setSink(Sink sink) override {
    std::lock_guard lock(mutex_);
    sink_ = std::move(sink);
  }

 private:
  static void callback(double, std::vector<unsigned char>* message, void* user) {
    auto* self = static_cast<RtIn*>(user);
    if (!message || message->empty()) return;
    std::lock_guard lock(self->mutex_);
    if (self->sink_) self->sink_(*message);
  }
  std::unique_ptr<RtMidiIn> rt_;
  std::shared_ptr<JackWatch> watch_;
  ErrorTrap trap_;
  std::mutex mutex_;
  Sink sink_;
};

class RtOut : public OutPort {
 public:
  RtOut(MidiSystem system, const std::string& client, std::shared_ptr<JackWatch> watch)
      : rt_(std::make_unique<RtMidiOut>(rtApi(system), client)), watch_(std::move(watch)) {
    rt_->setErrorCallback(&ErrorTrap::callback, &trap_);
  }
  ~RtOut() override {
    if (!leftBehind(rt_, watch_)) rt_->closePort();
  }
  bool open(const std::string& name) { return openByName(*rt_, trap_, name, "MIDI Out"); }
  bool send(std::span<const std::uint8_t> message) override {
    // RtMidi's JACK output waits, spinning, for room in a buffer that only the server's cycle
    // empties; with the server gone that wait would never end.
    if (watch_ && watch_->stopped()) return false;
    trap_.raised = false;
    rt_->sendMessage(message.data(), message.size());
    return !trap_.raised;
  }

 private:
  std::unique_ptr<RtMidiOut> rt_;
  std::shared_ptr<JackWatch> watch_;
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

bool jackServerRunning() {
  quietJack();
  jack_status_t status{};
  jack_client_t* client = jack_client_open("tessivo-probe", JackNoStartServer, &status);
  if (!client) return false;
  jack_client_close(client);
  return true;
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
  // A JACK server that went away since the list was read must not be touched: RtMidi's JACK
  // port crashes on a client that could not connect.
  if (watch_ && watch_->serverGone()) return nullptr;
  try {
    auto port = std::make_unique<RtIn>(system_, clientName_, watch_);
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
  try {
    auto port = std::make_unique<RtOut>(system_, clientName_, watch_);
    if (!port->open(outNames_[index])) return nullptr;
    error = MMSYSERR_NOERROR;
    return port;
  } catch (const RtMidiError&) {
    return nullptr;
  }
}

}  // namespace tessivo
