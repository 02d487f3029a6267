#include "edit/edit_panel.h"

#include <cmath>

#include "data/multi_template.h"
#include "link/numtext.h"

namespace tessivo {

namespace {
constexpr std::size_t kNameLength = 10;
constexpr int kFirstEditPart = kFirstMulti - 1, kLastEditPart = kLastMulti - 1;

// The check box and the option groups: a byte of section 0 or 1, sent by address.
struct OptionField {
  int section;
  std::size_t offset;
  std::uint8_t address;
};
constexpr OptionField kPortamento{1, 64, 0x67};
constexpr OptionField kSameNoteAssign{0, 15, 0x06};  // Option1
constexpr OptionField kMonoPoly{0, 14, 0x05};        // Option2
constexpr OptionField kPartMode{0, 16, 0x07};        // Option3
constexpr std::uint8_t kXgPartHigh = 0x08;
constexpr std::uint8_t kVoiceAddress = 0x01;  // bank MSB; LSB and program follow

// The text boxes are set after all sliders, in this order.
constexpr std::array<std::string_view, kEditSliders> kScrollOrder{
    "SldEqTFreq",  "SldEqTGain",    "SldEqBFreq",    "SldEqBGain",  "SldEqHPF",      "SldEqFiltrFreq", "SldEqFltrRes",
    "SldEgAttk",   "SldEgDcay",     "SldEgRles",     "SldLvVol",    "SldLvPan",      "SldEffDry",      "SldEffChorus",
    "SldEffRvrb",  "SldEffVar",     "SldLfoRate",    "SldLfoDepth", "SldLfoDelay",   "SldPegAtck",     "SldPegInit",
    "SldPegRlsLev", "SldPegRlsTime", "SldPortTime",  "SldVelSnsDpth", "SldVelSnsOfst", "SldVelLmtLo",  "SldVelLmtHi",
    "SldNtShft",   "SldNtLmLo",     "SldNtLmHi",     "SldNtDtn"};

// Length of the UTF-8 character that starts with `lead`.
std::size_t charBytes(unsigned char lead) {
  if (lead >= 0xF0) return 4;
  if (lead >= 0xE0) return 3;
  if (lead >= 0xC0) return 2;
  return 1;
}
}  // namespace

std::string nameOfTen(const std::string& text) {
  std::string name;
  std::size_t chars = 0, at = 0;
  while (chars < kNameLength && at < text.size()) {
    const std::size_t n = std::min(charBytes(static_cast<unsigned char>(text[at])), text.size() - at);
    name.append(text, at, n);
    at += n;
    ++chars;
  }
  name.append(kNameLength - chars, ' ');
  return name;
}

std::string multiSuffix(int multi) { return " M" + std::to_string(multi); }

std::optional<std::uint8_t> voiceByte(const std::string& text) {
  const auto value = decimalNumber(text);
  if (!value) return std::nullopt;
  const double whole = std::floor(*value);  // 12.9 passes as 12, -0.5 fails as -1
  if (whole < 0 || whole > 127) return std::nullopt;
  return static_cast<std::uint8_t>(whole);
}

EditPanel::EditPanel(MidiLink& link, Images& images, MultiButton button)
    : link_(link), images_(images), button_(std::move(button)) {
  for (std::size_t i = 0; i < kSliderRows; ++i) {
    sliders[i].min = kSliderMap[i].min;
    sliders[i].max = kSliderMap[i].max;
    sliders[i].value = std::clamp(0, sliders[i].min, sliders[i].max);
  }
  ChckPort.caption = "On/Off";
  Option1.frame = "Same Note No. Key On Assign";
  Option1.captions = {"Single", "Multi", "Inst"};
  Option2.frame = "Mono/Poly Mode";
  Option2.captions = {"Mono", "Poly"};
  Option3.frame = "Part Mode";
  Option3.captions = {"Norm", "Drum", "Drum1", "Drum2"};
  ChckPort.click = [this] { storeAndSend(kPortamento.section, kPortamento.offset, kPortamento.address, ChckPort.value()); };
  auto optionClick = [this](OptionGroupCtl& group, OptionField field) {
    return [this, &group, field] {
      if (group.index() >= 0) storeAndSend(field.section, field.offset, field.address, group.index());
    };
  };
  Option1.click = optionClick(Option1, kSameNoteAssign);
  Option2.click = optionClick(Option2, kMonoPoly);
  Option3.click = optionClick(Option3, kPartMode);
}

SliderCtl& EditPanel::slider(std::string_view control) { return sliders[sliderRow(control).value()]; }

std::span<std::uint8_t> EditPanel::sectionOf(const SliderRow& row) {
  if (row.section < 0) return images_.perf.Com2();
  return images_.multi.section(static_cast<std::size_t>(EdtPart), static_cast<std::size_t>(row.section));
}

void EditPanel::storeAndSend(int section, std::size_t offset, std::uint8_t address, int value) {
  const auto byte = static_cast<std::uint8_t>(value & 0x7F);
  images_.multi.section(static_cast<std::size_t>(EdtPart), static_cast<std::size_t>(section))[offset] = byte;
  link_.SndSysEx(paramChange(kModelXg, {kXgPartHigh, static_cast<std::uint8_t>(EdtPart), address}, byte));
}

void EditPanel::Scroll(std::size_t row) {
  texts[row].text = familyText(kSliderMap[row].family, sliders[row].value);
}

void EditPanel::MouseUp(std::size_t row) {
  const SliderRow& r = kSliderMap[row];
  const int value = sliders[row].value;
  storeValue(r, sectionOf(r), value);
  link_.SndSysEx(sliderMessage(r, static_cast<std::uint8_t>(EdtPart), value));
}

void EditPanel::setName(const std::string& text) {
  if (text == TxtName1.text) return;  // no change, no change event
  TxtName1.text = text;
  TxtName1_Change();
}

void EditPanel::TxtName1_Change() {
  if (EdtPart < kFirstEditPart || EdtPart > kLastEditPart) return;
  const int multi = EdtPart + 1;
  const std::string caption = nameOfTen(TxtName1.text) + multiSuffix(multi);
  button_(multi).caption = caption;
  for (TextCtl& label : Label34) label.text = caption;
}

void EditPanel::CmdVocChng_Click() {
  // Each box in turn; the first that is no voice byte ends the click without a word.
  std::array<std::uint8_t, 3> voice{};
  const std::array<const TextCtl*, 3> boxes{&TxtMsb, &TxtLsb, &TxtPrg};
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    const auto b = voiceByte(boxes[i]->text);
    if (!b) return;
    voice[i] = *b;
  }
  auto s0 = images_.multi.section(static_cast<std::size_t>(EdtPart), 0);
  Bytes buffer;
  for (std::size_t i = 0; i < voice.size(); ++i) {
    s0[kVoiceAt + i] = voice[i];
    const Bytes m = paramChange(kModelXg,
                                {kXgPartHigh, static_cast<std::uint8_t>(EdtPart), static_cast<std::uint8_t>(kVoiceAddress + i)},
                                voice[i]);
    buffer.insert(buffer.end(), m.begin(), m.end());
  }
  link_.SndSysEx(buffer);  // the three messages as one send of 27 bytes
}

