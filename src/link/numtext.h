#pragma once
// Numbers as the program writes them into lists and logs: decimal with a leading blank in
// the place of the sign, as " 5" or "-1".

#include <cmath>
#include <cstdlib>
#include <optional>
#include <string>

namespace tessivo {

inline std::string signedText(long value) {
  return value < 0 ? std::to_string(value) : " " + std::to_string(value);
}

// The number a text box holds: a decimal number, blanks before and behind it allowed. Nothing
// for a text that is no number, or no finite one.
inline std::optional<double> decimalNumber(const std::string& text) {
  const char* begin = text.c_str();
  char* end = nullptr;
  const double value = std::strtod(begin, &end);
  if (end == begin) return std::nullopt;
  while (*end == ' ') ++end;
  if (*end != '\0' || !std::isfinite(value)) return std::nullopt;
  return value;
}

}  // namespace tessivo
