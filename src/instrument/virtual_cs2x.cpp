#include "instrument/virtual_cs2x.h"

namespace tessivo {

VirtualCs2x::VirtualCs2x(VirtualCs2xOptions options) : options_(options) {}
VirtualCs2x::~VirtualCs2x() = default;

void VirtualCs2x::receive(std::span<const std::uint8_t> message) {
  std::lock_guard lock(mutex_);
  log_.push_back({std::chrono::steady_clock::now(), Bytes(message.begin(), message.end())});
}

void VirtualCs2x::setAnswerSink(InPort::Sink sink) {
  std::lock_guard lock(mutex_);
  answer_ = std::move(sink);
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
  }
  if (sink) sink(message);  // never under our own lock: the service takes its own
}

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
