// The Layer Pool: which Layer and Multi an entry comes from, the record chosen after deletes,
// the full Pool, and what leaves the Pool as it is.
#include <gtest/gtest.h>

#include "shell/app.h"
#include "support/scripted.h"

namespace tessivo {

class Pooling : public test::StartedProgram {
 protected:
  LayerPool* pool = nullptr;

  void SetUp() override {
    // A Performance with a name and an open Layer 2 whose volume is 101.
    StartedProgram::SetUp();
    pool = &form->pool();
    form->panel.TxtLyr[1].text = "SweepPd B";
    auto lyr2 = form->images().perf.Lyr(2);
    for (std::size_t i = 9; i < 54; ++i) lyr2[i] = 0x30;
    lyr2[16] = 101;
    lyr2[24] = 1;
  }
  std::vector<int> records() const { return pool->LbxLyrPool.itemData; }
};

TEST_F(Pooling, ALayerEntersConvertedAndAMultiCopiedUnderItsCaption) {
  form->DragDrop("LbxLyrPool", "TxtLyr2");
  EXPECT_EQ(pool->Pool[0].body[20], 50);  // Layer 2's volume, halved
  auto s1 = form->images().multi.section(4, 1);
  s1[73] = 0x5A;
  form->DragDrop("LbxLyrPool", "CmdMult5");
  form->row(6).CmdMult.caption = "Strings M6";
  form->DragDrop("LbxLyrPool", "CmdMult6");
  EXPECT_EQ(pool->LbxLyrPool.items, (std::vector<std::string>{"SweepPd B", "Multi Part", "Strings M6"}));
  EXPECT_EQ(pool->Pool[1].body[53 + 73], 0x5A);  // from M5's own section
}

TEST_F(Pooling, TheLowestFreeRecordIsTakenWhateverTheListOrder) {
  for (int i = 0; i < 3; ++i) form->DragDrop("LbxLyrPool", "TxtLyr2");
  EXPECT_EQ(records(), (std::vector<int>{0, 1, 2}));
  pool->LbxLyrPool.index = 1;
  pool->DblClick();
  ASSERT_EQ(screen.boxes.size(), 1u);
  EXPECT_EQ(screen.boxes[0].icon, MsgIcon::Question);
  EXPECT_EQ(records(), (std::vector<int>{0, 2}));
  form->DragDrop("LbxLyrPool", "TxtLyr2");
  EXPECT_EQ(records(), (std::vector<int>{0, 2, 1}));
}

TEST_F(Pooling, AFullPoolRefusesWithItsMessageAndChangesNothing) {
  for (int i = 0; i < 128; ++i) form->DragDrop("LbxLyrPool", i % 2 ? "TxtLyr2" : "CmdMult9");
  EXPECT_TRUE(screen.boxes.empty());
  const auto before = pool->Pool;
  form->DragDrop("LbxLyrPool", "TxtLyr2");
  EXPECT_EQ(pool->LbxLyrPool.items.size(), 128u);
  ASSERT_EQ(screen.boxes.size(), 1u);
  EXPECT_EQ(screen.boxes[0].text, "No more Pool Layers are available (delete one by double clicking).");
  EXPECT_EQ(screen.boxes[0].buttons, MsgButtons::Ok);
  EXPECT_EQ(pool->PoolFree[128], 0);  // record 128 is never handed out
  EXPECT_EQ(before[127].body, pool->Pool[127].body);
}

TEST_F(Pooling, NoItemHitForeignSourcesAndADropOnClearChangeNothingAndClearFreesTheRecords) {
  form->DragDrop("LbxLyrPool", "TxtLyr2");
  form->DragDrop("LbxLyrPool", "TxtLyr2");
  pool->LbxLyrPool.index = -1;
  pool->DblClick();  // no item hit: nothing, no question
  EXPECT_TRUE(screen.boxes.empty());
  for (const char* source : {"LbxLyrPool", "", "TxtParm1"}) form->DragDrop("LbxLyrPool", source);
  form->DragDrop("CmdClrLyrPool", "TxtLyr2");
  EXPECT_EQ(pool->LbxLyrPool.items.size(), 2u);
  const auto kept = pool->Pool[1].body;
  pool->Clear();
  EXPECT_TRUE(pool->LbxLyrPool.items.empty());
  EXPECT_EQ(pool->PoolFree[1], 256);
  EXPECT_EQ(pool->Pool[1].body, kept);  // the records stay until reused
}

}  // namespace tessivo
