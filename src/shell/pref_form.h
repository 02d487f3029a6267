#pragma once
// frmPref, the Startup Preferences: MIDI devices, the Multis fetched at start or a Workspace
// loaded instead, the performance channel and the density of exported MIDI files. It stays
// loaded for the whole run; its controls are the live settings that other forms read.

#include <array>
#include <functional>
#include <string>

#include "link/midi_link.h"
#include "data/controls.h"
#include "shell/prefs.h"

namespace tessivo {

class PrefForm {
 public:
  static constexpr const char* kCaption = "Tessivo Startup Preferences";
  static constexpr const char* kLabel1 = "Retrieve data from CS2x at start of program? For:";
  static constexpr const char* kLabel1Tip =
      "Each Multi requires about 3 seconds to retrieve. In order to achieve the quickest program load, unless you "
      "check the box associated with the Multi on this channel the Multi will be initialized at startup.";
  static constexpr const char* kLabel2 = "(Else Multis are initialized to minimize startup time)";
  static constexpr const char* kLabel3 = "        Load an existing Tessivo Workspace at startup?";
  static constexpr const char* kWorkspaceFilter = "Tessivo Workspace (*.tvw)|*.tvw";

  explicit PrefForm(MidiLink& link);

  // The load event: device lists (input first), the channel list, then the stored record.
  void Form_Load();
  void LdPrefs();
  void SvPrefs();
  void CmdBrowse_Click();

  CheckCtl& ChkMlt(int multi) { return ChkMlt_[static_cast<std::size_t>(multi - kFirstMulti)]; }  // Multi 5..16
  const CheckCtl& ChkMlt(int multi) const { return ChkMlt_[static_cast<std::size_t>(multi - kFirstMulti)]; }
  // The path of TxtLdFile as a file name: the blanks that fill the stored field are no part of it.
  std::string workspacePath() const;

  CheckCtl ChkLdFile{"Check1"};
  TextCtl TxtLdFile;
  ButtonCtl CmdBrowse{"Browse"};
  ListCtl Combo1;       // MIDI In Device
  ListCtl Combo2;       // MIDI Out Device
  ListCtl cmbPerfChnl;  // performance MIDI channel, index 0..15; its click is set by the owner
  SliderCtl Slider1{0, 0, 3};  // MIDI file density
  ButtonCtl OKButton{"OK"};

  std::string prefsPath = defaultPrefsPath();

 private:
  MidiLink& link_;
  std::array<CheckCtl, kMultiRows> ChkMlt_;
};

}  // namespace tessivo
