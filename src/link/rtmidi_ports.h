#pragma once
// The system's MIDI ports: the ALSA sequencer where /dev/snd/seq works, else a running JACK
// server, else none. RtMidi carries them, except the JACK input, which is our own
// (jack_clients.h). The API is always chosen here, never left to RtMidi.

#include <memory>
#include <string>
#include <vector>

#include "link/ports.h"

namespace tessivo {

class JackWatch;

enum class MidiSystem { None, Alsa, Jack };

const char* midiSystemName(MidiSystem system);
bool alsaSequencerAvailable();
// Asks for a running JACK server without ever starting one.
bool jackServerRunning();
// ALSA if it works, else JACK if a server runs, else None.
MidiSystem chooseMidiSystem();

class RtMidiProvider : public PortProvider {
 public:
  // The port lists are read once, here.
  explicit RtMidiProvider(MidiSystem system, std::string clientName = "Tessivo");

  MidiSystem system() const { return system_; }
  std::vector<std::string> inputNames() override { return inNames_; }
  std::vector<std::string> outputNames() override { return outNames_; }
  std::unique_ptr<InPort> openInput(std::size_t index, MMRESULT& error) override;
  std::unique_ptr<OutPort> openOutput(std::size_t index, MMRESULT& error) override;

 private:
  MidiSystem system_;
  std::string clientName_;
  std::vector<std::string> inNames_, outNames_;
  std::shared_ptr<JackWatch> watch_;  // JACK only
};

}  // namespace tessivo
