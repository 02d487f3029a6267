#pragma once
// The program's own JACK clients, on libjack directly: the watch that tells a live server from
// a dead one, and the MIDI input and output ports. None of them ever starts a server.

#include <jack/types.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>

#include "link/ports.h"

namespace tessivo {

// JACK prints its own complaints when no server runs; the callers' answers say it all.
void quietJack();

// A client of its own that follows the server's cycles. JACK's shutdown notice does not always
// reach a client (a server that is stopping may fail to write it), so the cycles are what
// counts: a server that has run none for a while is gone, or as good as gone for a sender.
// The ports opened while it watches belong to that server, even when another one starts
// under the same name.
class JackWatch {
 public:
  static std::shared_ptr<JackWatch> open();
  ~JackWatch();
  // Cheap enough for every message.
  bool stopped() const;
  // Stopped, or found out by asking: a killed server may still seem to be in its last cycle.
  bool serverGone() const;

 private:
  // What JACK's threads touch. Like the client, it is left behind when the server has gone: a
  // dead server's client can be neither deactivated nor closed, so its thread may still be
  // on its way out of a callback.
  struct Seen {
    std::atomic<bool> gone{false};
    std::atomic<std::chrono::steady_clock::rep> lastCycle{std::chrono::steady_clock::now().time_since_epoch().count()};
  };
  JackWatch(jack_client_t* client, Seen* seen) : client_(client), seen_(seen) {}
  static void shutdown(void* seen);
  static int cycle(jack_nframes_t, void* seen);
  jack_client_t* client_;
  Seen* seen_;
};

// The input port "MIDI In" of a client named `client`, connected from the JACK port called
// `source`. JACK's process thread only copies each event's bytes aside; a thread of the port's
// own cuts and joins them into whole messages (MidiParser) and hands those to the sink, so the
// sink may block, or send on a port that waits for room. Nullptr when the port cannot be made
// or connected.
std::unique_ptr<InPort> openJackInput(const std::string& client, const std::string& source,
                                      std::shared_ptr<JackWatch> watch);

// The output port "MIDI Out" of a client named `client`, connected to the JACK port called
// `destination`. A send copies the message into a ring that JACK's process thread empties each
// cycle, in order; with the ring full it waits for the next cycle, and refuses the message
// once the server has stopped cycling, so a sender never waits on a dead server. Nullptr when
// the port cannot be made or connected.
std::unique_ptr<OutPort> openJackOutput(const std::string& client, const std::string& destination,
                                        std::shared_ptr<JackWatch> watch);

}  // namespace tessivo
