#pragma once
// The preferences record "tessivo.ini": one fixed record of 169 bytes, no text file despite
// its name. A program run from its build tree keeps it beside itself; an installed one in the
// user's configuration folder.

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace tessivo {

inline constexpr std::size_t kPrefsRecordBytes = 169;
using PrefsRecord = std::array<std::uint8_t, kPrefsRecordBytes>;

// Offsets in the record.
inline constexpr std::size_t kPrefMultiChecks = 0;  // 12 bytes, Multi 5..16
inline constexpr std::size_t kPrefInDevice = 13;
inline constexpr std::size_t kPrefOutDevice = 14;
inline constexpr std::size_t kPrefLoadFile = 15;
inline constexpr std::size_t kPrefFilePath = 18;  // 127 characters, blank-filled
inline constexpr std::size_t kPrefFilePathBytes = 127;
inline constexpr std::size_t kPrefReserved = 145;  // 18 blanks
inline constexpr std::size_t kPrefDensity = 163;   // 16-bit
inline constexpr std::size_t kPrefPerfChannel = 167;  // 16-bit

// The folder of the running program.
std::string programFolder();

// The file whose presence beside the program keeps the preferences there. The build places it
// beside the binary it links; an install copies the binary alone. Neither the folder being
// writable (it is for root, and for a program under ~/.local/bin) nor the program's path
// decides.
inline constexpr const char* kPrefsBesideMarker = "tessivo.portable";

// Where the record lives for a program in `programDir`: beside it when the marker is there;
// else `xdgConfigHome`/tessivo/tessivo.ini, or `home`/.config/tessivo/tessivo.ini when
// XDG_CONFIG_HOME is unset, empty or not absolute (such a value is ignored); beside the
// program when neither gives an absolute folder.
std::string prefsPathFor(const std::string& programDir, const char* xdgConfigHome, const char* home);
// The same for the running program, its environment and the user's home folder.
std::string defaultPrefsPath();

// The record as it stands in the file: a short file leaves zeros behind its end, a longer
// one gives its first 169 bytes. Nothing when the file cannot be read.
std::optional<PrefsRecord> readPrefsRecord(const std::string& path);
// Writes the 169 bytes at offset 0 without shortening a longer file, first creating the
// folders that are missing (for the user alone, as a configuration folder is made). False on
// failure.
bool writePrefsRecord(const std::string& path, const PrefsRecord& record);

std::int16_t recordWord(const PrefsRecord& record, std::size_t at);
void setRecordWord(PrefsRecord& record, std::size_t at, std::int16_t value);

}  // namespace tessivo
