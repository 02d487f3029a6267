// Commands to the whole instrument: All Notes Off, Local and arpeggiator switches with their
// check marks, the performance channel, the Retrieve menu and the manual parameter fields.
#include <gtest/gtest.h>

#include "shell/app.h"
#include "support/scripted.h"

namespace tessivo {
using test::hex;

class Commands : public ::testing::Test, protected test::ScriptedProgram {
 protected:
  MainForm* form = nullptr;

  void SetUp() override {
    form = &start();
    events.clear();
    midi.sent.clear();
    sleeps.clear();
  }
};

TEST_F(Commands, AllNotesOffSendsBothSequencesWithTheTestNote) {
  form->AllNtsOffSnd();
  ASSERT_EQ(midi.sent.size(), 2u);
  ASSERT_EQ(midi.sent[0].size(), 48u);
  EXPECT_EQ(hex(Bytes(midi.sent[0].begin(), midi.sent[0].begin() + 6)), "B0 7B 00 B1 7B 00");
  EXPECT_EQ(hex(Bytes(midi.sent[0].end() - 3, midi.sent[0].end())), "BF 7B 00");
  const Bytes& offs = midi.sent[1];
  ASSERT_EQ(offs.size(), 84u);
  EXPECT_EQ(hex(Bytes(offs.begin(), offs.begin() + 6)), "80 43 7F 81 43 7F");
  EXPECT_EQ(hex(Bytes(offs.begin() + 48, offs.begin() + 51)), "84 43 7F");  // channels 5..16 again
  EXPECT_EQ(hex(Bytes(offs.end() - 6, offs.end())), "8E 43 7F 8F 43 7F");
  form->CmbMidNtNo.setIndex(60);
  form->CmbMidVel.setIndex(0);
  form->AllNtsOffSnd();
  EXPECT_EQ(hex(Bytes(midi.sent[3].begin(), midi.sent[3].begin() + 3)), "80 3C 00");
}

TEST_F(Commands, AllNotesOffMenuRenewsTheThruPathAfterASecond) {
  form->AllNtsOff_Click();
  const auto calls = midi.midiCalls();
  std::vector<std::string> tail(calls.end() - 4, calls.end());
  EXPECT_EQ(tail, (std::vector<std::string>{"midiDisconnect", "midiInStop", "midiConnect", "midiInStart"}));
  EXPECT_EQ(sleeps, (std::vector<int>{1000}));
  EXPECT_EQ(midi.sent.size(), 2u);
  EXPECT_FALSE(screen.busy);
  midi.failOnce("midiConnect", MMSYSERR_ERROR);
  form->AllNtsOff_Click();
  EXPECT_EQ(midi.midiCalls().back(), "midiConnect");  // no start after a failed connection
  EXPECT_EQ(screen.boxes.back().text, MidiLink::errorBoxText("Connect", "in error 1"));
}

TEST_F(Commands, LocalAndArpeggiatorToggleTheirMarksAndSendOffFirst) {
  form->LocalOff_Click();
  EXPECT_TRUE(form->LocalOffChecked);
  form->LocalOff_Click();
  EXPECT_FALSE(form->LocalOffChecked);
  form->ArpOff_Click();
  EXPECT_TRUE(form->ArpOffChecked);
  form->ArpOff_Click();
  EXPECT_FALSE(form->ArpOffChecked);
  ASSERT_EQ(midi.sent.size(), 4u);
  EXPECT_EQ(hex(midi.sent[0]), "F0 43 10 63 50 00 0B 00 F7");
  EXPECT_EQ(hex(midi.sent[1]), "F0 43 10 63 50 00 0B 01 F7");
  EXPECT_EQ(hex(midi.sent[2]), "F0 43 10 63 60 00 33 04 F7");
  EXPECT_EQ(hex(midi.sent[3]), "F0 43 10 63 60 00 33 05 F7");
  form->TrnsChnlAssgn_Click();
  EXPECT_TRUE(form->TrnsChnlAssgnChecked);
  EXPECT_EQ(midi.sent.size(), 4u);  // only a mark
}

TEST_F(Commands, ThePerformanceChannelGoesOutAtOnceAfterTheStart) {
  app.pref().cmbPerfChnl.setIndex(9);
  ASSERT_EQ(midi.sent.size(), 1u);
  EXPECT_EQ(hex(midi.sent[0]), "F0 43 10 63 50 00 00 09 F7");
  EXPECT_EQ(form->images().perf.Com0()[PerfImage::kPerfChannelAt], 9);
}

TEST_F(Commands, ManualFieldsSendTheirBytesAndRefuseWhatIsNoByte) {
  form->CmdChngParm_Click();
  form->CmdRtrvParm_Click();
  ASSERT_EQ(midi.sent.size(), 2u);
  EXPECT_EQ(hex(midi.sent[0]), "F0 43 10 4C 00 00 00 00 F7");
  EXPECT_EQ(hex(midi.sent[1]), "F0 43 30 4C 00 00 00 F7");
  form->TxtParm[1].text = "3";
  form->TxtParm[2].text = "7.9";
  form->TxtParm[3].text = " 100 ";
  form->CmdChngCntl_Click();
  ASSERT_EQ(midi.sent.size(), 3u);
  EXPECT_EQ(hex(midi.sent[2]), "B3 07 64");
  for (const char* bad : {"abc", "", "256", "-1", "1e9", "nan", "12x"}) {
    form->TxtParm[2].text = bad;
    form->CmdChngCntl_Click();
    form->CmdChngParm_Click();
    form->CmdRtrvParm_Click();
    EXPECT_EQ(midi.sent.size(), 3u) << bad;
  }
}

TEST(FieldByte, WholeNumberPartOfADecimalByte) {
  EXPECT_EQ(fieldByte("76"), 76);
  EXPECT_EQ(fieldByte("255"), 255);
  EXPECT_EQ(fieldByte("0.99"), 0);
  EXPECT_EQ(fieldByte(" 12"), 12);
  EXPECT_FALSE(fieldByte("255.5").has_value() && *fieldByte("255.5") != 255);
  EXPECT_FALSE(fieldByte("256").has_value());
  EXPECT_FALSE(fieldByte("x").has_value());
}

TEST_F(Commands, RetrieveMenuReadsMultisWithoutTouchingTheirLists) {
  form->row(9).CmbMult.setIndex(6);
  form->RtrvMulti_Click(9);
  ASSERT_EQ(midi.sent.size(), 5u);
  EXPECT_EQ(hex(midi.sent[0]), "F0 43 20 4C 08 08 00 F7");
  EXPECT_EQ(form->row(9).CmbMult.index(), 6);
  midi.sent.clear();
  form->RtrvAllMulti_Click();
  ASSERT_EQ(midi.sent.size(), 60u);
  EXPECT_EQ(hex(midi.sent[0]), "F0 43 20 4C 08 04 00 F7");
  EXPECT_EQ(hex(midi.sent[59]), "F0 43 20 4C 0A 0F 20 F7");
  // After each block the thru path comes back, as the form is no longer filling.
  EXPECT_EQ(midi.calls["midiConnect"], 1 + 5 + 60);
  EXPECT_FALSE(screen.busy);
  midi.sent.clear();
  form->RtrvPerf_Click();
  EXPECT_EQ(midi.sent.size(), 10u);
}

}  // namespace tessivo
