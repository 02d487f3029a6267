// The effects panel on a started program: opening sends nothing and shows Com2, the type lists
// send without writing Com2, Bypass and Reset byte for byte, Done ends the notes.
#include <gtest/gtest.h>

#include "data/tables.h"
#include "shell/app.h"
#include "support/scripted.h"

namespace tessivo {
using test::hex;
using Texts = std::vector<std::string>;

class Effects : public test::StartedProgram {
 protected:
  EffectsPanel* fx = nullptr;
  void SetUp() override {
    StartedProgram::SetUp();
    fx = &form->effects();
    // A Com2 dump as the instrument sends it: reverb HALL 2 (01 01), chorus CHORUS 2 (41 01),
    // variation DELAY L,C,R (05 00), sends 10, 20, 30, and a checksum byte of 55.
    Bytes com2{0xF0, 0x43, 0x00, 0x63, 0x00, 0x17, 0x60, 0x00, 0x40, 0x01, 0x01, 0x41, 0x01, 0x05, 0x00};
    com2.resize(29, 0x40);
    com2.insert(com2.end(), {10, 20, 30, 0x40, 0x55, 0xF7});
    com2.push_back(0);
    std::copy(com2.begin(), com2.end(), form->images().perf.Com2().begin());
  }
  Bytes com2() { return Bytes(form->images().perf.Com2().begin(), form->images().perf.Com2().end()); }
  Bytes copy(std::span<std::uint8_t> c) { return Bytes(c.begin(), c.end()); }
  std::string com2Dump() {
    const Bytes all = com2();
    return hex(Bytes(all.begin(), all.begin() + 34));
  }
};

TEST_F(Effects, OpeningShowsCom2AndSendsNothing) {
  fx->EditEffcts_Click();
  EXPECT_EQ(fx->CmbRvrb.text(), "HALL 2      ");
  EXPECT_EQ(fx->CmbChrs.text(), "CHORUS 2        ");
  ASSERT_GE(fx->CmbVar.index(), 0);
  EXPECT_EQ(hex(Bytes{VarTbl[static_cast<std::size_t>(fx->CmbVar.index())].high, VarTbl[static_cast<std::size_t>(fx->CmbVar.index())].low}), "05 00");
  EXPECT_EQ((Texts{fx->text(0).text, fx->text(1).text, fx->text(2).text}), (Texts{"10", "20", "30"}));
  // A type in no row leaves an earlier selection; with none yet, row 0 shows.
  form->images().perf.Com2()[9] = 0x7E;
  fx->EditEffcts_Click();
  EXPECT_EQ(fx->CmbRvrb.text(), "HALL 2      ");
  fx->CmbChrs.clear();
  fx->fillLists();
  form->images().perf.Com2()[11] = 0x7E;
  fx->EditEffcts_Click();
  EXPECT_EQ(fx->CmbChrs.index(), 0);
  EXPECT_TRUE(midi.sent.empty());
}

TEST_F(Effects, ATypeChosenGoesOutAndWritesNothingSoBypassBringsBackWhatCom2Holds) {
  fx->EditEffcts_Click();
  fx->CmbRvrb.pick(3);  // goes to the instrument only (its bytes: the wiring table)
  const Bytes held = com2();
  midi.sent.clear();
  fx->ChkEffByPass.toggle();
  EXPECT_EQ(copy(form->images().perf.EffBypCopy()), held);
  // A send moved while bypassed changes Com2 and the instrument; Bypass off takes it back.
  midi.sent.clear();
  fx->slider(1).value = 99;
  form->edit().MouseUp(kFirstEffectSlider + 1);
  EXPECT_EQ(sentHex(), Texts{"F0 43 10 63 60 00 55 63 F7"});
  EXPECT_EQ(com2()[30], 99);
  midi.sent.clear();
  fx->ChkEffByPass.toggle();
  EXPECT_EQ(com2(), held);
  EXPECT_EQ(sentHex(), Texts{com2Dump()});  // the whole dump, its checksum as held
  EXPECT_EQ(fx->CmbRvrb.index(), 3);         // the list still shows the one chosen
  EXPECT_TRUE(fx->CmbVar.enabled);
}

TEST_F(Effects, ResetWithBypassOnSendsTheDumpTwiceAndReturnsToTheOpening) {
  fx->EditEffcts_Click();
  const Bytes opened = com2();
  fx->slider(0).value = 77;
  form->edit().MouseUp(kFirstEffectSlider);
  fx->ChkEffByPass.toggle();
  const Bytes bypassed = com2();
  midi.sent.clear();
  fx->CmdEffReset_Click();
  ASSERT_EQ(midi.sent.size(), 2u);
  EXPECT_EQ(hex(midi.sent[0]), hex(Bytes(bypassed.begin(), bypassed.begin() + 34)));
  EXPECT_EQ(hex(midi.sent[1]), hex(Bytes(opened.begin(), opened.begin() + 34)));
  EXPECT_EQ(com2(), opened);
  EXPECT_EQ(fx->ChkEffByPass.value(), 0);
  EXPECT_EQ(fx->text(0).text, "10");
}

}  // namespace tessivo
