#pragma once
// The main form CS2x: its controls as data, the start-up routine Form_Loadx, the Retrieve and
// Midi menus, the manual parameter fields, and Form_Unload with the exit question.

#include <array>
#include <cstdint>
#include <optional>

#include "data/images.h"
#include "link/midi_link.h"
#include "perform/performance.h"
#include "shell/controls.h"
#include "shell/pref_form.h"

namespace tessivo {

inline constexpr int kFirstMulti = 5;  // Multis are numbered 5 to 16; the part index is M - 1
inline constexpr int kLastMulti = 16;
inline constexpr int kMultiRows = kLastMulti - kFirstMulti + 1;

struct MultiRow {
  ButtonCtl CmdMult;  // its caption holds the Multi's name
  ListCtl CmbMult;    // receive channel, index 0..15
};

// A manual field's number as one byte: the whole-number part of a decimal number 0..255.
// Nothing for a text that is no such number.
std::optional<std::uint8_t> fieldByte(const std::string& text);

class MainForm {
 public:
  static constexpr const char* kCaption = "CS2x Tessivo";
  static constexpr const char* kExitQuestion = "Do you really want to exit program?";

  MainForm(MidiLink& link, PrefForm& pref);
  MainForm(const MainForm&) = delete;
  MainForm& operator=(const MainForm&) = delete;

  MultiRow& row(int multi) { return rows_[static_cast<std::size_t>(multi - kFirstMulti)]; }
  const MultiRow& row(int multi) const { return rows_[static_cast<std::size_t>(multi - kFirstMulti)]; }
  Images& images() { return images_; }
  Performance& performance() { return perf_; }

  // Runs once, from the start timer, while the splash stands on the screen.
  void Form_Loadx();
  // The exit question; returns true when the user cancelled and the program runs on.
  bool Form_Unload();

  // Tables and lists that the start fills.
  void FillLists();

  // Retrieve menu.
  void RtrvPerf_Click();
  void RtrvAllMulti_Click();
  void RtrvMulti_Click(int multi);

  // Midi menu and the commands to the whole instrument.
  void AllNtsOff_Click();
  void AllNtsOffSnd();
  void LocalOff_Click();
  void ArpOff_Click();
  void TrnsChnlAssgn_Click();
  bool LocalOffChecked = false, ArpOffChecked = false, TrnsChnlAssgnChecked = false;

  // The manual fields (hidden debug row): model, and four bytes.
  std::array<TextCtl, 5> TxtParm{{{"76", true, false}, {"0", true, false}, {"0", true, false}, {"0", true, false},
                                  {"0", true, false}}};
  void CmdChngCntl_Click();
  void CmdChngParm_Click();
  void CmdRtrvParm_Click();

  PerfPanel panel;                // the Performance block
  ListCtl CmbMidNtNo, CmbMidVel;  // the test note and its velocity
  ListCtl CmbRvrb, CmbChrs, CmbVar;  // effect types of the effects panel
  bool SSTab1Visible = true, SSTab2Visible = false, List1Visible = true;
  std::array<std::uint16_t, 129> PoolFree{};  // 256 free, 0 in use

 private:
  void fillStartLists();
  bool openPorts();
  void connectThru();
  void readMultis();

  MidiLink& link_;
  PrefForm& pref_;
  Images images_;
  Performance perf_;
  std::array<MultiRow, kMultiRows> rows_;
};

}  // namespace tessivo
