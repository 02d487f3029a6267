// virtual-cs2x: the virtual CS2x behind real MIDI ports, for runs of the editor (or of the
// end-to-end tests) against an instrument on JACK or ALSA.
//
//   virtual-cs2x [--jack|--alsa] [--name NAME] [--latency-ms N] [--paced] [--silent]
//
// It opens the input port "NAME In" (the editor sends there) and the output port "NAME Out"
// (answers come from there) under the client name NAME, prints "ready" once both are open and
// runs until SIGINT or SIGTERM.
#include <rtmidi/RtMidi.h>
#include <signal.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "instrument/virtual_cs2x.h"
#include "link/rtmidi_ports.h"

namespace {

using tessivo::MidiSystem;

struct Settings {
  MidiSystem system = MidiSystem::None;  // None: JACK if a server runs, else ALSA
  std::string name = "Virtual CS2x";
  tessivo::VirtualCs2xOptions options;
};

void usage(std::FILE* to) {
  std::fputs("usage: virtual-cs2x [--jack|--alsa] [--name NAME] [--latency-ms N] [--paced] [--silent]\n", to);
}

// False (after a message) when the arguments do not make sense.
bool parse(int argc, char** argv, Settings& s, bool& help) {
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    const bool hasValue = i + 1 < argc;
    if (arg == "--jack") {
      s.system = MidiSystem::Jack;
    } else if (arg == "--alsa") {
      s.system = MidiSystem::Alsa;
    } else if (arg == "--paced") {
      s.options.paced = true;
    } else if (arg == "--silent") {
      s.options.silent = true;
    } else if (arg == "--name" && hasValue) {
      s.name = argv[++i];
      if (s.name.empty()) {
        std::fputs("virtual-cs2x: the name must not be empty\n", stderr);
        return false;
      }
    } else if (arg == "--latency-ms" && hasValue) {
      const char* text = argv[++i];
      char* end = nullptr;
      errno = 0;
      const long ms = std::strtol(text, &end, 10);
      if (errno != 0 || end == text || *end != '\0' || ms < 0 || ms > 60000) {
        std::fprintf(stderr, "virtual-cs2x: --latency-ms wants 0..60000, not \"%s\"\n", text);
        return false;
      }
      s.options.replyLatency = std::chrono::milliseconds(ms);
    } else if (arg == "--help" || arg == "-h") {
      help = true;
    } else {
      std::fprintf(stderr, "virtual-cs2x: unknown or incomplete argument \"%s\"\n", arg.c_str());
      return false;
    }
  }
  return true;
}

// RtMidi reports here instead of throwing once the ports exist.
struct ErrorReport {
  std::atomic<bool> raised{false};
  static void callback(RtMidiError::Type type, const std::string& text, void* user) {
    if (type == RtMidiError::WARNING || type == RtMidiError::DEBUG_WARNING) return;
    std::fprintf(stderr, "virtual-cs2x: %s\n", text.c_str());
    static_cast<ErrorReport*>(user)->raised = true;
  }
};

void received(double, std::vector<unsigned char>* message, void* user) {
  if (message && !message->empty()) static_cast<tessivo::VirtualCs2x*>(user)->receive(*message);
}

}  // namespace

int main(int argc, char** argv) {
  Settings settings;
  bool help = false;
  if (!parse(argc, argv, settings, help)) {
    usage(stderr);
    return 2;
  }
  if (help) {
    usage(stdout);
    return 0;
  }

  ::setenv("JACK_NO_START_SERVER", "1", 0);  // never start a JACK server of our own
  if (settings.system == MidiSystem::None)
    settings.system = tessivo::jackServerRunning()       ? MidiSystem::Jack
                      : tessivo::alsaSequencerAvailable() ? MidiSystem::Alsa
                                                          : MidiSystem::None;
  if (settings.system == MidiSystem::Jack && !tessivo::jackServerRunning()) {
    std::fputs("virtual-cs2x: no JACK server runs\n", stderr);
    return 1;
  }
  if (settings.system == MidiSystem::Alsa && !tessivo::alsaSequencerAvailable()) {
    std::fputs("virtual-cs2x: the ALSA sequencer cannot be opened\n", stderr);
    return 1;
  }
  if (settings.system == MidiSystem::None) {
    std::fputs("virtual-cs2x: neither a JACK server nor the ALSA sequencer is there\n", stderr);
    return 1;
  }
  const RtMidi::Api api = settings.system == MidiSystem::Jack ? RtMidi::UNIX_JACK : RtMidi::LINUX_ALSA;

  // SIGINT and SIGTERM are taken by sigtimedwait below; every thread started from here on
  // (RtMidi's, the instrument's) inherits the blocked mask.
  sigset_t stopSignals;
  sigemptyset(&stopSignals);
  sigaddset(&stopSignals, SIGINT);
  sigaddset(&stopSignals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);

  tessivo::VirtualCs2x instrument(settings.options);
  ErrorReport errors;
  try {
    RtMidiIn in(api, settings.name);
    RtMidiOut out(api, settings.name);
    in.setErrorCallback(&ErrorReport::callback, &errors);
    out.setErrorCallback(&ErrorReport::callback, &errors);
    in.ignoreTypes(false, true, true);  // SysEx in; timing clock and active sensing out
    in.setCallback(&received, &instrument);
    out.openVirtualPort(settings.name + " Out");
    in.openVirtualPort(settings.name + " In");
    // Virtual ports never count as open for isPortOpen; RtMidi's reports say whether they are.
    if (errors.raised) {
      std::fputs("virtual-cs2x: the ports could not be opened\n", stderr);
      in.cancelCallback();
      return 1;
    }
    instrument.setAnswerSink([&out](std::span<const std::uint8_t> m) { out.sendMessage(m.data(), m.size()); });
    instrument.setInputState(true, false);

    std::printf("ready\n");
    std::fflush(stdout);

    for (;;) {
      const timespec second{1, 0};
      const int signal = sigtimedwait(&stopSignals, nullptr, &second);
      if (signal == SIGINT || signal == SIGTERM) break;
      // A JACK server that has gone takes the instrument's ports with it; a tool left running
      // would only hold a client name that the next server's instrument wants. libjack crashes
      // when a port of a dead server is closed, so the tool ends without closing them.
      if (settings.system == MidiSystem::Jack && !tessivo::jackServerRunning()) {
        std::fputs("virtual-cs2x: the JACK server has gone\n", stderr);
        std::_Exit(0);
      }
      instrument.clearLog();  // nobody reads the log here; it must not grow for ever
    }

    in.cancelCallback();
    instrument.setAnswerSink(nullptr);  // returns once no answer is on its way to `out`
    in.closePort();
    out.closePort();
  } catch (const RtMidiError& e) {
    std::fprintf(stderr, "virtual-cs2x: %s\n", e.getMessage().c_str());
    return 1;
  }
  return 0;
}
