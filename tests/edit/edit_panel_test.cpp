// The edit panel on a started program: each slider family's byte, message and text with the
// instrument's worked values, the EQ gain's round trip, what opening a part loads and echoes,
// the voice change's stops, and the name rule.
#include <gtest/gtest.h>

#include "shell/app.h"
#include "support/scripted.h"

namespace tessivo {
using test::hex;
using Texts = std::vector<std::string>;

class Editing : public test::StartedProgram {
 protected:
  EditPanel* edit = nullptr;
  void SetUp() override {
    StartedProgram::SetUp();
    edit = &form->edit();
  }
  // The user drags `control` to `value` and lets go; returns what went out.
  Texts release(std::string_view control, int value) {
    midi.sent.clear();
    const std::size_t row = *sliderRow(control);
    edit->sliders[row].value = value;
    edit->Scroll(row);
    edit->MouseUp(row);
    return sentHex();
  }
  std::string text(std::string_view control) { return edit->texts[*sliderRow(control)].text; }
  std::span<std::uint8_t> section(int part, int s) {
    return form->images().multi.section(static_cast<std::size_t>(part), static_cast<std::size_t>(s));
  }
  void open(int multi) {
    edit->EditMult_Click(multi);
    midi.sent.clear();
  }
};

TEST_F(Editing, EachFamilyStoresItsByteSendsItsMessageAndShowsItsText) {
  open(7);
  EXPECT_EQ(release("SldEgAttk", -10), Texts{"F0 43 10 4C 08 06 1A 36 F7"});
  EXPECT_EQ(section(6, 0)[35], 0x36);
  EXPECT_EQ(text("SldEgAttk"), "-10");
  EXPECT_EQ(release("SldLvVol", 99), Texts{"F0 43 10 4C 08 06 0B 63 F7"});
  EXPECT_EQ(section(6, 0)[20], 99);
  EXPECT_EQ(text("SldLvVol"), "99");
  // Pan 0 is random pan: its own text, sent as any other value.
  EXPECT_EQ(release("SldLvPan", 0), Texts{"F0 43 10 4C 08 06 0E 00 F7"});
  EXPECT_EQ(text("SldLvPan"), "Rand");
  release("SldLvPan", 1);
  EXPECT_EQ(text("SldLvPan"), "1");
  // The high-pass filter is the one slider at 0A pp 20, section 4.
  EXPECT_EQ(release("SldEqHPF", 5), Texts{"F0 43 10 4C 0A 06 20 45 F7"});
  EXPECT_EQ(section(6, 4)[9], 0x45);
  // Detune: two nibbles of value + 128, high first, shown in tenths.
  EXPECT_EQ(release("SldNtDtn", -1), Texts{"F0 43 10 4C 08 06 09 07 0F F7"});
  EXPECT_EQ(hex(Bytes{section(6, 0)[18], section(6, 0)[19]}), "07 0F");
  EXPECT_EQ(text("SldNtDtn"), "-0.1");
  release("SldNtDtn", 127);
  EXPECT_EQ(text("SldNtDtn"), "12.7");
  EXPECT_EQ(hex(Bytes{section(6, 0)[18], section(6, 0)[19]}), "0F 0F");
  release("SldNtDtn", -128);
  EXPECT_EQ(text("SldNtDtn"), "-12.8");
  release("SldNtDtn", 5);
  EXPECT_EQ(text("SldNtDtn"), "0.5");
  release("SldNtDtn", 0);
  EXPECT_EQ(text("SldNtDtn"), "0");
  // Frequencies share one table of texts.
  EXPECT_EQ(release("SldEqBFreq", 4), Texts{"F0 43 10 4C 08 06 76 04 F7"});
  EXPECT_EQ(text("SldEqBFreq"), "  32 Hz");
  EXPECT_EQ(section(6, 3)[11], 4);
  release("SldEqTFreq", 58);
  EXPECT_EQ(text("SldEqTFreq"), "16.0KHz");
  // The effects panel's sends work on Com2 of the Performance, model 63.
  EXPECT_EQ(release("SldEffVarChrSnd", 100), Texts{"F0 43 10 63 60 00 56 64 F7"});
  EXPECT_EQ(form->images().perf.Com2()[31], 100);
  EXPECT_EQ(section(6, 0)[31], section(7, 0)[31]);  // no Multi byte touched by it
}

TEST_F(Editing, EqGainStoresAndSendsTheSameByteAndEveryGainComesBackAsItself) {
  open(5);
  EXPECT_EQ(release("SldEqBGain", 5), Texts{"F0 43 10 4C 08 04 72 5A F7"});
  EXPECT_EQ(section(4, 2)[11], 0x5A);
  EXPECT_EQ(release("SldEqTGain", 0), Texts{"F0 43 10 4C 08 04 73 40 F7"});
  EXPECT_EQ(text("SldEqTGain"), " 0db");
  release("SldEqTGain", -7);
  EXPECT_EQ(text("SldEqTGain"), "-7db");
  const Bytes expected{0, 5, 10, 16, 21, 26, 32, 37, 42, 48, 53, 58, 64, 69, 74, 79, 85, 90, 95, 101, 106, 111, 117, 122, 127};
  for (int gain = -12; gain <= 12; ++gain) {
    EXPECT_EQ(eqGainByte(gain), expected[static_cast<std::size_t>(gain + 12)]) << gain;
    EXPECT_EQ(eqGainValue(eqGainByte(gain)), gain);
  }
  // A byte from the instrument between the steps gives the gain whose range holds it.
  for (int b = 63; b <= 68; ++b) EXPECT_EQ(eqGainValue(static_cast<std::uint8_t>(b)), 0) << b;
  for (int b = 69; b <= 73; ++b) EXPECT_EQ(eqGainValue(static_cast<std::uint8_t>(b)), 1) << b;
}

TEST_F(Editing, MovingWritesTheTextOnlyAndEveryReleaseSendsEvenTheSameValue) {
  open(9);
  const std::size_t row = *sliderRow("SldEffRvrb");
  edit->sliders[row].value = 90;
  edit->Scroll(row);
  EXPECT_EQ(text("SldEffRvrb"), "90");
  EXPECT_TRUE(midi.sent.empty());
  EXPECT_NE(section(8, 0)[28], 90);
  edit->MouseUp(row);
  edit->MouseUp(row);
  EXPECT_EQ(sentHex(), (Texts{"F0 43 10 4C 08 08 13 5A F7", "F0 43 10 4C 08 08 13 5A F7"}));
}

TEST_F(Editing, OpeningAPartLoadsEveryControlAndEchoesOnlyOptionsThatChange) {
  auto s0 = section(5, 0);
  s0[20] = 99;       // volume
  s0[35] = 0x36;     // EG attack -10
  s0[10] = 0;        // voice 0 / 112 / 5
  s0[11] = 112;
  s0[12] = 5;
  s0[14] = 0;        // mono
  s0[16] = 2;        // Drum1
  section(5, 2)[11] = 0x5A;  // bass gain 5
  section(5, 1)[64] = 1;     // portamento on
  form->row(6).CmdMult.caption = "Strings    M6";
  edit->EditMult_Click(6);
  EXPECT_TRUE(edit->visible);
  EXPECT_EQ(edit->EdtPart, 5);
  EXPECT_EQ(edit->slider("SldLvVol").value, 99);
  EXPECT_EQ(text("SldLvVol"), "99");
  EXPECT_EQ(edit->slider("SldEgAttk").value, -10);
  EXPECT_EQ(text("SldEqBGain"), " 5db");
  EXPECT_EQ(text("SldNtShft"), "64");  // a plain slider shows the raw byte
  EXPECT_EQ((Texts{edit->TxtMsb.text, edit->TxtLsb.text, edit->TxtPrg.text}), (Texts{"0", "112", "5"}));
  EXPECT_EQ(edit->TxtName1.text, "Strings    M6");
  EXPECT_EQ(edit->Label34[1].text, "Strings    M6");
  EXPECT_EQ(form->row(6).CmdMult.caption, "Strings    M6");
  // Only the check box and the options raise their clicks from code, each storing and sending
  // the byte it shows; sliders send nothing.
  EXPECT_EQ(sentHex(), (Texts{"F0 43 10 4C 08 05 67 01 F7", "F0 43 10 4C 08 05 06 01 F7", "F0 43 10 4C 08 05 05 00 F7",
                              "F0 43 10 4C 08 05 07 02 F7"}));
  // The same bytes on M7: nothing changes on the panel, nothing goes out.
  for (int s = 0; s < 5; ++s) {
    auto from = section(5, s), to = section(6, s);
    std::copy(from.begin() + 9, from.end(), to.begin() + 9);
  }
  midi.sent.clear();
  edit->EditMult_Click(7);
  EXPECT_TRUE(midi.sent.empty());
  EXPECT_EQ(edit->EdtPart, 6);
  EXPECT_EQ(edit->TxtName1.text, "Multi Part M7");
  // Only M5 has a variation send on the panel; the others keep its value on show.
  EXPECT_FALSE(edit->slider("SldEffVar").enabled);
  edit->EditMult_Click(5);
  EXPECT_TRUE(edit->slider("SldEffVar").enabled);
  // Done hides the panel and keeps its part.
  edit->Done();
  EXPECT_FALSE(edit->visible);
  EXPECT_EQ(edit->EdtPart, 4);
}

TEST_F(Editing, AVoiceChangesOnlyWhenAllThreeBoxesHoldNumbersFrom0To127) {
  open(8);
  const auto voice = [&] { return hex(Bytes{section(7, 0)[10], section(7, 0)[11], section(7, 0)[12]}); };
  const std::string before = voice();
  for (const auto& [msb, lsb, prg] : std::vector<std::array<const char*, 3>>{
           {"0", "0", "128"}, {"-0.5", "0", "1"}, {"abc", "0", "1"}, {"1", "", "1"}, {"1", "2", "3x"}}) {
    edit->TxtMsb.text = msb;
    edit->TxtLsb.text = lsb;
    edit->TxtPrg.text = prg;
    edit->CmdVocChng_Click();
    EXPECT_EQ(voice(), before) << msb << " " << lsb << " " << prg;
    EXPECT_TRUE(midi.sent.empty());
    EXPECT_EQ(edit->TxtPrg.text, prg);  // the box keeps what was typed
  }
  EXPECT_TRUE(screen.boxes.empty());
  edit->TxtMsb.text = "12.9";
  edit->TxtLsb.text = "0";
  edit->TxtPrg.text = "127.9";
  edit->CmdVocChng_Click();
  EXPECT_EQ(voice(), "0C 00 7F");
  EXPECT_EQ(sentHex(), Texts{"F0 43 10 4C 08 07 01 0C F7 F0 43 10 4C 08 07 02 00 F7 F0 43 10 4C 08 07 03 7F F7"});
}

TEST_F(Editing, TheNameIsTheFirstTenCharactersOfTheBoxBeforeThePartsSuffix) {
  open(10);
  const auto typed = [&](const std::string& text) {
    edit->TxtName1.text = text;
    edit->TxtName1_Change();
    return form->row(10).CmdMult.caption;
  };
  EXPECT_EQ(typed("Warm Pad"), "Warm Pad   M10");
  EXPECT_EQ(edit->Label34[0].text, "Warm Pad   M10");
  EXPECT_EQ(typed("Twelve chars"), "Twelve cha M10");
  EXPECT_EQ(typed(""), "           M10");
  EXPECT_EQ(typed("Señor Ståål!"), "Señor Ståå M10");  // characters, not bytes
  EXPECT_EQ(edit->TxtName1.text, "Señor Ståål!");      // the box keeps what was typed
  EXPECT_TRUE(midi.sent.empty());
  // A part never opened has no caption to change.
  form->edit().EdtPart = 0;
  typed("Nobody");
  for (int m = kFirstMulti; m <= kLastMulti; ++m)
    if (m != 10) {
      EXPECT_EQ(form->row(m).CmdMult.caption, "Multi Part M" + std::to_string(m)) << m;
    }
}

}  // namespace tessivo
