#include "link/midi_parser.h"

namespace tessivo {

namespace {
// Whole length of a message that starts with `status` (not F0 or a real-time byte).
std::size_t lengthOf(std::uint8_t status) {
  if (status < 0xF0) return (status & 0xE0) == 0xC0 ? 2 : 3;  // Cn and Dn carry one data byte
  switch (status) {
    case 0xF1:
    case 0xF3:
      return 2;
    case 0xF2:
      return 3;
    default:
      return 1;  // tune request, and F4 and F5, which nothing defines
  }
}
}  // namespace

void MidiParser::reset() {
  inSysEx_ = false;
  have_ = 0;
  running_ = 0;
}

std::span<const std::uint8_t> MidiParser::push(std::uint8_t b) {
  if (b >= 0xF8) {  // real-time: passes at once and leaves everything else as it was
    realTime_ = b;
    return {&realTime_, 1};
  }
  if (b < 0x80) {
    if (inSysEx_) {
      if (sysEx_.size() + 1 < kMaxSysEx) sysEx_.push_back(b);  // room kept for the F7
      else sysExTooLong_ = true;
      return {};
    }
    if (have_ == 0) {
      if (running_ == 0) return {};  // no status to belong to
      message_[0] = running_;
      length_ = lengthOf(running_);
      have_ = 1;
    }
    message_[have_++] = b;
    if (have_ < length_) return {};
    have_ = 0;
    return {message_.data(), length_};
  }
  // A status byte: it ends a SysEx (the F7 whole, anything else broken) and drops a message
  // whose data stopped short.
  const bool sysExEnds = inSysEx_ && b == 0xF7 && !sysExTooLong_;
  inSysEx_ = false;
  have_ = 0;
  running_ = b < 0xF0 ? b : 0;  // system common cancels running status
  if (sysExEnds) {
    sysEx_.push_back(b);
    return sysEx_;
  }
  if (b == 0xF0) {
    inSysEx_ = true;
    sysExTooLong_ = false;
    sysEx_.assign(1, b);
    return {};
  }
  if (b == 0xF7) return {};  // an end with no SysEx to end
  message_[0] = b;
  length_ = lengthOf(b);
  if (length_ > 1) {
    have_ = 1;
    return {};
  }
  return {message_.data(), 1};
}

}  // namespace tessivo
