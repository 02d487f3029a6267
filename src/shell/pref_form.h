#pragma once
// frmPref, the Startup Preferences: the MIDI device lists and OK. It stays loaded for the
// whole run; its controls are the live settings that the main form reads.

#include "link/midi_link.h"
#include "shell/controls.h"

namespace tessivo {

class PrefForm {
 public:
  static constexpr const char* kCaption = "Tessivo Startup Preferences";

  explicit PrefForm(MidiLink& link) : link_(link) {}

  // The load event: device lists input first, then output, each at index 0.
  void Form_Load();

  ListCtl Combo1;  // MIDI In Device
  ListCtl Combo2;  // MIDI Out Device
  ButtonCtl OKButton{"OK"};

 private:
  MidiLink& link_;
};

}  // namespace tessivo
