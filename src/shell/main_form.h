#pragma once
// The main form CS2x: its controls as data, the start-up routine Form_Loadx that opens the
// ports and fills the form, and Form_Unload, the exit question and the closing of the ports.

#include <array>
#include <cstdint>

#include "link/midi_link.h"
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

class MainForm {
 public:
  static constexpr const char* kCaption = "CS2x Tessivo";
  static constexpr const char* kExitQuestion = "Do you really want to exit program?";

  MainForm(MidiLink& link, PrefForm& pref);

  MultiRow& row(int multi) { return rows_[static_cast<std::size_t>(multi - kFirstMulti)]; }
  const MultiRow& row(int multi) const { return rows_[static_cast<std::size_t>(multi - kFirstMulti)]; }

  // Runs once, from the start timer, while the splash stands on the screen.
  void Form_Loadx();
  // The exit question; returns true when the user cancelled and the program runs on.
  bool Form_Unload();

  std::int16_t LoadingFlag = 0;  // -1 (0xFFFF) while the form fills
  ListCtl CmbMidNtNo, CmbMidVel;  // the test note and its velocity
  bool SSTab1Visible = true, SSTab2Visible = false, List1Visible = true;
  std::array<std::uint16_t, 129> PoolFree{};  // 256 free, 0 in use

 private:
  void fillLists();
  bool openPorts();
  void connectThru();

  MidiLink& link_;
  PrefForm& pref_;
  std::array<MultiRow, kMultiRows> rows_;
};

}  // namespace tessivo
