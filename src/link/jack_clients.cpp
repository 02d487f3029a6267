#include "link/jack_clients.h"

#include <jack/jack.h>
#include <jack/midiport.h>
#include <jack/ringbuffer.h>

#include <cerrno>
#include <mutex>
#include <thread>
#include <vector>

#include "link/midi_parser.h"
#include "link/rtmidi_ports.h"
#include "link/wake_flag.h"

namespace tessivo {

void quietJack() {
  jack_set_error_function([](const char*) {});
  jack_set_info_function([](const char*) {});
}

bool jackServerRunning() {
  quietJack();
  jack_status_t status{};
  jack_client_t* client = jack_client_open("tessivo-probe", JackNoStartServer, &status);
  if (!client) return false;
  jack_client_close(client);
  return true;
}

namespace {
// A dummy or sound card driver cycles every few milliseconds; a second of stillness is no
// hiccup.
constexpr std::chrono::steady_clock::duration kStill = std::chrono::seconds(1);
}  // namespace

namespace {
// A client whose server has gone can be neither deactivated nor closed (libjack crashes on
// it), and its thread may still be on its way out of a callback: the client and what its
// callbacks touch are kept here for good, a few hundred bytes once per server that went away.
void leaveBehind(jack_client_t* client, const void* state) {
  static std::mutex mutex;
  static auto* orphans = new std::vector<std::pair<jack_client_t*, const void*>>;
  std::lock_guard lock(mutex);
  orphans->emplace_back(client, state);
}
}  // namespace

std::shared_ptr<JackWatch> JackWatch::open() {
  quietJack();
  jack_status_t status{};
  jack_client_t* client = jack_client_open("tessivo-watch", JackNoStartServer, &status);
  if (!client) return nullptr;
  auto watch = std::shared_ptr<JackWatch>(new JackWatch(client, new Seen));
  jack_on_shutdown(client, &JackWatch::shutdown, watch->seen_);
  jack_set_process_callback(client, &JackWatch::cycle, watch->seen_);
  if (jack_activate(client) != 0) watch->seen_->gone = true;
  return watch;
}

JackWatch::~JackWatch() {
  if (serverGone()) {
    leaveBehind(client_, seen_);
    return;
  }
  jack_client_close(client_);
  delete seen_;
}

bool JackWatch::stopped() const {
  return seen_->gone || std::chrono::steady_clock::now().time_since_epoch().count() - seen_->lastCycle > kStill.count();
}

bool JackWatch::serverGone() const { return stopped() || !jackServerRunning(); }

void JackWatch::shutdown(void* seen) { static_cast<Seen*>(seen)->gone = true; }

int JackWatch::cycle(jack_nframes_t, void* seen) {
  static_cast<Seen*>(seen)->lastCycle = std::chrono::steady_clock::now().time_since_epoch().count();
  return 0;
}

namespace {

// What a port client's process thread touches: the port and the ring between it and the
// program. It outlives the client, and is left behind with it when the server has gone.
struct PortCycle {
  jack_port_t* port = nullptr;
  jack_ringbuffer_t* ring = nullptr;
};

// Opens client `name` with one MIDI port and a ring of `ringBytes`, `cycle` handed to
// `process` each cycle, and activates it; false when a step fails (closePortClient undoes
// what was made).
bool openPortClient(jack_client_t*& client, PortCycle* cycle, const std::string& name, const char* portName,
                    unsigned long flags, std::size_t ringBytes, JackProcessCallback process) {
  quietJack();
  jack_status_t status{};
  client = jack_client_open(name.c_str(), JackNoStartServer, &status);
  if (!client) return false;
  cycle->ring = jack_ringbuffer_create(ringBytes);
  if (!cycle->ring) return false;
  cycle->port = jack_port_register(client, portName, JACK_DEFAULT_MIDI_TYPE, flags, 0);
  return cycle->port && jack_set_process_callback(client, process, cycle) == 0 && jack_activate(client) == 0;
}

// Closes the client and frees its cycle; leaves both behind when the server has gone.
template <typename Cycle>
void closePortClient(jack_client_t* client, Cycle* cycle, bool serverGone) {
  if (!client) {
    delete cycle;
    return;
  }
  if (serverGone) return leaveBehind(client, cycle);
  jack_deactivate(client);  // from here on the process thread is done with the cycle
  jack_client_close(client);
  if (cycle->ring) jack_ringbuffer_free(cycle->ring);
  delete cycle;
}

struct InCycle : PortCycle {
  WakeFlag arrived;   // raised after each cycle that put events into the ring
  bool lost = false;  // process thread only: an event found no room since the last one stored
};

// Each event goes into the ring as a 32-bit head, its length with kLostBefore when events
// were lost just before it, and then its bytes.
constexpr std::uint32_t kLostBefore = 0x80000000u;
constexpr std::size_t kRingBytes = 64 * 1024;  // twenty seconds of a MIDI wire at full speed

class JackIn : public InPort {
 public:
  explicit JackIn(std::shared_ptr<JackWatch> watch) : watch_(std::move(watch)) {}
  ~JackIn() override;
  bool open(const std::string& client, const std::string& source);
  void setSink(Sink sink) override {
    std::lock_guard lock(sinkMutex_);
    sink_ = std::move(sink);
  }

