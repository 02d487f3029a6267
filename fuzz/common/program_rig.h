#pragma once
// The program started once over the scripted MIDI service, its dump requests answered from a
// virtual CS2x's memory so the images hold what an instrument holds, and the state a file
// load may touch: taken, compared and put back, so each input starts from the same program.

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "instrument/virtual_cs2x.h"
#include "support/scripted.h"

namespace tessivo::fuzz {

struct ProgramState {
  PerfImage perf;
  MultiImage multi;
  std::array<PoolEntry, kPoolRecords> pool{};
  std::array<std::int16_t, kPoolRecords> poolFree{};
  std::array<std::uint8_t, kPoolRecords> poolIds{};
  std::uint8_t poolCount = 0;
  std::vector<std::string> listItems;
  std::vector<int> listData;
  std::array<std::string, kMultiRows> captions;
  std::array<int, kMultiRows> channels{};
};

inline bool samePool(const ProgramState& a, const ProgramState& b) {
  for (std::size_t i = 0; i < kPoolRecords; ++i)
    if (a.pool[i].body != b.pool[i].body || a.pool[i].Name != b.pool[i].Name) return false;
  return a.poolFree == b.poolFree && a.poolIds == b.poolIds && a.poolCount == b.poolCount && a.listItems == b.listItems &&
         a.listData == b.listData;
}

class ProgramRig {
 public:
  ProgramRig() {
    p_.midi.answer = [this](const Bytes& request) -> std::optional<Bytes> {
      if (request.size() == 8 && request[0] == kSysExStart && request[2] == kDumpRequest) {
        Bytes block = cs2x_.block({request[4], request[5], request[6]});
        if (!block.empty()) return block;
      }
      return std::nullopt;
    };
    // Multi 5 and 9 read from the instrument, the others initialised.
    for (int m = kFirstMulti; m <= kLastMulti; ++m) p_.app.pref().ChkMlt(m).value = (m == 5 || m == 9) ? 1 : 0;
    form_ = &p_.start();
    p_.app.pref().cmbPerfChnl.setIndex(3);
    // Two Pool entries, so a load has a list to replace.
    form_->panel.TxtLyr[0].text = "Warm Pad";
    form_->DragDrop("LbxLyrPool", "TxtLyr1");
    form_->DragDrop("LbxLyrPool", "CmdMult9");
    baseline_ = take();
  }

  MainForm& form() { return *form_; }
  test::ScriptedProgram& program() { return p_; }
  const ProgramState& baseline() const { return baseline_; }

  ProgramState take() {
    ProgramState s;
    s.perf = form_->images().perf;
    s.multi = form_->images().multi;
    const LayerPool& pool = form_->pool();
    s.pool = pool.Pool;
    s.poolFree = pool.PoolFree;
    s.poolIds = pool.PoolIds;
    s.poolCount = pool.PoolCount;
    s.listItems = pool.LbxLyrPool.items;
    s.listData = pool.LbxLyrPool.itemData;
    for (int m = kFirstMulti; m <= kLastMulti; ++m) {
      s.captions[static_cast<std::size_t>(m - kFirstMulti)] = form_->row(m).CmdMult.caption;
      s.channels[static_cast<std::size_t>(m - kFirstMulti)] = form_->row(m).CmbMult.index();
    }
    return s;
  }

  // The baseline back, and the records of the service and the screen emptied.
  void reset() {
    form_->images().perf = baseline_.perf;
    form_->images().multi = baseline_.multi;
    LayerPool& pool = form_->pool();
    pool.Pool = baseline_.pool;
    pool.PoolFree = baseline_.poolFree;
    pool.PoolIds = baseline_.poolIds;
    pool.PoolCount = baseline_.poolCount;
    pool.LbxLyrPool.items = baseline_.listItems;
    pool.LbxLyrPool.itemData = baseline_.listData;
    MidiLink& link = p_.app.link();
    link.LoadingFlag = -1;  // the lists move back without sending
    for (int m = kFirstMulti; m <= kLastMulti; ++m) {
      form_->row(m).CmdMult.caption = baseline_.captions[static_cast<std::size_t>(m - kFirstMulti)];
      form_->row(m).CmbMult.setIndex(baseline_.channels[static_cast<std::size_t>(m - kFirstMulti)]);
    }
    link.LoadingFlag = 0;
    form_->edit().visible = true;
    form_->effects().visible = true;
    p_.events.clear();
    p_.midi.sent.clear();
    p_.midi.calls.clear();
    p_.screen.boxes.clear();
    p_.screen.dialogs.clear();
    p_.screen.openAnswers.clear();
    p_.screen.saveAnswers.clear();
    p_.sleeps.clear();
  }

 private:
  VirtualCs2x cs2x_;
  test::ScriptedProgram p_;
  MainForm* form_ = nullptr;
  ProgramState baseline_;
};

}  // namespace tessivo::fuzz
