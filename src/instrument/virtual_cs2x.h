#pragma once
// The built-in stand-in for the instrument: device 0 of both device lists. It holds what the
// program can see of a CS2x (the system block Com0, the Performance edit buffer, the sixteen
// XG Multi Parts, the Preset and User banks of Performances and the notes that sound), acts on
// every message sent to it, and answers dump and parameter requests through the port that the
// program opened as its input, on a thread of its own (AnswerLine). It also keeps a
// time-stamped log of the latest messages it received.

#include <array>
#include <bitset>
#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "instrument/virtual_cs2x_answers.h"
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
  struct SoundingNote {
    std::uint8_t channel, note;  // 0..15, 0..127
    bool operator==(const SoundingNote&) const = default;
  };

  // Bank Select LSB of the four banks of Performances (with MSB kPerfBankMsb).
  static constexpr std::uint8_t kPerfBankMsb = 0x3F;
  static constexpr std::uint8_t kPreset1 = 0x40, kUser1 = 0x41, kPreset2 = 0x42, kUser2 = 0x43;
  // Sizes of the blocks of the model 0x63 space, in data bytes.
  static constexpr std::size_t kCom0Size = 26, kCom1Size = 52, kCom2Size = 23, kCom3Size = 9, kLayerSize = 45;
  static constexpr std::size_t kParts = 16;
  // The log keeps the newest messages: at most this many, and at most this many bytes of them
  // (the newest message always, whatever its size).
  static constexpr std::size_t kLogMessages = 4096, kLogBytes = std::size_t{1} << 20;

  explicit VirtualCs2x(VirtualCs2xOptions options = {});
  // Stops the answer thread; answers still queued are dropped.
  ~VirtualCs2x() = default;
  VirtualCs2x(const VirtualCs2x&) = delete;
  VirtualCs2x& operator=(const VirtualCs2x&) = delete;

  const VirtualCs2xOptions& options() const { return options_; }

  // One whole message from the program's output. Anything malformed is logged and ignored.
  void receive(std::span<const std::uint8_t> message);
  // Where answers go: the program's input port. Empty while that port is closed (answers are
  // then dropped). Returns once an answer being handed to the old sink has been handed over,
  // so the old sink's owner may go away afterwards.
  void setAnswerSink(InPort::Sink sink);
  void setInputState(bool started, bool thru);
  // Transmits a message to the program's input as if the instrument had played it, at once
  // and on the caller's thread.
  void transmit(std::span<const std::uint8_t> message);
  // Blocks until every queued answer has gone out or been dropped. Not from inside a sink.
  void waitIdle();

  // The messages received, oldest first, within the log's bounds.
  std::vector<Received> log() const;
  void clearLog();
  bool inputStarted() const;
  bool thruOn() const;

  // What the instrument holds.
  int performanceChannel() const;      // Com0 50 00 00
  std::uint8_t transmitChannel() const;  // Com0 50 00 0A
  std::uint8_t localSwitch() const;      // Com0 50 00 0B
  std::uint8_t arpeggiator() const;      // Com1 60 00 33: 4 off, 5 on
  std::uint8_t bankLsb() const;          // bank of the Performance last loaded
  std::uint8_t program() const;          // its program number
  std::string perfName() const;          // the 8 characters of the edit buffer's name
  std::uint8_t layerSwitch(int layer) const;  // layer 1..4: 1 is on, anything else off
  // The bulk dump the instrument sends for a block start address (a Performance block or a
  // Multi Part section); empty for any other address.
  Bytes block(const Address& a) const;
  // One byte of either space; nothing where the instrument holds none.
  std::optional<std::uint8_t> byteAt(std::uint8_t model, const Address& a) const;
  std::optional<std::uint8_t> xgByte(int part, std::uint8_t high, std::uint8_t low) const;
  // Notes that sound, by channel and then note.
  std::vector<SoundingNote> soundingNotes() const;

  // Loads Performance `program` of the bank with that Bank Select LSB into the edit buffer, as
  // a Program Change does; false (nothing changed) for another bank or a program above 127.
  bool loadPerformance(std::uint8_t bankLsb, std::uint8_t program);

  // The edit buffer: the three Common blocks and the four Layers.
  struct PerfData {
    std::array<std::uint8_t, kCom1Size> com1{};
    std::array<std::uint8_t, kCom2Size> com2{};
    std::array<std::uint8_t, kCom3Size> com3{};
    std::array<std::array<std::uint8_t, kLayerSize>, 4> layers{};
  };
  // Performance `program` of a bank as stored in the instrument (the bank must be one of the
  // four).
  static PerfData storedPerformance(std::uint8_t bankLsb, std::uint8_t program);

 private:
  std::optional<Bytes> takeLocked(std::span<const std::uint8_t> message);
  std::optional<Bytes> takeSysExLocked(std::span<const std::uint8_t> message);
  void takeChannelLocked(std::span<const std::uint8_t> message);
  void logLocked(std::chrono::steady_clock::time_point time, std::span<const std::uint8_t> message);
  std::uint8_t* cell(std::uint8_t model, std::uint32_t address);
  const std::uint8_t* cell(std::uint8_t model, std::uint32_t address) const;
  void writeLocked(std::uint8_t model, const Address& a, std::span<const std::uint8_t> data);
  Bytes blockLocked(std::uint8_t model, const Address& a) const;

  const VirtualCs2xOptions options_;
  mutable std::mutex mutex_;  // everything below but answers_, which has its own
  std::deque<Received> log_;
  std::size_t logBytes_ = 0;
  bool inputStarted_ = false;
  bool thru_ = false;

  std::array<std::uint8_t, kCom0Size> com0_{};
  PerfData edit_;
  std::uint8_t loadedBank_ = kPreset1, loadedProgram_ = 0;
  std::uint8_t selectMsb_ = kPerfBankMsb, selectLsb_ = kPreset1;  // Bank Select as last received
  // XG space by high address byte 08 and 0A, part, low byte; only the sections' bytes count.
  std::array<std::array<std::array<std::uint8_t, 128>, kParts>, 2> xg_{};
  std::array<std::bitset<128>, 16> notes_;

  AnswerLine answers_;
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
