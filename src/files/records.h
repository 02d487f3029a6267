#pragma once
// The program's own files: each is one fixed record from the first byte, told from another by
// its length alone. MultiRec holds one Multi Part (its five sections, each with one spare byte,
// and a name of ten characters); MultiSetRec thirteen of them, M5..M16 and one never used;
// PerfRec the Performance image; PoolRec the Layer Pool with the list's order and count.

#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "data/images.h"
#include "data/multi_template.h"
#include "pool/layer_pool.h"

namespace tessivo {

inline constexpr std::size_t kMultiRecBytes = 192;
inline constexpr std::size_t kRecNameAt = 182, kRecNameBytes = 10;
inline constexpr std::size_t kMultiSetRecBytes = 13 * kMultiRecBytes;  // 2496
inline constexpr std::size_t kPerfRecBytes = PerfImage::kSize;         // 456
inline constexpr std::size_t kPoolRecBytes = 24898;
inline constexpr std::size_t kPoolIdsAt = kPoolRecords * kMultiRecBytes;  // 24768
inline constexpr std::size_t kPoolCountAt = kPoolIdsAt + kPoolRecords;    // 24897
inline constexpr std::size_t kSetupBytes = kMultiSetRecBytes + kPerfRecBytes;  // 2952
inline constexpr std::size_t kWorkspaceBytes = kSetupBytes + kPoolRecBytes;    // 27850
// An All Multis file is refused only when it is longer than this.
inline constexpr std::uint64_t kAllMultisLimit = 18200;

// Where section s (0..4) of a MultiRec starts: the sections stand as in LyrTmpl.
std::size_t recSectionAt(int s);

// A part's five sections (each by its message length) and its name into a MultiRec.
void putMultiRec(std::span<std::uint8_t> rec, MultiImage& image, int part, const std::string& caption);
// The caption a MultiRec's name gives a Multi: ten characters and the part's suffix.
std::string captionFromRec(std::span<const std::uint8_t> rec, int multi);

// The Layer Pool as a PoolRec. The list's texts and slots go into the Pool's names and ids
// first (they stay there after the save), then the whole Pool is copied.
void putPoolRec(std::span<std::uint8_t> rec, LayerPool& pool);
// A PoolRec into the Pool, its list and its free marks. A slot in PoolIds that does not exist,
// or that an earlier entry holds already, ends the list there.
void takePoolRec(std::span<const std::uint8_t> rec, LayerPool& pool);

}  // namespace tessivo
