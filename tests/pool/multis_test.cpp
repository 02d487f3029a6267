// The Multi rows beyond the wiring's rows: what a Pool entry dropped on a Multi button leaves in
// the image and the Pool, the captions, the defaults that Initialise writes, and an open edit
// panel following the part last touched.
#include <gtest/gtest.h>

#include "shell/app.h"
#include "support/scripted.h"

namespace tessivo {
using test::hex;
using Texts = std::vector<std::string>;

class Assigning : public test::StartedProgram {
 protected:
  EditPanel* edit = nullptr;
  void SetUp() override {
    // One Pool entry from a Layer whose name box reads "SweepPd B" and whose volume is 100.
    StartedProgram::SetUp();
    edit = &form->edit();
    form->panel.TxtLyr[1].text = "SweepPd B";
    auto lyr2 = form->images().perf.Lyr(2);
    lyr2[16] = 100;
    lyr2[24] = 1;
    form->DragDrop("LbxLyrPool", "TxtLyr2");
    form->pool().LbxLyrPool.index = 0;
    midi.sent.clear();
  }
  std::span<std::uint8_t> section(int part, int s) {
    return form->images().multi.section(static_cast<std::size_t>(part), static_cast<std::size_t>(s));
  }
  static constexpr std::size_t kNotesOff = 2;  // what every drop sends first
  Texts afterNotesOff() const {
    const Texts all = sentHex();
    return all.size() < kNotesOff ? Texts{} : Texts(all.begin() + kNotesOff, all.end());
  }
};

TEST_F(Assigning, APoolEntryEntersTheImageAsItWentOutAndThePoolKeepsItsBytes) {
  form->row(7).CmbMult.setIndex(9);
  midi.sent.clear();
  const auto& record = form->pool().Pool[0].body;
  form->DragDrop("CmdMult7", "LbxLyrPool");
  const Texts sent = afterNotesOff();
  ASSERT_EQ(sent.size(), 5u);  // and no channel message
  const std::array<std::size_t, 5> length{52, 74, 15, 23, 13};
  for (int s = 0; s < 5; ++s) {
    const auto image = section(6, s);
    EXPECT_EQ(hex(Bytes(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(length[s]))), sent[s]) << s;
  }
  EXPECT_EQ(record[7], 0x10);  // the Pool keeps its bytes
  EXPECT_EQ(record[13], 0x10);
}

TEST_F(Assigning, OnlyAPoolEntryWithASelectionIsTakenAndItsTextIsCutOrFilledToTen) {
  for (const char* source : {"CmdMult9", "CmdMult7", "TxtLyr1", "", "CmbPrgm"}) {
    midi.sent.clear();
    form->DragDrop("CmdMult7", source);
    EXPECT_EQ(midi.sent.size(), kNotesOff) << source;
    EXPECT_EQ(form->row(7).CmdMult.caption, "Multi Part M7") << source;
  }
  form->pool().LbxLyrPool.index = -1;
  form->DragDrop("CmdMult7", "LbxLyrPool");
  EXPECT_EQ(form->row(7).CmdMult.caption, "Multi Part M7");
  form->pool().LbxLyrPool.index = 0;
  form->pool().LbxLyrPool.items[0] = "Brass";
  form->DragDrop("CmdMult10", "LbxLyrPool");
  EXPECT_EQ(form->row(10).CmdMult.caption, "Brass      M10");
  form->pool().LbxLyrPool.items[0] = "Twelve chars";
  form->DragDrop("CmdMult6", "LbxLyrPool");
  EXPECT_EQ(form->row(6).CmdMult.caption, "Twelve cha M6");
}

TEST_F(Assigning, TheOpenPanelGoesOverToThePartDroppedOnAndAHiddenOneTakesTheName) {
  edit->EditMult_Click(8);
  form->DragDrop("CmdMult6", "LbxLyrPool");
  EXPECT_EQ(edit->EdtPart, 5);
  EXPECT_EQ(edit->TxtName1.text, "SweepPd B  M6");
  EXPECT_EQ(edit->slider("SldLvVol").value, 50);  // the Layer's volume, halved
  edit->Done();
  form->DragDrop("CmdMult6", "LbxLyrPool");
  EXPECT_FALSE(edit->visible);
  // M5 reloads its hidden panel after the dumps; the others only take the name.
  edit->EditMult_Click(5);
  edit->Done();
  section(4, 0)[20] = 3;
  form->DragDrop("CmdMult5", "LbxLyrPool");
  EXPECT_FALSE(edit->visible);
  EXPECT_EQ(edit->Label34[0].text, "SweepPd B  M5");
  EXPECT_EQ(edit->slider("SldLvVol").value, 50);
  // A press on a Multi button opens its part while the panel is visible, and only then.
  form->audition().CmdMult_Press(9, form->row(9).CmbMult.index());
  EXPECT_EQ(edit->EdtPart, 4);
  edit->EditMult_Click(7);
  form->audition().CmdMult_Press(9, form->row(9).CmbMult.index());
  EXPECT_EQ(edit->EdtPart, 8);
  form->multis().InitMlt_Click(10);  // an initialised part takes the open panel with it
  EXPECT_EQ(edit->EdtPart, 9);
  EXPECT_TRUE(edit->visible);
}

TEST_F(Assigning, InitialiseWritesAndSendsTheDefaultsWithThePartsOwnNumber) {
  form->row(8).CmbMult.setIndex(2);
  midi.sent.clear();
  form->multis().InitMlt_Click(8);
  const Texts sent = sentHex();
  ASSERT_EQ(sent.size(), 6u);  // the five defaults and the list's channel
  EXPECT_EQ(sent[0].substr(0, 47), "F0 43 00 4C 00 29 08 07 00 00 00 00 00 07 01 01");
  for (int s = 0; s < 5; ++s) EXPECT_EQ(section(7, s)[7], 7) << s;
  EXPECT_EQ(section(7, 0)[13], 7);
  EXPECT_EQ(section(7, 0)[26], 0x7F);  // dry level of a new part

  // All twelve, under the busy pointer; only a list that moves sends its channel.
  for (int m = 5; m <= 16; ++m) form->row(m).CmdMult.caption = "x";
  form->row(12).CmbMult.setIndex(0);
  midi.sent.clear();
  screen.busyChanges.clear();
  form->multis().InitMltall_Click();
  ASSERT_EQ(midi.sent.size(), 60u + 1);
  EXPECT_EQ(hex(midi.sent[7 * 5 + 5]), "F0 43 10 4C 08 0B 04 0B F7");
  EXPECT_EQ(form->row(16).CmbMult.text(), " 16");
  for (int m = 5; m <= 16; ++m) EXPECT_EQ(form->row(m).CmdMult.caption, "Multi Part M" + std::to_string(m));
  EXPECT_EQ(screen.busyChanges, (std::vector<bool>{true, false}));
}

}  // namespace tessivo
