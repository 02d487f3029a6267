#pragma once
// The tools for whoever works on the link to the instrument: the received-byte log and the
// manual fields shown and hidden together, and a text listing of any file of SysEx bytes.

#include <cstdint>
#include <span>
#include <string>

namespace tessivo {

// The listing reads at most this many bytes of its source.
inline constexpr std::size_t kSysExListingLimit = 42001;

// One quoted line for each byte (position, value in decimal and hex, the byte as a character of
// the code page), and a line with one blank behind every F7, each line ended by CR LF.
std::string sysExListing(std::span<const std::uint8_t> bytes);

}  // namespace tessivo
