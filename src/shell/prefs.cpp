#include "shell/prefs.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>

namespace tessivo {

std::string programFolder() {
  std::error_code ec;
  const auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
  if (ec) return std::filesystem::current_path(ec).string();
  return exe.parent_path().string();
}

std::string defaultPrefsPath() { return programFolder() + "/tessivo.ini"; }

std::optional<PrefsRecord> readPrefsRecord(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  PrefsRecord record{};
  in.read(reinterpret_cast<char*>(record.data()), static_cast<std::streamsize>(record.size()));
  return record;
}

bool writePrefsRecord(const std::string& path, const PrefsRecord& record) {
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
