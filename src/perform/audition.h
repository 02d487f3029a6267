#pragma once
// Hearing what a button stands for while the mouse is held on it: the whole Performance, one
// Layer with the other three muted, or a Multi Part with all that shares its channel.

#include <functional>

#include "data/images.h"
#include "link/midi_link.h"
#include "data/controls.h"

namespace tessivo {

class Audition {
 public:
  struct Hooks {
    std::function<int()> perfChannel;        // cmbPerfChnl, 0..15
    std::function<bool()> transmitAssigned;  // the TrnsChnlAssgn check mark
    std::function<bool()> editPanelVisible;  // the edit panel is on the screen
    std::function<void(int multi)> editMulti;  // the panel goes over to this Multi
  };

  Audition(MidiLink& link, ListCtl& note, ListCtl& velocity, const LyrOnTable& layers, Hooks hooks);

  void CmdPrfm_Press();
  void CmdPrfm_Release();
  void CmdLyr_Press(int layer);  // 1..4
  void CmdLyr_Release(int layer);
  // A Multi button: the note on its own channel (list index of its CmbMult). The drag that
  // follows ends the note with the drop's AllNtsOffSnd.
  void CmdMult_Press(int multi, int channel);
  // A release that reaches the Multi button itself.
  void CmdMult_Release(int multi, int channel);

  // The two test note lists and their sliders mirror each other (position = 127 - index).
  static int sliderPosition(int index) { return index < 0 ? 0 : 127 - index; }
  static int listIndex(int position) { return position < 0 ? 0 : (position > 127 ? 0 : 127 - position); }

 private:
  bool testNote(std::uint8_t& note, std::uint8_t& velocity) const;
  Bytes layerSwitches(int layer, bool restore) const;
  void sendTransmitChannel(int channel);

  MidiLink& link_;
  ListCtl& note_;
  ListCtl& velocity_;
  const LyrOnTable& layers_;
  Hooks hooks_;
};

}  // namespace tessivo
