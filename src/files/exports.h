#pragma once
// What a Setup sends, written for other programs: the 68 bulk dumps (twelve Multi Parts, then
// the Performance, Layers before the common sections) as a plain System Exclusive file and as a
// Standard MIDI File of format 0, each checksum computed over the bytes as they stand in the
// file; and a Workspace listed as text. The images are never changed by an export.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "data/images.h"

namespace tessivo {

inline constexpr std::size_t kSyxExportBytes = 2760;
inline constexpr std::size_t kMidExportBytes = 2691;

// Gap in ticks before each event, by the "Midi File Density" value 0..7; 0 beyond the table.
int midiGap(int density);

// The 68 messages of a Setup in the order of the exports. `channels` are the list indexes of
// the twelve Multis' channel selectors, M5 first, which stand at offset 13 of each section 0.
std::vector<Bytes> setupMessages(MultiImage& multi, PerfImage& perf, const std::array<int, 12>& channels);

Bytes syxExport(const std::vector<Bytes>& messages);
Bytes midExport(const std::vector<Bytes>& messages, int gap);

// The description text: its lines, each a quoted string ended by CR LF, in the file's code page.
struct WorkspaceText {
  std::string path;                                  // this file, as the dialog gave it
  std::string performance;                           // the caption of CmdPrfm
  std::array<int, 12> channels{};                    // list indexes, M5 first
  std::array<std::string, 12> captions;              // the Multi buttons', M5 first
  std::vector<std::string> pool;                     // the Layer Pool's texts in list order
};
std::string workspaceText(const WorkspaceText& w);

}  // namespace tessivo
