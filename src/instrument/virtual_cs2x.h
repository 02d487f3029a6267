#pragma once
// The built-in stand-in for the instrument: device 0 of both device lists. It takes every
// message sent to it and keeps a time-stamped log of them, follows whether its answers would
// reach the program (input started, thru on), and sends what it has to say through the port
// that the program opened as its input.

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "link/messages.h"
#include "link/ports.h"

namespace tessivo {

inline constexpr const char* kVirtualCs2xName = "Virtual CS2x (built-in)";
inline constexpr std::chrono::microseconds kWireTimePerByte{320};  // 31,250 baud, 10 bits a byte

struct VirtualCs2xOptions {
  bool silent = false;                       // never answers
  std::chrono::microseconds replyLatency{0};  // before an answer starts
  bool paced = false;                        // bytes take their wire time in both directions
};

class VirtualCs2x {
 public:
  struct Received {
    std::chrono::steady_clock::time_point time;
    Bytes bytes;
  };

  explicit VirtualCs2x(VirtualCs2xOptions options = {});
  ~VirtualCs2x();

  const VirtualCs2xOptions& options() const { return options_; }

  // One whole message from the program's output.
  void receive(std::span<const std::uint8_t> message);
  // Where answers go: the program's input port. Empty while that port is closed.
  void setAnswerSink(InPort::Sink sink);
  void setInputState(bool started, bool thru);
  // Transmits a message to the program's input as if the instrument had played it.
  void transmit(std::span<const std::uint8_t> message);

  std::vector<Received> log() const;
  void clearLog();
  bool inputStarted() const;
  bool thruOn() const;

 private:
  VirtualCs2xOptions options_;
  mutable std::mutex mutex_;
  std::vector<Received> log_;
  InPort::Sink answer_;
  bool inputStarted_ = false;
  bool thru_ = false;
};

// The instrument as a device family of one input and one output.
class VirtualCs2xProvider : public PortProvider {
 public:
  explicit VirtualCs2xProvider(VirtualCs2x& instrument) : instrument_(instrument) {}
  std::vector<std::string> inputNames() override { return {kVirtualCs2xName}; }
  std::vector<std::string> outputNames() override { return {kVirtualCs2xName}; }
  std::unique_ptr<InPort> openInput(std::size_t index, MMRESULT& error) override;
  std::unique_ptr<OutPort> openOutput(std::size_t index, MMRESULT& error) override;

 private:
  VirtualCs2x& instrument_;
};

}  // namespace tessivo
