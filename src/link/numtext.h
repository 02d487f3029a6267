#pragma once
// Numbers as the program writes them into lists and logs: decimal with a leading blank in
// the place of the sign, as " 5" or "-1".

#include <string>

namespace tessivo {

inline std::string signedText(long value) {
  return value < 0 ? std::to_string(value) : " " + std::to_string(value);
}

}  // namespace tessivo
