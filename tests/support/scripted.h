#pragma once
// Test doubles and rigs. ScriptedMidi records every call and fails any chosen call with any
// chosen code; ScriptedScreen records boxes and forms and answers from a script. Both write
// into one event list, so a test sees the order of MIDI calls and screen events. The rigs
// below put the link, the whole program or the built-in instrument together as tests use them.

#include <gtest/gtest.h>

#include <atomic>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "data/images.h"
#include "instrument/virtual_cs2x.h"
#include "link/messages.h"
#include "link/midi_link.h"
#include "link/midi_service.h"
#include "link/port_service.h"
#include "link/screen.h"
#include "shell/app.h"

namespace tessivo::test {

using Events = std::vector<std::string>;

std::string hex(const Bytes& bytes);  // "F0 43 10 .." for readable failures
std::vector<std::string> hex(const std::vector<Bytes>& messages);

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
  // The instrument's side: the answer to a message that went out, delivered into the armed
  // input buffer at once. Nothing: no answer.
  std::function<std::optional<Bytes>(const Bytes&)> answer;

  void failOnce(const std::string& op, MMRESULT code) { script[op].push_back(code); }
  void failAlways(const std::string& op, MMRESULT code) { always[op] = code; }
  std::vector<std::string> midiCalls() const;  // the events that are MIDI calls

  std::uint32_t midiOutGetNumDevs() override { return static_cast<std::uint32_t>(outNames.size()); }
  std::uint32_t midiInGetNumDevs() override { return static_cast<std::uint32_t>(inNames.size()); }
  MMRESULT midiOutGetDevCaps(std::uint32_t device, std::string& name) override;
  MMRESULT midiInGetDevCaps(std::uint32_t device, std::string& name) override;
  MMRESULT midiOutOpen(MidiHandle& handle, std::uint32_t device) override;
  MMRESULT midiInOpen(MidiHandle& handle, std::uint32_t device, MidiInProc callback,
                      std::uintptr_t instance, std::uint32_t flags) override;
  MMRESULT midiConnect(MidiHandle in, MidiHandle out) override { return call("midiConnect", "", in && out); }
  MMRESULT midiDisconnect(MidiHandle in, MidiHandle out) override { return call("midiDisconnect", "", in && out); }
  MMRESULT midiInStart(MidiHandle in) override { return call("midiInStart", "", in); }
  MMRESULT midiInStop(MidiHandle in) override { return call("midiInStop", "", in); }
  MMRESULT midiInReset(MidiHandle in) override;
  MMRESULT midiInPrepareHeader(MidiHandle in, MidiHdr*, std::uint32_t) override {
    return call("midiInPrepareHeader", "", in);
  }
  MMRESULT midiInAddBuffer(MidiHandle in, MidiHdr* hdr, std::uint32_t size) override;
  MMRESULT midiInUnprepareHeader(MidiHandle in, MidiHdr*, std::uint32_t) override {
    return call("midiInUnprepareHeader", "", in);
  }
  MMRESULT midiOutPrepareHeader(MidiHandle out, MidiHdr*, std::uint32_t) override {
    return call("midiOutPrepareHeader", "", out);
  }
  MMRESULT midiOutLongMsg(MidiHandle out, MidiHdr* hdr, std::uint32_t size) override;
  // Counted but not in the event list: a send may try it 400 times.
  MMRESULT midiOutUnprepareHeader(MidiHandle, MidiHdr*, std::uint32_t) override {
    ++calls["midiOutUnprepareHeader"];
    return result("midiOutUnprepareHeader", 1);
  }
  MMRESULT midiOutReset(MidiHandle out) override { return call("midiOutReset", "", out); }
  MMRESULT midiInClose(MidiHandle in) override { return call("midiInClose", "", in); }
  MMRESULT midiOutClose(MidiHandle out) override { return call("midiOutClose", "", out); }
  MMRESULT midiOutGetErrorText(MMRESULT code, std::string& text) override;
  MMRESULT midiInGetErrorText(MMRESULT code, std::string& text) override;

 private:
  MMRESULT call(const std::string& op, const std::string& detail = "", MidiHandle handle = 1);
  MMRESULT result(const std::string& op, MidiHandle handle);
  MidiInProc callback_ = nullptr;
  std::uintptr_t instance_ = 0;
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
  bool busy = false;
  std::vector<bool> busyChanges;  // every setBusy, in order
  std::deque<std::string> openAnswers;  // files chosen in the next open dialogs; empty: Cancel
  std::deque<std::string> saveAnswers;  // the same for the save dialogs
  std::vector<FileDialog> dialogs;

  std::vector<std::string> texts() const;  // the texts of the boxes shown so far

  MsgAnswer messageBox(const std::string& text, const std::string& title, MsgButtons buttons,
                       MsgIcon icon) override;
  void createForm(FormId form) override { log("create ", form); }
  void showForm(FormId form) override { log("show ", form); }
  void hideForm(FormId form) override { log("hide ", form); }
  void unloadForm(FormId form) override { log("unload ", form); }
  void setBusy(bool b) override {
    busy = b;
    busyChanges.push_back(b);
  }
  void startTimer(int intervalMs) override { events_.push_back("timer " + std::to_string(intervalMs)); }
  bool showOpen(FileDialog& dialog) override;
  bool showSave(FileDialog& dialog) override;
  // Runs with the file chosen in an open dialog once the dialog has closed, before the
  // program reads it: what happens to a file between the dialog and the read.
  std::function<void(const std::string& path)> afterOpen;

