#include "shell/pref_form.h"

#include <algorithm>

namespace tessivo {

PrefForm::PrefForm(MidiLink& link) : link_(link) {
  for (int m = kFirstMulti; m <= kLastMulti; ++m) ChkMlt(m).caption = "Multi " + std::to_string(m);
}

void PrefForm::Form_Load() {
  link_.ListInDevs([this](const std::string& name) { Combo1.addItem(name); });
  link_.ListOutDevs([this](const std::string& name) { Combo2.addItem(name); });
  Combo2.setIndex(0);
  Combo1.setIndex(0);
  for (int i = 1; i <= 16; ++i) cmbPerfChnl.addItem(signedText(i));
  cmbPerfChnl.setIndex(0);
  LdPrefs();
}

void PrefForm::LdPrefs() {
  const auto record = readPrefsRecord(prefsPath);
  if (!record) return;  // no record yet: the defaults stand, and OK writes them
  const PrefsRecord& r = *record;
  for (int m = kFirstMulti; m <= kLastMulti; ++m) ChkMlt(m).value = r[kPrefMultiChecks + static_cast<std::size_t>(m - kFirstMulti)];
  // A device that is no longer in the list falls back to the first one.
  auto device = [](ListCtl& list, int index) {
    list.setIndex(index < static_cast<int>(list.items.size()) ? index : 0);
  };
  device(Combo1, r[kPrefInDevice]);
  device(Combo2, r[kPrefOutDevice]);
  ChkLdFile.value = r[kPrefLoadFile];
  std::string path(reinterpret_cast<const char*>(r.data() + kPrefFilePath), kPrefFilePathBytes);
  path = path.substr(0, path.find('\0'));  // a zero byte ends the text
  TxtLdFile.text = path;
  std::int16_t density = recordWord(r, kPrefDensity);
  if (density < 0 || density > 7) density = 0;
  Slider1.value = std::min<int>(density, Slider1.max);
  std::int16_t channel = recordWord(r, kPrefPerfChannel);
  if (channel < 0 || channel > 15) channel = 0;
  cmbPerfChnl.setIndex(channel);
}

void PrefForm::SvPrefs() {
  PrefsRecord r{};
  for (int m = kFirstMulti; m <= kLastMulti; ++m)
    r[kPrefMultiChecks + static_cast<std::size_t>(m - kFirstMulti)] = static_cast<std::uint8_t>(ChkMlt(m).value);
  r[kPrefInDevice] = static_cast<std::uint8_t>(Combo1.index());
  r[kPrefOutDevice] = static_cast<std::uint8_t>(Combo2.index());
  r[kPrefLoadFile] = static_cast<std::uint8_t>(ChkLdFile.value);
  std::string path = TxtLdFile.text.substr(0, kPrefFilePathBytes);
  path.resize(kPrefFilePathBytes, ' ');
  std::copy(path.begin(), path.end(), r.begin() + kPrefFilePath);
  std::fill(r.begin() + kPrefReserved, r.begin() + kPrefDensity, ' ');
  setRecordWord(r, kPrefDensity, static_cast<std::int16_t>(Slider1.value));
  setRecordWord(r, kPrefPerfChannel, static_cast<std::int16_t>(cmbPerfChnl.index()));
  writePrefsRecord(prefsPath, r);  // a file that cannot be written ends the save in silence
}

void PrefForm::CmdBrowse_Click() {
  FileDialog dialog;
  dialog.filter = kWorkspaceFilter;
  dialog.flags = 4;
  dialog.filterIndex = 2;
  if (link_.screen().showOpen(dialog)) TxtLdFile.text = dialog.fileName;
}

std::string PrefForm::workspacePath() const {
  const auto end = TxtLdFile.text.find_last_not_of(' ');
  return end == std::string::npos ? std::string() : TxtLdFile.text.substr(0, end + 1);
}

}  // namespace tessivo
