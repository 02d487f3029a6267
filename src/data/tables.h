#pragma once
// The instrument's fixed vocabulary, known from our own tables: the effect types with the two
// bytes that name them, the names of the two Preset banks of Performances, and the texts of
// the EQ frequency codes.

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tessivo {

struct EffectType {
  std::uint8_t high, low;
  std::string_view name;  // padded with blanks to the table's name length
};

extern const std::array<EffectType, 13> RvrbTbl;  // names of 12 characters, type at 60 00 40
extern const std::array<EffectType, 15> ChrsTbl;  // 16 characters, type at 60 00 42
extern const std::array<EffectType, 64> VarTbl;   // 24 characters, type at 60 00 44

// Preset Performance names, 8 characters each; the row is the program number.
extern const std::array<std::string_view, 128> PrfNames1;  // Preset bank 1
extern const std::array<std::string_view, 128> PrfNames2;  // Preset bank 2

// Text of an EQ frequency code: 4 gives "  32 Hz" .. 58 "16.0KHz", any other "ERR".
std::string HzText(std::int16_t code);

// The row of a type by its two bytes, the last matching row winning; nullptr if none.
const EffectType* findEffectType(std::span<const EffectType> table, std::uint8_t high, std::uint8_t low,
                                 int* row = nullptr);

}  // namespace tessivo
