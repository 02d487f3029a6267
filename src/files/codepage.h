#pragma once
// Names in the files are single bytes of the Western code page (Windows-1252), as the files of
// this instrument's editors have always held them; the program's texts are UTF-8. A character
// the code page cannot hold is written as "?"; a byte that is no UTF-8 passes as it stands.

#include <cstdint>
#include <span>
#include <string>

namespace tessivo {

// The first `length` characters of `text`, padded with blanks, as code page bytes.
std::string toCodePage(const std::string& text, std::size_t length);
// All of `text` as code page bytes.
std::string toCodePage(const std::string& text);
// Code page bytes as UTF-8 text, one character for each byte.
std::string fromCodePage(std::span<const std::uint8_t> bytes);

}  // namespace tessivo
