#include "support/scripted.h"

#include <cstdio>

namespace tessivo::test {

std::string hex(const Bytes& bytes) {
  std::string s;
  char buf[4];
  for (std::uint8_t b : bytes) {
    std::snprintf(buf, sizeof buf, "%02X", b);
    if (!s.empty()) s += ' ';
    s += buf;
  }
  return s;
}

const char* formName(FormId form) {
  switch (form) {
    case FormId::Pref: return "frmPref";
    case FormId::Splash: return "frmSplash";
    case FormId::Main: return "CS2x";
  }
  return "?";
}

MMRESULT ScriptedMidi::call(const std::string& op, const std::string& detail) {
  ++calls[op];
  events_.push_back(detail.empty() ? op : op + " " + detail);
  auto& queue = script[op];
  if (!queue.empty()) {
    MMRESULT r = queue.front();
    queue.pop_front();
    return r;
  }
  auto it = always.find(op);
  return it == always.end() ? MMSYSERR_NOERROR : it->second;
}

std::vector<std::string> ScriptedMidi::midiCalls() const {
  std::vector<std::string> out;
  for (const std::string& e : events_)
    if (e.rfind("midi", 0) == 0) out.push_back(e);
  return out;
}

std::uint32_t ScriptedMidi::midiOutGetNumDevs() { return static_cast<std::uint32_t>(outNames.size()); }
std::uint32_t ScriptedMidi::midiInGetNumDevs() { return static_cast<std::uint32_t>(inNames.size()); }

MMRESULT ScriptedMidi::midiOutGetDevCaps(std::uint32_t device, std::string& name) {
  MMRESULT r = call("midiOutGetDevCaps", std::to_string(device));
  if (r == 0) name = outNames.at(device);
  return r;
}

MMRESULT ScriptedMidi::midiInGetDevCaps(std::uint32_t device, std::string& name) {
  MMRESULT r = call("midiInGetDevCaps", std::to_string(device));
  if (r == 0) name = inNames.at(device);
  return r;
}

MMRESULT ScriptedMidi::midiOutOpen(MidiHandle& handle, std::uint32_t device) {
  MMRESULT r = call("midiOutOpen", std::to_string(device));
  handle = r == 0 ? 0x0B : 0;
  return r;
}

MMRESULT ScriptedMidi::midiInOpen(MidiHandle& handle, std::uint32_t device, MidiInProc cb,
                                  std::uintptr_t inst, std::uint32_t flags) {
  MMRESULT r = call("midiInOpen", std::to_string(device) + (flags == CALLBACK_FUNCTION ? " callback" : ""));
  handle = r == 0 ? 0x0A : 0;
  callback = cb;
  instance = inst;
  return r;
}

MMRESULT ScriptedMidi::midiConnect(MidiHandle, MidiHandle) { return call("midiConnect"); }
MMRESULT ScriptedMidi::midiDisconnect(MidiHandle, MidiHandle) { return call("midiDisconnect"); }
MMRESULT ScriptedMidi::midiInStart(MidiHandle) { return call("midiInStart"); }
MMRESULT ScriptedMidi::midiInStop(MidiHandle) { return call("midiInStop"); }
MMRESULT ScriptedMidi::midiInReset(MidiHandle) { return call("midiInReset"); }
MMRESULT ScriptedMidi::midiInPrepareHeader(MidiHandle, MidiHdr*, std::uint32_t) { return call("midiInPrepareHeader"); }
MMRESULT ScriptedMidi::midiInAddBuffer(MidiHandle, MidiHdr*, std::uint32_t) { return call("midiInAddBuffer"); }
MMRESULT ScriptedMidi::midiInUnprepareHeader(MidiHandle, MidiHdr*, std::uint32_t) {
  return call("midiInUnprepareHeader");
}
MMRESULT ScriptedMidi::midiOutPrepareHeader(MidiHandle, MidiHdr*, std::uint32_t) {
  return call("midiOutPrepareHeader");
}

MMRESULT ScriptedMidi::midiOutLongMsg(MidiHandle, MidiHdr* hdr, std::uint32_t) {
  Bytes bytes(hdr->lpData, hdr->lpData + hdr->dwBufferLength);
  MMRESULT r = call("midiOutLongMsg", hex(bytes));
  if (r == 0) sent.push_back(bytes);
  return r;
}

MMRESULT ScriptedMidi::midiOutUnprepareHeader(MidiHandle, MidiHdr*, std::uint32_t) {
  ++calls["midiOutUnprepareHeader"];  // not in the event list: a send may try it 400 times
  auto& queue = script["midiOutUnprepareHeader"];
  if (!queue.empty()) {
    MMRESULT r = queue.front();
    queue.pop_front();
    return r;
  }
  auto it = always.find("midiOutUnprepareHeader");
  return it == always.end() ? MMSYSERR_NOERROR : it->second;
}

MMRESULT ScriptedMidi::midiOutReset(MidiHandle) { return call("midiOutReset"); }
MMRESULT ScriptedMidi::midiInClose(MidiHandle) { return call("midiInClose"); }
MMRESULT ScriptedMidi::midiOutClose(MidiHandle) { return call("midiOutClose"); }

MMRESULT ScriptedMidi::midiOutGetErrorText(MMRESULT code, std::string& text) {
  text = "out error " + std::to_string(static_cast<std::int32_t>(code));
  return 0;
}

MMRESULT ScriptedMidi::midiInGetErrorText(MMRESULT code, std::string& text) {
  text = "in error " + std::to_string(static_cast<std::int32_t>(code));
  return 0;
}

MsgAnswer ScriptedScreen::messageBox(const std::string& text, const std::string& title, MsgButtons buttons,
                                     MsgIcon icon) {
  boxes.push_back({text, title, buttons, icon});
  events_.push_back("box " + text.substr(0, text.find('\r')));
  if (answers.empty()) return buttons == MsgButtons::YesNo ? MsgAnswer::Yes : MsgAnswer::Ok;
  MsgAnswer a = answers.front();
  answers.pop_front();
  return a;
}

void ScriptedScreen::createForm(FormId form) { events_.push_back(std::string("create ") + formName(form)); }
void ScriptedScreen::showForm(FormId form) {
  visible[form] = true;
  events_.push_back(std::string("show ") + formName(form));
}
void ScriptedScreen::hideForm(FormId form) {
  visible[form] = false;
  events_.push_back(std::string("hide ") + formName(form));
}
void ScriptedScreen::unloadForm(FormId form) {
  visible[form] = false;
  events_.push_back(std::string("unload ") + formName(form));
}
void ScriptedScreen::setBusy(bool b) { busy = b; }
void ScriptedScreen::startTimer(int intervalMs) {
  timerMs = intervalMs;
  events_.push_back("timer " + std::to_string(intervalMs));
}

}  // namespace tessivo::test
