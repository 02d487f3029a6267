#pragma once
// The main form CS2x: its controls as data, the start-up routine Form_Loadx, the Retrieve and
// Midi menus, the manual parameter fields, and Form_Unload with the exit question.

#include <array>
#include <cstdint>
#include <optional>

#include "data/images.h"
#include "data/multi_template.h"
#include "link/midi_link.h"
#include "perform/audition.h"
#include "perform/performance.h"
#include "data/controls.h"
#include "edit/edit_panel.h"
#include "edit/effects_panel.h"
#include "files/files.h"
#include "files/load_aid.h"
#include "pool/layer_pool.h"
#include "pool/multis.h"
#include "shell/pref_form.h"

namespace tessivo {

// A manual field's number as one byte: the whole-number part of a decimal number 0..255.
// Nothing for a text that is no such number.
std::optional<std::uint8_t> fieldByte(const std::string& text);

class MainForm {
 public:
  static constexpr const char* kCaption = "CS2x Tessivo";
  static constexpr const char* kExitQuestion = "Do you really want to exit program?";
  static constexpr const char* kStartupWrongType =
      "Sorry, You have chosen a file of the wrong type to be loaded at startup. The Workspace will be initialized.";

  MainForm(MidiLink& link, PrefForm& pref);
  MainForm(const MainForm&) = delete;
  MainForm& operator=(const MainForm&) = delete;

  MultiRow& row(int multi) { return multis_.row(multi); }
  const MultiRow& row(int multi) const { return multis_.row(multi); }
  Multis& multis() { return multis_; }
  EditPanel& edit() { return edit_; }
  EffectsPanel& effects() { return effects_; }
  Files& files() { return files_; }
  LoadAid& loadAid() { return loadAid_; }
  Images& images() { return images_; }
  Performance& performance() { return perf_; }
  LayerPool& pool() { return pool_; }
  Audition& audition() { return audition_; }

  // A drop on one of the form's controls (`target` its name) of a drag from `source` (the
  // source control's name, empty for another program's drag). Every drop first stops all
  // notes; the Layer Pool takes Layers and Multis, a Multi button a Pool entry.
  void DragDrop(const std::string& target, const std::string& source);
  // Sliders beside the test note lists: a move sets the list (position = 127 - index).
  void SldNt_Scroll();
  void SldVel_Scroll();

  // Runs once, from the start timer, while the splash stands on the screen.
  void Form_Loadx();
  // The exit question; returns true when the user cancelled and the program runs on.
  bool Form_Unload();
  // The closing of the exit: thru off, input stopped and closed, output reset and closed, in
  // that order, each failure in its box when `report`. Runs once; nothing is sent or saved.
  void ClosePorts(bool report);

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
  // Debug menu: the log and the manual fields on and off; a SysEx file listed as text.
  void WinOn_Click() { showDebugRow(true); }
  void WinOff_Click() { showDebugRow(false); }
  void LdSysEx_Click();
  void SySxTxtDump();
  // Load, Load Aid: both panels hide and the Load Aid shows.
  void LdAidSub_Click();

  PerfPanel panel;                // the Performance block
  ListCtl CmbMidNtNo, CmbMidVel;  // the test note and its velocity
  SliderCtl SldNt{60, 0, 127}, SldVel{0, 0, 127};
  bool List1Visible = true;
  bool DebugButtonsVisible = false;  // CmdRtrvParm, CmdChngParm, CmdChngCntl
  LyrTemplate LyrTmpl;

 private:
  void fillStartLists();
  bool openPorts();
  bool startupWorkspace();
  void showDebugRow(bool visible);
  void fillMultis();

  MidiLink& link_;
  PrefForm& pref_;
  Images images_;
  Performance perf_;
  LayerPool pool_;
  Audition audition_;
  EditPanel edit_;
  EffectsPanel effects_;
  Multis multis_;
  Files files_;
  LoadAid loadAid_{files_};
  bool portsClosed_ = false;
};

}  // namespace tessivo
