// Commands to the whole instrument: All Notes Off, Local and arpeggiator switches with their
// check marks, the performance channel, the Retrieve menu and the manual parameter fields.
#include <gtest/gtest.h>

#include "shell/about.h"
#include "shell/debug_tools.h"
#include "support/scripted.h"

namespace tessivo {
using Texts = std::vector<std::string>;

using Commands = test::StartedProgram;

TEST_F(Commands, AllNotesOffSendsControllerOnEveryChannelAndTheTestNoteOffTwice) {
  form->AllNtsOffSnd();
  ASSERT_EQ(midi.sent.size(), 2u);
  const std::string controllers = test::hex(midi.sent[0]), noteOffs = test::hex(midi.sent[1]);
  EXPECT_EQ(midi.sent[0].size(), 48u);
  EXPECT_EQ(controllers.substr(0, 17), "B0 7B 00 B1 7B 00");
  EXPECT_EQ(controllers.substr(controllers.size() - 8), "BF 7B 00");
  // The test note off on all sixteen channels, then once more on the Multi channels 5..16.
  EXPECT_EQ(midi.sent[1].size(), 84u);
  EXPECT_EQ(noteOffs.substr(0, 17), "80 43 7F 81 43 7F");
  EXPECT_EQ(noteOffs.substr(45 * 3, 17), "8F 43 7F 84 43 7F");
  EXPECT_EQ(noteOffs.substr(noteOffs.size() - 8), "8F 43 7F");
  form->CmbMidNtNo.setIndex(60);
  form->CmbMidVel.setIndex(0);
  form->AllNtsOffSnd();
  EXPECT_EQ(test::hex(Bytes(midi.sent[3].begin(), midi.sent[3].begin() + 6)), "80 3C 00 81 3C 00");
}

TEST_F(Commands, AllNotesOffMenuRenewsTheThruPathAfterASecond) {
  form->AllNtsOff_Click();
  const auto calls = midi.midiCalls();
  EXPECT_EQ(Texts(calls.end() - 4, calls.end()), (Texts{"midiDisconnect", "midiInStop", "midiConnect", "midiInStart"}));
  EXPECT_EQ(sleeps, (std::vector<int>{1000}));
  EXPECT_EQ(midi.sent.size(), 2u);
  EXPECT_FALSE(screen.busy);
  midi.failOnce("midiConnect", MMSYSERR_ERROR);
  form->AllNtsOff_Click();
  EXPECT_EQ(midi.midiCalls().back(), "midiConnect");  // no start after a failed connection
  EXPECT_EQ(screen.texts(), Texts{MidiLink::errorBoxText("Connect", "in error 1")});
}

TEST_F(Commands, LocalAndArpeggiatorToggleTheirMarksAndSendOffFirstWhileTheTransmitChannelIsOnlyAMark) {
  form->LocalOff_Click();
  EXPECT_TRUE(form->LocalOffChecked);
  form->LocalOff_Click();
  EXPECT_FALSE(form->LocalOffChecked);
  form->ArpOff_Click();
  EXPECT_TRUE(form->ArpOffChecked);
  form->ArpOff_Click();
  EXPECT_FALSE(form->ArpOffChecked);
  form->TrnsChnlAssgn_Click();
  EXPECT_TRUE(form->TrnsChnlAssgnChecked);
  EXPECT_EQ(sentHex(), (Texts{"F0 43 10 63 50 00 0B 00 F7", "F0 43 10 63 50 00 0B 01 F7", "F0 43 10 63 60 00 33 04 F7",
                              "F0 43 10 63 60 00 33 05 F7"}));
}

TEST_F(Commands, ThePerformanceChannelGoesOutAtOnceAfterTheStart) {
  app.pref().cmbPerfChnl.setIndex(9);
  EXPECT_EQ(sentHex(), Texts{"F0 43 10 63 50 00 00 09 F7"});
  EXPECT_EQ(form->images().perf.Com0()[PerfImage::kPerfChannelAt], 9);
}

TEST_F(Commands, ManualFieldsSendTheWholeNumberPartOfTheirBytesAndRefuseWhatIsNoByte) {
  form->CmdChngParm_Click();
  form->CmdRtrvParm_Click();
  form->TxtParm[1].text = "3";
  form->TxtParm[2].text = "7.9";
  form->TxtParm[3].text = " 100 ";
  form->CmdChngCntl_Click();
  EXPECT_EQ(sentHex(), (Texts{"F0 43 10 4C 00 00 00 00 F7", "F0 43 30 4C 00 00 00 F7", "B3 07 64"}));
  for (const char* bad : {"abc", "", "256", "-1", "1e9", "nan", "12x"}) {
    form->TxtParm[2].text = bad;
    form->CmdChngCntl_Click();
    form->CmdChngParm_Click();
    form->CmdRtrvParm_Click();
    EXPECT_EQ(midi.sent.size(), 3u) << bad;
  }
  EXPECT_EQ(fieldByte("255"), 255);
  EXPECT_EQ(fieldByte("0.99"), 0);
  EXPECT_EQ(fieldByte("255.5"), 255);
  EXPECT_FALSE(fieldByte("256").has_value());
}

TEST_F(Commands, RetrieveMenuReadsMultisWithoutTouchingTheirListsAndRenewsThruAfterEachBlock) {
  form->row(9).CmbMult.setIndex(6);  // once the form has filled, a new channel goes out
  EXPECT_EQ(sentHex(), (Texts{"F0 43 10 4C 08 08 04 06 F7"}));
  midi.sent.clear();
  form->RtrvMulti_Click(9);
  // The requests' own bytes are pinned with the message forms; here, which part they ask for.
  constexpr std::size_t kPartAt = 5;
  ASSERT_EQ(midi.sent.size(), 5u);
  for (const Bytes& request : midi.sent) EXPECT_EQ(request[kPartAt], 8);
  EXPECT_EQ(form->row(9).CmbMult.index(), 6);
  midi.sent.clear();
  form->RtrvAllMulti_Click();
  ASSERT_EQ(midi.sent.size(), 60u);
  for (std::size_t i = 0; i < 60; ++i) EXPECT_EQ(midi.sent[i][kPartAt], 4 + i / 5) << i;
  EXPECT_EQ(midi.calls["midiConnect"], 1 + 5 + 60);  // the form is no longer filling
  EXPECT_FALSE(screen.busy);
  midi.sent.clear();
  form->RtrvPerf_Click();
  EXPECT_EQ(midi.sent.size(), 10u);
}

}  // namespace tessivo

