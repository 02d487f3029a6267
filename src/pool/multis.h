#pragma once
// The twelve Multi Parts M5..M16 as rows of the main form: a button whose caption holds the
// part's name and a list of its receive channel. A Pool entry dropped on a button goes to the
// instrument as five XG bulk dumps; Initialise puts a part back to its defaults. While the edit
// panel is open it follows the part the user last touched.

#include <array>
#include <cstdint>
#include <string>

#include "data/controls.h"
#include "data/images.h"
#include "edit/edit_panel.h"
#include "link/midi_link.h"
#include "pool/layer_pool.h"

namespace tessivo {

struct MultiRow {
  ButtonCtl CmdMult;  // its caption holds the Multi's name
  ListCtl CmbMult;    // receive channel, index 0..15
};

// "Multi Part M5" .. "Multi Part M16".
std::string startCaption(int multi);

class Multis {
 public:
  Multis(MidiLink& link, Images& images, LayerPool& pool, EditPanel& edit);
  Multis(const Multis&) = delete;
  Multis& operator=(const Multis&) = delete;

  MultiRow& row(int multi) { return rows_[static_cast<std::size_t>(multi - kFirstMulti)]; }
  const MultiRow& row(int multi) const { return rows_[static_cast<std::size_t>(multi - kFirstMulti)]; }

  // A drop on CmdMult<multi> from the named source, after the drop's AllNtsOffSnd: only a
  // Layer Pool entry is taken.
  void CmdMult_DragDrop(int multi, const std::string& source);
  // Copies the five sections of Pool record `record` into part `part`, with the part's index
  // and its list's channel patched in, and sends them as they stand (stored checksums).
  void PoolToMlt(int part, int record);
  // The channel list's click: the part's receive channel, unless the form is loading.
  void CmbMult_Click(int multi);
  // Writes the defaults into part `part` (4..15), sends them and sets the channel list to the
  // part's own number.
  void InitMlt(int part);
  void InitMlt_Click(int multi);  // InitMlt5..InitMlt16
  void InitMltall_Click();

 private:
  MidiLink& link_;
  Images& images_;
  LayerPool& pool_;
  EditPanel& edit_;
  std::array<MultiRow, kMultiRows> rows_;
};

}  // namespace tessivo
