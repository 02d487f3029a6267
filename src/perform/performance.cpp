#include "perform/performance.h"

#include "data/tables.h"
#include "link/numtext.h"

namespace tessivo {

namespace {
constexpr const char* kLayerLetters = "ABCD";
constexpr const char* kLayerOffText = "         ";  // nine blanks
}  // namespace

std::uint8_t bankLsb(bool user, bool bank2) {
  return static_cast<std::uint8_t>(0x40 + (user ? 1 : 0) + (bank2 ? 2 : 0));
}

Performance::Performance(MidiLink& link, PerfImage& image, PerfPanel& panel, Hooks hooks)
    : link_(link), image_(image), panel_(panel), hooks_(std::move(hooks)) {
  panel_.CmbPrgm.click = [this] { CmbPrgm_Click(); };
}

void Performance::fillPresetNames(bool bank2) {
  panel_.CmbPrgm.clear();
  for (std::string_view name : bank2 ? PrfNames2 : PrfNames1) panel_.CmbPrgm.addItem(std::string(name));
}

void Performance::fillUserNumbers() {
  panel_.CmbPrgm.clear();
  for (int i = 0; i < 128; ++i) panel_.CmbPrgm.addItem(signedText(i + 1));
}

void Performance::OptPreset_Click() {
  panel_.OptPreset = true;
  panel_.OptUser = false;
  fillPresetNames(!panel_.OptBank1);
}

void Performance::OptUser_Click() {
  panel_.OptUser = true;
  panel_.OptPreset = false;
  fillUserNumbers();
}

void Performance::OptBank1_Click() {
  panel_.OptBank1 = true;
  panel_.OptBank2 = false;
  if (panel_.OptPreset) fillPresetNames(false);
}

void Performance::OptBank2_Click() {
  panel_.OptBank2 = true;
  panel_.OptBank1 = false;
  if (panel_.OptPreset) fillPresetNames(true);
}

void Performance::CmbPrgm_Click() {
  Screen& screen = link_.screen();
  screen.setBusy(true);
  int program = panel_.CmbPrgm.index();
  if (program < 0 || program > 127) program = 0;
  const std::uint8_t lsb = bankLsb(panel_.OptUser, !panel_.OptBank1);
  SndPrfChanZero();
  // Bank Select MSB and LSB, a lone 00, Program Change: nine bytes on channel 1.
  link_.SndSysEx(Bytes{kControlChange, kCtlBankMsb, kBankMsb, kControlChange, kCtlBankLsb, lsb, 0x00, kProgramChange,
                         static_cast<std::uint8_t>(program)});
  DspPerf();
  if (hooks_.effectsVisible && hooks_.effectsVisible() && hooks_.editEffects) hooks_.editEffects();
  screen.setBusy(false);
}

void Performance::DspPerf() {
  SndPrfChanZero();
  link_.List1.clear();
  for (const PerfBlock& block : kPerfBlocks) link_.RtrvBlock(block.kind, 0, 0);
  showPerformance();
  ChngPrfMidiChan();
}

void Performance::showPerformance() {
  panel_.CmdPrfm.caption = image_.perfName();
  readLayerSwitches(image_, LyrOnTbl);
  for (int n = 1; n <= 4; ++n) {
    const auto i = static_cast<std::size_t>(n - 1);
    const bool on = LyrOnTbl[static_cast<std::size_t>(n)] == 1;
    panel_.CmdLyr[i].enabled = on;
    panel_.TxtLyr[i].enabled = on;
    panel_.TxtLyr[i].text = on ? panel_.CmdPrfm.caption + kLayerLetters[i] : kLayerOffText;
  }
}

void Performance::SndPrfChan() {
  const int channel = hooks_.perfChannel ? hooks_.perfChannel() : 0;
  link_.SndSysEx(paramChange(kModelCs2x, kAddrPerfChannel, static_cast<std::uint8_t>(channel)));
}

void Performance::SndPrfChanZero() { link_.SndSysEx(paramChange(kModelCs2x, kAddrPerfChannel, 0)); }

void Performance::ChngPrfMidiChan() {
  const int channel = hooks_.perfChannel ? hooks_.perfChannel() : 0;
  image_.Com0()[PerfImage::kPerfChannelAt] = static_cast<std::uint8_t>(channel);
  SndPrfChan();
}

}  // namespace tessivo
