#pragma once
// Ports behind the MIDI service: a source of whole incoming messages and a sink for whole
// outgoing ones. PortMidiService keeps the service's own semantics (handles, headers, input
// start and stop, the thru path) and leaves only the moving of bytes to the ports.

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "link/midi_service.h"

namespace tessivo {

class InPort {
 public:
  // Called on the port's own thread with one whole message (a SysEx from F0 to F7, or a
  // short message).
  using Sink = std::function<void(std::span<const std::uint8_t>)>;
  virtual ~InPort() = default;
  virtual void setSink(Sink sink) = 0;
  // The service tells the port when its input runs and when the thru path is on.
  virtual void stateChanged(bool /*started*/, bool /*thru*/) {}
};

class OutPort {
 public:
  virtual ~OutPort() = default;
  // One whole message; false when the port could not take it.
  virtual bool send(std::span<const std::uint8_t> message) = 0;
  // How long `bytes` take on the wire after send returns (0: gone at once).
  virtual std::chrono::nanoseconds wireTime(std::size_t /*bytes*/) const { return {}; }
};

// A family of devices, such as the built-in instrument or the system's MIDI ports.
class PortProvider {
 public:
  virtual ~PortProvider() = default;
  virtual std::vector<std::string> inputNames() = 0;
  virtual std::vector<std::string> outputNames() = 0;
  // On failure return nullptr and set `error` to a code.
  virtual std::unique_ptr<InPort> openInput(std::size_t index, MMRESULT& error) = 0;
  virtual std::unique_ptr<OutPort> openOutput(std::size_t index, MMRESULT& error) = 0;
};

}  // namespace tessivo
