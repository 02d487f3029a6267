#include "shell/main_form.h"

#include <cmath>
#include <cstdlib>

#include "data/multi_template.h"
#include "data/tables.h"
#include "files/file_io.h"
#include "shell/debug_tools.h"
#include "link/numtext.h"

namespace tessivo {

namespace {
constexpr int kStartNote = 67;
constexpr int kStartVelocity = 127;
constexpr int kAllNotesOffPauseMs = 1000;

std::uint8_t listByte(const ListCtl& list) { return static_cast<std::uint8_t>(std::clamp(list.index(), 0, 127)); }
}  // namespace

std::optional<std::uint8_t> fieldByte(const std::string& text) {
  const auto value = decimalNumber(text);
  if (!value) return std::nullopt;
  const double whole = std::trunc(*value);
  if (whole < 0 || whole > 255) return std::nullopt;
  return static_cast<std::uint8_t>(whole);
}

MainForm::MainForm(MidiLink& link, PrefForm& pref)
    : link_(link),
      pref_(pref),
      perf_(link, images_.perf, panel,
            {[this] { return std::max(pref_.cmbPerfChnl.index(), 0); }, [this] { return effects_.visible; }, [this] { effects_.EditEffcts_Click(); }}),
      pool_(link, images_, LyrTmpl,
            {[this](int layer) { return panel.TxtLyr[static_cast<std::size_t>(layer - 1)].text; },
             [this](int multi) { return row(multi).CmdMult.caption; }}),
      audition_(link, CmbMidNtNo, CmbMidVel, perf_.LyrOnTbl,
                {[this] { return std::max(pref_.cmbPerfChnl.index(), 0); }, [this] { return TrnsChnlAssgnChecked; },
                 [this] { return edit_.visible; }, [this](int multi) { edit_.EditMult_Click(multi); }}),
      edit_(link, images_, [this](int multi) -> ButtonCtl& { return row(multi).CmdMult; }),
      effects_(link, images_.perf, edit_, [this] { AllNtsOffSnd(); }),
      multis_(link, images_, pool_, edit_),
      files_({link, images_, pool_, multis_, edit_, effects_, perf_, [this] { return std::max(pref_.cmbPerfChnl.index(), 0); },
              [this] { return pref_.workspacePath(); }, [this] { return pref_.Slider1.value; },
              [this] { return panel.CmdPrfm.caption; }}) {
  CmbMidNtNo.click = [this] { SldNt.value = Audition::sliderPosition(CmbMidNtNo.index()); };
  CmbMidVel.click = [this] { SldVel.value = Audition::sliderPosition(CmbMidVel.index()); };
  link_.attachImages(&images_);
  link_.ReqParm = [this] {
    const auto a = fieldByte(TxtParm[1].text), b = fieldByte(TxtParm[2].text), c = fieldByte(TxtParm[3].text);
    if (a && b && c) link_.SndSysEx(parmRequest({*a, *b, *c}));
  };
}

void MainForm::fillStartLists() {
  CmbMidNtNo.addItem(" 0");
  CmbMidVel.addItem(" 0");
  for (int i = 1; i <= 127; ++i) {
    CmbMidNtNo.addItem(signedText(i));
    CmbMidVel.addItem(signedText(i));
  }
  pool_.freeAll();
  edit_.visible = false;
  List1Visible = false;
  for (int ch = 1; ch <= 16; ++ch)
    for (int m = kFirstMulti; m <= kLastMulti; ++m) row(m).CmbMult.addItem(signedText(ch));
  // Receive channels at start: M5..M8 on 1, M9..M12 on 5, M13..M16 on 9.
  for (int m = kFirstMulti; m <= kLastMulti; ++m) row(m).CmbMult.setIndex(((m - kFirstMulti) / 4) * 4);
  for (int m = kFirstMulti; m <= kLastMulti; ++m) row(m).CmdMult.caption = startCaption(m);
  link_.setLengthTables();
  CmbMidNtNo.setIndex(kStartNote);
  CmbMidVel.setIndex(kStartVelocity);
}

void MainForm::FillLists() {
  effects_.fillLists();
  panel.CmbPrgm.clear();
  for (std::string_view name : PrfNames1) panel.CmbPrgm.addItem(std::string(name));
}

bool MainForm::openPorts() {
  link_.MidiOutDev = pref_.Combo2.index();
  link_.MidiInDev = pref_.Combo1.index();
  MidiService& midi = link_.midi();
  MMRESULT r = midi.midiOutOpen(link_.MidiOutHnd, static_cast<std::uint32_t>(link_.MidiOutDev));
  if (r != MMSYSERR_NOERROR) {
    link_.MidiOutHnd = 0;
    link_.MidiOutErr("Open", static_cast<std::int16_t>(r));
    return false;
  }
  r = midi.midiInOpen(link_.MidiInHnd, static_cast<std::uint32_t>(link_.MidiInDev), &MidiLink::MidiInCB,
                      link_.callbackInstance(), CALLBACK_FUNCTION);
  if (r != MMSYSERR_NOERROR) {
    link_.MidiInHnd = 0;
    link_.MidiInErr("Open", static_cast<std::int16_t>(r));
  }
  return true;
}

bool MainForm::startupWorkspace() {
  if (pref_.ChkLdFile.value != 1) return false;
  const auto length = fileLength(pref_.workspacePath());
  if (!length) return false;  // a path that cannot be opened is passed over in silence
  if (*length == kWorkspaceBytes) return true;
  link_.screen().messageBox(kStartupWrongType, kAppTitle, MsgButtons::Ok, MsgIcon::None);
  return false;
}

void MainForm::fillMultis() {
  // A Workspace chosen in the preferences, else each Multi from the instrument where its box
  // is checked and with the defaults where not.
  if (startupWorkspace()) {
    files_.LdWrkSpaceFile();
  } else {
    for (int m = kFirstMulti; m <= kLastMulti; ++m) {
      if (pref_.ChkMlt(m).value == 0) multis_.InitMlt(m - 1);
      else link_.RtrvMlt(static_cast<std::int16_t>(m));
    }
  }
  // The lists show the parts' receive channels, silently while loading. A byte that is no
  // channel (0x10: none) is refused by the list, which keeps its value.
  for (int m = kFirstMulti; m <= kLastMulti; ++m)
    row(m).CmbMult.setIndex(images_.multi.section(static_cast<std::size_t>(m - 1), 0)[kReceiveChannelAt]);
}

void MainForm::Form_Loadx() {
  link_.LoadingFlag = -1;
  fillStartLists();
  // A failed output ends the start here: the form shows with what it has, every later send
  // reports its failure.
  if (!openPorts()) return;
  FillLists();
  panel.CmbPrgm.setIndex(0);  // its click changes the Performance and reads it
  perf_.DspPerf();
  fillMultis();
  link_.ConnectThru();
  perf_.ChngPrfMidiChan();
  link_.LoadingFlag = 0;
  Screen& screen = link_.screen();
  screen.unloadForm(FormId::Splash);
  screen.showForm(FormId::Main);
  screen.setBusy(false);
}

bool MainForm::Form_Unload() {
  Screen& screen = link_.screen();
  if (screen.messageBox(kExitQuestion, "Exit", MsgButtons::OkCancel, MsgIcon::Question) == MsgAnswer::Cancel)
    return true;
  ClosePorts(true);
  return false;
}

void MainForm::ClosePorts(bool report) {
  if (portsClosed_) return;  // a signal may end the run while the exit question is open
  portsClosed_ = true;
  MidiService& midi = link_.midi();
  auto failed = [&](MMRESULT r, const char* label, bool output) {
    if (r == MMSYSERR_NOERROR || !report) return;
    if (output) link_.MidiOutErr(label, static_cast<std::int16_t>(r));
    else link_.MidiInErr(label, static_cast<std::int16_t>(r));
  };
  midi.midiDisconnect(link_.MidiInHnd, link_.MidiOutHnd);  // its result tells nothing useful
  failed(midi.midiInStop(link_.MidiInHnd), "InStop", false);
  if (link_.MidiInHnd != 0) failed(midi.midiInClose(link_.MidiInHnd), "Close", false);
  if (link_.MidiOutHnd != 0) {
    failed(midi.midiOutReset(link_.MidiOutHnd), "Reset", true);
    failed(midi.midiOutClose(link_.MidiOutHnd), "Close", true);
  }
}

void MainForm::DragDrop(const std::string& target, const std::string& source) {
  AllNtsOffSnd();  // ends the test note of a Multi drag, and any other
  if (target == "LbxLyrPool") pool_.Drop(source);
  else if (const int multi = sourceNumber(target, "CmdMult", kFirstMulti, kLastMulti)) multis_.CmdMult_DragDrop(multi, source);
}

void MainForm::SldNt_Scroll() { CmbMidNtNo.setIndex(Audition::listIndex(SldNt.value)); }
void MainForm::SldVel_Scroll() { CmbMidVel.setIndex(Audition::listIndex(SldVel.value)); }

void MainForm::RtrvPerf_Click() { perf_.DspPerf(); }

void MainForm::RtrvAllMulti_Click() {
  Screen& screen = link_.screen();
  screen.setBusy(true);
  link_.List1.clear();
  for (std::int16_t part = kFirstMulti; part <= kLastMulti; ++part)
    for (std::int16_t section = 0; section <= 4; ++section) link_.RtrvBlock(kKindMulti, part, section);
  screen.setBusy(false);
}

void MainForm::RtrvMulti_Click(int multi) { link_.RtrvMlt(static_cast<std::int16_t>(multi)); }

void MainForm::AllNtsOffSnd() {
  link_.SndSysEx(allNotesOffSequence());
  link_.SndSysEx(testNoteOffSequence(listByte(CmbMidNtNo), listByte(CmbMidVel)));
}

void MainForm::AllNtsOff_Click() {
  Screen& screen = link_.screen();
  MidiService& midi = link_.midi();
  screen.setBusy(true);
  AllNtsOffSnd();
  midi.midiDisconnect(link_.MidiInHnd, link_.MidiOutHnd);
  link_.sleep(kAllNotesOffPauseMs);
  MMRESULT r = midi.midiInStop(link_.MidiInHnd);
  if (r != MMSYSERR_NOERROR) link_.MidiInErr("InStop", static_cast<std::int16_t>(r));
  link_.ConnectThru();
  screen.setBusy(false);
}

void MainForm::LocalOff_Click() {
  LocalOffChecked = !LocalOffChecked;
  link_.SndSysEx(paramChange(kModelCs2x, kAddrLocalSwitch, LocalOffChecked ? 0 : 1));
}

void MainForm::ArpOff_Click() {
  // The arpeggiator takes 4 for off and 5 for on.
  ArpOffChecked = !ArpOffChecked;
  link_.SndSysEx(paramChange(kModelCs2x, kAddrArpeggiator, ArpOffChecked ? 4 : 5));
}

void MainForm::TrnsChnlAssgn_Click() { TrnsChnlAssgnChecked = !TrnsChnlAssgnChecked; }

void MainForm::CmdChngCntl_Click() {
  const auto channel = fieldByte(TxtParm[1].text), control = fieldByte(TxtParm[2].text),
             value = fieldByte(TxtParm[3].text);
  if (!channel || !control || !value || *channel > 0xFF - kControlChange) return;  // no byte: refused
  link_.SndSysEx(Bytes{static_cast<std::uint8_t>(kControlChange + *channel), *control, *value});
}

void MainForm::CmdChngParm_Click() {
  Bytes m{kSysExStart, kYamahaId, kParamChange};
  for (const TextCtl& field : TxtParm) {
    const auto b = fieldByte(field.text);
    if (!b) return;
    m.push_back(*b);
  }
  m.push_back(kSysExEnd);
  link_.SndSysEx(m);
}

void MainForm::CmdRtrvParm_Click() {
  for (int i = 1; i <= 3; ++i)
    if (!fieldByte(TxtParm[static_cast<std::size_t>(i)].text)) return;
  link_.List1.clear();
  link_.RtrvBlock(16, 0, 0);
}

void MainForm::LdAidSub_Click() {
  effects_.visible = false;
  edit_.visible = false;
  if (!loadAid_.loaded) {
    const char* home = std::getenv("HOME");
    loadAid_.Form_Load(home ? home : "/");
  }
  link_.screen().showForm(FormId::LoadAid);
}

void MainForm::showDebugRow(bool visible) {
  List1Visible = visible;
  for (TextCtl& field : TxtParm) field.visible = visible;
  DebugButtonsVisible = visible;
}

void MainForm::LdSysEx_Click() {
  FileDialog& dialog = files_.CommonDialog1;
  dialog.flags = 4;
  dialog.filter = "All Files (*.*)|*.*|Tessivo Files(*.tvx)|*.tvx|Sys-Ex Files (*.syx)|*.syx|Layer Pools (*.tvp)|*.tvp";
  dialog.filterIndex = 1;
  if (link_.screen().showOpen(dialog)) SySxTxtDump();
}

void MainForm::SySxTxtDump() {
  FileDialog& dialog = files_.CommonDialog1;
  std::vector<std::uint8_t> bytes(kSysExListingLimit);
  const auto length = readRecord(dialog.fileName, bytes);
  if (!length) return;
  bytes.resize(static_cast<std::size_t>(std::min<std::uint64_t>(*length, kSysExListingLimit)));
  dialog.flags = 2;
  dialog.filter = "All Multis (*.tvm)|*.tvm";
  dialog.filterIndex = 1;
  if (!link_.screen().showSave(dialog)) return;
  const std::string text = sysExListing(bytes);
  writeRecord(dialog.fileName, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

}  // namespace tessivo
