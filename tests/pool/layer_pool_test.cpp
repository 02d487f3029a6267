// The Layer Pool: entries from Layers (converted) and Multis (copied), the record chosen
// after deletes, the full Pool, delete and clear, and drops that only stop notes.
#include <gtest/gtest.h>

#include "shell/app.h"
#include "support/scripted.h"

namespace tessivo {
using test::hex;

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

TEST_F(Pooling, ALayerEntersConvertedUnderTheTextOfItsBox) {
  form->DragDrop("LbxLyrPool", "TxtLyr2");
  EXPECT_EQ(pool->LbxLyrPool.items, std::vector<std::string>{"SweepPd B"});
  EXPECT_EQ(records(), (std::vector<int>{0}));
  EXPECT_EQ(pool->PoolFree[0], 0);
  const auto& body = pool->Pool[0].body;
  EXPECT_EQ(hex(Bytes(body.begin(), body.begin() + 9)), "F0 43 00 4C 00 29 08 10 00");
  EXPECT_EQ(body[20], 50);  // 101 / 2, the tie to the even one
  EXPECT_EQ(body[13], 0x10);  // no channel yet
  EXPECT_EQ(body[26], 0);     // dry level of a Layer
  ASSERT_EQ(midi.sent.size(), 2u);  // the drop's All Notes Off, nothing to the instrument
}

TEST_F(Pooling, AMultiIsCopiedAndItsStartCaptionEntersAsMultiPart) {
  auto s1 = form->images().multi.section(4, 1);
  for (std::size_t i = 0; i < 74; ++i) s1[i] = static_cast<std::uint8_t>(i);
  form->DragDrop("LbxLyrPool", "CmdMult5");
  form->row(6).CmdMult.caption = "Strings M6";
  form->DragDrop("LbxLyrPool", "CmdMult6");
  EXPECT_EQ(pool->LbxLyrPool.items, (std::vector<std::string>{"Multi Part", "Strings M6"}));
  const auto& body = pool->Pool[0].body;
  EXPECT_EQ(body[53 + 73], 73);  // section 1 copied whole
  EXPECT_EQ(body[53 + 74], 0);   // its spare byte untouched
}

TEST_F(Pooling, TheLowestFreeRecordIsTakenWhateverTheListOrder) {
  for (int i = 0; i < 3; ++i) form->DragDrop("LbxLyrPool", "TxtLyr2");
  EXPECT_EQ(records(), (std::vector<int>{0, 1, 2}));
  pool->LbxLyrPool.index = 1;
  pool->DblClick();
  ASSERT_EQ(screen.boxes.size(), 1u);
  EXPECT_EQ(screen.boxes[0].text, "Do you really want to delete item from Layer Pool?");
  EXPECT_EQ(screen.boxes[0].title, "Delete from Layer Pool");
  EXPECT_EQ(screen.boxes[0].buttons, MsgButtons::OkCancel);
  EXPECT_EQ(screen.boxes[0].icon, MsgIcon::Question);
  EXPECT_EQ(records(), (std::vector<int>{0, 2}));
  form->DragDrop("LbxLyrPool", "TxtLyr2");
  EXPECT_EQ(records(), (std::vector<int>{0, 2, 1}));
}

TEST_F(Pooling, AFullPoolRefusesWithItsMessageAndChangesNothing) {
  for (int i = 0; i < 128; ++i) form->DragDrop("LbxLyrPool", i % 2 ? "TxtLyr2" : "CmdMult9");
  EXPECT_EQ(pool->LbxLyrPool.items.size(), 128u);
  EXPECT_TRUE(screen.boxes.empty());
  const auto before = pool->Pool;
  form->DragDrop("LbxLyrPool", "TxtLyr2");
  EXPECT_EQ(pool->LbxLyrPool.items.size(), 128u);
  ASSERT_EQ(screen.boxes.size(), 1u);
  EXPECT_EQ(screen.boxes[0].text, "No more Pool Layers are available (delete one by double clicking).");
  EXPECT_EQ(screen.boxes[0].buttons, MsgButtons::Ok);
  EXPECT_EQ(pool->PoolFree[128], 0);  // record 128 is never handed out
  EXPECT_EQ(before[127].body, pool->Pool[127].body);
  // One deleted in the middle: the next drop lands at the end of the list in that record.
  pool->LbxLyrPool.index = 60;
  const int freed = pool->LbxLyrPool.itemData[60];
  pool->DblClick();
  form->DragDrop("LbxLyrPool", "TxtLyr2");
  EXPECT_EQ(pool->LbxLyrPool.items.size(), 128u);
  EXPECT_EQ(pool->LbxLyrPool.itemData.back(), freed);
}

TEST_F(Pooling, CancelNoItemAndClearBehave) {
  form->DragDrop("LbxLyrPool", "TxtLyr2");
  form->DragDrop("LbxLyrPool", "TxtLyr2");
  pool->LbxLyrPool.index = -1;
  pool->DblClick();  // no item hit: nothing, no question
  EXPECT_TRUE(screen.boxes.empty());
  pool->LbxLyrPool.index = 0;
  screen.answers.push_back(MsgAnswer::Cancel);
  pool->DblClick();
  EXPECT_EQ(pool->LbxLyrPool.items.size(), 2u);
  const auto kept = pool->Pool[1].body;
  pool->Clear();
  EXPECT_TRUE(pool->LbxLyrPool.items.empty());
  EXPECT_EQ(pool->PoolFree[1], 256);
  EXPECT_EQ(pool->Pool[1].body, kept);  // the records stay until reused
  pool->Clear();  // an empty Pool: nothing to see
  EXPECT_TRUE(pool->LbxLyrPool.items.empty());
}

TEST_F(Pooling, DropsFromTheListItselfElsewhereOrFromOtherProgramsOnlyStopNotes) {
  form->DragDrop("LbxLyrPool", "LbxLyrPool");  // a plain click on the list
  form->DragDrop("LbxLyrPool", "");             // another program's drag
  form->DragDrop("LbxLyrPool", "TxtParm1");     // no drag source of this form
  form->DragDrop("CmdClrLyrPool", "TxtLyr2");   // a drop on Clear does not clear
  form->DragDrop("CS2x", "CmdMult5");
  EXPECT_TRUE(pool->LbxLyrPool.items.empty());
  EXPECT_EQ(midi.sent.size(), 10u);  // two sequences of All Notes Off for each drop
  EXPECT_TRUE(screen.boxes.empty());
}

}  // namespace tessivo
