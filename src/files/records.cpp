#include "files/records.h"

#include <algorithm>

#include "edit/edit_panel.h"
#include "files/codepage.h"

namespace tessivo {

std::size_t recSectionAt(int s) {
  std::size_t at = 0;
  for (int i = 0; i < s; ++i) at += kTemplateSectionBytes[static_cast<std::size_t>(i)];
  return at;
}

void putMultiRec(std::span<std::uint8_t> rec, MultiImage& image, int part, const std::string& caption) {
  for (int s = 0; s < kTemplateSections; ++s) {
    const auto section = image.section(static_cast<std::size_t>(part), static_cast<std::size_t>(s));
    const auto n = static_cast<std::size_t>(kMultiSections[static_cast<std::size_t>(s)].length);
    std::copy(section.begin(), section.begin() + static_cast<std::ptrdiff_t>(n),
              rec.begin() + static_cast<std::ptrdiff_t>(recSectionAt(s)));
  }
  const std::string name = toCodePage(caption, kRecNameBytes);
  std::copy(name.begin(), name.end(), rec.begin() + kRecNameAt);
}

std::string captionFromRec(std::span<const std::uint8_t> rec, int multi) {
  return nameOfTen(fromCodePage(rec.subspan(kRecNameAt, kRecNameBytes))) + multiSuffix(multi);
}

void putPoolRec(std::span<std::uint8_t> rec, LayerPool& pool) {
  const ListBoxCtl& list = pool.LbxLyrPool;
  const std::size_t count = std::min(list.items.size(), std::size_t{kPoolRecords});
  for (std::size_t k = 0; k < count; ++k) {
    const std::string name = toCodePage(list.items[k], kRecNameBytes);
    std::copy(name.begin(), name.end(), pool.Pool[k].Name.begin());
    pool.PoolIds[k] = static_cast<std::uint8_t>(list.itemData[k]);
  }
  pool.PoolCount = static_cast<std::uint8_t>(count);
  for (std::size_t i = 0; i < kPoolRecords; ++i) {
    const auto at = rec.begin() + static_cast<std::ptrdiff_t>(i * kMultiRecBytes);
    std::copy(pool.Pool[i].body.begin(), pool.Pool[i].body.end(), at);
    std::copy(pool.Pool[i].Name.begin(), pool.Pool[i].Name.end(), at + kRecNameAt);
  }
  std::copy(pool.PoolIds.begin(), pool.PoolIds.end(), rec.begin() + kPoolIdsAt);
  rec[kPoolCountAt] = pool.PoolCount;
}

void takePoolRec(std::span<const std::uint8_t> rec, LayerPool& pool) {
  for (std::size_t i = 0; i < kPoolRecords; ++i) {
    const auto at = rec.begin() + static_cast<std::ptrdiff_t>(i * kMultiRecBytes);
    std::copy(at, at + static_cast<std::ptrdiff_t>(kTemplateBytes), pool.Pool[i].body.begin());
    std::copy(at + kRecNameAt, at + kRecNameAt + kRecNameBytes, pool.Pool[i].Name.begin());
  }
  std::copy(rec.begin() + kPoolIdsAt, rec.begin() + kPoolIdsAt + kPoolRecords, pool.PoolIds.begin());
  pool.PoolCount = rec[kPoolCountAt];
  pool.freeAll();
  pool.LbxLyrPool.clear();
  std::array<bool, kPoolRecords> listed{};
  for (std::size_t k = 0; k < pool.PoolCount && k < kPoolRecords; ++k) {
    const int slot = pool.PoolIds[k];
    // No such slot, or one listed already (deleting either entry would free the other's
    // record for the next drop): the list ends here.
    if (slot >= kPoolRecords || listed[static_cast<std::size_t>(slot)]) return;
    listed[static_cast<std::size_t>(slot)] = true;
    const auto* name = reinterpret_cast<const std::uint8_t*>(pool.Pool[k].Name.data());
    pool.LbxLyrPool.addItem(fromCodePage({name, kRecNameBytes}), slot);
    pool.PoolFree[static_cast<std::size_t>(slot)] = kPoolInUse;
  }
}

}  // namespace tessivo
