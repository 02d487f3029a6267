#include "pool/multis.h"

#include <algorithm>

#include "data/multi_template.h"

namespace tessivo {

namespace {
constexpr std::uint8_t kXgPartHigh = 0x08, kReceiveChannelAddress = 0x04;
constexpr std::int16_t kMultiSectionMode = 1;  // SndSysExData: a section of MultiImage

// Where section s of a Pool record starts: the sections stand as in LyrTmpl.
std::size_t recordSectionAt(int s) {
  std::size_t at = 0;
  for (int i = 0; i < s; ++i) at += kTemplateSectionBytes[static_cast<std::size_t>(i)];
  return at;
}
}  // namespace

std::string startCaption(int multi) { return "Multi Part M" + std::to_string(multi); }

Multis::Multis(MidiLink& link, Images& images, LayerPool& pool, EditPanel& edit)
    : link_(link), images_(images), pool_(pool), edit_(edit) {
  for (int m = kFirstMulti; m <= kLastMulti; ++m) {
    row(m).CmdMult.caption = "Multi " + std::to_string(m);
    row(m).CmbMult.click = [this, m] { CmbMult_Click(m); };
  }
}

void Multis::CmdMult_DragDrop(int multi, const std::string& source) {
  // Neither a Multi button (itself included) nor a Layer; nothing but the Pool is left.
  if (source != "LbxLyrPool") return;
  const ListBoxCtl& list = pool_.LbxLyrPool;
  const int i = list.index;
  if (i < 0 || i >= static_cast<int>(list.items.size())) return;
  const int part = multi - 1;
  const std::string caption = nameOfTen(list.items[static_cast<std::size_t>(i)]) + multiSuffix(multi);
  row(multi).CmdMult.caption = caption;
  const bool m5 = multi == kFirstMulti;
  if (!m5 && edit_.EdtPart == part) edit_.setName(caption);
  PoolToMlt(part, list.itemData[static_cast<std::size_t>(i)]);
  if (m5 && edit_.EdtPart == part) {
    edit_.setName(caption);
    edit_.LdEdtPanel();  // M5 reloads its panel even while the panel is hidden
  }
  if (edit_.visible) edit_.EditMult_Click(multi);
}

void Multis::PoolToMlt(int part, int record) {
  if (record < 0 || record >= kPoolRecords) return;
  const auto p = static_cast<std::size_t>(part);
  const int c = std::max(row(part + 1).CmbMult.index(), 0);
  const auto& body = pool_.Pool[static_cast<std::size_t>(record)].body;
  for (int s = 0; s < kTemplateSections; ++s) {
    auto section = images_.multi.section(p, static_cast<std::size_t>(s));
    const auto n = static_cast<std::size_t>(link_.SctnLen[static_cast<std::size_t>(s)]);
    const auto from = body.begin() + static_cast<std::ptrdiff_t>(recordSectionAt(s));
    std::copy(from, from + static_cast<std::ptrdiff_t>(std::min(n, kTemplateSectionBytes[static_cast<std::size_t>(s)])),
              section.begin());
    section[kPartByteAt] = static_cast<std::uint8_t>(part);
    if (s == 0) section[kReceiveChannelAt] = static_cast<std::uint8_t>(c);
    link_.SndSysExData({}, kMultiSectionMode, static_cast<std::int16_t>(part), static_cast<std::int16_t>(s));
  }
}

void Multis::CmbMult_Click(int multi) {
  if (link_.LoadingFlag != 0) return;
  const int channel = std::max(row(multi).CmbMult.index(), 0);
  link_.SndSysEx(paramChange(kModelXg, {kXgPartHigh, static_cast<std::uint8_t>(multi - 1), kReceiveChannelAddress},
                             static_cast<std::uint8_t>(channel)));
}

void Multis::InitMlt(int part) {
  const auto p = static_cast<std::size_t>(part);
  for (int s = 0; s < kTemplateSections; ++s) {
    const auto defaults = defaultSection(s);
    auto section = images_.multi.section(p, static_cast<std::size_t>(s));
    const auto n = std::min(static_cast<std::size_t>(link_.SctnLen[static_cast<std::size_t>(s)]), defaults.size());
    std::copy(defaults.begin(), defaults.begin() + static_cast<std::ptrdiff_t>(n), section.begin());
    section[kPartByteAt] = static_cast<std::uint8_t>(part);
    if (s == 0) section[kReceiveChannelAt] = static_cast<std::uint8_t>(part);
    link_.SndSysExData({}, kMultiSectionMode, static_cast<std::int16_t>(part), static_cast<std::int16_t>(s));
  }
  row(part + 1).CmbMult.setIndex(part);  // its click sends the channel unless loading
  if (edit_.visible) edit_.EditMult_Click(part + 1);
}

void Multis::InitMlt_Click(int multi) {
  InitMlt(multi - 1);
  row(multi).CmdMult.caption = startCaption(multi);
}

void Multis::InitMltall_Click() {
  Screen& screen = link_.screen();
  screen.setBusy(true);
  for (int part = kFirstMulti - 1; part <= kLastMulti - 1; ++part) InitMlt(part);
  for (int m = kFirstMulti; m <= kLastMulti; ++m) row(m).CmdMult.caption = startCaption(m);
  screen.setBusy(false);
}

}  // namespace tessivo
