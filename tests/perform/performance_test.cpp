// Choosing a Performance: the nine bytes of a program change in every bank, and what the name
// and Layer controls show of what DspPerf read. DspPerf's wire is pinned by the start against
// the built-in instrument, the options' lists and the first Preset bank's pick by the wiring.
#include <gtest/gtest.h>

#include "perform/performance.h"
#include "support/scripted.h"

namespace tessivo {
using Texts = std::vector<std::string>;

class Selection : public ::testing::Test, protected test::ScriptedLink {
 protected:
  PerfPanel panel;
  int channel = 0;
  bool effectsVisible = false;
  int effectsRefills = 0;
  Performance perf{link, images.perf, panel,
                   {[this] { return channel; }, [this] { return effectsVisible; }, [this] { ++effectsRefills; }}};
  std::array<std::uint8_t, 5> layerSwitch{0, 1, 1, 1, 1};
  std::string name = "Trancy  ";

  void SetUp() override {
    // A small instrument: a name in Com1, the layer switches in the Layers.
    midi.answer = [this](const Bytes& m) -> std::optional<Bytes> {
      if (m.size() != 8 || m[2] != 0x20 || m[3] != kModelCs2x) return std::nullopt;
      const Address a{m[4], m[5], m[6]};
      if (a.high == 0x60 && a.mid == 0 && a.low == 0) {
        Bytes data(52, 0);
        std::copy(name.begin(), name.end(), data.begin());
        return bulkDump(kModelCs2x, a, data);
      }
      if (a.high == 0x60 && a.mid >= 1 && a.mid <= 4) {
        Bytes data(45, 0);
        data[0x16] = layerSwitch[a.mid];
        return bulkDump(kModelCs2x, a, data);
      }
      return bulkDump(kModelCs2x, a, Bytes(a.high == 0x50 ? 26 : a.low == 0x40 ? 23 : 9, 0));
    };
    perf.OptPreset_Click();
    events.clear();
  }
};

TEST_F(Selection, APickSendsTheBankOfBankAndOptionAndRefillsAVisibleEffectsPanel) {
  const struct {
    bool user, bank2;
    int index;
    const char* bytes;
  } cases[] = {
      {false, true, 5, "B0 00 3F B0 20 42 00 C0 05"},
      {true, false, 0, "B0 00 3F B0 20 41 00 C0 00"},
      {true, true, 127, "B0 00 3F B0 20 43 00 C0 7F"},
  };
  for (const auto& c : cases) {
    c.user ? perf.OptUser_Click() : perf.OptPreset_Click();
    c.bank2 ? perf.OptBank2_Click() : perf.OptBank1_Click();
    midi.sent.clear();
    panel.CmbPrgm.pick(c.index);
    const auto sent = sentHex();
    ASSERT_GE(sent.size(), 2u);
    EXPECT_EQ(Texts(sent.begin(), sent.begin() + 2), (Texts{"F0 43 10 63 50 00 00 00 F7", c.bytes}));
  }
  EXPECT_FALSE(screen.busy);
  EXPECT_EQ(effectsRefills, 0);
  effectsVisible = true;
  panel.CmbPrgm.pick(4);
  EXPECT_EQ(effectsRefills, 1);
}

TEST_F(Selection, NameAndLayersShowWhatWasReadWithOnlySwitchValueOneOn) {
  layerSwitch = {0, 1, 2, 0x7F, 1};
  name = "Pad     ";
  perf.DspPerf();
  EXPECT_EQ(panel.CmdPrfm.caption, "Pad     ");
  EXPECT_EQ(panel.TxtLyr[0].text, "Pad     A");
  EXPECT_TRUE(panel.CmdLyr[0].enabled && panel.TxtLyr[0].enabled);
  EXPECT_EQ(panel.TxtLyr[1].text, "         ");
  EXPECT_FALSE(panel.CmdLyr[1].enabled || panel.TxtLyr[1].enabled);
  EXPECT_FALSE(panel.CmdLyr[2].enabled);
  EXPECT_EQ(panel.TxtLyr[3].text, "Pad     D");
  EXPECT_EQ(perf.LyrOnTbl[2], 2);
  EXPECT_EQ(perf.LyrOnTbl[3], 0x7F);
}

}  // namespace tessivo
