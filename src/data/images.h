#pragma once
// The byte images of what the instrument holds. PerfImage: the Performance as eight whole
// bulk dump messages (and two copies of Com2), 456 bytes in file order. MultiImage: 17 parts
// of 6 sections of 129 bytes, parts 4..15 being Multis M5..M16. Sections are read and written
// at their offsets; nothing is parsed, and bytes nobody understands are carried.

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "link/midi_link.h"

namespace tessivo {

class PerfImage {
 public:
  static constexpr std::size_t kSize = 456;
  static constexpr std::size_t kLyrBytes = 57, kCom0Bytes = 38, kCom1Bytes = 64, kCom2Bytes = 35, kCom3Bytes = 21;
  // Offsets of the sections in the image (and in a Performance file).
  static constexpr std::size_t kLyr1At = 0, kCom0At = 228, kCom1At = 266, kCom2At = 330, kCom3At = 365,
                               kEffRstCopyAt = 386, kEffBypCopyAt = 421;
  // Field offsets within sections.
  static constexpr std::size_t kNameAt = 9, kNameLength = 8;  // Com1: the performance name
  static constexpr std::size_t kLayerSwitchAt = 31;           // Lyr: 1 means on
  static constexpr std::size_t kPerfChannelAt = 9;            // Com0: performance MIDI channel

  std::array<std::uint8_t, kSize> bytes{};

  std::span<std::uint8_t, kLyrBytes> Lyr(int layer) {  // layer 1..4
    return std::span<std::uint8_t, kLyrBytes>(bytes.data() + kLyr1At + kLyrBytes * static_cast<std::size_t>(layer - 1), kLyrBytes);
  }
  std::span<std::uint8_t, kCom0Bytes> Com0() { return std::span<std::uint8_t, kCom0Bytes>(bytes.data() + kCom0At, kCom0Bytes); }
  std::span<std::uint8_t, kCom1Bytes> Com1() { return std::span<std::uint8_t, kCom1Bytes>(bytes.data() + kCom1At, kCom1Bytes); }
  std::span<std::uint8_t, kCom2Bytes> Com2() { return std::span<std::uint8_t, kCom2Bytes>(bytes.data() + kCom2At, kCom2Bytes); }
  std::span<std::uint8_t, kCom3Bytes> Com3() { return std::span<std::uint8_t, kCom3Bytes>(bytes.data() + kCom3At, kCom3Bytes); }
  std::span<std::uint8_t, kCom2Bytes> EffRstCopy() {
    return std::span<std::uint8_t, kCom2Bytes>(bytes.data() + kEffRstCopyAt, kCom2Bytes);
  }
  std::span<std::uint8_t, kCom2Bytes> EffBypCopy() {
    return std::span<std::uint8_t, kCom2Bytes>(bytes.data() + kEffBypCopyAt, kCom2Bytes);
  }

  // The section a Performance block kind fills (0..6, 8); empty for any other kind.
  std::span<std::uint8_t> section(std::int16_t kind);
  // The eight characters of the name, one for each byte, nothing trimmed.
  std::string perfName() const;
  std::uint8_t layerSwitch(int layer) const { return bytes[kLyr1At + kLyrBytes * static_cast<std::size_t>(layer - 1) + kLayerSwitchAt]; }
};

// The four layer switches as last read, entries 1..4 (entry 0 unused).
using LyrOnTable = std::array<std::int16_t, 5>;
void readLayerSwitches(const PerfImage& image, LyrOnTable& table);

class MultiImage {
 public:
  static constexpr std::size_t kParts = kMultiParts, kSections = kMultiSectionsPerPart, kSection = kSectionBytes;
  std::array<std::uint8_t, kMultiImageBytes> bytes{};

  std::span<std::uint8_t, kSection> section(std::size_t partIndex, std::size_t section) {
    return std::span<std::uint8_t, kSection>(bytes.data() + (partIndex * kSections + section) * kSection, kSection);
  }
};

// Both images, as the blocks of the instrument link fill them.
class Images : public BlockStore {
 public:
  PerfImage perf;
  MultiImage multi;

  std::span<std::uint8_t> blockDestination(std::int16_t kind, std::int16_t part, std::int16_t section) override;
  std::span<const std::uint8_t> multiSection(std::int16_t partIndex, std::int16_t section) override;
};

}  // namespace tessivo
