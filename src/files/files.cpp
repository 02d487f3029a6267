#include "files/files.h"

#include <algorithm>
#include <array>
#include <vector>

#include "files/exports.h"
#include "files/file_io.h"

namespace tessivo {

namespace {
constexpr int kOpenFlags = 4;  // no read-only box
constexpr int kSaveFlags = 2;  // ask before overwriting
constexpr std::int16_t kMultiSectionMode = 1, kBufferMode = 2;
constexpr int kFirstPart = kFirstMulti - 1, kLastPart = kLastMulti - 1;

// The Performance's sections in the order a load sends them, with their SctnLen index.
struct PerfSend {
  std::size_t at, bytes;
  std::int16_t lengthIndex;
};
constexpr std::array<PerfSend, 8> kPerfSends{{{PerfImage::kCom0At, PerfImage::kCom0Bytes, 8},
                                              {PerfImage::kCom1At, PerfImage::kCom1Bytes, 5},
                                              {PerfImage::kCom2At, PerfImage::kCom2Bytes, 6},
                                              {PerfImage::kCom3At, PerfImage::kCom3Bytes, 7},
                                              {PerfImage::kLyr1At, PerfImage::kLyrBytes, 9},
                                              {PerfImage::kLyr1At + PerfImage::kLyrBytes, PerfImage::kLyrBytes, 9},
                                              {PerfImage::kLyr1At + 2 * PerfImage::kLyrBytes, PerfImage::kLyrBytes, 9},
                                              {PerfImage::kLyr1At + 3 * PerfImage::kLyrBytes, PerfImage::kLyrBytes, 9}}};

struct TypeRow {
  FileType type;
  const char* extension;
  std::uint64_t length;
  bool exact;  // else: refused only above kAllMultisLimit
};
constexpr std::array<TypeRow, 6> kTypes{{{FileType::Workspace, ".tvw", kWorkspaceBytes, true},
                                         {FileType::Setup, ".tvf", kSetupBytes, true},
                                         {FileType::Performance, ".tvx", kPerfRecBytes, true},
                                         {FileType::LayerPool, ".tvp", kPoolRecBytes, true},
                                         {FileType::AllMultis, ".tvm", kMultiSetRecBytes, false},
                                         {FileType::SingleMulti, ".tvs", kMultiRecBytes, true}}};
const TypeRow& rowOf(FileType type) { return kTypes[static_cast<std::size_t>(type)]; }

constexpr const char* kSingleMultiSaveFilter1 = "All Files (*.*)|*.*|Tessivo Files";
constexpr const char* kSingleMultiSaveFilter2 = "(*.tvx)|*.tvx|Sys-Ex Files (*.syx)|*.syx|Layer Pools (*.tvp)|*.tvp";
}  // namespace

Files::Files(Parts parts) : p_(std::move(parts)) {}

std::string Files::wrongTypeMessage(FileType type) {
  return std::string("Sorry, You have chosen a file of the wrong type. Please choose a file with the extension ") +
         rowOf(type).extension;
}

bool Files::openDialog(const char* filter) {
  CommonDialog1.flags = kOpenFlags;
  CommonDialog1.filter = filter;
  CommonDialog1.filterIndex = 1;
  return p_.link.screen().showOpen(CommonDialog1);
}

bool Files::saveDialog(const std::string& filter) {
  CommonDialog1.flags = kSaveFlags;
  CommonDialog1.filter = filter;
  CommonDialog1.filterIndex = 1;
  return p_.link.screen().showSave(CommonDialog1);
}

bool Files::readChecked(const std::string& path, FileType type, std::span<std::uint8_t> record,
                        const std::function<void()>& again) {
  // Into a work area: the images change only once a record of the right length has been read.
  std::fill(record.begin(), record.end(), 0);
  const auto length = readRecord(path, record);
  if (!length) return false;  // cannot be opened or read: a silent end
  const TypeRow& row = rowOf(type);
  if (row.exact ? *length != row.length : *length > kAllMultisLimit) {
    p_.link.screen().messageBox(wrongTypeMessage(type), kAppTitle, MsgButtons::Ok, MsgIcon::None);
    again();  // the same load once more, so the user can choose again
    return false;
  }
  return true;
}

// ---- Load menu --------------------------------------------------------------------------------

void Files::openAndLoad(const char* filter, void (Files::*reader)()) {
  if (!openDialog(filter)) return;
  CurFilePath = CommonDialog1.fileName;
  (this->*reader)();
}

void Files::LdWrkSpace_Click() { openAndLoad("Tessivo WorkSpace (*.tvw)|*.tvw", &Files::LdWrkSpaceFile); }
void Files::LdFullSetup_Click() { openAndLoad("Full Setup (*.tvf)|*.tvf", &Files::LdFullSetupFile); }
void Files::LdPerform_Click() { openAndLoad("Peformance (*.tvx)|*.tvx", &Files::LdPerformFile); }
void Files::LdLayerPool_Click() { openAndLoad("Layer Pool (*.tvp)|*.tvp", &Files::LdLyrPoolFile); }
void Files::LdMultAll_Click() { openAndLoad("All Multis (*.tvm)|*.tvm", &Files::LdMultAllFile); }

void Files::LdMultDlg(int part) {
  if (!openDialog("Single Multi (*.tvs)|*.tvs")) return;
  LdMultFile(part);
}

// ---- Readers ----------------------------------------------------------------------------------

void Files::LdWrkSpaceFile() {
  // At start-up the path comes from the preferences.
  const std::string path = p_.link.LoadingFlag != 0 && p_.startupPath ? p_.startupPath() : CurFilePath;
  std::vector<std::uint8_t> record(kWorkspaceBytes);
  if (!readChecked(path, FileType::Workspace, record, [this] { LdWrkSpace_Click(); })) return;
  loadSetup(record, true);
}

void Files::LdFullSetupFile() {
  std::vector<std::uint8_t> record(kSetupBytes);
  if (!readChecked(CurFilePath, FileType::Setup, record, [this] { LdFullSetup_Click(); })) return;
  loadSetup(record, false);
}

void Files::loadSetup(std::span<const std::uint8_t> record, bool workspace) {
  p_.effects.visible = false;
  p_.edit.visible = false;
  for (int part = kFirstPart; part <= kLastPart; ++part)
    loadMultiRec(record.subspan(static_cast<std::size_t>(part - kFirstPart) * kMultiRecBytes, kMultiRecBytes), part, false);
  // The channels, each list's click sending unless the form is loading. A byte that is no
  // channel ends the load here.
  for (int m = kFirstMulti; m <= kLastMulti; ++m) {
    const std::uint8_t channel = p_.images.multi.section(static_cast<std::size_t>(m - 1), 0)[kReceiveChannelAt];
    if (channel >= p_.multis.row(m).CmbMult.items.size()) return;
    p_.multis.row(m).CmbMult.setIndex(channel);
  }
  loadPerformance(record.subspan(kMultiSetRecBytes, kPerfRecBytes));
  if (workspace) takePoolRec(record.subspan(kSetupBytes, kPoolRecBytes), p_.pool);
}

void Files::LdPerformFile() {
  std::array<std::uint8_t, kPerfRecBytes> record{};
  if (!readChecked(CurFilePath, FileType::Performance, record, [this] { LdPerform_Click(); })) return;
  loadPerformance(record);
}

void Files::loadPerformance(std::span<const std::uint8_t> record) {
  PerfImage& image = p_.images.perf;
  std::copy(record.begin(), record.end(), image.bytes.begin());
  p_.effects.visible = false;
  // The channel of the preferences wins over the one saved.
  image.Com0()[PerfImage::kPerfChannelAt] = static_cast<std::uint8_t>(p_.perfChannel ? p_.perfChannel() : 0);
  for (const PerfSend& send : kPerfSends) {
    std::copy(image.bytes.begin() + static_cast<std::ptrdiff_t>(send.at),
              image.bytes.begin() + static_cast<std::ptrdiff_t>(send.at + send.bytes), p_.link.SndBuf.begin());
    p_.link.SndSysExData({}, kBufferMode, 0, send.lengthIndex);
  }
  p_.performance.showPerformance();
}

void Files::LdLyrPoolFile() {
  std::vector<std::uint8_t> record(kPoolRecBytes);
  if (!readChecked(CurFilePath, FileType::LayerPool, record, [this] { LdLayerPool_Click(); })) return;
  takePoolRec(record, p_.pool);
}

void Files::LdMultAllFile() {
  std::vector<std::uint8_t> record(kMultiSetRecBytes);
  if (!readChecked(CurFilePath, FileType::AllMultis, record, [this] { LdMultAll_Click(); })) return;
  p_.edit.visible = false;
  for (int part = kFirstPart; part <= kLastPart; ++part)
    loadMultiRec(std::span<const std::uint8_t>(record).subspan(static_cast<std::size_t>(part - kFirstPart) * kMultiRecBytes, kMultiRecBytes),
                 part, false);
  // The saved channels; a byte that is no channel leaves its list as it is.
  for (int m = kFirstMulti; m <= kLastMulti; ++m)
    p_.multis.row(m).CmbMult.setIndex(p_.images.multi.section(static_cast<std::size_t>(m - 1), 0)[kReceiveChannelAt]);
}

void Files::LdMultFile(int part) {
  std::array<std::uint8_t, kMultiRecBytes> record{};
  if (!readChecked(CommonDialog1.fileName, FileType::SingleMulti, record, [this, part] { LdMultDlg(part); })) return;
  p_.edit.visible = false;
  loadMultiRec(record, part, true);
}

void Files::loadMultiRec(std::span<const std::uint8_t> rec, int part, bool toThisPlace) {
  const auto p = static_cast<std::size_t>(part);
  const std::uint8_t channel = p_.images.multi.section(p, 0)[kReceiveChannelAt];
  for (int s = 0; s < kTemplateSections; ++s) {
    auto section = p_.images.multi.section(p, static_cast<std::size_t>(s));
    const auto n = static_cast<std::size_t>(p_.link.SctnLen[static_cast<std::size_t>(s)]);
    const auto from = rec.subspan(recSectionAt(s), std::min(n, kTemplateSectionBytes[static_cast<std::size_t>(s)]));
    std::copy(from.begin(), from.end(), section.begin());
    if (toThisPlace) {  // the sound goes to this part, which keeps its channel
      section[kPartByteAt] = static_cast<std::uint8_t>(part);
      if (s == 0) section[kReceiveChannelAt] = channel;
    }
    p_.link.SndSysExData({}, kMultiSectionMode, static_cast<std::int16_t>(part), static_cast<std::int16_t>(s));
  }
  p_.multis.row(part + 1).CmdMult.caption = captionFromRec(rec, part + 1);
}

// ---- Save menu --------------------------------------------------------------------------------

void Files::SvWrkSpace_Click() {
  if (saveDialog("Tessivo Workspace (*.tvw)|*.tvw")) SvWrkSpaceFile();
}
void Files::SvSetuptvf_Click() {
  if (saveDialog("Tessivo Setup (*.tvf)|*.tvf")) SvSetupFile();
}
void Files::SvPerform_Click() {
  if (saveDialog("Performance (*.tvx)|*.tvx")) SvPerformFile();
}
void Files::SvLayerPool_Click() {
  if (saveDialog("Layer Pool (*.tvp)|*.tvp")) SvLyrPoolFile();
}
void Files::SvMultAll_Click() {
  if (saveDialog("All Multis (*.tvm)|*.tvm")) SvMultAllFile();
}
void Files::SvMultDlg(int part) {
  if (saveDialog(std::string(kSingleMultiSaveFilter1) + kSingleMultiSaveFilter2)) SvMultFile(part);
}

// ---- Writers ----------------------------------------------------------------------------------

void Files::savePerformanceAnd(const std::function<void()>& write) {
  // What is saved is the Performance as the instrument holds it now.
  Screen& screen = p_.link.screen();
  screen.setBusy(true);
  p_.performance.DspPerf();
  write();
  screen.setBusy(false);
}

void Files::putMultiSet(std::span<std::uint8_t> record) {
  for (int part = kFirstPart; part <= kLastPart; ++part) {
    auto rec = record.subspan(static_cast<std::size_t>(part - kFirstPart) * kMultiRecBytes, kMultiRecBytes);
    putMultiRec(rec, p_.images.multi, part, p_.multis.row(part + 1).CmdMult.caption);
    // The channel the list shows, not the image's byte.
    rec[kReceiveChannelAt] = static_cast<std::uint8_t>(std::max(p_.multis.row(part + 1).CmbMult.index(), 0));
  }
}

void Files::SvWrkSpaceFile() {
  savePerformanceAnd([this] {
    std::vector<std::uint8_t> record(kWorkspaceBytes, 0);
    putMultiSet(record);
    std::copy(p_.images.perf.bytes.begin(), p_.images.perf.bytes.end(), record.begin() + kMultiSetRecBytes);
    putPoolRec(std::span<std::uint8_t>(record).subspan(kSetupBytes), p_.pool);
    writeRecord(CommonDialog1.fileName, record);
  });
}

void Files::SvSetupFile() {
  savePerformanceAnd([this] {
    std::vector<std::uint8_t> record(kSetupBytes, 0);
    putMultiSet(record);
    std::copy(p_.images.perf.bytes.begin(), p_.images.perf.bytes.end(), record.begin() + kMultiSetRecBytes);
    writeRecord(CommonDialog1.fileName, record);
  });
}

void Files::SvPerformFile() {
  savePerformanceAnd([this] { writeRecord(CommonDialog1.fileName, p_.images.perf.bytes); });
}

void Files::SvLyrPoolFile() {
  std::vector<std::uint8_t> record(kPoolRecBytes, 0);
  putPoolRec(record, p_.pool);
  writeRecord(CommonDialog1.fileName, record);
}

void Files::SvMultAllFile() {
  std::vector<std::uint8_t> record(kMultiSetRecBytes, 0);
  putMultiSet(record);
  writeRecord(CommonDialog1.fileName, record);
}

void Files::SvMultFile(int part) {
  std::array<std::uint8_t, kMultiRecBytes> record{};
  putMultiRec(record, p_.images.multi, part, p_.multis.row(part + 1).CmdMult.caption);
  writeRecord(CommonDialog1.fileName, record);
}

// ---- Exports --------------------------------------------------------------------------------

void Files::SvSetupSyx_Click() {
  if (saveDialog("Syx-Ex Setup (*.syx)|*.syx")) SvSetupSyxFile();
}
void Files::SvSetupMid_Click() {
  if (saveDialog("Mid Type 0 Setup (*.mid)|*.mid")) SvSetupMidFile();
}
void Files::SvWrkSpaceText_Click() {
  if (saveDialog("Workspace Description Text (*.txt)|*.txt")) SvWrkSpaceTextFile();
}

std::array<int, 12> Files::channels() const {
  std::array<int, 12> c{};
  for (int m = kFirstMulti; m <= kLastMulti; ++m) c[static_cast<std::size_t>(m - kFirstMulti)] = std::max(p_.multis.row(m).CmbMult.index(), 0);
  return c;
}

void Files::SvSetupSyxFile() {
  savePerformanceAnd([this] {
    writeRecord(CommonDialog1.fileName, syxExport(setupMessages(p_.images.multi, p_.images.perf, channels())));
  });
}

void Files::SvSetupMidFile() {
  const int gap = midiGap(p_.density ? p_.density() : 0);  // read before the pointer changes
  savePerformanceAnd([this, gap] {
    writeRecord(CommonDialog1.fileName, midExport(setupMessages(p_.images.multi, p_.images.perf, channels()), gap));
  });
}

void Files::SvWrkSpaceTextFile() {
  savePerformanceAnd([this] {
    WorkspaceText w;
    w.path = CommonDialog1.fileName;
    w.performance = p_.perfCaption ? p_.perfCaption() : std::string();
    w.channels = channels();
    for (int m = kFirstMulti; m <= kLastMulti; ++m) w.captions[static_cast<std::size_t>(m - kFirstMulti)] = p_.multis.row(m).CmdMult.caption;
    w.pool = p_.pool.LbxLyrPool.items;
    const std::string text = workspaceText(w);
    writeRecord(CommonDialog1.fileName, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
  });
}

}  // namespace tessivo
