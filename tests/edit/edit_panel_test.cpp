// The edit panel's logic with the worked values the instrument's parameters are known by: each
// slider family's byte, message and text, the EQ gain's round trip, what opening a part loads
// and echoes, the voice change's stops and the name rule. The wiring table drives the same
// panel through its widgets.
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
  std::span<std::uint8_t> section(int part, int s) {
    return form->images().multi.section(static_cast<std::size_t>(part), static_cast<std::size_t>(s));
  }
};

TEST_F(Editing, EachFamilyStoresItsByteSendsItsMessageAndShowsItsText) {
  edit->EditMult_Click(7);
  struct Case {
    const char* control;
    int value;
    const char* message;
    int section;
    std::size_t at, bytes;
    const char* stored;
    const char* text;
  };
  for (const Case& c : std::vector<Case>{
           {"SldEgAttk", -10, "F0 43 10 4C 08 06 1A 36 F7", 0, 35, 1, "36", "-10"},
           {"SldLvVol", 99, "F0 43 10 4C 08 06 0B 63 F7", 0, 20, 1, "63", "99"},
           {"SldLvPan", 0, "F0 43 10 4C 08 06 0E 00 F7", 0, 23, 1, "00", "Rand"},  // random pan
           {"SldLvPan", 1, "F0 43 10 4C 08 06 0E 01 F7", 0, 23, 1, "01", "1"},
           {"SldEqHPF", 5, "F0 43 10 4C 0A 06 20 45 F7", 4, 9, 1, "45", "5"},  // the one at 0A pp 20
           {"SldNtDtn", -1, "F0 43 10 4C 08 06 09 07 0F F7", 0, 18, 2, "07 0F", "-0.1"},
           {"SldNtDtn", 127, "F0 43 10 4C 08 06 09 0F 0F F7", 0, 18, 2, "0F 0F", "12.7"},
           {"SldNtDtn", -128, "F0 43 10 4C 08 06 09 00 00 F7", 0, 18, 2, "00 00", "-12.8"},
           {"SldNtDtn", 5, "F0 43 10 4C 08 06 09 08 05 F7", 0, 18, 2, "08 05", "0.5"},
           {"SldNtDtn", 0, "F0 43 10 4C 08 06 09 08 00 F7", 0, 18, 2, "08 00", "0"},
           {"SldEqBFreq", 4, "F0 43 10 4C 08 06 76 04 F7", 3, 11, 1, "04", "  32 Hz"},
           {"SldEqTFreq", 58, "F0 43 10 4C 08 06 77 3A F7", 3, 12, 1, "3A", "16.0KHz"},
           {"SldEqBGain", 5, "F0 43 10 4C 08 06 72 5A F7", 2, 11, 1, "5A", " 5db"},
           {"SldEqTGain", 0, "F0 43 10 4C 08 06 73 40 F7", 2, 12, 1, "40", " 0db"},
           {"SldEqTGain", -7, "F0 43 10 4C 08 06 73 1A F7", 2, 12, 1, "1A", "-7db"}}) {
    SCOPED_TRACE(std::string(c.control) + " " + std::to_string(c.value));
    midi.sent.clear();
    const std::size_t row = *sliderRow(c.control);
    edit->sliders[row].value = c.value;
    edit->Scroll(row);
    EXPECT_EQ(edit->texts[row].text, c.text);
    edit->MouseUp(row);
    EXPECT_EQ(sentHex(), Texts{c.message});
    const auto s = section(6, c.section);
    EXPECT_EQ(hex(Bytes(s.begin() + static_cast<std::ptrdiff_t>(c.at), s.begin() + static_cast<std::ptrdiff_t>(c.at + c.bytes))), c.stored);
  }
  // The effects panel's sends work on Com2 of the Performance, model 63, and on no Multi byte.
  midi.sent.clear();
  edit->sliders[kFirstEffectSlider + 2].value = 100;
  edit->MouseUp(kFirstEffectSlider + 2);
  EXPECT_EQ(sentHex(), Texts{"F0 43 10 63 60 00 56 64 F7"});
  EXPECT_EQ(form->images().perf.Com2()[31], 100);
}

TEST_F(Editing, EveryEqGainComesBackAsItselfAndBytesBetweenTheStepsLoadToTheirStep) {
  const Bytes expected{0, 5, 10, 16, 21, 26, 32, 37, 42, 48, 53, 58, 64, 69, 74, 79, 85, 90, 95, 101, 106, 111, 117, 122, 127};
  for (int gain = -12; gain <= 12; ++gain) {
    EXPECT_EQ(eqGainByte(gain), expected[static_cast<std::size_t>(gain + 12)]) << gain;
    EXPECT_EQ(eqGainValue(eqGainByte(gain)), gain);
  }
  for (int b = 63; b <= 68; ++b) EXPECT_EQ(eqGainValue(static_cast<std::uint8_t>(b)), 0) << b;
  for (int b = 69; b <= 73; ++b) EXPECT_EQ(eqGainValue(static_cast<std::uint8_t>(b)), 1) << b;
}

