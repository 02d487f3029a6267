// Audition beyond the wiring's rows: a Layer's siblings come back as they were, the transmit
// channel taken over by a press, and no test note sends nothing.
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

TEST_F(Auditioning, WithTheTransmitChannelMarkedAPressTakesItToItsChannel) {
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
}

TEST_F(Auditioning, NoTestNoteSendsNothing) {
  form->CmbMidNtNo.clear();
  form->audition().CmdPrfm_Press();
  form->audition().CmdLyr_Press(1);
  form->audition().CmdMult_Press(5, 0);
  EXPECT_TRUE(midi.sent.empty());
}

}  // namespace tessivo
