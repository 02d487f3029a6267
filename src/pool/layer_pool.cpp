#include "pool/layer_pool.h"

#include <algorithm>

namespace tessivo {

int sourceNumber(const std::string& name, const std::string& prefix, int first, int last) {
  for (int n = first; n <= last; ++n)
    if (name == prefix + std::to_string(n)) return n;
  return 0;
}

LayerPool::LayerPool(MidiLink& link, Images& images, LyrTemplate& tmpl, Sources sources)
    : link_(link), images_(images), tmpl_(tmpl), sources_(std::move(sources)) {}

void LayerPool::freeAll() {
  std::fill(PoolFree.begin(), PoolFree.begin() + kPoolCapacity, kPoolFree);
}

int LayerPool::lowestFree() const {
  for (int i = 0; i < kPoolCapacity; ++i)
    if (PoolFree[static_cast<std::size_t>(i)] == kPoolFree) return i;
  return -1;
}

void LayerPool::Drop(const std::string& source) {
  tmpl_.InitLyrTmpl();
  if (source == "LbxLyrPool") return;
  const int layer = sourceNumber(source, "TxtLyr", 1, 4);
  const int multi = layer ? 0 : sourceNumber(source, "CmdMult", kFirstMulti, kLastMulti);
  if (!layer && !multi) return;  // no drag source of this form
  const int i = lowestFree();
  if (i < 0) {
    link_.screen().messageBox(kFullMessage, kAppTitle, MsgButtons::Ok, MsgIcon::None);
    return;
  }
  PoolFree[static_cast<std::size_t>(i)] = kPoolInUse;
  if (layer) {
    LbxLyrPool.addItem(sources_.layerText ? sources_.layerText(layer) : std::string(), i);
    std::array<std::uint8_t, kSectionBytes> LyrSrc{};  // a work copy of the Layer's message
    const auto lyr = images_.perf.Lyr(layer);
    std::copy(lyr.begin(), lyr.begin() + 56, LyrSrc.begin());
    tmpl_.LyrToTmpl(LyrSrc, images_.perf.Com1());
  } else {
    const std::string caption = sources_.multiCaption ? sources_.multiCaption(multi) : std::string();
    LbxLyrPool.addItem(caption.substr(0, 10), i);
    tmpl_.MltToTmpl(images_.multi, multi - 1);
  }
  EntryToPool(i);
}

void LayerPool::EntryToPool(int i) {
  auto& body = Pool[static_cast<std::size_t>(i)].body;
  std::size_t at = 0;
  for (int s = 0; s < kTemplateSections; ++s) {
    const auto sec = tmpl_.section(s);
    const std::size_t n = kMultiSections[static_cast<std::size_t>(s)].length;
    std::copy(sec.begin(), sec.begin() + static_cast<std::ptrdiff_t>(n), body.begin() + static_cast<std::ptrdiff_t>(at));
    at += kTemplateSectionBytes[static_cast<std::size_t>(s)];  // the spare byte stays as it was
  }
}

void LayerPool::DblClick() {
  const int k = LbxLyrPool.index;
  if (k < 0 || k >= static_cast<int>(LbxLyrPool.items.size())) return;  // no item hit
  const int record = LbxLyrPool.itemData[static_cast<std::size_t>(k)];
  if (link_.screen().messageBox(kDeleteQuestion, kDeleteTitle, MsgButtons::OkCancel, MsgIcon::Question) ==
      MsgAnswer::Cancel)
    return;
  if (record >= 0 && record < kPoolCapacity) PoolFree[static_cast<std::size_t>(record)] = kPoolFree;
  LbxLyrPool.removeItem(k);
}

void LayerPool::Clear() {
  freeAll();
  LbxLyrPool.clear();
}

}  // namespace tessivo