TEST_F(Editing, OpeningAPartLoadsEveryControlAndEchoesOnlyOptionsThatChange) {
  auto s0 = section(5, 0);
  s0[20] = 99;    // volume
  s0[35] = 0x36;  // EG attack -10
  s0[10] = 0;     // voice 0 / 112 / 5
  s0[11] = 112;
  s0[12] = 5;
  s0[14] = 0;  // mono
  s0[16] = 2;  // Drum1
  section(5, 2)[11] = 0x5A;  // bass gain 5
  section(5, 1)[64] = 1;     // portamento on
  form->row(6).CmdMult.caption = "Strings    M6";
  edit->EditMult_Click(6);
  const auto value = [&](const char* control) { return edit->sliders[*sliderRow(control)].value; };
  const auto text = [&](const char* control) { return edit->texts[*sliderRow(control)].text; };
  EXPECT_EQ(value("SldLvVol"), 99);
  EXPECT_EQ(value("SldEgAttk"), -10);
  EXPECT_EQ(text("SldEqBGain"), " 5db");
  EXPECT_EQ(text("SldNtShft"), "64");  // a plain slider shows the raw byte
  EXPECT_EQ((Texts{edit->TxtMsb.text, edit->TxtLsb.text, edit->TxtPrg.text}), (Texts{"0", "112", "5"}));
  EXPECT_EQ(edit->Label34[1].text, "Strings    M6");
  // Only the check box and the options raise their clicks from code, each sending the byte it
  // shows; sliders send nothing. The same bytes on the next part send nothing at all.
  EXPECT_EQ(sentHex(), (Texts{"F0 43 10 4C 08 05 67 01 F7", "F0 43 10 4C 08 05 06 01 F7", "F0 43 10 4C 08 05 05 00 F7",
                              "F0 43 10 4C 08 05 07 02 F7"}));
  for (int s = 0; s < 5; ++s) std::copy(section(5, s).begin() + 9, section(5, s).end(), section(6, s).begin() + 9);
  midi.sent.clear();
  edit->EditMult_Click(7);
  EXPECT_TRUE(midi.sent.empty());
  // Only M5 has a variation send on the panel.
  EXPECT_FALSE(edit->sliders[kVarSendRow].enabled);
  edit->EditMult_Click(5);
  EXPECT_TRUE(edit->sliders[kVarSendRow].enabled);
}

TEST_F(Editing, AVoiceChangesOnlyWhenAllThreeBoxesHoldNumbersFrom0To127) {
  edit->EditMult_Click(8);
  midi.sent.clear();
  const auto voice = [&] { return hex(Bytes{section(7, 0)[10], section(7, 0)[11], section(7, 0)[12]}); };
  const std::string before = voice();
  for (const auto& [msb, lsb, prg] : std::vector<std::array<const char*, 3>>{
           {"0", "0", "128"}, {"-0.5", "0", "1"}, {"abc", "0", "1"}, {"1", "", "1"}, {"1", "2", "3x"}}) {
    edit->TxtMsb.text = msb;
    edit->TxtLsb.text = lsb;
    edit->TxtPrg.text = prg;
    edit->CmdVocChng_Click();
    EXPECT_EQ(voice(), before) << msb << " " << lsb << " " << prg;
    EXPECT_EQ(edit->TxtPrg.text, prg);  // the box keeps what was typed
  }
  EXPECT_TRUE(midi.sent.empty());
  EXPECT_TRUE(screen.boxes.empty());
  edit->TxtMsb.text = "12.9";  // the floor of a fraction
  edit->TxtLsb.text = "0";
  edit->TxtPrg.text = "127.9";
  edit->CmdVocChng_Click();
  EXPECT_EQ(voice(), "0C 00 7F");
}

TEST_F(Editing, TheNameIsTheFirstTenCharactersOfTheBoxBeforeThePartsSuffix) {
  edit->EditMult_Click(10);
  const auto typed = [&](const std::string& text) {
    edit->TxtName1.text = text;
    edit->TxtName1_Change();
    return form->row(10).CmdMult.caption;
  };
  EXPECT_EQ(typed("Twelve chars"), "Twelve cha M10");
  EXPECT_EQ(typed(""), "           M10");
  EXPECT_EQ(typed("Señor Ståål!"), "Señor Ståå M10");  // characters, not bytes
  EXPECT_EQ(edit->TxtName1.text, "Señor Ståål!");
  // A part never opened has no caption to change.
  edit->EdtPart = 0;
  EXPECT_EQ(typed("Nobody"), "Señor Ståå M10");
}

}  // namespace tessivo
