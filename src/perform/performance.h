#pragma once
// Which Performance the instrument plays and how it shows: the bank options, the program
// list, DspPerf that reads the Performance back and shows its name and Layers, and the
// performance channel that brackets every read.

#include <array>
#include <functional>

#include "data/images.h"
#include "link/midi_link.h"
#include "data/controls.h"

namespace tessivo {

// The Performance block of the main form.
struct PerfPanel {
  bool OptPreset = true, OptUser = false;  // option pair: bank type
  bool OptBank1 = true, OptBank2 = false;  // option pair: bank
  ListCtl CmbPrgm;
  ButtonCtl CmdPrfm;
  std::array<ButtonCtl, 4> CmdLyr{{{"Layer1"}, {"Layer2"}, {"Layer3"}, {"Layer4"}}};
  std::array<TextCtl, 4> TxtLyr;
};

inline constexpr std::uint8_t kBankMsb = 0x3F;
// Bank Select LSB: Preset 0x40/0x42, User 0x41/0x43 for Bank1/Bank2.
std::uint8_t bankLsb(bool user, bool bank2);

class Performance {
 public:
  struct Hooks {
    std::function<int()> perfChannel;      // list index of cmbPerfChnl, 0..15
    std::function<bool()> effectsVisible;  // the effects panel is on the screen
    std::function<void()> editEffects;     // refills the effects panel
  };

  Performance(MidiLink& link, PerfImage& image, PerfPanel& panel, Hooks hooks);

  // Option clicks: they fill CmbPrgm and send nothing.
  void OptPreset_Click();
  void OptUser_Click();
  void OptBank1_Click();
  void OptBank2_Click();
  // The list's click: Bank Select and Program Change, then DspPerf.
  void CmbPrgm_Click();
  // Reads the eight Performance blocks and shows them.
  void DspPerf();
  // Name and Layers from the image (also after a file load).
  void showPerformance();

  void SndPrfChan();
  void SndPrfChanZero();
  // Stores the channel of cmbPerfChnl in Com0 and sends it.
  void ChngPrfMidiChan();

  LyrOnTable LyrOnTbl{};

 private:
  void fillPresetNames(bool bank2);
  void fillUserNumbers();

  MidiLink& link_;
  PerfImage& image_;
  PerfPanel& panel_;
  Hooks hooks_;
};

}  // namespace tessivo