void EditPanel::EditMult_Click(int multi) {
  EdtPart = static_cast<std::int16_t>(multi - 1);
  setName(button_(multi).caption);
  LdEdtPanel();
  const bool m5 = multi == kFirstMulti;
  sliders[kVarSendRow].enabled = m5;
  texts[kVarSendRow].enabled = m5;
  visible = true;
}

void EditPanel::LdEdtPanel() {
  // Sliders take their values without a sound: code raises none of their events.
  auto loadPage = [this](int page) {
    for (std::size_t i = 0; i < kEditSliders; ++i)
      if (kSliderMap[i].page == page) sliders[i].value = loadValue(kSliderMap[i], sectionOf(kSliderMap[i]));
  };
  const auto part = static_cast<std::size_t>(EdtPart);
  auto s0 = images_.multi.section(part, 0);
  loadPage(1);
  TxtMsb.text = std::to_string(s0[kVoiceAt]);
  TxtLsb.text = std::to_string(s0[kVoiceAt + 1]);
  TxtPrg.text = std::to_string(s0[kVoiceAt + 2]);
  loadPage(2);
  // The check box and the options run their clicks where their state changes, and send the
  // byte of the image to the part just opened.
  ChckPort.setValue(images_.multi.section(part, kPortamento.section)[kPortamento.offset] ? 1 : 0);
  loadPage(3);
  Option1.setIndex(s0[kSameNoteAssign.offset]);
  Option2.setIndex(s0[kMonoPoly.offset]);
  Option3.setIndex(s0[kPartMode.offset]);
  if (EdtPart >= kFirstEditPart && EdtPart <= kLastEditPart) {
    const std::string caption = button_(EdtPart + 1).caption;
    setName(caption);
    for (TextCtl& label : Label34) label.text = caption;
  }
  for (std::string_view control : kScrollOrder) Scroll(*sliderRow(control));
}

}  // namespace tessivo
