#pragma once
// Test doubles: a MIDI service that records every call and fails any chosen call with any
// chosen code, and a screen that records boxes and forms and answers from a script. Both
// write into one event list, so a test sees the order of MIDI calls and screen events.

#include <deque>
#include <functional>
#include <optional>
#include <map>
#include <string>
#include <vector>

#include "link/messages.h"
#include "link/midi_service.h"
#include "link/screen.h"
#include "shell/app.h"

namespace tessivo::test {

using Events = std::vector<std::string>;

class ScriptedMidi : public MidiService {
 public:
  explicit ScriptedMidi(Events& events) : events_(events) {}

  std::vector<std::string> inNames{"In A", "In B"}, outNames{"Out A", "Out B"};
  // Results to give, per operation name, one per call; when used up the call succeeds.
  std::map<std::string, std::deque<MMRESULT>> script;
  // A result that every call of the operation gives (after the script is used up).
  std::map<std::string, MMRESULT> always;
  std::vector<Bytes> sent;  // every long message that midiOutLongMsg took
  std::map<std::string, int> calls;

  void failOnce(const std::string& op, MMRESULT code) { script[op].push_back(code); }
  void failAlways(const std::string& op, MMRESULT code) { always[op] = code; }
  std::vector<std::string> midiCalls() const;  // the events that are MIDI calls

  std::uint32_t midiOutGetNumDevs() override;
  std::uint32_t midiInGetNumDevs() override;
  MMRESULT midiOutGetDevCaps(std::uint32_t device, std::string& name) override;
  MMRESULT midiInGetDevCaps(std::uint32_t device, std::string& name) override;
  MMRESULT midiOutOpen(MidiHandle& handle, std::uint32_t device) override;
  MMRESULT midiInOpen(MidiHandle& handle, std::uint32_t device, MidiInProc callback,
                      std::uintptr_t instance, std::uint32_t flags) override;
  MMRESULT midiConnect(MidiHandle in, MidiHandle out) override;
  MMRESULT midiDisconnect(MidiHandle in, MidiHandle out) override;
  MMRESULT midiInStart(MidiHandle in) override;
  MMRESULT midiInStop(MidiHandle in) override;
  MMRESULT midiInReset(MidiHandle in) override;
  MMRESULT midiInPrepareHeader(MidiHandle in, MidiHdr* hdr, std::uint32_t size) override;
  MMRESULT midiInAddBuffer(MidiHandle in, MidiHdr* hdr, std::uint32_t size) override;
  MMRESULT midiInUnprepareHeader(MidiHandle in, MidiHdr* hdr, std::uint32_t size) override;
  MMRESULT midiOutPrepareHeader(MidiHandle out, MidiHdr* hdr, std::uint32_t size) override;
  MMRESULT midiOutLongMsg(MidiHandle out, MidiHdr* hdr, std::uint32_t size) override;
  MMRESULT midiOutUnprepareHeader(MidiHandle out, MidiHdr* hdr, std::uint32_t size) override;
  MMRESULT midiOutReset(MidiHandle out) override;
  MMRESULT midiInClose(MidiHandle in) override;
  MMRESULT midiOutClose(MidiHandle out) override;
  MMRESULT midiOutGetErrorText(MMRESULT code, std::string& text) override;
  MMRESULT midiInGetErrorText(MMRESULT code, std::string& text) override;

  MidiInProc callback = nullptr;
  std::uintptr_t instance = 0;
  // The instrument's side: the answer to a message that went out, delivered into the armed
  // input buffer at once. Nothing: no answer.
  std::function<std::optional<Bytes>(const Bytes&)> answer;

 private:
  MMRESULT call(const std::string& op, const std::string& detail = "", MidiHandle handle = 1);
  MidiHdr* armed_ = nullptr;
  Events& events_;
};

struct Box {
  std::string text, title;
  MsgButtons buttons;
  MsgIcon icon;
};

class ScriptedScreen : public Screen {
 public:
  explicit ScriptedScreen(Events& events) : events_(events) {}

  std::deque<MsgAnswer> answers;  // answers to the next boxes; Ok when empty
  std::vector<Box> boxes;
  int timerMs = 0;
  bool busy = false;
  std::map<FormId, bool> visible;
  std::deque<std::string> openAnswers;  // files chosen in the next open dialogs; empty: Cancel
  std::vector<FileDialog> dialogs;

  MsgAnswer messageBox(const std::string& text, const std::string& title, MsgButtons buttons,
                       MsgIcon icon) override;
  void createForm(FormId form) override;
  void showForm(FormId form) override;
  void hideForm(FormId form) override;
  void unloadForm(FormId form) override;
  void setBusy(bool busy) override;
  void startTimer(int intervalMs) override;
  bool showOpen(FileDialog& dialog) override;

 private:
  Events& events_;
};

// A file name in the temporary folder, unique to the test, removed at the end.
struct TempFile {
  TempFile();
  ~TempFile();
  std::string path;
};

// The program started against the scripted service and screen as far as its main form:
// preferences from a temporary file, OK, the timer's tick. Waits are counted, not slept.
struct ScriptedProgram {
  ScriptedProgram();
  MainForm& start();  // Main, OK and the tick; the main form afterwards

  Events events;
  ScriptedMidi midi{events};
  ScriptedScreen screen{events};
  std::vector<int> sleeps;
  App app;
  TempFile prefs;
};

// The device whose name holds `part`, or -1.
std::int32_t deviceNamed(MidiService& midi, bool input, const std::string& part);

const char* formName(FormId form);
std::string hex(const Bytes& bytes);  // "F0 43 10 .." for readable failures

}  // namespace tessivo::test
