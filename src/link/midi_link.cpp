#include "link/midi_link.h"

#include "link/numtext.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>

namespace tessivo {

MidiLink::MidiLink(MidiService& midi, Screen& screen, SleepFn sleep)
    : midi_(midi), screen_(screen), sleep_(std::move(sleep)) {}

void MidiLink::setLengthTables() {
  std::copy(kSctnLenAtStart.begin(), kSctnLenAtStart.end(), SctnLen.begin());
  std::copy(kRtrvLenAtStart.begin(), kRtrvLenAtStart.end(), RtrvLen.begin());
}

void MidiLink::sleep(int milliseconds) {
  if (sleep_) sleep_(milliseconds);
  else std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void MidiLink::pollReply() {
  if (sleep_) sleep_(kPollMs);
  else LongDataFlag.waitRaised(std::chrono::milliseconds(kPollMs));
}

namespace {
template <typename NumDevs, typename Caps>
void listDevices(Screen& screen, const char* errorText, NumDevs numDevs, Caps caps,
                 const std::function<void(const std::string&)>& add) {
  const auto count = static_cast<std::int16_t>(numDevs());
  for (std::int16_t dev = 0; dev < count; ++dev) {
    std::string name;
    const MMRESULT r = caps(static_cast<std::uint32_t>(dev), name);
    if (r != MMSYSERR_NOERROR) {
      screen.messageBox(errorText + std::to_string(r), kAppTitle, MsgButtons::Ok, MsgIcon::None);
      return;
    }
    add(name);
  }
}
}  // namespace

void MidiLink::ListInDevs(const std::function<void(const std::string&)>& add) {
  listDevices(
      screen_, "midiInGetDevCaps Error: ", [&] { return midi_.midiInGetNumDevs(); },
      [&](std::uint32_t d, std::string& n) { return midi_.midiInGetDevCaps(d, n); }, add);
}

void MidiLink::ListOutDevs(const std::function<void(const std::string&)>& add) {
  listDevices(
      screen_, "midiOutGetDevCaps Error: ", [&] { return midi_.midiOutGetNumDevs(); },
      [&](std::uint32_t d, std::string& n) { return midi_.midiOutGetDevCaps(d, n); }, add);
}

std::string MidiLink::errorBoxText(const std::string& label, const std::string& codeText) {
  std::string field = codeText.substr(0, 127);  // what a 128-byte text buffer can hold
  field.resize(132, ' ');
  return "Operation: " + label + "\r\n" + field;
}

void MidiLink::MidiOutErr(const std::string& label, std::int16_t code) {
  std::string text;
  midi_.midiOutGetErrorText(static_cast<MMRESULT>(static_cast<std::int32_t>(code)), text);
  screen_.messageBox(errorBoxText(label, text), kAppTitle, MsgButtons::Ok, MsgIcon::None);
}

void MidiLink::MidiInErr(const std::string& label, std::int16_t code) {
  std::string text;
  midi_.midiInGetErrorText(static_cast<MMRESULT>(static_cast<std::int32_t>(code)), text);
  screen_.messageBox(errorBoxText(label, text), kAppTitle, MsgButtons::Ok, MsgIcon::None);
}

std::uint32_t MidiLink::MidiInCB(MidiHandle, std::uint32_t message, std::uintptr_t instance,
                                 std::uintptr_t, std::uintptr_t) {
  if (message == MIM_LONGDATA) reinterpret_cast<WakeFlag*>(instance)->raise();
  return 0;
}

void MidiLink::SndSysEx(std::span<const std::uint8_t> text) { SndSysExData(text, 0, 0, 0); }

void MidiLink::SndSysExData(std::span<const std::uint8_t> text, std::int16_t mode,
                            std::int16_t part, std::int16_t section) {
  std::array<std::uint8_t, 129> buffer{};
  std::size_t n = 0;
  switch (mode) {
    case 0:
      if (text.size() > 128) return;  // beyond the send buffer: no caller comes near it
      n = text.size();
      std::copy(text.begin(), text.end(), buffer.begin());
      break;
    case 1: {
      if (part < 0 || part > 16 || section < 0 || section > 5 || images_ == nullptr) return;
      n = static_cast<std::size_t>(std::max<std::int16_t>(SctnLen[static_cast<std::size_t>(section)], 0));
      const auto src = images_->multiSection(part, section);
      if (src.size() < n) return;
      std::copy(src.begin(), src.begin() + static_cast<std::ptrdiff_t>(n), buffer.begin());
      break;
    }
    case 2:
      if (section < 0 || section > 10) return;
      n = static_cast<std::size_t>(std::max<std::int16_t>(SctnLen[static_cast<std::size_t>(section)], 0));
      std::copy(SndBuf.begin(), SndBuf.begin() + static_cast<std::ptrdiff_t>(n), buffer.begin());
      break;
    default:
      return;
  }
  if (n > 128) return;
  buffer[n] = 0;  // the byte behind the message stays inside the 129
  send(std::span<const std::uint8_t>(buffer.data(), n));
}

void MidiLink::send(std::span<const std::uint8_t> message) {
  MidiHdr hdr;
  hdr.lpData = const_cast<std::uint8_t*>(message.data());
  hdr.dwBufferLength = static_cast<std::uint32_t>(message.size());
  hdr.dwUser = 0;
  hdr.dwFlags = 0;
  MMRESULT r = midi_.midiOutPrepareHeader(MidiOutHnd, &hdr, kMidiHdrSize);
  if (r != MMSYSERR_NOERROR) {
    MidiOutErr("Out Prepare ", static_cast<std::int16_t>(r));
    return;
  }
  r = midi_.midiOutLongMsg(MidiOutHnd, &hdr, kMidiHdrSize);
  if (r != MMSYSERR_NOERROR) MidiOutErr("MidiOutLongMsg ", static_cast<std::int16_t>(r));
  r = midi_.midiOutUnprepareHeader(MidiOutHnd, &hdr, kMidiHdrSize);
  if (r == MMSYSERR_INVALPARAM) return;
  int tries = 0;
  while (r != MMSYSERR_NOERROR) {
    ++tries;
    r = midi_.midiOutUnprepareHeader(MidiOutHnd, &hdr, kMidiHdrSize);
    if (tries > kUnprepareTries) {
      if (r != MMSYSERR_NOERROR) MidiOutErr("midiOutUnprepareHeader ", static_cast<std::int16_t>(r));
      return;
    }
    sleep(kPollMs);
  }
}

void MidiLink::ReqPerfBlock(std::int16_t kind) {
  if (const PerfBlock* b = perfBlock(kind)) SndSysEx(dumpRequest(kModelCs2x, b->address));
}

void MidiLink::ReqMltSctn(std::int16_t part, std::int16_t section) {
  if (section < 0 || section > 4) return;
  SndSysEx(multiSectionRequest(part, section));
}

std::string MidiLink::logLine(const std::string& label, int i, std::uint8_t byte) {
  char offset[8];
  std::snprintf(offset, sizeof offset, "%X", static_cast<unsigned>(static_cast<std::uint16_t>(i - 10)));
  char value[4];
  std::snprintf(value, sizeof value, "%X", static_cast<unsigned>(byte));
  return "Sys Ex  " + label + "  " + offset + "  " + signedText(i - 1) + "   " + signedText(byte) + "  " + value;
}

void MidiLink::RtrvBlock(std::int16_t kind, std::int16_t part, std::int16_t section) {
  std::array<std::uint8_t, 129> buffer{};
  MidiHdr hdr;
  hdr.lpData = buffer.data();
  hdr.dwBufferLength = 128;
  hdr.dwFlags = 0;
  MMRESULT r = midi_.midiInPrepareHeader(MidiInHnd, &hdr, kMidiHdrSize);
  if (r != MMSYSERR_NOERROR) {
    MidiInErr("InPrepHdr", static_cast<std::int16_t>(r));
    return;
  }
  r = midi_.midiInAddBuffer(MidiInHnd, &hdr, kMidiHdrSize);
  if (r != MMSYSERR_NOERROR) {
    MidiInErr("InAddBuff", static_cast<std::int16_t>(r));
    return;
  }
  midi_.midiDisconnect(MidiInHnd, MidiOutHnd);
  r = midi_.midiInStop(MidiInHnd);
  if (r != MMSYSERR_NOERROR) MidiInErr("InStop", static_cast<std::int16_t>(r));
  r = midi_.midiInStart(MidiInHnd);
  if (r != MMSYSERR_NOERROR) MidiInErr("InStart", static_cast<std::int16_t>(r));

  LongDataFlag.clear();
  if (kind == kKindMulti) ReqMltSctn(part, section);
  else if (perfBlock(kind)) ReqPerfBlock(kind);
  else if (ReqParm) ReqParm();

  for (int polls = 0; LongDataFlag.load() == 0;) {
    if (++polls > kReplyPolls) break;
    pollReply();
  }

  r = midi_.midiInStop(MidiInHnd);
  if (r != MMSYSERR_NOERROR) MidiInErr("InStop", static_cast<std::int16_t>(r));
  r = midi_.midiInReset(MidiInHnd);
  if (r != MMSYSERR_NOERROR) MidiInErr("InReset", static_cast<std::int16_t>(r));
  r = midi_.midiInUnprepareHeader(MidiInHnd, &hdr, kMidiHdrSize);
  if (r != MMSYSERR_NOERROR) {
    MidiInErr("InUnPrepHdr", static_cast<std::int16_t>(r));
    return;
  }

  // The reply is copied as it came, by the length of the block asked for.
  std::string label;
  std::size_t count = 0;
  if (const PerfBlock* b = perfBlock(kind)) {
    label = b->label;
    static constexpr std::array<std::size_t, 9> kRtrvIndex{5, 6, 7, 0, 1, 2, 3, 0, 4};
    count = static_cast<std::size_t>(std::max<std::int16_t>(RtrvLen[kRtrvIndex[static_cast<std::size_t>(kind)]], 0));
  } else if (kind == kKindMulti) {
    label = "Mlt" + signedText(part) + signedText(section);
    if (section >= 0 && section <= 10)
      count = static_cast<std::size_t>(std::max<std::int16_t>(SctnLen[static_cast<std::size_t>(section)], 0));
  } else {
    label = "Parm retrieve";
  }
  if (count > 0 && images_) {
    const auto dest = images_->blockDestination(kind, part, section);
    const std::size_t n = std::min({count, dest.size(), buffer.size()});
    std::copy(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(n), dest.begin());
  }
  const auto recorded = std::min<std::size_t>(hdr.dwBytesRecorded, 128);
  for (std::size_t i = 1; i <= recorded; ++i) List1.push_back(logLine(label, static_cast<int>(i), buffer[i - 1]));

  if (LoadingFlag != 0) return;  // while the form fills, the thru path stays off between blocks
  ConnectThru();
}

void MidiLink::ConnectThru() {
  MMRESULT r = midi_.midiConnect(MidiInHnd, MidiOutHnd);
  if (r != MMSYSERR_NOERROR) {
    MidiInErr("Connect", static_cast<std::int16_t>(r));
    return;
  }
  r = midi_.midiInStart(MidiInHnd);
  if (r != MMSYSERR_NOERROR) MidiInErr("InStart", static_cast<std::int16_t>(r));
}

void MidiLink::RtrvMlt(std::int16_t part) {
  List1.clear();
  for (std::int16_t s = 0; s <= 4; ++s) RtrvBlock(kKindMulti, part, s);
}

}  // namespace tessivo
