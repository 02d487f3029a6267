#include "shell/debug_tools.h"

#include <cstdio>

#include "link/messages.h"
#include "link/numtext.h"

namespace tessivo {

std::string sysExListing(std::span<const std::uint8_t> bytes) {
  std::string text;
  const std::size_t n = std::min(bytes.size(), kSysExListingLimit);
  for (std::size_t i = 0; i < n; ++i) {
    const std::uint8_t b = bytes[i];
    char position[16], value[4];
    std::snprintf(position, sizeof position, "%zX", i);
    std::snprintf(value, sizeof value, "%X", static_cast<unsigned>(b));
    text += "\"Sys Ex    " + std::string(position) + "  " + signedText(static_cast<long>(i)) + "   " + signedText(b) + "  " +
            value + "  " + static_cast<char>(b) + "\"\r\n";
    if (b == kSysExEnd) text += "\" \"\r\n";  // messages stand apart
  }
  return text;
}

}  // namespace tessivo
