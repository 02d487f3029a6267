#include "instrument/virtual_cs2x.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "data/tables.h"

namespace tessivo {

namespace {

using Clock = std::chrono::steady_clock;

static_assert(kPerfBlocks[0].length == VirtualCs2x::kCom1Size + kBulkFrameBytes);
static_assert(kPerfBlocks[1].length == VirtualCs2x::kCom2Size + kBulkFrameBytes);
static_assert(kPerfBlocks[2].length == VirtualCs2x::kCom3Size + kBulkFrameBytes);
static_assert(kPerfBlocks[3].length == VirtualCs2x::kLayerSize + kBulkFrameBytes);
static_assert(kPerfBlocks[7].length == VirtualCs2x::kCom0Size + kBulkFrameBytes);

constexpr std::uint8_t kDevice = 0;  // the instrument's device number
constexpr std::uint8_t kXgHighPart = 0x08, kXgHighPartA = 0x0A;

// Low address bytes within the blocks of the edit buffer.
constexpr std::uint8_t kCom2Low = 0x40, kCom3Low = 0x60;
// Fields of Com1 and of a Layer that the stored Performances set with care.
constexpr std::size_t kNameLength = 8;
constexpr std::size_t kCom1Hpf = 0x1E, kCom1Cutoff = 0x1F, kCom1Resonance = 0x20, kCom1Arpeggiator = 0x33;
constexpr std::uint8_t kArpOff = 4, kArpOn = 5;
constexpr std::size_t kCom2Reverb = 0x00, kCom2Chorus = 0x02, kCom2Variation = 0x04;
constexpr std::size_t kLyrBankMsb = 0x00, kLyrBankLsb = 0x01, kLyrProgram = 0x02, kLyrVolume = 0x07,
                      kLyrVolumeGate = 0x0F, kLyrCutoff = 0x11, kLyrResonance = 0x12, kLyrSwitch = 0x16,
                      kLyrEqLowFreq = 0x29, kLyrEqLowGain = 0x2A, kLyrEqHighFreq = 0x2B, kLyrEqHighGain = 0x2C;
constexpr std::uint8_t kLayerOn = 1;
// Com0 bytes.
constexpr std::size_t kCom0PerfChannel = 0x00, kCom0TransmitChannel = 0x0A, kCom0LocalSwitch = 0x0B;

// Com0 at power-on: performance channel 1, transmit channel 1, local on. The other bytes are
// system settings the program only carries.
constexpr std::array<std::uint8_t, VirtualCs2x::kCom0Size> kCom0PowerOn{
    0x00, 0x40, 0x40, 0x40, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00,
    0x7F, 0x40, 0x00, 0x00, 0x01, 0x00, 0x10, 0x11, 0x00, 0x00, 0x00, 0x00, 0x00,
};

// A Multi Part at power-on, 08 pp 00..7F (bytes outside the sections are never seen).
std::array<std::uint8_t, 128> xgPartDefaults(std::uint8_t part) {
  std::array<std::uint8_t, 128> p{};
  const bool drums = part == 9;  // the part on channel 10 plays a drum kit
  const std::uint8_t section0[] = {
      0x00, drums ? std::uint8_t{0x7F} : std::uint8_t{0x00}, 0x00, 0x00,  // element reserve, bank, program
      part, 0x01, 0x01, drums ? std::uint8_t{0x02} : std::uint8_t{0x00},  // channel, poly, key on assign, mode
      0x40, 0x08, 0x00,                                                    // note shift, detune
      0x64, 0x40, 0x40, 0x40,                                              // volume, velocity sense, pan
      0x00, 0x7F,                                                          // note limits
      0x7F, 0x00, 0x28, 0x00,                                              // dry, chorus, reverb, variation
      0x40, 0x40, 0x40,                                                    // vibrato
      0x40, 0x40, 0x40, 0x40, 0x40,                                        // filter, envelope
      0x40, 0x40, 0x40, 0x0A, 0x00, 0x00,                                  // modulation wheel
      0x42, 0x40, 0x40, 0x00, 0x00, 0x00,                                  // pitch bend
  };
  static_assert(sizeof section0 == 0x29);
  std::copy(std::begin(section0), std::end(section0), p.begin());
  for (std::size_t i = 0x30; i <= 0x40; ++i) p[i] = 0x01;  // receive switches all on
  for (std::size_t i = 0x41; i <= 0x4C; ++i) p[i] = 0x40;  // scale tuning
  for (std::size_t i = 0x4D; i <= 0x66; ++i) p[i] = 0x40;  // aftertouch and assignable controls
  for (std::size_t i : {0x50, 0x51, 0x52, 0x56, 0x57, 0x58, 0x5D, 0x5E, 0x5F, 0x64, 0x65, 0x66}) p[i] = 0x00;
  p[0x59] = 0x10;                                     // AC1 controller number
  p[0x60] = 0x11;                                     // AC2 controller number
  p[0x67] = 0x00;                                     // portamento off
  p[0x68] = 0x00;                                     // portamento time
  for (std::size_t i = 0x69; i <= 0x6C; ++i) p[i] = 0x40;  // pitch envelope
  p[0x6D] = 0x01;                                     // velocity limits
  p[0x6E] = 0x7F;
  for (std::size_t i = 0x70; i <= 0x75; ++i) p[i] = 0x40;  // EQ gains and the like
  p[0x76] = 0x0C;                                     // EQ bass frequency
  p[0x77] = 0x36;                                     // EQ treble frequency
  return p;
}

// A deterministic spread of values for the stored Performances.
std::uint32_t vary(std::uint8_t bank, std::uint8_t program, unsigned block, unsigned index) {
  std::uint32_t x = (std::uint32_t{bank} << 24) ^ (std::uint32_t{program} << 16) ^ (block << 8) ^ index;
  x ^= x >> 16;
  x *= 0x7FEB352Du;
  x ^= x >> 15;
  x *= 0x846CA68Bu;
  x ^= x >> 16;
  return x;
}

std::uint8_t below(std::uint32_t value, unsigned limit) { return static_cast<std::uint8_t>(value % limit); }

bool isPerfBank(std::uint8_t lsb) {
  return lsb == VirtualCs2x::kPreset1 || lsb == VirtualCs2x::kUser1 || lsb == VirtualCs2x::kPreset2 ||
         lsb == VirtualCs2x::kUser2;
}

std::string storedName(std::uint8_t bank, std::uint8_t program) {
  if (bank == VirtualCs2x::kPreset1) return std::string(PrfNames1[program]);
  if (bank == VirtualCs2x::kPreset2) return std::string(PrfNames2[program]);
  const int number = program + 1;
  std::string name = bank == VirtualCs2x::kUser1 ? "UsrA " : "UsrB ";
  name += static_cast<char>('0' + number / 100);
  name += static_cast<char>('0' + number / 10 % 10);
  name += static_cast<char>('0' + number % 10);
  return name;
}

std::uint32_t pack(const Address& a) {
  return (std::uint32_t{a.high} << 14) | (std::uint32_t{a.mid} << 7) | a.low;
}

bool sameAddress(const Address& a, const Address& b) { return a.high == b.high && a.mid == b.mid && a.low == b.low; }

}  // namespace

VirtualCs2x::PerfData VirtualCs2x::storedPerformance(std::uint8_t bank, std::uint8_t program) {
  PerfData p;
  program &= 0x7F;
  const auto v = [&](unsigned block, unsigned index) { return vary(bank, program, block, index); };

  for (std::size_t i = 0; i < kCom1Size; ++i) p.com1[i] = below(v(0, i), 128);
  const std::string name = storedName(bank, program);
  for (std::size_t i = 0; i < kNameLength; ++i)
    p.com1[i] = i < name.size() ? static_cast<std::uint8_t>(name[i] & 0x7F) : ' ';
  p.com1[kCom1Hpf] = below(v(0, kCom1Hpf), 64);
  p.com1[kCom1Cutoff] = static_cast<std::uint8_t>(0x20 + below(v(0, kCom1Cutoff), 0x60));
  p.com1[kCom1Resonance] = below(v(0, kCom1Resonance), 0x60);
  p.com1[kCom1Arpeggiator] = (v(0, kCom1Arpeggiator) & 1) ? kArpOn : kArpOff;

  for (std::size_t i = 0; i < kCom2Size; ++i) p.com2[i] = below(v(1, i), 128);
  const EffectType& reverb = RvrbTbl[v(1, kCom2Reverb) % RvrbTbl.size()];
  const EffectType& chorus = ChrsTbl[v(1, kCom2Chorus) % ChrsTbl.size()];
  const EffectType& variation = VarTbl[v(1, kCom2Variation) % VarTbl.size()];
  p.com2[kCom2Reverb] = reverb.high;
  p.com2[kCom2Reverb + 1] = reverb.low;
  p.com2[kCom2Chorus] = chorus.high;
  p.com2[kCom2Chorus + 1] = chorus.low;
  p.com2[kCom2Variation] = variation.high;
  p.com2[kCom2Variation + 1] = variation.low;

  for (std::size_t i = 0; i < kCom3Size; ++i) p.com3[i] = below(v(2, i), 128);

  for (unsigned layer = 1; layer <= 4; ++layer) {
    auto& l = p.layers[layer - 1];
    const unsigned block = 2 + layer;
    for (std::size_t i = 0; i < kLayerSize; ++i) l[i] = below(v(block, i), 128);
    const bool on = layer == 1 || (program + layer) % 5 != 0;
    l[kLyrBankMsb] = kPerfBankMsb;  // the instrument's own voices, preset voice bank 1 or 2
    l[kLyrBankLsb] = below(v(block, kLyrBankLsb), 2);
    l[kLyrProgram] = below(v(block, kLyrProgram), 128);
    l[kLyrVolume] = static_cast<std::uint8_t>(0x50 + below(v(block, kLyrVolume), 0x30));
    l[kLyrVolumeGate] = on ? static_cast<std::uint8_t>(1 + below(v(block, kLyrVolumeGate), 127)) : 0;
    l[kLyrCutoff] = static_cast<std::uint8_t>(0x20 + below(v(block, kLyrCutoff), 0x60));
    l[kLyrResonance] = below(v(block, kLyrResonance), 0x60);
    // An unused layer holds 0 or, as some stored ones do, 7F.
    l[kLyrSwitch] = on ? kLayerOn : (v(block, kLyrSwitch) % 3 == 0 ? std::uint8_t{0x7F} : std::uint8_t{0});
    l[kLyrEqLowFreq] = static_cast<std::uint8_t>(4 + below(v(block, kLyrEqLowFreq), 55));  // frequency codes 4..58
    l[kLyrEqHighFreq] = static_cast<std::uint8_t>(4 + below(v(block, kLyrEqHighFreq), 55));
    l[kLyrEqLowGain] = static_cast<std::uint8_t>(0x34 + below(v(block, kLyrEqLowGain), 25));  // 0x40 ± 12 dB
    l[kLyrEqHighGain] = static_cast<std::uint8_t>(0x34 + below(v(block, kLyrEqHighGain), 25));
  }
  return p;
}

VirtualCs2x::VirtualCs2x(VirtualCs2xOptions options) : options_(options) {
  com0_ = kCom0PowerOn;
  edit_ = storedPerformance(kPreset1, 0);
  for (std::uint8_t part = 0; part < kParts; ++part) {
    xg_[0][part] = xgPartDefaults(part);
    xg_[1][part][0x20] = 0x40;  // 0A pp 20..21: offsets, centred
    xg_[1][part][0x21] = 0x40;
  }
  worker_ = std::thread(&VirtualCs2x::run, this);
}

VirtualCs2x::~VirtualCs2x() {
  {
    std::lock_guard lock(mutex_);
    stop_ = true;
  }
  wake_.notify_all();
  worker_.join();
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
        return &xg_[s.high == kXgHighPart ? 0 : 1][mid][low];
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
  log_.push_back({now, Bytes(message.begin(), message.end())});
  std::optional<Bytes> answer = takeLocked(message);
  if (!answer || options_.silent) return;
  auto ready = now + options_.replyLatency;
  // A paced message is whole only when its last byte has come in.
  if (options_.paced) ready += kWireTimePerByte * static_cast<long>(message.size());
  answers_.push_back({std::move(*answer), ready});
  ++pending_;
  wake_.notify_one();
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

// ---- answers ----

void VirtualCs2x::run() {
  std::unique_lock lock(mutex_);
  Clock::time_point lineFree{};  // paced: when the last answer's bytes have gone out
  for (;;) {
    wake_.wait(lock, [&] { return stop_ || !answers_.empty(); });
    if (stop_) break;
    Answer answer = std::move(answers_.front());
    answers_.pop_front();
    auto due = answer.ready;
    if (options_.paced) {
      due = std::max(due, lineFree) + kWireTimePerByte * static_cast<long>(answer.bytes.size());
      lineFree = due;
    }
    if (wake_.wait_until(lock, due, [&] { return stop_; })) break;
    InPort::Sink sink = answer_;
    delivering_ = true;
    lock.unlock();
    if (sink) sink(answer.bytes);  // never under our own lock: the service takes its own
    sink = nullptr;
    lock.lock();
    delivering_ = false;
    --pending_;
    idle_.notify_all();
  }
  answers_.clear();
  pending_ = 0;
  idle_.notify_all();
}

void VirtualCs2x::setAnswerSink(InPort::Sink sink) {
  std::unique_lock lock(mutex_);
  answer_ = std::move(sink);
  // The old sink's owner may go once this returns: nothing may still be inside it.
  if (std::this_thread::get_id() != worker_.get_id())
    idle_.wait(lock, [&] { return !delivering_ && transmitting_ == 0; });
}

void VirtualCs2x::waitIdle() {
  std::unique_lock lock(mutex_);
  idle_.wait(lock, [&] { return pending_ == 0; });
}

void VirtualCs2x::setInputState(bool started, bool thru) {
  std::lock_guard lock(mutex_);
  inputStarted_ = started;
  thru_ = thru;
}

void VirtualCs2x::transmit(std::span<const std::uint8_t> message) {
  InPort::Sink sink;
  {
    std::lock_guard lock(mutex_);
    sink = answer_;
    if (!sink) return;
    ++transmitting_;
  }
  sink(message);  // never under our own lock: the service takes its own
  sink = nullptr;
  std::lock_guard lock(mutex_);
  --transmitting_;
  idle_.notify_all();
}

// ---- queries ----

std::vector<VirtualCs2x::Received> VirtualCs2x::log() const {
  std::lock_guard lock(mutex_);
  return log_;
}

void VirtualCs2x::clearLog() {
  std::lock_guard lock(mutex_);
  log_.clear();
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
  const std::uint8_t model = (a.high == kXgHighPart || a.high == kXgHighPartA) ? kModelXg : kModelCs2x;
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
