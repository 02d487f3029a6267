#include "instrument/virtual_cs2x.h"

#include <algorithm>
#include <utility>

#include "instrument/virtual_cs2x_contents.h"

namespace tessivo {

using namespace vcs2x;

namespace {

using Clock = std::chrono::steady_clock;

static_assert(kPerfBlocks[0].length == VirtualCs2x::kCom1Size + kBulkFrameBytes);
static_assert(kPerfBlocks[1].length == VirtualCs2x::kCom2Size + kBulkFrameBytes);
static_assert(kPerfBlocks[2].length == VirtualCs2x::kCom3Size + kBulkFrameBytes);
static_assert(kPerfBlocks[3].length == VirtualCs2x::kLayerSize + kBulkFrameBytes);
static_assert(kPerfBlocks[7].length == VirtualCs2x::kCom0Size + kBulkFrameBytes);

constexpr std::uint8_t kDevice = 0;  // the instrument's device number

std::uint32_t pack(const Address& a) {
  return (std::uint32_t{a.high} << 14) | (std::uint32_t{a.mid} << 7) | a.low;
}

bool sameAddress(const Address& a, const Address& b) { return a.high == b.high && a.mid == b.mid && a.low == b.low; }

}  // namespace

VirtualCs2x::VirtualCs2x(VirtualCs2xOptions options)
    : options_(options), answers_(options.replyLatency, options.paced) {
  com0_ = com0PowerOn();
  edit_ = storedPerformance(kPreset1, 0);
  for (std::uint8_t part = 0; part < kParts; ++part) {
    xg_[0][part] = xgPartPowerOn(part);
    xg_[1][part] = xgPartAPowerOn();
  }
}

// ---- memory ----

std::uint8_t* VirtualCs2x::cell(std::uint8_t model, std::uint32_t address) {
  return const_cast<std::uint8_t*>(std::as_const(*this).cell(model, address));
}

const std::uint8_t* VirtualCs2x::cell(std::uint8_t model, std::uint32_t address) const {
  const std::uint32_t high = address >> 14, mid = (address >> 7) & 0x7F, low = address & 0x7F;
  if (model == kModelCs2x) {
    if (high == 0x50 && mid == 0 && low < kCom0Size) return &com0_[low];
    if (high != 0x60) return nullptr;
    if (mid == 0) {
      if (low < kCom1Size) return &edit_.com1[low];
      if (low >= kCom2Low && low < kCom2Low + kCom2Size) return &edit_.com2[low - kCom2Low];
      if (low >= kCom3Low && low < kCom3Low + kCom3Size) return &edit_.com3[low - kCom3Low];
      return nullptr;
    }
    if (mid >= 1 && mid <= 4 && low < kLayerSize) return &edit_.layers[mid - 1][low];
    return nullptr;
  }
  if (model == kModelXg && mid < kParts) {
    for (const MultiSection& s : kMultiSections) {
      const std::size_t size = static_cast<std::size_t>(s.length) - kBulkFrameBytes;
      if (high == s.high && low >= s.low && low < s.low + size)
        return &xg_[s.high == kXgHigh ? 0 : 1][mid][low];
    }
  }
  return nullptr;
}

Bytes VirtualCs2x::blockLocked(std::uint8_t model, const Address& a) const {
  std::size_t size = 0;
  if (model == kModelCs2x) {
    for (const PerfBlock& b : kPerfBlocks)
      if (sameAddress(b.address, a)) size = static_cast<std::size_t>(b.length) - kBulkFrameBytes;
  } else if (model == kModelXg && a.mid < kParts) {
    for (const MultiSection& s : kMultiSections)
      if (a.high == s.high && a.low == s.low) size = static_cast<std::size_t>(s.length) - kBulkFrameBytes;
  }
  if (size == 0) return {};
  Bytes data(size, 0);
  const std::uint32_t base = pack(a);
  for (std::size_t i = 0; i < size; ++i)
    if (const std::uint8_t* c = cell(model, base + static_cast<std::uint32_t>(i))) data[i] = *c;
  return bulkDump(model, a, data);
}

void VirtualCs2x::writeLocked(std::uint8_t model, const Address& a, std::span<const std::uint8_t> data) {
  // Consecutive low addresses of one high and middle byte: data running past 7F are lost, as
  // are bytes at addresses the instrument does not hold.
  const std::uint32_t base = pack(a);
  for (std::size_t i = 0; i < data.size() && a.low + i <= 0x7F; ++i)
    if (std::uint8_t* c = cell(model, base + static_cast<std::uint32_t>(i))) *c = data[i];
}

// ---- messages ----

void VirtualCs2x::receive(std::span<const std::uint8_t> message) {
  const auto now = Clock::now();
  std::lock_guard lock(mutex_);
  logLocked(now, message);
  std::optional<Bytes> answer = takeLocked(message);
  // Queued under our lock, so that answers keep the order of their requests.
  if (answer && !options_.silent) answers_.post(std::move(*answer), now, message.size());
}

void VirtualCs2x::logLocked(Clock::time_point time, std::span<const std::uint8_t> message) {
  log_.push_back({time, Bytes(message.begin(), message.end())});
  logBytes_ += message.size();
  while (log_.size() > kLogMessages || (logBytes_ > kLogBytes && log_.size() > 1)) {
    logBytes_ -= log_.front().bytes.size();
    log_.pop_front();
  }
}

std::optional<Bytes> VirtualCs2x::takeLocked(std::span<const std::uint8_t> message) {
  if (message.empty()) return std::nullopt;
  if (message[0] == kSysExStart) return takeSysExLocked(message);
  if (message[0] >= 0x80 && message[0] < 0xF0) takeChannelLocked(message);
  return std::nullopt;  // system common and real-time messages change nothing here
}

std::optional<Bytes> VirtualCs2x::takeSysExLocked(std::span<const std::uint8_t> m) {
  // F0 43 kn mm a a a .. F7, with nothing but data bytes between the ends.
  if (m.size() < 8 || m[1] != kYamahaId || m.back() != kSysExEnd) return std::nullopt;
  for (std::size_t i = 1; i + 1 < m.size(); ++i)
    if (m[i] & 0x80) return std::nullopt;
  if ((m[2] & 0x0F) != kDevice) return std::nullopt;
  const std::uint8_t model = m[3];
  if (model != kModelCs2x && model != kModelXg) return std::nullopt;

  switch (m[2] & 0xF0) {
    case kParamChange: {  // F0 43 1n mm ah am al d.. F7: consecutive addresses
      if (m.size() < 9) return std::nullopt;
      writeLocked(model, {m[4], m[5], m[6]}, m.subspan(7, m.size() - 8));
      return std::nullopt;
    }
    case kBulkDump: {  // F0 43 0n mm bh bl ah am al data cs F7; the checksum is not checked
      if (m.size() < kBulkFrameBytes) return std::nullopt;
      const std::size_t count = (std::size_t{m[4]} << 7) | m[5];
      const std::size_t n = std::min(count, m.size() - kBulkFrameBytes);
      writeLocked(model, {m[6], m[7], m[8]}, m.subspan(kBulkDataOffset, n));
      return std::nullopt;
    }
    case kDumpRequest: {
      if (m.size() != 8) return std::nullopt;
      Bytes dump = blockLocked(model, {m[4], m[5], m[6]});
      if (dump.empty()) return std::nullopt;
      return dump;
    }
    case kParamRequest: {
      if (m.size() != 8 || model != kModelXg) return std::nullopt;
      const Address a{m[4], m[5], m[6]};
      const std::uint8_t* c = cell(model, pack(a));
      if (!c) return std::nullopt;
      return paramChange(kModelXg, a, *c);
    }
    default:
      return std::nullopt;
  }
}

void VirtualCs2x::takeChannelLocked(std::span<const std::uint8_t> m) {
  for (std::size_t i = 1; i < m.size(); ++i)
    if (m[i] & 0x80) return;
  const std::uint8_t channel = m[0] & 0x0F;
  const bool perfChannel = channel == com0_[kCom0PerfChannel];
  switch (m[0] & 0xF0) {
    case 0x80:
      if (m.size() == 3) notes_[channel].reset(m[1]);
      break;
    case 0x90:
      if (m.size() == 3) notes_[channel].set(m[1], m[2] != 0);
      break;
    case 0xB0:
      if (m.size() != 3) break;
      if (m[1] == 0x00 && perfChannel) selectMsb_ = m[2];
      if (m[1] == 0x20 && perfChannel) selectLsb_ = m[2];
      // All Sound Off, All Notes Off and the mode messages that imply it.
      if (m[1] == 0x78 || m[1] >= 0x7B) notes_[channel].reset();
      break;
    case 0xC0:
      if (m.size() == 2 && perfChannel && selectMsb_ == kPerfBankMsb && isPerfBank(selectLsb_)) {
        edit_ = storedPerformance(selectLsb_, m[1]);
        loadedBank_ = selectLsb_;
        loadedProgram_ = m[1];
      }
      break;
    default:
      break;
  }
}

// ---- answers and the input port ----

void VirtualCs2x::setAnswerSink(InPort::Sink sink) { answers_.setSink(std::move(sink)); }

void VirtualCs2x::transmit(std::span<const std::uint8_t> message) { answers_.transmit(message); }

void VirtualCs2x::waitIdle() { answers_.waitIdle(); }

void VirtualCs2x::setInputState(bool started, bool thru) {
  std::lock_guard lock(mutex_);
  inputStarted_ = started;
  thru_ = thru;
}

// ---- queries ----

std::vector<VirtualCs2x::Received> VirtualCs2x::log() const {
  std::lock_guard lock(mutex_);
  return {log_.begin(), log_.end()};
}

void VirtualCs2x::clearLog() {
  std::lock_guard lock(mutex_);
  log_.clear();
  logBytes_ = 0;
}

bool VirtualCs2x::inputStarted() const {
  std::lock_guard lock(mutex_);
  return inputStarted_;
}

bool VirtualCs2x::thruOn() const {
  std::lock_guard lock(mutex_);
  return thru_;
}

int VirtualCs2x::performanceChannel() const {
  std::lock_guard lock(mutex_);
  return com0_[kCom0PerfChannel];
}

std::uint8_t VirtualCs2x::transmitChannel() const {
  std::lock_guard lock(mutex_);
  return com0_[kCom0TransmitChannel];
}

std::uint8_t VirtualCs2x::localSwitch() const {
  std::lock_guard lock(mutex_);
  return com0_[kCom0LocalSwitch];
}

std::uint8_t VirtualCs2x::arpeggiator() const {
  std::lock_guard lock(mutex_);
  return edit_.com1[kCom1Arpeggiator];
}

std::uint8_t VirtualCs2x::bankLsb() const {
  std::lock_guard lock(mutex_);
  return loadedBank_;
}

std::uint8_t VirtualCs2x::program() const {
  std::lock_guard lock(mutex_);
  return loadedProgram_;
}

std::string VirtualCs2x::perfName() const {
  std::lock_guard lock(mutex_);
  return std::string(edit_.com1.begin(), edit_.com1.begin() + kNameLength);
}

std::uint8_t VirtualCs2x::layerSwitch(int layer) const {
  if (layer < 1 || layer > 4) return 0;
  std::lock_guard lock(mutex_);
  return edit_.layers[static_cast<std::size_t>(layer - 1)][kLyrSwitch];
}

Bytes VirtualCs2x::block(const Address& a) const {
  const std::uint8_t model = (a.high == kXgHigh || a.high == kXgHighA) ? kModelXg : kModelCs2x;
  std::lock_guard lock(mutex_);
  return blockLocked(model, a);
}

std::optional<std::uint8_t> VirtualCs2x::byteAt(std::uint8_t model, const Address& a) const {
  if ((a.high | a.mid | a.low) & 0x80) return std::nullopt;
  std::lock_guard lock(mutex_);
  const std::uint8_t* c = cell(model, pack(a));
  if (!c) return std::nullopt;
  return *c;
}

std::optional<std::uint8_t> VirtualCs2x::xgByte(int part, std::uint8_t high, std::uint8_t low) const {
  if (part < 0 || part >= static_cast<int>(kParts)) return std::nullopt;
  return byteAt(kModelXg, {high, static_cast<std::uint8_t>(part), low});
}

std::vector<VirtualCs2x::SoundingNote> VirtualCs2x::soundingNotes() const {
  std::lock_guard lock(mutex_);
  std::vector<SoundingNote> out;
  for (std::uint8_t c = 0; c < notes_.size(); ++c)
    for (std::uint8_t n = 0; n < 128; ++n)
      if (notes_[c].test(n)) out.push_back({c, n});
  return out;
}

bool VirtualCs2x::loadPerformance(std::uint8_t bank, std::uint8_t program) {
  if (!isPerfBank(bank) || program > 127) return false;
  PerfData stored = storedPerformance(bank, program);
  std::lock_guard lock(mutex_);
  edit_ = stored;
  loadedBank_ = bank;
  loadedProgram_ = program;
  return true;
}

// ---- ports ----

namespace {
class VirtualIn : public InPort {
 public:
  explicit VirtualIn(VirtualCs2x& instrument) : instrument_(instrument) {}
  ~VirtualIn() override {
    instrument_.setAnswerSink(nullptr);
    instrument_.setInputState(false, false);
  }
  void setSink(Sink sink) override { instrument_.setAnswerSink(std::move(sink)); }
  void stateChanged(bool started, bool thru) override { instrument_.setInputState(started, thru); }

 private:
  VirtualCs2x& instrument_;
};

class VirtualOut : public OutPort {
 public:
  explicit VirtualOut(VirtualCs2x& instrument) : instrument_(instrument) {}
  bool send(std::span<const std::uint8_t> message) override {
    instrument_.receive(message);
    return true;
  }
  std::chrono::nanoseconds wireTime(std::size_t bytes) const override {
    return instrument_.options().paced ? kWireTimePerByte * static_cast<long>(bytes)
                                       : std::chrono::nanoseconds{0};
  }

 private:
  VirtualCs2x& instrument_;
};
}  // namespace

std::unique_ptr<InPort> VirtualCs2xProvider::openInput(std::size_t index, MMRESULT& error) {
  if (index != 0) {
    error = MMSYSERR_BADDEVICEID;
    return nullptr;
  }
  return std::make_unique<VirtualIn>(instrument_);
}

std::unique_ptr<OutPort> VirtualCs2xProvider::openOutput(std::size_t index, MMRESULT& error) {
  if (index != 0) {
    error = MMSYSERR_BADDEVICEID;
    return nullptr;
  }
  return std::make_unique<VirtualOut>(instrument_);
}

}  // namespace tessivo
