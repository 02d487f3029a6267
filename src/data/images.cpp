#include "data/images.h"

namespace tessivo {

std::span<std::uint8_t> PerfImage::section(std::int16_t kind) {
  switch (kind) {
    case kKindCom1: return Com1();
    case kKindCom2: return Com2();
    case kKindCom3: return Com3();
    case kKindLyr1:
    case kKindLyr2:
    case kKindLyr3:
    case kKindLyr4: return Lyr(kind - kKindLyr1 + 1);
    case kKindCom0: return Com0();
    default: return {};
  }
}

std::string PerfImage::perfName() const {
  const auto* name = bytes.data() + kCom1At + kNameAt;
  return std::string(reinterpret_cast<const char*>(name), kNameLength);
}

void readLayerSwitches(const PerfImage& image, LyrOnTable& table) {
  for (int layer = 1; layer <= 4; ++layer) table[static_cast<std::size_t>(layer)] = image.layerSwitch(layer);
}

std::span<std::uint8_t> Images::blockDestination(std::int16_t kind, std::int16_t part, std::int16_t section) {
  if (kind != kKindMulti) return perf.section(kind);
  if (part < 1 || part > static_cast<std::int16_t>(MultiImage::kParts) || section < 0 ||
      section >= static_cast<std::int16_t>(MultiImage::kSections))
    return {};
  return multi.section(static_cast<std::size_t>(part - 1), static_cast<std::size_t>(section));
}

std::span<const std::uint8_t> Images::multiSection(std::int16_t partIndex, std::int16_t section) {
  if (partIndex < 0 || partIndex >= static_cast<std::int16_t>(MultiImage::kParts) || section < 0 ||
      section >= static_cast<std::int16_t>(MultiImage::kSections))
    return {};
  return multi.section(static_cast<std::size_t>(partIndex), static_cast<std::size_t>(section));
}

}  // namespace tessivo
