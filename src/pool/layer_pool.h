#pragma once
// The Layer Pool: the program's shelf of sounds. Layers of the Performance and Multi Parts
// dropped on the list become entries in Multi Part form, independent of where they came from.

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "data/images.h"
#include "data/multi_template.h"
#include "link/midi_link.h"
#include "data/controls.h"

namespace tessivo {

inline constexpr int kPoolRecords = 129;  // 0..127 in use, 128 carried in files only
inline constexpr int kPoolCapacity = 128;
inline constexpr std::int16_t kPoolFree = 256;
inline constexpr std::int16_t kPoolInUse = 0;

struct PoolEntry {
  std::array<std::uint8_t, kTemplateBytes> body{};  // the five sections, as in LyrTmpl
  std::array<char, 10> Name{};                       // written when the Pool is saved
};

class LayerPool {
 public:
  static constexpr const char* kFullMessage = "No more Pool Layers are available (delete one by double clicking).";
  static constexpr const char* kDeleteQuestion = "Do you really want to delete item from Layer Pool?";
  static constexpr const char* kDeleteTitle = "Delete from Layer Pool";

  // What a drop on the list needs to read: the Layer boxes' texts, the Multi buttons' captions.
  struct Sources {
    std::function<std::string(int layer)> layerText;     // TxtLyr1..4
    std::function<std::string(int multi)> multiCaption;  // CmdMult5..16
  };

  LayerPool(MidiLink& link, Images& images, LyrTemplate& tmpl, Sources sources);

  // Everything free, as at the start of the program.
  void freeAll();
  // A drop on the list from the named source (after AllNtsOffSnd, which the caller sends).
  void Drop(const std::string& source);
  // The double click: delete the selected item after asking.
  void DblClick();
  // CmdClrLyrPool: everything free, the list empty, the records untouched.
  void Clear();
  // Stores LyrTmpl in record i, each section by its message length.
  void EntryToPool(int i);
  // The lowest free record, or -1 when the Pool is full.
  int lowestFree() const;

  std::array<PoolEntry, kPoolRecords> Pool{};
  std::array<std::int16_t, kPoolRecords> PoolFree{};
  // What a Pool file holds beside the entries: the slot of each list position, and the count.
  std::array<std::uint8_t, kPoolRecords> PoolIds{};
  std::uint8_t PoolCount = 0;
  ListBoxCtl LbxLyrPool;
  ButtonCtl CmdClrLyrPool{"Clear"};

 private:
  MidiLink& link_;
  Images& images_;
  LyrTemplate& tmpl_;
  Sources sources_;
};

// The number at the end of a source's name within [first, last] ("TxtLyr3" → 3), or 0.
int sourceNumber(const std::string& name, const std::string& prefix, int first, int last);

}  // namespace tessivo
