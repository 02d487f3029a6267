// One of the six own file types, any length and content, through its Load menu entry into the
// started program. Built once per type (TESSIVO_FUZZ_FILE_TYPE is the FileType's number).
//
// A file of the wrong length: the type's message in one box, its dialog offered once more,
// nothing sent and nothing changed. A file of the right length: no box, the record's bytes
// where the file layout puts them and nowhere else, each section sent as it now stands in the
// image and nothing longer than the send buffer, the Pool list built from the record up to
// its first slot that does not exist.

#include <algorithm>
#include <cstring>

#include "common/program_rig.h"
#include "files/records.h"

using namespace tessivo;
using namespace tessivo::fuzz;

namespace {

constexpr auto kType = static_cast<FileType>(TESSIVO_FUZZ_FILE_TYPE);
constexpr int kSinglePart = 8;  // a single Multi goes to M9

// The file layout of a Multi record: where each of the five sections starts, its length.
constexpr std::array<std::size_t, 5> kRecAt{0, 53, 128, 144, 168}, kRecLength{52, 74, 15, 23, 13};
// The Performance as a load sends it: Com0, Com1, Com2, Com3, then Lyr1..4; offset and length.
constexpr std::array<std::pair<std::size_t, std::size_t>, 8> kPerfSends{
    {{228, 37}, {266, 63}, {330, 34}, {365, 20}, {0, 56}, {57, 56}, {114, 56}, {171, 56}}};
constexpr std::size_t kChannelAt = 13, kPartAt = 7;

std::size_t recordLength() {
  switch (kType) {
    case FileType::Workspace: return 27850;
    case FileType::Setup: return 2952;
    case FileType::Performance: return 456;
    case FileType::LayerPool: return 24898;
    case FileType::AllMultis: return 2496;
    case FileType::SingleMulti: return 192;
  }
  return 0;
}

const char* extension() {
  static const char* kExt[] = {".tvw", ".tvf", ".tvx", ".tvp", ".tvm", ".tvs"};
  return kExt[static_cast<int>(kType)];
}

bool rightLength(std::size_t size) {
  if (kType == FileType::AllMultis) return size <= 18200;  // refused only when longer
  return size == recordLength();
}

void load(Files& files, test::ScriptedScreen& screen, const std::string& path) {
  screen.openAnswers.push_back(path);  // the dialog offered again is cancelled
  switch (kType) {
    case FileType::Workspace: files.LdWrkSpace_Click(); break;
    case FileType::Setup: files.LdFullSetup_Click(); break;
    case FileType::Performance: files.LdPerform_Click(); break;
    case FileType::LayerPool: files.LdLayerPool_Click(); break;
    case FileType::AllMultis: files.LdMultAll_Click(); break;
    case FileType::SingleMulti: files.LdMultDlg(kSinglePart); break;
  }
}

bool sameRange(std::span<const std::uint8_t> a, std::span<const std::uint8_t> b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
}

// Part `part` of the image after a load of `rec`: each section's message from the record,
// the bytes behind it as they were. `toThisPlace` puts the part's own index in and keeps its
// channel.
void checkPart(const MultiImage& after, const MultiImage& before, std::size_t part, std::span<const std::uint8_t> rec,
               bool toThisPlace) {
  auto& a = const_cast<MultiImage&>(after);
  auto& b = const_cast<MultiImage&>(before);
  for (std::size_t s = 0; s < 6; ++s) {
    const auto now = a.section(part, s), was = b.section(part, s);
    const std::size_t n = s < 5 && !rec.empty() ? kRecLength[s] : 0;
    for (std::size_t i = 0; i < now.size(); ++i) {
      std::uint8_t want = i < n ? rec[kRecAt[s] + i] : was[i];
      if (toThisPlace && i < n && i == kPartAt) want = static_cast<std::uint8_t>(part);
      if (toThisPlace && s == 0 && i == kChannelAt) want = was[i];
      FUZZ_PROMISE(now[i] == want, "a Multi section holds its record's message and keeps what lies behind it");
    }
  }
}

// The five section messages of `part` as sent, each as the image holds it after the load.
void checkPartSends(const std::vector<Bytes>& sent, std::size_t first, MultiImage& image, std::size_t part) {
  FUZZ_PROMISE(sent.size() >= first + 5, "every section of a loaded Multi is sent");
  for (std::size_t s = 0; s < 5; ++s) {
    const auto section = image.section(part, s);
    FUZZ_PROMISE(sameRange(sent[first + s], section.first(kRecLength[s])), "a section is sent as its message, no longer");
  }
}

void checkPerformance(const PerfImage& perf, std::span<const std::uint8_t> rec, int channel, const std::vector<Bytes>& sent,
                      std::size_t first) {
  for (std::size_t i = 0; i < PerfImage::kSize; ++i) {
    const std::uint8_t want = i == PerfImage::kCom0At + PerfImage::kPerfChannelAt ? static_cast<std::uint8_t>(channel) : rec[i];
    FUZZ_PROMISE(perf.bytes[i] == want, "the Performance image is the record, with the preferences' channel");
  }
  FUZZ_PROMISE(sent.size() == first + kPerfSends.size(), "a Performance load sends its eight sections, no more");
  for (std::size_t k = 0; k < kPerfSends.size(); ++k) {
    const auto [at, n] = kPerfSends[k];
    FUZZ_PROMISE(sameRange(sent[first + k], std::span(perf.bytes).subspan(at, n)), "a Performance section is sent whole");
  }
}

void checkPool(const ProgramState& s, std::span<const std::uint8_t> rec) {
  constexpr std::size_t kIdsAt = 24768, kCountAt = 24897, kNameAt = 182;
  for (std::size_t i = 0; i < kPoolRecords; ++i) {
    FUZZ_PROMISE(sameRange(s.pool[i].body, rec.subspan(i * 192, kTemplateBytes)), "a Pool entry is its record's body");
    FUZZ_PROMISE(std::memcmp(s.pool[i].Name.data(), rec.data() + i * 192 + kNameAt, 10) == 0, "a Pool entry keeps its name");
  }
  FUZZ_PROMISE(sameRange(s.poolIds, rec.subspan(kIdsAt, kPoolRecords)) && s.poolCount == rec[kCountAt],
               "the list's slots and count are the record's");
  // Two entries on one slot would lose one of them: deleting either frees the slot the other
  // still shows, and the next drop overwrites it. A slot listed twice ends the list like one
  // that does not exist.
  std::size_t listed = 0;
  std::array<bool, kPoolRecords> seen{};
  while (listed < std::min<std::size_t>(s.poolCount, kPoolRecords) && s.poolIds[listed] < kPoolRecords && !seen[s.poolIds[listed]])
    seen[s.poolIds[listed++]] = true;
  FUZZ_PROMISE(s.listItems.size() == listed && s.listData.size() == listed,
               "the list holds the record's entries up to the first slot that does not exist or is listed already");
  std::array<bool, kPoolRecords> used{};
  for (std::size_t k = 0; k < listed; ++k) {
    FUZZ_PROMISE(s.listData[k] == s.poolIds[k], "each list entry points at its slot");
    used[static_cast<std::size_t>(s.listData[k])] = true;
  }
  // Slots 0..127 are handed out; 128 is only carried in files, never offered as free.
  for (std::size_t i = 0; i < kPoolCapacity; ++i)
    FUZZ_PROMISE(s.poolFree[i] == (used[i] ? kPoolInUse : kPoolFree), "a slot is in use exactly when the list points at it");
  FUZZ_PROMISE(s.poolFree[kPoolCapacity] == kPoolInUse, "the carried slot is never offered");
}

ProgramRig& rig() {
  static ProgramRig* r = new ProgramRig;  // lives as long as the process: no end-of-run teardown
  return *r;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ProgramRig& r = rig();
  static const std::string path = scratchPath(std::string("load") + extension());
  r.reset();
  writeBytes(path, {data, size});
  test::ScriptedProgram& p = r.program();
  MainForm& form = r.form();
  const ProgramState& before = r.baseline();

  load(form.files(), p.screen, path);
  const ProgramState after = r.take();
  const std::vector<Bytes>& sent = p.midi.sent;
  for (const Bytes& m : sent) FUZZ_PROMISE(!m.empty() && m.size() <= 128, "nothing longer than the send buffer is sent");

  if (!rightLength(size)) {
    FUZZ_PROMISE(p.screen.boxes.size() == 1 && p.screen.boxes[0].text == Files::wrongTypeMessage(kType),
                 "a wrong length gives the type's message, once");
    FUZZ_PROMISE(p.screen.dialogs.size() == 2, "the type's dialog is offered again");
    FUZZ_PROMISE(sent.empty(), "a refused file sends nothing");
    FUZZ_PROMISE(after.perf.bytes == before.perf.bytes && after.multi.bytes == before.multi.bytes && samePool(after, before) &&
                     after.captions == before.captions && after.channels == before.channels,
                 "a refused file changes nothing");
    return 0;
  }

  FUZZ_PROMISE(p.screen.boxes.empty(), "a file of the right length loads without a box");
  FUZZ_PROMISE(p.screen.dialogs.size() == 1, "a load asks for its file once");
  const std::span<const std::uint8_t> file(data, size);
  // The record as read: the file's first bytes, zeros behind a shorter one.
  Bytes rec(std::max(recordLength(), size), 0);
  std::copy(file.begin(), file.end(), rec.begin());
  const int perfChannel = p.app.pref().cmbPerfChnl.index();

  switch (kType) {
    case FileType::Performance:
      FUZZ_PROMISE(after.multi.bytes == before.multi.bytes && samePool(after, before) && after.captions == before.captions,
                   "a Performance load leaves the Multis and the Pool");
      checkPerformance(after.perf, rec, perfChannel, sent, 0);
      break;
    case FileType::LayerPool:
      FUZZ_PROMISE(after.perf.bytes == before.perf.bytes && after.multi.bytes == before.multi.bytes && sent.empty() &&
                       after.captions == before.captions,
                   "a Pool load leaves the images and sends nothing");
      checkPool(after, rec);
      break;
    case FileType::SingleMulti: {
      FUZZ_PROMISE(after.perf.bytes == before.perf.bytes && samePool(after, before) && after.channels == before.channels,
                   "a single Multi leaves the Performance, the Pool and the channels");
      for (std::size_t part = 0; part < kMultiParts; ++part)
        if (part != kSinglePart) checkPart(after.multi, before.multi, part, {}, false);
      checkPart(after.multi, before.multi, kSinglePart, rec, true);
      FUZZ_PROMISE(sent.size() == 5, "a single Multi sends its five sections");
      checkPartSends(sent, 0, form.images().multi, kSinglePart);
      for (int m = kFirstMulti; m <= kLastMulti; ++m)
        if (m != kSinglePart + 1)
          FUZZ_PROMISE(after.captions[static_cast<std::size_t>(m - kFirstMulti)] == before.captions[static_cast<std::size_t>(m - kFirstMulti)],
                       "only the loaded Multi's button changes");
      break;
    }
    case FileType::AllMultis:
    case FileType::Setup:
    case FileType::Workspace: {
      const bool all = kType == FileType::AllMultis;
      for (std::size_t part = 0; part < kMultiParts; ++part) {
        const bool loaded = part >= kFirstMulti - 1 && part <= kLastMulti - 1;
        checkPart(after.multi, before.multi, part, loaded ? std::span<const std::uint8_t>(rec).subspan((part - 4) * 192, 192) : std::span<const std::uint8_t>{},
                  false);
        if (loaded) checkPartSends(sent, (part - 4) * 5, form.images().multi, part);
      }
      // The channels: a Setup's load ends at the first byte that is no channel, an All Multis
      // load leaves that list as it was and goes on.
      std::size_t moved = 0;
      bool ended = false;
      for (std::size_t row = 0; row < kMultiRows; ++row) {
        const std::uint8_t channel = rec[row * 192 + kChannelAt];
        if (channel > 15) {
          FUZZ_PROMISE(after.channels[row] == before.channels[row], "a byte that is no channel leaves its list");
          if (!all) ended = true;
          if (!all) {
            for (std::size_t rest = row; rest < kMultiRows; ++rest)
              FUZZ_PROMISE(after.channels[rest] == before.channels[rest], "an ended load moves no list after it");
            break;
          }
          continue;
        }
        FUZZ_PROMISE(after.channels[row] == channel, "each list shows its Multi's channel");
        if (channel != before.channels[row]) ++moved;
      }
      FUZZ_PROMISE(samePool(after, before) || kType == FileType::Workspace, "only a Workspace carries a Pool");
      if (all || ended) {
        FUZZ_PROMISE(sent.size() == 60 + moved, "the sections and each moved channel are sent, nothing else");
        FUZZ_PROMISE(after.perf.bytes == before.perf.bytes, "no Performance is loaded here");
        FUZZ_PROMISE(samePool(after, before), "a load that ended early leaves the Pool");
      } else {
        checkPerformance(after.perf, std::span<const std::uint8_t>(rec).subspan(2496, 456), perfChannel, sent, 60 + moved);
        if (kType == FileType::Workspace) checkPool(after, std::span<const std::uint8_t>(rec).subspan(2952, 24898));
      }
      break;
    }
  }
  return 0;
}
