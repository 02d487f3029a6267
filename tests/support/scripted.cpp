#include "support/scripted.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <thread>
#include <unistd.h>

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

std::vector<std::string> hex(const std::vector<Bytes>& messages) {
  std::vector<std::string> out;
  for (const Bytes& m : messages) out.push_back(hex(m));
  return out;
}

TempFile::TempFile() {
  static int count = 0;
  path = (std::filesystem::temp_directory_path() /
          ("tessivo-test-" + std::to_string(::getpid()) + "-" + std::to_string(++count)))
             .string();
  std::filesystem::remove(path);
}

TempFile::~TempFile() {
  std::error_code ec;
  std::filesystem::remove(path, ec);
}

ScriptedLink::ScriptedLink() {
  link.setLengthTables();
  link.attachImages(&images);
  midi.midiOutOpen(link.MidiOutHnd, 0);
  midi.midiInOpen(link.MidiInHnd, 0, &MidiLink::MidiInCB, link.callbackInstance(), CALLBACK_FUNCTION);
  events.clear();
}

ScriptedProgram::ScriptedProgram() : app(midi, screen, [this](int ms) { sleeps.push_back(ms); }) {
  app.pref().prefsPath = prefs.path;
}

MainForm& ScriptedProgram::start() {
  app.Main();
  app.OKButton_Click();
  app.Timer1_Tick();
  return *app.mainForm();
}

void StartedOnInstrument::SetUp() {
  app.pref().prefsPath = prefs.path;
  app.Main();
  app.OKButton_Click();
  app.Timer1_Tick();
  form = app.mainForm();
  screen.busyChanges.clear();
}

void StartedOnInstrument::saveAs(void (Files::*click)(), const std::string& path) {
  screen.saveAnswers.push_back(path);
  (form->files().*click)();
}

void StartedOnInstrument::loadFrom(void (Files::*click)(), const std::string& path) {
  screen.openAnswers.push_back(path);
  cs2x.clearLog();
  (form->files().*click)();
}

Bytes readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), {});
}

void writeFile(const std::string& path, const Bytes& bytes) {
  std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

std::vector<std::string> BuiltIn::wire() const {
  std::vector<std::string> out;
  for (const auto& m : cs2x.log()) out.push_back(hex(m.bytes));
  return out;
}

namespace {
class FailingOut : public OutPort {
 public:
  FailingOut(FailingOutputs& owner, std::unique_ptr<OutPort> inner) : owner_(owner), inner_(std::move(inner)) {}
  bool send(std::span<const std::uint8_t> message) override {
    const int before = owner_.handed++;
    if (owner_.beforeSend) owner_.beforeSend(before);
    const bool sent = !owner_.failing && inner_->send(message);
    if (!sent) {
      ++owner_.refused;
      if (std::this_thread::get_id() == owner_.madeOn) ++owner_.refusedHere;
    }
    return sent;
  }
  std::chrono::nanoseconds wireTime(std::size_t bytes) const override { return inner_->wireTime(bytes); }

 private:
  FailingOutputs& owner_;
  std::unique_ptr<OutPort> inner_;
};
}  // namespace

std::unique_ptr<OutPort> FailingOutputs::openOutput(std::size_t index, MMRESULT& error) {
  auto port = inner_.openOutput(index, error);
  if (!port) return nullptr;
  return std::make_unique<FailingOut>(*this, std::move(port));
}

MMRESULT arm(MidiService& midi, MidiHandle in, InBuffer& buffer, bool start) {
  if (MMRESULT r = midi.midiInPrepareHeader(in, &buffer.hdr, kMidiHdrSize)) return r;
  if (MMRESULT r = midi.midiInAddBuffer(in, &buffer.hdr, kMidiHdrSize)) return r;
  return start ? midi.midiInStart(in) : MMSYSERR_NOERROR;
}

MMRESULT sendLong(MidiService& midi, MidiHandle out, Bytes bytes) {
  MidiHdr hdr{.lpData = bytes.data(), .dwBufferLength = static_cast<std::uint32_t>(bytes.size())};
  if (MMRESULT r = midi.midiOutPrepareHeader(out, &hdr, kMidiHdrSize)) return r;
  const MMRESULT r = midi.midiOutLongMsg(out, &hdr, kMidiHdrSize);
  while (midi.midiOutUnprepareHeader(out, &hdr, kMidiHdrSize) == MIDIERR_STILLPLAYING) std::this_thread::yield();
  return r;
}

std::int32_t deviceNamed(MidiService& midi, bool input, const std::string& part) {
  const std::uint32_t n = input ? midi.midiInGetNumDevs() : midi.midiOutGetNumDevs();
  for (std::uint32_t d = 0; d < n; ++d) {
    std::string name;
    if (input) midi.midiInGetDevCaps(d, name);
    else midi.midiOutGetDevCaps(d, name);
    if (name.find(part) != std::string::npos) return static_cast<std::int32_t>(d);
  }
  return -1;
}

MMRESULT ScriptedMidi::result(const std::string& op, MidiHandle handle) {
  auto& queue = script[op];
  if (!queue.empty()) {
    MMRESULT r = queue.front();
    queue.pop_front();
    return r;
  }
  auto it = always.find(op);
  if (it != always.end()) return it->second;
  return handle == 0 ? MMSYSERR_INVALHANDLE : MMSYSERR_NOERROR;  // a port that never opened
}

MMRESULT ScriptedMidi::call(const std::string& op, const std::string& detail, MidiHandle handle) {
  ++calls[op];
  events_.push_back(detail.empty() ? op : op + " " + detail);
  return result(op, handle);
}

std::vector<std::string> ScriptedMidi::midiCalls() const {
  std::vector<std::string> out;
  for (const std::string& e : events_)
    if (e.rfind("midi", 0) == 0) out.push_back(e);
  return out;
}

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
  callback_ = cb;
  instance_ = inst;
  return r;
}

