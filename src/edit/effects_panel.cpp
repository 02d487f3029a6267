#include "edit/effects_panel.h"

#include <algorithm>

#include "data/tables.h"

namespace tessivo {

namespace {
constexpr std::uint8_t kEffectHigh = 0x60;
constexpr std::uint8_t kReverbType = 0x40, kChorusType = 0x42, kVariationType = 0x44;
// Where the types stand in Com2: reverb at 9 and 10, chorus at 11 and 12, variation at 13, 14.
constexpr std::size_t kReverbAt = 9, kChorusAt = 11, kVariationAt = 13;
constexpr std::size_t kSendsAt = 29;            // the three sends, 29 to 31
constexpr std::int16_t kCom2Section = 6;        // SctnLen index of Com2
constexpr std::int16_t kBufferMode = 2;         // SndSysExData: SndBuf
constexpr std::uint8_t kThruHigh = 0x40;        // variation "THRU"
}  // namespace

EffectsPanel::EffectsPanel(MidiLink& link, PerfImage& image, EditPanel& sliders, std::function<void()> allNotesOff)
    : link_(link), image_(image), sliders_(sliders), allNotesOff_(std::move(allNotesOff)) {
  ChkEffByPass.caption = "Bypass";
  ChkEffByPass.click = [this] { ChkEffByPass_Click(); };
  CmbRvrb.click = [this] { typeClick(CmbRvrb, RvrbTbl, kReverbType); };
  CmbChrs.click = [this] { typeClick(CmbChrs, ChrsTbl, kChorusType); };
  CmbVar.click = [this] { typeClick(CmbVar, VarTbl, kVariationType); };
}

void EffectsPanel::fillLists() {
  auto fill = [](ListCtl& list, std::span<const EffectType> table) {
    list.clear();
    for (const EffectType& t : table) list.addItem(std::string(t.name));
  };
  fill(CmbRvrb, RvrbTbl);
  fill(CmbChrs, ChrsTbl);
  fill(CmbVar, VarTbl);
}

void EffectsPanel::typeClick(ListCtl& list, std::span<const EffectType> table, std::uint8_t address) {
  // The type goes to the instrument only; Com2 learns it at the next read.
  if (link_.LoadingFlag != 0 || list.index() < 0 || list.index() >= static_cast<int>(table.size())) return;
  const EffectType& row = table[static_cast<std::size_t>(list.index())];
  link_.SndSysEx(paramChange2(kModelCs2x, {kEffectHigh, 0x00, address}, row.high, row.low));
}

void EffectsPanel::EditEffcts_Click() {
  link_.LoadingFlag = -1;
  visible = true;
  const auto com2 = image_.Com2();
  auto show = [&](ListCtl& list, std::span<const EffectType> table, std::size_t at) {
    // Every matching row is selected in turn, so the last one counts; a type in no row leaves
    // the list as it was, and no selection at all becomes row 0.
    for (std::size_t i = 0; i < table.size(); ++i)
      if (com2[at] == table[i].high && com2[at + 1] == table[i].low) list.setIndex(static_cast<int>(i));
    if (list.index() < 0 || list.index() >= static_cast<int>(table.size())) list.setIndex(0);
  };
  show(CmbRvrb, RvrbTbl, kReverbAt);
  show(CmbChrs, ChrsTbl, kChorusAt);
  show(CmbVar, VarTbl, kVariationAt);
  for (std::size_t i = 0; i < 3; ++i) {
    slider(i).value = com2[kSendsAt + i];
    sliders_.Scroll(kFirstEffectSlider + i);
  }
  const auto copy = image_.EffRstCopy();
  std::copy(com2.begin(), com2.end(), copy.begin());
  link_.LoadingFlag = 0;
}

void EffectsPanel::sendCom2(std::span<const std::uint8_t> from) {
  const auto com2 = image_.Com2();
  std::copy(from.begin(), from.end(), com2.begin());
  std::copy(com2.begin(), com2.end(), link_.SndBuf.begin());
  link_.SndSysExData({}, kBufferMode, 0, kCom2Section);  // the whole bulk dump, its checksum as held
}

void EffectsPanel::enableLists(bool enabled) {
  CmbVar.enabled = CmbRvrb.enabled = CmbChrs.enabled = enabled;
}

void EffectsPanel::ChkEffByPass_Click() {
  if (ChkEffByPass.value() != 0) {
    const auto com2 = image_.Com2();
    const auto copy = image_.EffBypCopy();
    std::copy(com2.begin(), com2.end(), copy.begin());
    // Reverb and chorus to "NO EFFECT", variation to "THRU", in one send of 30 bytes.
    Bytes off = paramChange2(kModelCs2x, {kEffectHigh, 0x00, kReverbType}, 0x00, 0x00);
    for (const Bytes& m : {paramChange2(kModelCs2x, {kEffectHigh, 0x00, kChorusType}, 0x00, 0x00),
                           paramChange2(kModelCs2x, {kEffectHigh, 0x00, kVariationType}, kThruHigh, 0x00)})
      off.insert(off.end(), m.begin(), m.end());
    link_.SndSysEx(off);
    enableLists(false);
  } else {
    const auto copy = image_.EffBypCopy();
    const Bytes saved(copy.begin(), copy.end());
    sendCom2(saved);
    enableLists(true);
  }
}

void EffectsPanel::CmdEffReset_Click() {
  ChkEffByPass.setValue(0);  // a Bypass that was on is switched off first, with its send
  enableLists(true);
  const auto copy = image_.EffRstCopy();
  const Bytes saved(copy.begin(), copy.end());
  sendCom2(saved);
  EditEffcts_Click();
}

void EffectsPanel::CmdEffDn1_Click() {
  visible = false;
  if (allNotesOff_) allNotesOff_();
}

}  // namespace tessivo
