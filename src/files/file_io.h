#pragma once
// Files as the program reads and writes them: one fixed record from the first byte. A read
// takes no more than the record, whatever the file's size; a write goes to a temporary file
// beside the target, which then takes the target's name, so that a save that fails half way
// leaves the old file whole and no stray file behind.

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace tessivo {

// The length of the file at `path`; nothing when it cannot be opened.
std::optional<std::uint64_t> fileLength(const std::string& path);
// Reads the first `into.size()` bytes of the file (fewer if it is shorter: the rest stays as
// it is) and gives the file's length; nothing when the file cannot be opened or read.
std::optional<std::uint64_t> readRecord(const std::string& path, std::span<std::uint8_t> into);
// Writes `record` as the whole file; false, with the target untouched, when that fails.
bool writeRecord(const std::string& path, std::span<const std::uint8_t> record);

}  // namespace tessivo