namespace tessivo {

TEST(About, TheVersionIsTheBuildsAndTheSystemToolIsStartedOrMissedInOneBox) {
  EXPECT_EQ(versionText(), "Version 1.2.0");
  test::Events events;
  test::ScriptedScreen screen{events};
  std::vector<std::string> started;
  auto start = [&](const std::string& tool) {
    started.push_back(tool);
    return true;
  };
  StartSysInfo(screen, [](const std::string&) { return false; }, start);
  EXPECT_EQ(screen.texts(), std::vector<std::string>{"System Information Is Unavailable At This Time"});
  EXPECT_TRUE(started.empty());
  StartSysInfo(screen, [](const std::string& tool) { return tool == "gnome-system-monitor" || tool == "mate-system-monitor"; },
               start);
  EXPECT_EQ(started, std::vector<std::string>{"gnome-system-monitor"});
  EXPECT_EQ(screen.boxes.size(), 1u);
  EXPECT_TRUE(onPath("sh"));
  EXPECT_FALSE(onPath("no-such-program-here"));
}

}  // namespace tessivo

namespace tessivo {

TEST(SysExListing, EachByteAQuotedLineAndABlankLineBehindEveryF7) {
  const Bytes bytes{0xF0, 0x43, 0x20, 0x22, 0xF7};
  const std::string text = sysExListing(bytes);
  const std::string expected = std::string("\"Sys Ex    0   0    240  F0  \xF0\"\r\n") +
                               "\"Sys Ex    1   1    67  43  C\"\r\n" + "\"Sys Ex    2   2    32  20   \"\r\n" +
                               "\"Sys Ex    3   3    34  22  \"\"\r\n" + "\"Sys Ex    4   4    247  F7  \xF7\"\r\n" + "\" \"\r\n";
  EXPECT_EQ(text, expected);
  EXPECT_EQ(sysExListing({}), "");
  // A source longer than the limit is listed up to it.
  const Bytes big(kSysExListingLimit + 10, 0x41);
  const std::string listed = sysExListing(big);
  EXPECT_NE(listed.find("\"Sys Ex    A410   42000    65  41  A\"\r\n"), std::string::npos);
  EXPECT_EQ(listed.find("42001    65"), std::string::npos);
}

}  // namespace tessivo
