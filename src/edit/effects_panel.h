#pragma once
// The effects panel SSTab2: the Performance's reverb, chorus and variation types, the three
// sends between them, Bypass and Reset. It works on Com2 of the Performance and the two copies
// behind it: EffRstCopy, taken at each opening, and EffBypCopy, taken when Bypass goes on.

#include <functional>

#include "data/controls.h"
#include "data/images.h"
#include "data/tables.h"
#include "edit/edit_panel.h"
#include "link/midi_link.h"

namespace tessivo {

// The rows of the effects panel's sliders in the slider map.
inline constexpr std::size_t kFirstEffectSlider = kEditSliders;  // SldEffSndCtoR, then the two Vari sends

class EffectsPanel {
 public:
  // `sliders` holds the three send sliders (the slider map's last rows); `allNotesOff` is the
  // main form's AllNtsOffSnd.
  EffectsPanel(MidiLink& link, PerfImage& image, EditPanel& sliders, std::function<void()> allNotesOff);
  EffectsPanel(const EffectsPanel&) = delete;
  EffectsPanel& operator=(const EffectsPanel&) = delete;

  bool visible = false;  // SSTab2 on the screen
  ListCtl CmbRvrb, CmbChrs, CmbVar;
  ClickCheckCtl ChkEffByPass;
  ButtonCtl CmdEffReset{"Reset"}, CmdEffDn1{"Done"};

  // Fills the three lists with the type names of their tables.
  void fillLists();
  // EditEffcts: the panel shows Com2, and Com2 becomes what Reset returns to.
  void EditEffcts_Click();
  void CmdEffReset_Click();
  void CmdEffDn1_Click();
  SliderCtl& slider(std::size_t i) { return sliders_.sliders[kFirstEffectSlider + i]; }
  TextCtl& text(std::size_t i) { return sliders_.texts[kFirstEffectSlider + i]; }

 private:
  void typeClick(ListCtl& list, std::span<const EffectType> table, std::uint8_t address);
  void ChkEffByPass_Click();
  void sendCom2(std::span<const std::uint8_t> from);
  void enableLists(bool enabled);

  MidiLink& link_;
  PerfImage& image_;
  EditPanel& sliders_;
  std::function<void()> allNotesOff_;
};

}  // namespace tessivo