 private:
  static int process(jack_nframes_t frames, void* arg);
  void read();

  std::shared_ptr<JackWatch> watch_;
  jack_client_t* client_ = nullptr;
  InCycle* cycle_ = nullptr;
  std::thread reader_;
  std::atomic<bool> stop_{false};
  MidiParser parser_;  // the reader's
  std::mutex sinkMutex_;
  Sink sink_;
};

// On JACK's realtime thread: no lock, no allocation, no wait.
int JackIn::process(jack_nframes_t frames, void* arg) {
  auto* c = static_cast<InCycle*>(arg);
  void* buffer = jack_port_get_buffer(c->port, frames);
  const std::uint32_t count = jack_midi_get_event_count(buffer);
  bool stored = false;
  for (std::uint32_t i = 0; i < count; ++i) {
    jack_midi_event_t event;
    if (jack_midi_event_get(&event, buffer, i) != 0 || event.size == 0) continue;
    const std::uint32_t head = static_cast<std::uint32_t>(event.size) | (c->lost ? kLostBefore : 0);
    if (event.size >= kLostBefore || jack_ringbuffer_write_space(c->ring) < sizeof head + event.size) {
      c->lost = true;
      continue;
    }
    jack_ringbuffer_write(c->ring, reinterpret_cast<const char*>(&head), sizeof head);
    jack_ringbuffer_write(c->ring, reinterpret_cast<const char*>(event.buffer), event.size);
    c->lost = false;
    stored = true;
  }
  if (stored) c->arrived.raise();
  return 0;
}

void JackIn::read() {
  std::vector<std::uint8_t> event;
  const auto emit = [this](std::span<const std::uint8_t> m) {
    std::lock_guard lock(sinkMutex_);
    if (sink_) sink_(m);
  };
  while (!stop_) {
    cycle_->arrived.clear();
    std::uint32_t head = 0;
    while (jack_ringbuffer_peek(cycle_->ring, reinterpret_cast<char*>(&head), sizeof head) == sizeof head) {
      const std::size_t size = head & ~kLostBefore;
      // The head may be in while the bytes behind it are still being written.
      if (jack_ringbuffer_read_space(cycle_->ring) < sizeof head + size) break;
      jack_ringbuffer_read_advance(cycle_->ring, sizeof head);
      event.resize(size);
      jack_ringbuffer_read(cycle_->ring, reinterpret_cast<char*>(event.data()), size);
      if (head & kLostBefore) parser_.reset();  // whatever was being gathered lost its middle
      parser_.feed(event, emit);
    }
    cycle_->arrived.waitRaised(std::chrono::seconds(1));
  }
}

bool JackIn::open(const std::string& client, const std::string& source) {
  cycle_ = new InCycle;
  if (!openPortClient(client_, cycle_, client, "MIDI In", JackPortIsInput, kRingBytes, &JackIn::process)) return false;
  reader_ = std::thread([this] { read(); });
  const int r = jack_connect(client_, source.c_str(), jack_port_name(cycle_->port));
  return r == 0 || r == EEXIST;
}

JackIn::~JackIn() {
  if (reader_.joinable()) {
    stop_ = true;
    cycle_->arrived.raise();
    reader_.join();
  }
  closePortClient(client_, cycle_, client_ && watch_ && watch_->serverGone());
}

// What the output's process thread touches; left behind with its client as the input's is.
struct OutCycle : PortCycle {
  WakeFlag drained;  // raised after each cycle that took messages out of the ring
  // This client's own last cycle: a client the server no longer runs (thrown out of the graph
  // while the watch still cycles) never empties its ring either.
  std::atomic<std::chrono::steady_clock::rep> lastCycle{std::chrono::steady_clock::now().time_since_epoch().count()};
};

// Five seconds of a MIDI wire at full speed; the server's cycle empties it every few
// milliseconds.
constexpr std::size_t kOutRingBytes = 16 * 1024;

class JackOut : public OutPort {
 public:
  explicit JackOut(std::shared_ptr<JackWatch> watch) : watch_(std::move(watch)) {}
  ~JackOut() override;
  bool open(const std::string& client, const std::string& destination);
  bool send(std::span<const std::uint8_t> message) override;

