#pragma once
// The edit panel SSTab1: one Multi Part (EdtPart) on three pages of sliders, options, a voice
// by number and a name. Every control writes MultiImage and sends to the instrument the moment
// the user acts; there is no apply and no undo. The three sliders of the effects panel work on
// Com2 of the Performance by the same map.

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "data/controls.h"
#include "data/images.h"
#include "edit/slider_map.h"
#include "link/midi_link.h"

namespace tessivo {

inline constexpr std::size_t kVarSendRow = 15;  // SldEffVar: only M5 has a variation send here

// The name a caption takes from a text: its first ten characters, blanks filling up to ten.
// Characters, not bytes: a name typed with accents is never cut inside a character.
std::string nameOfTen(const std::string& text);
// The suffix of a Multi's caption: " M5" .. " M16".
std::string multiSuffix(int multi);

// A voice box's number: the floor of a decimal number from 0 to 127; nothing for any other text.
std::optional<std::uint8_t> voiceByte(const std::string& text);

class EditPanel {
 public:
  // The button of Multi `multi` (5..16), whose caption holds the part's name.
  using MultiButton = std::function<ButtonCtl&(int multi)>;

  EditPanel(MidiLink& link, Images& images, MultiButton button);
  EditPanel(const EditPanel&) = delete;
  EditPanel& operator=(const EditPanel&) = delete;

  // The part the panel shows, 4..15 once one has been opened (0 before).
  std::int16_t EdtPart = 0;
  bool visible = false;  // SSTab1 on the screen

  // One slider and one text box for each row of kSliderMap, in its order.
  std::array<SliderCtl, kSliderRows> sliders;
  std::array<TextCtl, kSliderRows> texts;

  TextCtl TxtMsb, TxtLsb, TxtPrg;
  ButtonCtl CmdVocChng{"Change"};
  TextCtl TxtName1;
  std::array<TextCtl, 2> Label34;  // the part's caption on pages 2 and 3
  ClickCheckCtl ChckPort;
  OptionGroupCtl Option1, Option2, Option3;  // Same Note Key On Assign, Mono/Poly, Part Mode

  // The slider of that name; a name that is no slider of the map throws.
  SliderCtl& slider(std::string_view control);

  // The user moves a slider (its value already set): the text box follows, nothing is sent.
  void Scroll(std::size_t row);
  // The user lets go of a slider: its byte(s) are stored and its message goes out, even when
  // the value did not change.
  void MouseUp(std::size_t row);
  // The text of the name box changed, by the user or by code.
  void setName(const std::string& text);
  void TxtName1_Change();
  void CmdVocChng_Click();
  // EditMult5..EditMult16: the panel opens Multi `multi`.
  void EditMult_Click(int multi);
  // Loads every control from the image of EdtPart.
  void LdEdtPanel();
  // CmdDone1, CmdDone2(0), CmdDone2(1): the panel hides, nothing else changes.
  void Done() { visible = false; }

 private:
  std::span<std::uint8_t> sectionOf(const SliderRow& row);
  void storeAndSend(int section, std::size_t offset, std::uint8_t address, int value);

  MidiLink& link_;
  Images& images_;
  MultiButton button_;
};

}  // namespace tessivo
