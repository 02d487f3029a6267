#pragma once
// The Load and Save menus: the dialog on the one CommonDialog1, the length test with its
// message, and the readers and writers of the six own file types. Every load sends what it
// loaded to the instrument: Multi Parts first, then the Performance, Com0 first and Lyr4 last.

#include <functional>
#include <span>
#include <string>

#include "edit/edit_panel.h"
#include "edit/effects_panel.h"
#include "files/records.h"
#include "link/midi_link.h"
#include "perform/performance.h"
#include "pool/layer_pool.h"
#include "pool/multis.h"

namespace tessivo {

enum class FileType { Workspace, Setup, Performance, LayerPool, AllMultis, SingleMulti };

class Files {
 public:
  struct Parts {
    MidiLink& link;
    Images& images;
    LayerPool& pool;
    Multis& multis;
    EditPanel& edit;
    EffectsPanel& effects;
    Performance& performance;
    std::function<int()> perfChannel;          // list index of cmbPerfChnl
    std::function<std::string()> startupPath;  // TxtLdFile without its filling blanks
    std::function<int()> density;              // Slider1, "Midi File Density"
    std::function<std::string()> perfCaption;  // CmdPrfm's caption
  };
  explicit Files(Parts parts);

  FileDialog CommonDialog1;  // one dialog for all: its file name stays from one to the next
  std::string CurFilePath;   // what the readers but LdMultFile read

  static std::string wrongTypeMessage(FileType type);

  // Load menu.
  void LdWrkSpace_Click();
  void LdFullSetup_Click();
  void LdPerform_Click();
  void LdLayerPool_Click();
  void LdMultAll_Click();
  void LdMultDlg(int part);  // LdMult5..LdMult16 with the part index 4..15
  // Save menu.
  void SvWrkSpace_Click();
  void SvSetuptvf_Click();
  void SvPerform_Click();
  void SvLayerPool_Click();
  void SvMultAll_Click();
  void SvMultDlg(int part);  // SvMult5..SvMult16
  // The exports.
  void SvSetupSyx_Click();
  void SvSetupMid_Click();
  void SvWrkSpaceText_Click();

  // The readers and writers.
  void LdWrkSpaceFile();
  void LdFullSetupFile();
  void LdPerformFile();
  void LdLyrPoolFile();
  void LdMultAllFile();
  void LdMultFile(int part);
  void SvWrkSpaceFile();
  void SvSetupFile();
  void SvPerformFile();
  void SvLyrPoolFile();
  void SvMultAllFile();
  void SvMultFile(int part);
  void SvSetupSyxFile();
  void SvSetupMidFile();
  void SvWrkSpaceTextFile();

 private:
  bool openDialog(const char* filter);
  // The open dialog, its file as CurFilePath, and the reader.
  void openAndLoad(const char* filter, void (Files::*reader)());
  bool saveDialog(const std::string& filter);
  // The length test and the read: false when the file cannot be read, or when its length is
  // wrong (its message shown and its load offered once more).
  bool readChecked(const std::string& path, FileType type, std::span<std::uint8_t> record,
                   const std::function<void()>& again);
  void loadSetup(std::span<const std::uint8_t> record, bool workspace);
  // A MultiRec into part `part`, each section sent at once, and its name on the part's button.
  // `toThisPlace`: a single Multi's own part index goes in, and the part keeps its channel.
  void loadMultiRec(std::span<const std::uint8_t> rec, int part, bool toThisPlace);
  void loadPerformance(std::span<const std::uint8_t> record);
  void putMultiSet(std::span<std::uint8_t> record);
  void savePerformanceAnd(const std::function<void()>& write);
  std::array<int, 12> channels() const;

  Parts p_;
};

}  // namespace tessivo
