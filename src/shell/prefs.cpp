#include "shell/prefs.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace tessivo {

std::string programFolder() {
  std::error_code ec;
  const auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  if (ec) return std::filesystem::current_path(ec).string();
  return exe.parent_path().string();
}

namespace {

bool isAbsoluteFolder(const char* path) { return path != nullptr && path[0] == '/'; }

// HOME, else the password database's entry for the user.
const char* homeFolder() {
  const char* home = std::getenv("HOME");
  if (isAbsoluteFolder(home)) return home;
  const passwd* entry = ::getpwuid(::getuid());
  return entry != nullptr ? entry->pw_dir : nullptr;
}

// Creates each missing folder of `folder`, outermost first, readable by its owner alone.
bool makeFolders(const std::filesystem::path& folder) {
  std::error_code ec;
  if (folder.empty() || std::filesystem::is_directory(folder, ec)) return true;
  if (folder.parent_path() != folder && !makeFolders(folder.parent_path())) return false;
  return ::mkdir(folder.c_str(), 0700) == 0 || (errno == EEXIST && std::filesystem::is_directory(folder, ec));
}

}  // namespace

std::string prefsPathFor(const std::string& programDir, const char* xdgConfigHome, const char* home) {
  const std::string beside = programDir + "/tessivo.ini";
  std::error_code ec;
  if (std::filesystem::exists(std::filesystem::path(programDir) / kPrefsBesideMarker, ec)) return beside;
  std::string config;
  if (isAbsoluteFolder(xdgConfigHome)) {
    config = xdgConfigHome;
  } else if (isAbsoluteFolder(home)) {
    config = std::string(home) + "/.config";
  } else {
    return beside;
  }
  return config + "/tessivo/tessivo.ini";
}

std::string defaultPrefsPath() { return prefsPathFor(programFolder(), std::getenv("XDG_CONFIG_HOME"), homeFolder()); }

std::optional<PrefsRecord> readPrefsRecord(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  PrefsRecord record{};
  in.read(reinterpret_cast<char*>(record.data()), static_cast<std::streamsize>(record.size()));
  return record;
}

bool writePrefsRecord(const std::string& path, const PrefsRecord& record) {
  if (!makeFolders(std::filesystem::path(path).parent_path())) return false;
  std::fstream out(path, std::ios::binary | std::ios::in | std::ios::out);  // keeps a longer tail
  if (!out) out.open(path, std::ios::binary | std::ios::out);
  if (!out) return false;
  out.seekp(0);
  out.write(reinterpret_cast<const char*>(record.data()), static_cast<std::streamsize>(record.size()));
  return static_cast<bool>(out);
}

std::int16_t recordWord(const PrefsRecord& record, std::size_t at) {
  return static_cast<std::int16_t>(record[at] | (record[at + 1] << 8));
}

void setRecordWord(PrefsRecord& record, std::size_t at, std::int16_t value) {
  const auto v = static_cast<std::uint16_t>(value);
  record[at] = static_cast<std::uint8_t>(v & 0xFF);
  record[at + 1] = static_cast<std::uint8_t>(v >> 8);
}

}  // namespace tessivo
