// The preferences record "tessivo.ini" of any length and content, read at the start.
//
// The record is the file's first 169 bytes, zeros behind a shorter file; every setting the
// form shows lies in its control's range (a device that is not there reads as the first, a
// channel out of range as channel 1); OK and the start's tick reach the main form; OK writes
// the 169 bytes without shortening a longer file, and what it wrote reads back as the same
// settings.

#include <algorithm>
#include <cstring>

#include "common/fuzz_support.h"
#include "instrument/virtual_cs2x.h"
#include "support/scripted.h"

using namespace tessivo;
using namespace tessivo::fuzz;

namespace {

struct Settings {
  std::array<int, kMultiRows> checks{};
  int load = 0, in = 0, out = 0, channel = 0, density = 0;
  std::string workspace;
  bool operator==(const Settings&) const = default;
};

Settings settingsOf(const PrefForm& p) {
  Settings s;
  for (int m = kFirstMulti; m <= kLastMulti; ++m) s.checks[static_cast<std::size_t>(m - kFirstMulti)] = p.ChkMlt(m).value;
  s.load = p.ChkLdFile.value;
  s.in = p.Combo1.index();
  s.out = p.Combo2.index();
  s.channel = p.cmbPerfChnl.index();
  s.density = p.Slider1.value;
  s.workspace = p.workspacePath();
  return s;
}

int word(std::span<const std::uint8_t> r, std::size_t at) {
  return static_cast<std::int16_t>(r[at] | (r[at + 1] << 8));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static VirtualCs2x* cs2x = new VirtualCs2x;  // answers the start's dump requests from its memory
  test::ScriptedProgram p;
  p.midi.answer = [](const Bytes& request) -> std::optional<Bytes> {
    if (request.size() == 8 && request[0] == kSysExStart && request[2] == kDumpRequest) {
      Bytes block = cs2x->block({request[4], request[5], request[6]});
      if (!block.empty()) return block;
    }
    return std::nullopt;
  };
  const std::string& path = p.prefs.path;
  writeBytes(path, {data, size});

  std::array<std::uint8_t, kPrefsRecordBytes> record{};
  std::copy(data, data + std::min(size, record.size()), record.begin());
  const auto read = readPrefsRecord(path);
  FUZZ_PROMISE(read && *read == record, "the record is the file's first 169 bytes, zeros behind a shorter file");

  p.app.Main();
  PrefForm& pref = p.app.pref();
  const Settings s = settingsOf(pref);
  for (int m = kFirstMulti; m <= kLastMulti; ++m)
    FUZZ_PROMISE(s.checks[static_cast<std::size_t>(m - kFirstMulti)] == record[static_cast<std::size_t>(m - kFirstMulti)],
                 "a Multi's box holds its byte");
  const int devices = static_cast<int>(p.midi.inNames.size());
  FUZZ_PROMISE(s.in == (record[kPrefInDevice] < devices ? record[kPrefInDevice] : 0), "an input device that is not there reads as the first");
  FUZZ_PROMISE(s.out == (record[kPrefOutDevice] < devices ? record[kPrefOutDevice] : 0), "an output device that is not there reads as the first");
  const int channel = word(record, kPrefPerfChannel);
  FUZZ_PROMISE(s.channel == (channel >= 0 && channel <= 15 ? channel : 0), "a channel out of range reads as channel 1");
  FUZZ_PROMISE(s.density >= pref.Slider1.min && s.density <= pref.Slider1.max, "the density lies within its slider");
  FUZZ_PROMISE(pref.TxtLdFile.text.size() <= kPrefFilePathBytes && pref.TxtLdFile.text.find('\0') == std::string::npos,
               "the path is at most its field, a zero byte ends it");

  p.app.OKButton_Click();
  p.app.Timer1_Tick();
  FUZZ_PROMISE(p.app.mainForm() != nullptr && !p.app.finished(), "any record starts the program");
  for (const test::Box& b : p.screen.boxes)
    FUZZ_PROMISE(b.text == MainForm::kStartupWrongType, "the only box a record can bring is the start's Workspace of the wrong type");

  const Bytes written = readBytes(path);
  FUZZ_PROMISE(written.size() == std::max(size, kPrefsRecordBytes), "OK writes 169 bytes and keeps a longer file's length");
  FUZZ_PROMISE(size <= kPrefsRecordBytes || std::memcmp(written.data() + kPrefsRecordBytes, data + kPrefsRecordBytes, size - kPrefsRecordBytes) == 0,
               "a longer file keeps its tail");
  pref.LdPrefs();
  FUZZ_PROMISE(settingsOf(pref) == s, "what OK wrote reads back as the same settings");
  return 0;
}
