#include "files/codepage.h"

#include <array>

namespace tessivo {

namespace {
// Windows-1252 at 0x80..0x9F; 0 where the code page leaves a byte undefined.
constexpr std::array<char32_t, 32> kHigh{0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                         0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                         0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                         0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

std::uint8_t toByte(char32_t c) {
  if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<std::uint8_t>(c);
  for (std::size_t i = 0; i < kHigh.size(); ++i)
    if (kHigh[i] != 0 && kHigh[i] == c) return static_cast<std::uint8_t>(0x80 + i);
  return '?';
}

char32_t toChar(std::uint8_t b) {
  if (b >= 0x80 && b < 0xA0 && kHigh[b - 0x80] != 0) return kHigh[b - 0x80];
  return b;
}

void appendUtf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (c >> 12));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

// The next character of UTF-8 text at `at`, moving `at` past it; a byte that starts no valid
// sequence is taken as one character of the code page.
char32_t nextChar(const std::string& text, std::size_t& at, bool& raw) {
  const auto lead = static_cast<unsigned char>(text[at]);
  std::size_t n = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
  raw = false;
  if (n == 1 || at + n > text.size()) {
    raw = lead >= 0x80;
    ++at;
    return lead;
  }
  char32_t c = lead & (0x7F >> n);
  for (std::size_t i = 1; i < n; ++i) {
    const auto b = static_cast<unsigned char>(text[at + i]);
    if ((b & 0xC0) != 0x80) {
      raw = true;
      ++at;
      return lead;
    }
    c = (c << 6) | (b & 0x3F);
  }
  at += n;
  return c;
}
}  // namespace

std::string toCodePage(const std::string& text, std::size_t length) {
  std::string out;
  std::size_t at = 0;
  while (out.size() < length && at < text.size()) {
    bool raw = false;
    const char32_t c = nextChar(text, at, raw);
    out += static_cast<char>(raw ? static_cast<std::uint8_t>(c) : toByte(c));
  }
  out.append(length - out.size(), ' ');
  return out;
}

std::string toCodePage(const std::string& text) {
  std::string out;
  for (std::size_t at = 0; at < text.size();) {
    bool raw = false;
    const char32_t c = nextChar(text, at, raw);
    out += static_cast<char>(raw ? static_cast<std::uint8_t>(c) : toByte(c));
  }
  return out;
}

std::string fromCodePage(std::span<const std::uint8_t> bytes) {
  std::string out;
  for (std::uint8_t b : bytes) appendUtf8(out, toChar(b));
  return out;
}

}  // namespace tessivo