 private:
  static int process(jack_nframes_t frames, void* arg);
  bool stopped() const {
    return (watch_ && watch_->stopped()) ||
           std::chrono::steady_clock::now().time_since_epoch().count() - cycle_->lastCycle > kStill.count();
  }

  std::shared_ptr<JackWatch> watch_;
  jack_client_t* client_ = nullptr;
  OutCycle* cycle_ = nullptr;
};

// On JACK's realtime thread: each whole message in the ring becomes an event at the start of
// the cycle, in order, as many as the port's buffer holds; the rest wait for the next cycle.
// A message bigger than an empty buffer can ever hold is dropped, so it cannot stop the line.
int JackOut::process(jack_nframes_t frames, void* arg) {
  auto* c = static_cast<OutCycle*>(arg);
  c->lastCycle = std::chrono::steady_clock::now().time_since_epoch().count();
  void* buffer = jack_port_get_buffer(c->port, frames);
  jack_midi_clear_buffer(buffer);
  bool took = false;
  std::uint32_t size = 0;
  while (jack_ringbuffer_peek(c->ring, reinterpret_cast<char*>(&size), sizeof size) == sizeof size &&
         jack_ringbuffer_read_space(c->ring) >= sizeof size + size) {
    // Asked only for what fits, since a refused reservation counts as a lost event for the
    // readers of the port.
    const bool fits = size <= jack_midi_max_event_size(buffer);
    if (!fits && took) break;
    jack_midi_data_t* event = fits ? jack_midi_event_reserve(buffer, 0, size) : nullptr;
    if (fits && !event) break;
    jack_ringbuffer_read_advance(c->ring, sizeof size);
    if (event) jack_ringbuffer_read(c->ring, reinterpret_cast<char*>(event), size);
    else jack_ringbuffer_read_advance(c->ring, size);
    took = true;
  }
  if (took) c->drained.raise();
  return 0;
}

bool JackOut::send(std::span<const std::uint8_t> message) {
  const auto size = static_cast<std::uint32_t>(message.size());
  if (message.empty() || sizeof size + size >= kOutRingBytes) return false;
  // Room comes with the server's next cycle; a server that has stopped cycling never makes it.
  while (jack_ringbuffer_write_space(cycle_->ring) < sizeof size + size) {
    if (stopped()) return false;
    cycle_->drained.clear();
    if (jack_ringbuffer_write_space(cycle_->ring) < sizeof size + size)
      cycle_->drained.waitRaised(std::chrono::milliseconds(20));
  }
  if (stopped()) return false;
  jack_ringbuffer_write(cycle_->ring, reinterpret_cast<const char*>(&size), sizeof size);
  jack_ringbuffer_write(cycle_->ring, reinterpret_cast<const char*>(message.data()), size);
  return true;
}

bool JackOut::open(const std::string& client, const std::string& destination) {
  cycle_ = new OutCycle;
  if (!openPortClient(client_, cycle_, client, "MIDI Out", JackPortIsOutput, kOutRingBytes, &JackOut::process))
    return false;
  const int r = jack_connect(client_, jack_port_name(cycle_->port), destination.c_str());
  return r == 0 || r == EEXIST;
}

JackOut::~JackOut() {
  const auto serverGone = [this] { return client_ && watch_ && watch_->serverGone(); };
  if (!serverGone()) {
    // What was sent last still goes out: a second at most for the ring to empty.
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    while (client_ && cycle_->ring && jack_ringbuffer_read_space(cycle_->ring) > 0 && !stopped() &&
           std::chrono::steady_clock::now() < giveUp)
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  closePortClient(client_, cycle_, serverGone());  // it may have gone meanwhile
}

}  // namespace

std::unique_ptr<InPort> openJackInput(const std::string& client, const std::string& source,
                                      std::shared_ptr<JackWatch> watch) {
  auto port = std::make_unique<JackIn>(std::move(watch));
  if (!port->open(client, source)) return nullptr;
  return port;
}

std::unique_ptr<OutPort> openJackOutput(const std::string& client, const std::string& destination,
                                        std::shared_ptr<JackWatch> watch) {
  auto port = std::make_unique<JackOut>(std::move(watch));
  if (!port->open(client, destination)) return nullptr;
  return port;
}

}  // namespace tessivo
