#include "perform/audition.h"

namespace tessivo {

namespace {
std::uint8_t channelByte(int channel) { return static_cast<std::uint8_t>(channel & 0x0F); }
}  // namespace

Audition::Audition(MidiLink& link, ListCtl& note, ListCtl& velocity, const LyrOnTable& layers, Hooks hooks)
    : link_(link), note_(note), velocity_(velocity), layers_(layers), hooks_(std::move(hooks)) {}

bool Audition::testNote(std::uint8_t& note, std::uint8_t& velocity) const {
  // An audition needs a note and a velocity chosen; without them there is no byte to send.
  if (note_.index() < 0 || note_.index() > 127 || velocity_.index() < 0 || velocity_.index() > 127) return false;
  note = static_cast<std::uint8_t>(note_.index());
  velocity = static_cast<std::uint8_t>(velocity_.index());
  return true;
}

void Audition::sendTransmitChannel(int channel) {
  if (hooks_.transmitAssigned && hooks_.transmitAssigned())
    link_.SndSysEx(paramChange(kModelCs2x, kAddrTransmitChannel, static_cast<std::uint8_t>(channel)));
}

Bytes Audition::layerSwitches(int layer, bool restore) const {
  Bytes m;
  for (int other = 1; other <= 4; ++other) {
    if (other == layer) continue;  // the Layer being heard keeps its state
    const auto value = restore ? static_cast<std::uint8_t>(layers_[static_cast<std::size_t>(other)]) : std::uint8_t{0};
    const Bytes change = paramChange(kModelCs2x, {0x60, static_cast<std::uint8_t>(other), 0x16}, value);
    m.insert(m.end(), change.begin(), change.end());
  }
  return m;
}

void Audition::CmdPrfm_Press() {
  std::uint8_t n, v;
  if (!testNote(n, v)) return;
  const int c = hooks_.perfChannel ? hooks_.perfChannel() : 0;
  link_.SndSysEx(Bytes{static_cast<std::uint8_t>(kNoteOn + channelByte(c)), n, v});
  sendTransmitChannel(0);
}

void Audition::CmdPrfm_Release() {
  std::uint8_t n, v;
  if (!testNote(n, v)) return;
  const int c = hooks_.perfChannel ? hooks_.perfChannel() : 0;
  link_.SndSysEx(Bytes{static_cast<std::uint8_t>(kNoteOff + channelByte(c)), n, v});
}

void Audition::CmdLyr_Press(int layer) {
  std::uint8_t n, v;
  if (layer < 1 || layer > 4 || !testNote(n, v)) return;
  const int c = hooks_.perfChannel ? hooks_.perfChannel() : 0;
  Bytes m = layerSwitches(layer, false);  // mutes and note on in one message
  m.insert(m.end(), {static_cast<std::uint8_t>(kNoteOn + channelByte(c)), n, v});
  link_.SndSysEx(m);
  sendTransmitChannel(0);
}

void Audition::CmdLyr_Release(int layer) {
  std::uint8_t n, v;
  if (layer < 1 || layer > 4 || !testNote(n, v)) return;
  const int c = hooks_.perfChannel ? hooks_.perfChannel() : 0;
  Bytes m = layerSwitches(layer, true);
  m.insert(m.end(), {static_cast<std::uint8_t>(kNoteOff + channelByte(c)), n, v});
  link_.SndSysEx(m);
}

void Audition::CmdMult_Press(int multi, int channel) {
  if (hooks_.editPanelVisible && hooks_.editPanelVisible() && hooks_.editMulti) hooks_.editMulti(multi);
  std::uint8_t n, v;
  if (channel < 0 || channel > 15 || !testNote(n, v)) return;
  link_.SndSysEx(Bytes{static_cast<std::uint8_t>(kNoteOn + channel), n, v});
  sendTransmitChannel(channel);
}

void Audition::CmdMult_Release(int, int channel) {
  std::uint8_t n, v;
  if (channel < 0 || channel > 15 || !testNote(n, v)) return;
  link_.SndSysEx(Bytes{static_cast<std::uint8_t>(kNoteOff + channel), n, v});
}

}  // namespace tessivo