MMRESULT ScriptedMidi::midiInReset(MidiHandle in) {
  armed_ = nullptr;
  return call("midiInReset", "", in);
}

MMRESULT ScriptedMidi::midiInAddBuffer(MidiHandle in, MidiHdr* hdr, std::uint32_t) {
  MMRESULT r = call("midiInAddBuffer", "", in);
  if (r == 0) armed_ = hdr;
  return r;
}

MMRESULT ScriptedMidi::midiOutLongMsg(MidiHandle out, MidiHdr* hdr, std::uint32_t) {
  Bytes bytes(hdr->lpData, hdr->lpData + hdr->dwBufferLength);
  MMRESULT r = call("midiOutLongMsg", hex(bytes), out);
  if (r != 0) return r;
  sent.push_back(bytes);
  if (answer && armed_) {
    if (auto reply = answer(bytes)) {
      MidiHdr* in = armed_;
      armed_ = nullptr;
      const std::size_t n = std::min<std::size_t>(reply->size(), in->dwBufferLength);
      std::copy(reply->begin(), reply->begin() + static_cast<std::ptrdiff_t>(n), in->lpData);
      in->dwBytesRecorded = static_cast<std::uint32_t>(n);
      if (callback_) callback_(0x0A, MIM_LONGDATA, instance_, reinterpret_cast<std::uintptr_t>(in), 0);
    }
  }
  return r;
}

MMRESULT ScriptedMidi::midiOutGetErrorText(MMRESULT code, std::string& text) {
  text = "out error " + std::to_string(static_cast<std::int32_t>(code));
  return 0;
}

MMRESULT ScriptedMidi::midiInGetErrorText(MMRESULT code, std::string& text) {
  text = "in error " + std::to_string(static_cast<std::int32_t>(code));
  return 0;
}

std::vector<std::string> ScriptedScreen::texts() const {
  std::vector<std::string> out;
  for (const Box& b : boxes) out.push_back(b.text);
  return out;
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

void ScriptedScreen::log(const char* what, FormId form) {
  const char* name = form == FormId::Pref      ? "frmPref"
                     : form == FormId::Splash  ? "frmSplash"
                     : form == FormId::LoadAid ? "frmLoadAid"
                                               : "CS2x";
  events_.push_back(what + std::string(name));
}

bool ScriptedScreen::showOpen(FileDialog& dialog) {
  dialogs.push_back(dialog);
  events_.push_back("open dialog");
  if (openAnswers.empty()) return false;
  dialog.fileName = openAnswers.front();
  openAnswers.pop_front();
  if (afterOpen) afterOpen(dialog.fileName);
  return true;
}

bool ScriptedScreen::showSave(FileDialog& dialog) {
  dialogs.push_back(dialog);
  events_.push_back("save dialog");
  if (saveAnswers.empty()) return false;
  dialog.fileName = saveAnswers.front();
  saveAnswers.pop_front();
  return true;
}

}  // namespace tessivo::test
