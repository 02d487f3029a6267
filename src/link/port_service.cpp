#include "link/port_service.h"

#include "link/messages.h"

#include <algorithm>
#include <cstring>
#include <thread>

namespace tessivo {

namespace {
std::string pname(const std::string& name) { return name.substr(0, 31); }  // szPname holds 32
}  // namespace

PortMidiService::PortMidiService(std::vector<PortProvider*> providers) {
  for (PortProvider* p : providers) {
    const auto ins = p->inputNames();
    for (std::size_t i = 0; i < ins.size(); ++i) inDevices_.push_back({p, i, pname(ins[i])});
    const auto outs = p->outputNames();
    for (std::size_t i = 0; i < outs.size(); ++i) outDevices_.push_back({p, i, pname(outs[i])});
  }
}

PortMidiService::~PortMidiService() {
  std::map<MidiHandle, Input> ins;
  {
    std::lock_guard lock(inMutex_);
    ins.swap(inputs_);
  }
  ins.clear();  // ports close outside the lock: their threads may be waiting for it
  std::lock_guard lock(outMutex_);
  outputs_.clear();
}

std::uint32_t PortMidiService::midiOutGetNumDevs() { return static_cast<std::uint32_t>(outDevices_.size()); }
std::uint32_t PortMidiService::midiInGetNumDevs() { return static_cast<std::uint32_t>(inDevices_.size()); }

MMRESULT PortMidiService::midiOutGetDevCaps(std::uint32_t device, std::string& name) {
  if (device >= outDevices_.size()) return MMSYSERR_BADDEVICEID;
  name = outDevices_[device].name;
  return MMSYSERR_NOERROR;
}

MMRESULT PortMidiService::midiInGetDevCaps(std::uint32_t device, std::string& name) {
  if (device >= inDevices_.size()) return MMSYSERR_BADDEVICEID;
  name = inDevices_[device].name;
  return MMSYSERR_NOERROR;
}

PortMidiService::Input* PortMidiService::input(MidiHandle h) {
  auto it = inputs_.find(h);
  return it == inputs_.end() ? nullptr : &it->second;
}

PortMidiService::Output* PortMidiService::output(MidiHandle h) {
  auto it = outputs_.find(h);
  return it == outputs_.end() ? nullptr : &it->second;
}

MMRESULT PortMidiService::midiOutOpen(MidiHandle& handle, std::uint32_t device) {
  handle = 0;
  if (device >= outDevices_.size()) return MMSYSERR_BADDEVICEID;
  std::lock_guard lock(outMutex_);
  for (const auto& [h, o] : outputs_)
    if (o.device == device) return MMSYSERR_ALLOCATED;
  MMRESULT err = MMSYSERR_ERROR;
  auto port = outDevices_[device].provider->openOutput(outDevices_[device].index, err);
  if (!port) return err == MMSYSERR_NOERROR ? MMSYSERR_ERROR : err;
  handle = nextHandle_++;
  outputs_[handle] = Output{device, std::move(port)};
  return MMSYSERR_NOERROR;
}

MMRESULT PortMidiService::midiInOpen(MidiHandle& handle, std::uint32_t device, MidiInProc callback,
                                     std::uintptr_t instance, std::uint32_t) {
  handle = 0;
  if (device >= inDevices_.size()) return MMSYSERR_BADDEVICEID;
  std::unique_lock lock(inMutex_);
  for (const auto& [h, i] : inputs_)
    if (i.device == device) return MMSYSERR_ALLOCATED;
  MMRESULT err = MMSYSERR_ERROR;
  auto port = inDevices_[device].provider->openInput(inDevices_[device].index, err);
  if (!port) return err == MMSYSERR_NOERROR ? MMSYSERR_ERROR : err;
  const MidiHandle h = nextHandle_++;
  InPort* raw = port.get();
  inputs_[h] = Input{device, std::move(port), callback, instance, false, 0, {}};
  handle = h;
  lock.unlock();
  raw->setSink([this, h](std::span<const std::uint8_t> m) { received(h, m); });
  return MMSYSERR_NOERROR;
}

void PortMidiService::notifyState(Input& in) { in.port->stateChanged(in.started, in.thru != 0); }

MMRESULT PortMidiService::midiConnect(MidiHandle in, MidiHandle out) {
  std::lock_guard lock(inMutex_);
  Input* i = input(in);
  if (!i) return MMSYSERR_INVALHANDLE;
  {
    std::lock_guard olock(outMutex_);
    if (!output(out)) return MMSYSERR_INVALHANDLE;
  }
  i->thru = out;
  notifyState(*i);
  return MMSYSERR_NOERROR;
}

MMRESULT PortMidiService::midiDisconnect(MidiHandle in, MidiHandle) {
  std::lock_guard lock(inMutex_);
  Input* i = input(in);
  if (!i) return MMSYSERR_INVALHANDLE;
  i->thru = 0;
  notifyState(*i);
  return MMSYSERR_NOERROR;
}

MMRESULT PortMidiService::midiInStart(MidiHandle in) {
  std::lock_guard lock(inMutex_);
  Input* i = input(in);
  if (!i) return MMSYSERR_INVALHANDLE;
  i->started = true;
  notifyState(*i);
  return MMSYSERR_NOERROR;
}

MMRESULT PortMidiService::midiInStop(MidiHandle in) {
  std::lock_guard lock(inMutex_);
  Input* i = input(in);
  if (!i) return MMSYSERR_INVALHANDLE;
  i->started = false;
  notifyState(*i);
  return MMSYSERR_NOERROR;
}

MMRESULT PortMidiService::midiInReset(MidiHandle in) {
  std::lock_guard lock(inMutex_);
  Input* i = input(in);
  if (!i) return MMSYSERR_INVALHANDLE;
  i->started = false;
  notifyState(*i);
  // Pending buffers come back marked done and empty, each through the callback.
  for (MidiHdr* hdr : i->queue) {
    hdr->dwFlags = (hdr->dwFlags & ~MHDR_INQUEUE) | MHDR_DONE;
    hdr->dwBytesRecorded = 0;
    if (i->callback) i->callback(in, MIM_LONGDATA, i->instance, reinterpret_cast<std::uintptr_t>(hdr), 0);
  }
  i->queue.clear();
  return MMSYSERR_NOERROR;
}

MMRESULT PortMidiService::midiInPrepareHeader(MidiHandle in, MidiHdr* hdr, std::uint32_t size) {
  std::lock_guard lock(inMutex_);
  if (!input(in)) return MMSYSERR_INVALHANDLE;
  if (!hdr || size < kMidiHdrSize || !hdr->lpData) return MMSYSERR_INVALPARAM;
  hdr->dwFlags = (hdr->dwFlags & ~MHDR_DONE) | MHDR_PREPARED;
  return MMSYSERR_NOERROR;
}

MMRESULT PortMidiService::midiInAddBuffer(MidiHandle in, MidiHdr* hdr, std::uint32_t size) {
  std::lock_guard lock(inMutex_);
  Input* i = input(in);
  if (!i) return MMSYSERR_INVALHANDLE;
  if (!hdr || size < kMidiHdrSize) return MMSYSERR_INVALPARAM;
  if (!(hdr->dwFlags & MHDR_PREPARED)) return MIDIERR_UNPREPARED;
  if (hdr->dwFlags & MHDR_INQUEUE) return MIDIERR_STILLPLAYING;
  hdr->dwFlags = (hdr->dwFlags & ~MHDR_DONE) | MHDR_INQUEUE;
  hdr->dwBytesRecorded = 0;
  i->queue.push_back(hdr);
  return MMSYSERR_NOERROR;
}

MMRESULT PortMidiService::midiInUnprepareHeader(MidiHandle in, MidiHdr* hdr, std::uint32_t size) {
  std::lock_guard lock(inMutex_);
  if (!input(in)) return MMSYSERR_INVALHANDLE;
  if (!hdr || size < kMidiHdrSize) return MMSYSERR_INVALPARAM;
  if (hdr->dwFlags & MHDR_INQUEUE) return MIDIERR_STILLPLAYING;
  hdr->dwFlags &= ~MHDR_PREPARED;
  return MMSYSERR_NOERROR;
}

void PortMidiService::received(MidiHandle in, std::span<const std::uint8_t> message) {
  if (message.empty()) return;
  std::lock_guard lock(inMutex_);
  Input* i = input(in);
  if (!i || !i->started) return;  // a stopped input lets nothing through
  if (message[0] == 0xF0) {
    if (!i->queue.empty()) {
      MidiHdr* hdr = i->queue.front();
      i->queue.erase(i->queue.begin());
      const std::size_t n = std::min<std::size_t>(message.size(), hdr->dwBufferLength);
      std::memcpy(hdr->lpData, message.data(), n);
      hdr->dwBytesRecorded = static_cast<std::uint32_t>(n);
      hdr->dwFlags = (hdr->dwFlags & ~MHDR_INQUEUE) | MHDR_DONE;
      if (i->callback) i->callback(in, MIM_LONGDATA, i->instance, reinterpret_cast<std::uintptr_t>(hdr), 0);
    }
  } else if (i->callback) {
    std::uintptr_t packed = 0;
    for (std::size_t k = 0; k < message.size() && k < 3; ++k) packed |= std::uintptr_t{message[k]} << (8 * k);
    i->callback(in, MIM_DATA, i->instance, packed, 0);
  }
  if (i->thru != 0) {
    std::lock_guard olock(outMutex_);
    if (Output* o = output(i->thru)) sendLocked(*o, message);
  }
}

bool PortMidiService::sendLocked(Output& out, std::span<const std::uint8_t> message) {
  if (!out.port->send(message)) return false;
  // A port with a wire time (the paced instrument) holds the sender until the bytes are out,
  // as a driver does whose long message returns when it has been sent.
  // The last stretch is waited out awake: a sleeping thread wakes a tenth of a millisecond or
  // more late, which over a long series of messages would count as wire time.
  const auto wire = out.port->wireTime(message.size());
  if (wire.count() > 0) {
    constexpr std::chrono::microseconds kAwake{300};
    const auto done = std::chrono::steady_clock::now() + wire;
    if (wire > kAwake) std::this_thread::sleep_until(done - kAwake);
    while (std::chrono::steady_clock::now() < done) std::this_thread::yield();
  }
  return true;
}

MMRESULT PortMidiService::midiOutPrepareHeader(MidiHandle out, MidiHdr* hdr, std::uint32_t size) {
  std::lock_guard lock(outMutex_);
  if (!output(out)) return MMSYSERR_INVALHANDLE;
  if (!hdr || size < kMidiHdrSize || (!hdr->lpData && hdr->dwBufferLength)) return MMSYSERR_INVALPARAM;
  hdr->dwFlags = (hdr->dwFlags & ~MHDR_DONE) | MHDR_PREPARED;
  return MMSYSERR_NOERROR;
}

MMRESULT PortMidiService::midiOutLongMsg(MidiHandle out, MidiHdr* hdr, std::uint32_t size) {
  std::lock_guard lock(outMutex_);
  Output* o = output(out);
  if (!o) return MMSYSERR_INVALHANDLE;
  if (!hdr || size < kMidiHdrSize) return MMSYSERR_INVALPARAM;
  if (!(hdr->dwFlags & MHDR_PREPARED)) return MIDIERR_UNPREPARED;
  // A long message may carry several messages in a row; the ports take them one by one.
  for (const Bytes& m : splitMidiStream({hdr->lpData, hdr->dwBufferLength}))
    if (!sendLocked(*o, m)) return MIDIERR_NODEVICE;
  hdr->dwFlags |= MHDR_DONE;
  return MMSYSERR_NOERROR;
}

MMRESULT PortMidiService::midiOutUnprepareHeader(MidiHandle out, MidiHdr* hdr, std::uint32_t size) {
  std::lock_guard lock(outMutex_);
  Output* o = output(out);
  if (!o) return MMSYSERR_INVALHANDLE;
  if (!hdr || size < kMidiHdrSize) return MMSYSERR_INVALPARAM;
  hdr->dwFlags &= ~MHDR_PREPARED;
  return MMSYSERR_NOERROR;
}

MMRESULT PortMidiService::midiOutReset(MidiHandle out) {
  std::lock_guard lock(outMutex_);
  if (!output(out)) return MMSYSERR_INVALHANDLE;
  return MMSYSERR_NOERROR;
}

MMRESULT PortMidiService::midiInClose(MidiHandle in) {
  std::unique_ptr<InPort> port;
  {
    std::lock_guard lock(inMutex_);
    Input* i = input(in);
    if (!i) return MMSYSERR_INVALHANDLE;
    if (!i->queue.empty()) return MIDIERR_STILLPLAYING;
    port = std::move(i->port);
    inputs_.erase(in);
  }
  port->setSink(nullptr);
  return MMSYSERR_NOERROR;  // the port closes here, outside the lock its thread may want
}

MMRESULT PortMidiService::midiOutClose(MidiHandle out) {
  std::unique_ptr<OutPort> port;
  {
    std::lock_guard lock(inMutex_);
    for (auto& [h, i] : inputs_)
      if (i.thru == out) i.thru = 0;
    std::lock_guard olock(outMutex_);
    Output* o = output(out);
    if (!o) return MMSYSERR_INVALHANDLE;
    port = std::move(o->port);
    outputs_.erase(out);
  }
  return MMSYSERR_NOERROR;
}

MMRESULT PortMidiService::midiOutGetErrorText(MMRESULT code, std::string& text) {
  return midiErrorText(code, text) ? MMSYSERR_NOERROR : MMSYSERR_BADERRNUM;
}

MMRESULT PortMidiService::midiInGetErrorText(MMRESULT code, std::string& text) {
  return midiErrorText(code, text) ? MMSYSERR_NOERROR : MMSYSERR_BADERRNUM;
}

}  // namespace tessivo
