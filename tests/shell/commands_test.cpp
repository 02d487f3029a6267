// Commands to the whole instrument beyond what the wiring of the forms sees: the pause and thru
// renewal of All Notes Off, switching back on, the manual fields' refusals, the thru renewal
// after each retrieved block, the About box's tool and the Sys-Ex listing.
#include <gtest/gtest.h>

#include "shell/about.h"
#include "shell/debug_tools.h"
#include "support/scripted.h"

namespace tessivo {
using Texts = std::vector<std::string>;

using Commands = test::StartedProgram;

TEST_F(Commands, AllNotesOffMenuRenewsTheThruPathAfterASecond) {
  form->AllNtsOff_Click();
  const auto calls = midi.midiCalls();
  EXPECT_EQ(Texts(calls.end() - 4, calls.end()), (Texts{"midiDisconnect", "midiInStop", "midiConnect", "midiInStart"}));
  EXPECT_EQ(sleeps, (std::vector<int>{1000}));
  EXPECT_FALSE(screen.busy);
  midi.failOnce("midiConnect", MMSYSERR_ERROR);
  form->AllNtsOff_Click();
  EXPECT_EQ(midi.midiCalls().back(), "midiConnect");  // no start after a failed connection
  EXPECT_EQ(screen.texts(), Texts{MidiLink::errorBoxText("Connect", "in error 1")});
}

TEST_F(Commands, LocalAndArpeggiatorSwitchBackOnAndThePerformanceChannelEntersTheImage) {
  form->LocalOff_Click();
  form->LocalOff_Click();
  form->ArpOff_Click();
  form->ArpOff_Click();
  EXPECT_FALSE(form->LocalOffChecked);
  EXPECT_FALSE(form->ArpOffChecked);
  EXPECT_EQ(sentHex(), (Texts{"F0 43 10 63 50 00 0B 00 F7", "F0 43 10 63 50 00 0B 01 F7", "F0 43 10 63 60 00 33 04 F7",
                              "F0 43 10 63 60 00 33 05 F7"}));
  app.pref().cmbPerfChnl.setIndex(9);
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
  EXPECT_EQ(fieldByte("255.5"), 255);
  EXPECT_EQ(fieldByte("0.99"), 0);
}

TEST_F(Commands, RetrieveMenuRenewsThruAfterEachBlock) {
  form->RtrvMulti_Click(9);
  form->RtrvAllMulti_Click();
  EXPECT_EQ(midi.sent.size(), 65u);
  EXPECT_EQ(midi.calls["midiConnect"], 1 + 5 + 60);  // the start's and one a block
  EXPECT_FALSE(screen.busy);
}

TEST(About, TheSystemToolIsStartedOrMissedInOneBox) {
  test::Events events;
  test::ScriptedScreen screen{events};
  Texts started;
  auto start = [&](const std::string& tool) {
    started.push_back(tool);
    return true;
  };
  StartSysInfo(screen, [](const std::string&) { return false; }, start);
  EXPECT_EQ(screen.texts(), Texts{"System Information Is Unavailable At This Time"});
  EXPECT_TRUE(started.empty());
  StartSysInfo(screen, [](const std::string& tool) { return tool == "gnome-system-monitor" || tool == "mate-system-monitor"; },
               start);
  EXPECT_EQ(started, Texts{"gnome-system-monitor"});
  EXPECT_EQ(screen.boxes.size(), 1u);
  EXPECT_TRUE(onPath("sh"));
  EXPECT_FALSE(onPath("no-such-program-here"));
}

TEST(SysExListing, EachByteAQuotedLineAndABlankLineBehindEveryF7) {
  const std::string expected = std::string("\"Sys Ex    0   0    240  F0  \xF0\"\r\n") +
                               "\"Sys Ex    1   1    67  43  C\"\r\n" + "\"Sys Ex    2   2    32  20   \"\r\n" +
                               "\"Sys Ex    3   3    34  22  \"\"\r\n" + "\"Sys Ex    4   4    247  F7  \xF7\"\r\n" + "\" \"\r\n";
  EXPECT_EQ(sysExListing(Bytes{0xF0, 0x43, 0x20, 0x22, 0xF7}), expected);
  EXPECT_EQ(sysExListing({}), "");
  // A source longer than the limit is listed up to it.
  const std::string listed = sysExListing(Bytes(kSysExListingLimit + 10, 0x41));
  EXPECT_NE(listed.find("\"Sys Ex    A410   42000    65  41  A\"\r\n"), std::string::npos);
  EXPECT_EQ(listed.find("42001    65"), std::string::npos);
}

}  // namespace tessivo
