#include "files/exports.h"

#include <array>

#include "data/multi_template.h"
#include "files/codepage.h"
#include "link/numtext.h"

namespace tessivo {

namespace {
constexpr std::array<int, 8> kMidDnsTbl{27, 54, 81, 108, 7, 34, 61, 88};

// The head of the .mid: "MThd", format 0, one track of 480 ticks a quarter, "MTrk" of 2669
// bytes, its name, 4/4 and 120 beats a minute.
constexpr std::array<std::uint8_t, 49> kMidHead{
    0x4D, 0x54, 0x68, 0x64, 0x00, 0x00, 0x00, 0x06, 0x00, 0x00, 0x00, 0x01, 0x01, 0xE0,
    0x4D, 0x54, 0x72, 0x6B, 0x00, 0x00, 0x0A, 0x6D,
    0x00, 0xFF, 0x03, 0x08, 'R', 'E', 'Q', 'P', 'F', 'A', 'L', 'L',
    0x00, 0xFF, 0x58, 0x04, 0x04, 0x02, 0x18, 0x08,
    0x00, 0xFF, 0x51, 0x03, 0x07, 0xA1, 0x20};
constexpr std::array<std::uint8_t, 4> kEndOfTrack{0x00, 0xFF, 0x2F, 0x00};

// One quoted line of the description text: tabs, the fields with a tab between, tabs.
std::string line(int before, std::initializer_list<std::string> fields, int after) {
  std::string text = "\"" + std::string(static_cast<std::size_t>(before), '\t');
  bool first = true;
  for (const std::string& f : fields) {
    if (!first) text += '\t';
    text += f;
    first = false;
  }
  return text + std::string(static_cast<std::size_t>(after), '\t') + "\"\r\n";
}
std::string empty(int tabs) { return line(tabs, {}, 0); }
}  // namespace

int midiGap(int density) { return density >= 0 && density < 8 ? kMidDnsTbl[static_cast<std::size_t>(density)] : 0; }

std::vector<Bytes> setupMessages(MultiImage& multi, PerfImage& perf, const std::array<int, 12>& channels) {
  std::vector<Bytes> out;
  for (std::size_t i = 0; i < 12; ++i)
    for (std::size_t s = 0; s < 5; ++s) {
      const auto section = multi.section(i + 4, s);
      Bytes m(section.begin(), section.begin() + kMultiSections[s].length);
      if (s == 0) m[kReceiveChannelAt] = static_cast<std::uint8_t>(channels[i]);
      out.push_back(std::move(m));
    }
  for (int layer = 1; layer <= 4; ++layer) out.emplace_back(perf.Lyr(layer).begin(), perf.Lyr(layer).end() - 1);
  out.emplace_back(perf.Com0().begin(), perf.Com0().end() - 1);
  out.emplace_back(perf.Com1().begin(), perf.Com1().end() - 1);
  out.emplace_back(perf.Com2().begin(), perf.Com2().end() - 1);
  out.emplace_back(perf.Com3().begin(), perf.Com3().end() - 1);
  // The checksum of each message as it stands in the file; the images keep theirs.
  for (Bytes& m : out) m[m.size() - 2] = SyxChksum(m);
  return out;
}

Bytes syxExport(const std::vector<Bytes>& messages) {
  Bytes file;
  file.reserve(kSyxExportBytes);
  for (const Bytes& m : messages) file.insert(file.end(), m.begin(), m.end());
  file.resize(kSyxExportBytes, 0);
  return file;
}

Bytes midExport(const std::vector<Bytes>& messages, int gap) {
  Bytes file(kMidHead.begin(), kMidHead.end());
  for (const Bytes& m : messages) {
    // Delta time, F0, the length of what follows, the message behind its F0: every number here
    // is below 128, so each takes one byte.
    file.push_back(static_cast<std::uint8_t>(gap));
    file.push_back(kSysExStart);
    file.push_back(static_cast<std::uint8_t>(m.size() - 1));
    file.insert(file.end(), m.begin() + 1, m.end());
  }
  file.insert(file.end(), kEndOfTrack.begin(), kEndOfTrack.end());
  file.resize(kMidExportBytes, 0);
  return file;
}

std::string workspaceText(const WorkspaceText& w) {
  auto ten = [](const std::string& caption) { return toCodePage(caption, 10); };
  std::string text = line(1, {" Workspace Description Text"}, 10) + empty(17) + line(1, {toCodePage(w.path)}, 10) +
                     empty(13) + empty(13) + line(1, {"Performance:"}, 14) +
                     line(3, {"Midi Channel", "  1", ten(w.performance)}, 6) + empty(13) + line(1, {"Multi Parts:"}, 14);
  for (std::size_t i = 0; i < 12; ++i) text += line(3, {"Midi Channel", signedText(w.channels[i] + 1), ten(w.captions[i])}, 10);
  text += empty(13) + empty(13) + empty(13) + line(1, {"Layer Pool:"}, 14) + empty(13);
  for (const std::string& item : w.pool) text += line(3, {toCodePage(item)}, 10);
  return text;
}

}  // namespace tessivo
