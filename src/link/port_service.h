#pragma once
// The MIDI service of the running program: the devices of several port providers in one
// numbering (the built-in virtual instrument first, then the system's ports), with the
// header, input and thru rules of the platform service kept in one place.

#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "link/midi_service.h"
#include "link/ports.h"

namespace tessivo {

class PortMidiService : public MidiService {
 public:
  // Device lists are taken once, here, and not rebuilt while the program runs.
  explicit PortMidiService(std::vector<PortProvider*> providers);
  ~PortMidiService() override;

  std::uint32_t midiOutGetNumDevs() override;
  std::uint32_t midiInGetNumDevs() override;
  MMRESULT midiOutGetDevCaps(std::uint32_t device, std::string& name) override;
  MMRESULT midiInGetDevCaps(std::uint32_t device, std::string& name) override;
  MMRESULT midiOutOpen(MidiHandle& handle, std::uint32_t device) override;
  MMRESULT midiInOpen(MidiHandle& handle, std::uint32_t device, MidiInProc callback,
                      std::uintptr_t instance, std::uint32_t flags) override;
  MMRESULT midiConnect(MidiHandle in, MidiHandle out) override;
  MMRESULT midiDisconnect(MidiHandle in, MidiHandle out) override;
  MMRESULT midiInStart(MidiHandle in) override;
  MMRESULT midiInStop(MidiHandle in) override;
  MMRESULT midiInReset(MidiHandle in) override;
  MMRESULT midiInPrepareHeader(MidiHandle in, MidiHdr* hdr, std::uint32_t size) override;
  MMRESULT midiInAddBuffer(MidiHandle in, MidiHdr* hdr, std::uint32_t size) override;
  MMRESULT midiInUnprepareHeader(MidiHandle in, MidiHdr* hdr, std::uint32_t size) override;
  MMRESULT midiOutPrepareHeader(MidiHandle out, MidiHdr* hdr, std::uint32_t size) override;
  MMRESULT midiOutLongMsg(MidiHandle out, MidiHdr* hdr, std::uint32_t size) override;
  MMRESULT midiOutUnprepareHeader(MidiHandle out, MidiHdr* hdr, std::uint32_t size) override;
  MMRESULT midiOutReset(MidiHandle out) override;
  MMRESULT midiInClose(MidiHandle in) override;
  MMRESULT midiOutClose(MidiHandle out) override;
  MMRESULT midiOutGetErrorText(MMRESULT code, std::string& text) override;
  MMRESULT midiInGetErrorText(MMRESULT code, std::string& text) override;

 private:
  struct Device {
    PortProvider* provider;
    std::size_t index;
    std::string name;
  };
  struct Output {
    std::uint32_t device;
    std::unique_ptr<OutPort> port;
  };
  struct Input {
    std::uint32_t device;
    std::unique_ptr<InPort> port;
    MidiInProc callback = nullptr;
    std::uintptr_t instance = 0;
    bool started = false;
    MidiHandle thru = 0;
    std::vector<MidiHdr*> queue;
  };

  void received(MidiHandle in, std::span<const std::uint8_t> message);
  bool sendLocked(Output& out, std::span<const std::uint8_t> message);
  void notifyState(Input& in);
  Input* input(MidiHandle h);
  Output* output(MidiHandle h);

  std::vector<Device> inDevices_, outDevices_;
  // inMutex_ guards the inputs (taken on the ports' threads); outMutex_ the outputs and
  // their sends, so the thru path and the program's own sends never interleave. Lock order:
  // inMutex_ before outMutex_.
  std::mutex inMutex_;
  std::mutex outMutex_;
  std::map<MidiHandle, Input> inputs_;
  std::map<MidiHandle, Output> outputs_;
  MidiHandle nextHandle_ = 1;
};

}  // namespace tessivo