 private:
  void log(const char* what, FormId form);
  Events& events_;
};

// A file name in the temporary folder, unique to the test, removed at the end.
struct TempFile {
  TempFile();
  ~TempFile();
  std::string path;
};

// The link over the scripted service as the started program holds it: length tables and
// images in place, the output open and the input open with the link's callback. The event
// list starts empty; waits are counted, not slept.
struct ScriptedLink {
  ScriptedLink();
  std::vector<std::string> sentHex() const { return hex(midi.sent); }  // every long message so far

  Events events;
  ScriptedMidi midi{events};
  ScriptedScreen screen{events};
  std::vector<int> sleeps;
  MidiLink link{midi, screen, [this](int ms) { sleeps.push_back(ms); }};
  Images images;
};

// The program started against the scripted service and screen as far as its main form:
// preferences from a temporary file, OK, the timer's tick. Waits are counted, not slept.
struct ScriptedProgram {
  ScriptedProgram();
  MainForm& start();  // Main, OK and the tick; the main form afterwards
  std::vector<std::string> sentHex() const { return hex(midi.sent); }

  Events events;
  ScriptedMidi midi{events};
  ScriptedScreen screen{events};
  std::vector<int> sleeps;
  App app;
  TempFile prefs;
};

// A test of the main form: the scripted program started, with the events, sends, waits and
// boxes of the start forgotten.
class StartedProgram : public ::testing::Test, protected ScriptedProgram {
 protected:
  void SetUp() override {
    form = &start();
    events.clear();
    midi.sent.clear();
    sleeps.clear();
    screen.boxes.clear();
  }
  MainForm* form = nullptr;
};

// The built-in virtual CS2x as the only device of the program's own service.
struct BuiltIn {
  explicit BuiltIn(VirtualCs2xOptions options = {}) : cs2x(options) {}
  std::vector<std::string> wire() const;  // what the instrument received, in hex

  VirtualCs2x cs2x;
  VirtualCs2xProvider provider{cs2x};
  PortMidiService midi{{&provider}};
};

// The program started against the built-in virtual CS2x, whose dumps fill the images whole,
// with the screen scripted: saves and loads go through the scripted file dialogs.
class StartedOnInstrument : public ::testing::Test, protected BuiltIn {
 protected:
  void SetUp() override;  // Main, OK and the tick; then the busy changes of the start forgotten
  void saveAs(void (Files::*click)(), const std::string& path);
  // The instrument's log is cleared first, so wire() is what the load sent.
  void loadFrom(void (Files::*click)(), const std::string& path);

  Events events;
  ScriptedScreen screen{events};
  App app{midi, screen};
  TempFile prefs;
  MainForm* form = nullptr;
};

// A device family in front of another whose output ports can be made to fail: while `failing`
// is set, every message handed to them is refused. `beforeSend`, when set, runs on the
// sender's thread before each message with the number of messages handed on before it.
class FailingOutputs : public PortProvider {
 public:
  explicit FailingOutputs(PortProvider& inner) : inner_(inner) {}
  std::atomic<bool> failing{false};
  std::atomic<int> handed{0};   // messages the ports were given
  std::atomic<int> refused{0};  // of them, those that did not go out (here or in the port behind)
  // Of those, the ones sent on the thread that made these outputs: the program's own sends,
  // not thru's, which has no box to show.
  std::atomic<int> refusedHere{0};
  const std::thread::id madeOn = std::this_thread::get_id();
  std::function<void(int handedBefore)> beforeSend;

  std::vector<std::string> inputNames() override { return inner_.inputNames(); }
  std::vector<std::string> outputNames() override { return inner_.outputNames(); }
  std::unique_ptr<InPort> openInput(std::size_t index, MMRESULT& error) override {
    return inner_.openInput(index, error);
  }
  std::unique_ptr<OutPort> openOutput(std::size_t index, MMRESULT& error) override;

 private:
  PortProvider& inner_;
};

// A whole file's bytes, and a file of exactly these bytes.
Bytes readFile(const std::string& path);
void writeFile(const std::string& path, const Bytes& bytes);

// An input buffer of 128 bytes with a guard byte behind it, and its header.
struct InBuffer {
  InBuffer() : hdr{.lpData = bytes, .dwBufferLength = 128} {}
  Bytes recorded() const { return Bytes(bytes, bytes + hdr.dwBytesRecorded); }
  std::uint8_t bytes[129]{};
  MidiHdr hdr;
};
// Prepares and queues `buffer` on `in`, then starts the input if `start`.
MMRESULT arm(MidiService& midi, MidiHandle in, InBuffer& buffer, bool start = true);
// One long message out on `out`: prepare, send, unprepare once it is done; the send's result.
MMRESULT sendLong(MidiService& midi, MidiHandle out, Bytes bytes);

// The device whose name holds `part`, or -1.
std::int32_t deviceNamed(MidiService& midi, bool input, const std::string& part);

}  // namespace tessivo::test
