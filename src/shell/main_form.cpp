#include "shell/main_form.h"

namespace tessivo {

namespace {
constexpr std::array<std::int16_t, 10> kSectionLengths{52, 74, 15, 23, 13, 63, 34, 20, 37, 56};
constexpr std::array<std::int16_t, 8> kRetrieveLengths{56, 56, 56, 56, 37, 63, 34, 20};
constexpr int kStartNote = 67;
constexpr int kStartVelocity = 127;
constexpr std::uint16_t kPoolRecordFree = 256;
}  // namespace

MainForm::MainForm(MidiLink& link, PrefForm& pref) : link_(link), pref_(pref) {
  for (int m = kFirstMulti; m <= kLastMulti; ++m) row(m).CmdMult.caption = "Multi " + std::to_string(m);
}

void MainForm::fillLists() {
  CmbMidNtNo.addItem(" 0");
  CmbMidVel.addItem(" 0");
  for (int i = 1; i <= 127; ++i) {
    PoolFree[static_cast<std::size_t>(i)] = kPoolRecordFree;
    CmbMidNtNo.addItem(signedText(i));
    CmbMidVel.addItem(signedText(i));
  }
  PoolFree[0] = kPoolRecordFree;
  SSTab1Visible = false;
  List1Visible = false;
  for (int ch = 1; ch <= 16; ++ch)
    for (MultiRow& r : rows_) r.CmbMult.addItem(signedText(ch));
  // Receive channels at start: M5..M8 on 1, M9..M12 on 5, M13..M16 on 9.
  for (int m = kFirstMulti; m <= kLastMulti; ++m) row(m).CmbMult.setIndex(((m - kFirstMulti) / 4) * 4);
  for (int m = kFirstMulti; m <= kLastMulti; ++m) row(m).CmdMult.caption = "Multi Part M" + std::to_string(m);
  for (std::size_t i = 0; i < kSectionLengths.size(); ++i) link_.SctnLen[i] = kSectionLengths[i];
  for (std::size_t i = 0; i < kRetrieveLengths.size(); ++i) link_.RtrvLen[i] = kRetrieveLengths[i];
  CmbMidNtNo.setIndex(kStartNote);
  CmbMidVel.setIndex(kStartVelocity);
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

void MainForm::connectThru() {
  MidiService& midi = link_.midi();
  MMRESULT r = midi.midiConnect(link_.MidiInHnd, link_.MidiOutHnd);
  if (r != MMSYSERR_NOERROR) {
    link_.MidiInErr("Connect", static_cast<std::int16_t>(r));
    return;
  }
  r = midi.midiInStart(link_.MidiInHnd);
  if (r != MMSYSERR_NOERROR) link_.MidiInErr("InStart", static_cast<std::int16_t>(r));
}

void MainForm::Form_Loadx() {
  LoadingFlag = -1;
  fillLists();
  // A failed output ends the start here: the form shows with what it has, every later send
  // reports its failure.
  if (!openPorts()) return;
  connectThru();
  LoadingFlag = 0;
  Screen& screen = link_.screen();
  screen.unloadForm(FormId::Splash);
  screen.showForm(FormId::Main);
  screen.setBusy(false);
}

bool MainForm::Form_Unload() {
  Screen& screen = link_.screen();
  if (screen.messageBox(kExitQuestion, "Exit", MsgButtons::OkCancel, MsgIcon::Question) == MsgAnswer::Cancel)
    return true;
  MidiService& midi = link_.midi();
  midi.midiDisconnect(link_.MidiInHnd, link_.MidiOutHnd);  // its result tells nothing useful
  MMRESULT r = midi.midiInStop(link_.MidiInHnd);
  if (r != MMSYSERR_NOERROR) link_.MidiInErr("InStop", static_cast<std::int16_t>(r));
  if (link_.MidiInHnd != 0) {
    r = midi.midiInClose(link_.MidiInHnd);
    if (r != MMSYSERR_NOERROR) link_.MidiInErr("Close", static_cast<std::int16_t>(r));
  }
  if (link_.MidiOutHnd != 0) {
    r = midi.midiOutReset(link_.MidiOutHnd);
    if (r != MMSYSERR_NOERROR) link_.MidiOutErr("Reset", static_cast<std::int16_t>(r));
    r = midi.midiOutClose(link_.MidiOutHnd);
    if (r != MMSYSERR_NOERROR) link_.MidiOutErr("Close", static_cast<std::int16_t>(r));
  }
  return false;
}

}  // namespace tessivo
