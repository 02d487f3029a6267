// Audition: the bytes of a press and a release on the Performance, Layer and Multi buttons,
// the transmit channel, and the sliders that mirror the test note lists.
#include <gtest/gtest.h>

#include "support/scripted.h"

namespace tessivo {
using Texts = std::vector<std::string>;

using Auditioning = test::StartedProgram;

TEST_F(Auditioning, ALayerIsHeardAloneInOneMessageAndTheOthersComeBackAsTheyWere) {
  form->performance().LyrOnTbl = {0, 1, 1, 1, 0};
  form->audition().CmdLyr_Press(2);
  form->audition().CmdLyr_Release(2);
  EXPECT_EQ(sentHex(), (Texts{"F0 43 10 63 60 01 16 00 F7 F0 43 10 63 60 03 16 00 F7 F0 43 10 63 60 04 16 00 F7 90 43 7F",
                              "F0 43 10 63 60 01 16 01 F7 F0 43 10 63 60 03 16 01 F7 F0 43 10 63 60 04 16 00 F7 80 43 7F"}));
}

TEST_F(Auditioning, PerformanceAndMultiSoundOnTheirChannelsAndCanTakeTheTransmitChannel) {
  app.pref().cmbPerfChnl.setIndex(2);
  form->row(7).CmbMult.setIndex(9);
  midi.sent.clear();
  form->TrnsChnlAssgn_Click();
  form->audition().CmdPrfm_Press();
  form->audition().CmdPrfm_Release();
  form->audition().CmdLyr_Press(4);
  form->audition().CmdMult_Press(7, form->row(7).CmbMult.index());
  const auto sent = sentHex();
  ASSERT_EQ(sent.size(), 7u);
  EXPECT_EQ(Texts(sent.begin(), sent.begin() + 3), (Texts{"92 43 7F", "F0 43 10 63 50 00 0A 00 F7", "82 43 7F"}));
  EXPECT_EQ(sent[4], "F0 43 10 63 50 00 0A 00 F7");  // 00 for a Layer too
  EXPECT_EQ(Texts(sent.begin() + 5, sent.end()), (Texts{"99 43 7F", "F0 43 10 63 50 00 0A 09 F7"}));
  // A click without moving: the drop on the button itself ends the note, and nothing else.
  midi.sent.clear();
  form->DragDrop("CmdMult7", "CmdMult7");
  ASSERT_EQ(midi.sent.size(), 2u);
  EXPECT_EQ(midi.sent[0], allNotesOffSequence());
  EXPECT_EQ(midi.sent[1].size(), 84u);
  EXPECT_TRUE(form->pool().LbxLyrPool.items.empty());
}

TEST_F(Auditioning, TheTestNoteComesFromTheListsWhichTheSlidersMirrorAndNoNoteSendsNothing) {
  form->CmbMidNtNo.setIndex(60);
  EXPECT_EQ(form->SldNt.value, 67);
  form->SldNt.value = 127;
  form->SldNt_Scroll();
  EXPECT_EQ(form->CmbMidNtNo.index(), 0);
  form->SldNt.value = 0;
  form->SldNt_Scroll();
  EXPECT_EQ(form->CmbMidNtNo.index(), 127);
  form->SldVel.value = 27;
  form->SldVel_Scroll();
  EXPECT_EQ(form->CmbMidVel.index(), 100);
  form->audition().CmdPrfm_Press();
  EXPECT_EQ(sentHex(), Texts{"90 7F 64"});

  midi.sent.clear();
  form->CmbMidNtNo.clear();
  form->audition().CmdPrfm_Press();
  form->audition().CmdLyr_Press(1);
  form->audition().CmdMult_Press(5, 0);
  EXPECT_TRUE(midi.sent.empty());
}

}  // namespace tessivo
