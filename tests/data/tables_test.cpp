// The tables of names and values: EQ frequency texts, effect type look-up, and the effect
// lists that the start fills from them.
#include <gtest/gtest.h>

#include "data/tables.h"
#include "support/scripted.h"

namespace tessivo {

TEST(Tables, FrequencyCodesGiveSevenCharacterTextsAndErrOutside) {
  const std::pair<std::int16_t, const char*> texts[] = {{4, "  32 Hz"},  {12, "  80 Hz"}, {33, " 900 Hz"},
                                                        {34, " 1.0KHz"}, {54, "10.0KHz"}, {58, "16.0KHz"},
                                                        {3, "ERR"},      {59, "ERR"},     {-1, "ERR"}};
  for (const auto& [code, text] : texts) EXPECT_EQ(HzText(code), text) << code;
  for (std::int16_t code = 4; code <= 58; ++code) EXPECT_EQ(HzText(code).size(), 7u) << code;
}

TEST(Tables, EffectTypesAreFoundByTheirTwoBytesInTheirOwnTable) {
  int row = -1;
  ASSERT_NE(findEffectType(RvrbTbl, 0x00, 0x00, &row), nullptr);
  EXPECT_EQ(row, 0);
  EXPECT_EQ(findEffectType(ChrsTbl, 0x00, 0x00)->name, "NO EFFECT       ");
  EXPECT_EQ(findEffectType(VarTbl, 0x00, 0x00)->name.size(), 24u);
  // The same bytes stand in two tables; the table tells them apart.
  findEffectType(VarTbl, 0x41, 0x00, &row);
  EXPECT_EQ(row, 24);
  findEffectType(ChrsTbl, 0x41, 0x00, &row);
  EXPECT_EQ(row, 1);
  EXPECT_EQ(findEffectType(RvrbTbl, 0x41, 0x00), nullptr);
  EXPECT_EQ(findEffectType(VarTbl, 0x11, 0x00)->name.substr(0, 7), "TUNNNEL");  // as the table spells it
  findEffectType(VarTbl, 0x40, 0x00, &row);
  EXPECT_EQ(row, 63);
}

TEST(Tables, TheStartFillsTheEffectListsInRowOrder) {
  test::ScriptedProgram program;
  const EffectsPanel& effects = program.start().effects();
  ASSERT_EQ(effects.CmbRvrb.items.size(), 13u);
  ASSERT_EQ(effects.CmbChrs.items.size(), 15u);
  ASSERT_EQ(effects.CmbVar.items.size(), 64u);
  EXPECT_EQ(effects.CmbRvrb.items[12], "BASEMENT    ");
  EXPECT_EQ(effects.CmbChrs.items[13], "ENSEMBLE DETUNE ");
  EXPECT_EQ(effects.CmbVar.items[63], std::string("THRU") + std::string(20, ' '));
}

}  // namespace tessivo
