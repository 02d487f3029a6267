// The virtual CS2x as the program sees it: what it answers to which request, what parameter
// changes, bulk dumps, bank selects, program changes and notes do to it, what its stored
// Performances hold, that no byte sequence upsets it, what its log keeps, and when its answers
// arrive.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <random>
#include <set>
#include <utility>

#include "data/multi_template.h"
#include "data/tables.h"
#include "support/scripted.h"

namespace tessivo {
using test::hex;
using Clock = std::chrono::steady_clock;

namespace {
// Collects the instrument's answers with their arrival times.
class Answers {
 public:
  explicit Answers(VirtualCs2x& cs2x) : cs2x_(cs2x) {
    cs2x_.setAnswerSink([this](std::span<const std::uint8_t> m) {
      std::lock_guard lock(mutex_);
      got_.push_back({Clock::now(), Bytes(m.begin(), m.end())});
    });
  }
  ~Answers() { cs2x_.setAnswerSink(nullptr); }
  std::vector<VirtualCs2x::Received> take() {
    cs2x_.waitIdle();
    std::lock_guard lock(mutex_);
    return std::exchange(got_, {});
  }
  // Everything the instrument says after `message`.
  std::vector<Bytes> to(const Bytes& message) {
    cs2x_.receive(message);
    std::vector<Bytes> out;
    for (auto& r : take()) out.push_back(std::move(r.bytes));
    return out;
  }

 private:
  VirtualCs2x& cs2x_;
  std::mutex mutex_;
  std::vector<VirtualCs2x::Received> got_;
};

struct Request {
  std::uint8_t model;
  Address address;
  std::size_t length;
};
std::vector<Request> allBlockRequests() {
  std::vector<Request> out;
  for (const PerfBlock& b : kPerfBlocks) out.push_back({kModelCs2x, b.address, static_cast<std::size_t>(b.length)});
  for (std::uint8_t part = 0; part < 16; ++part)
    for (const MultiSection& s : kMultiSections)
      out.push_back({kModelXg, {s.high, part, s.low}, static_cast<std::size_t>(s.length)});
  return out;
}

std::vector<Bytes> allBlocks(const VirtualCs2x& cs2x) {
  std::vector<Bytes> out;
  for (const Request& r : allBlockRequests()) out.push_back(cs2x.block(r.address));
  return out;
}

void play(VirtualCs2x& cs2x, std::initializer_list<Bytes> messages) {
  for (const Bytes& m : messages) cs2x.receive(m);
}

constexpr Address kCom1{0x60, 0x00, 0x00}, kCom2{0x60, 0x00, 0x40}, kCom0{0x50, 0x00, 0x00};
}  // namespace

TEST(VirtualCs2xRequests, EachBlockRequestGetsOneWholeDumpOfItsBlock) {
  VirtualCs2x cs2x;
  Answers answers(cs2x);
  for (const Request& r : allBlockRequests()) {
    const auto got = answers.to(dumpRequest(r.model, r.address));
    ASSERT_EQ(got.size(), 1u) << hex(dumpRequest(r.model, r.address));
    const Bytes& m = got[0];
    ASSERT_EQ(m.size(), r.length) << hex(m);
    const std::size_t count = r.length - kBulkFrameBytes;
    EXPECT_EQ(Bytes(m.begin(), m.begin() + 9),
              (Bytes{0xF0, 0x43, 0x00, r.model, std::uint8_t(count >> 7), std::uint8_t(count & 0x7F), r.address.high,
                     r.address.mid, r.address.low}));
    EXPECT_EQ(m[m.size() - 2], SyxChksum(m)) << hex(m);
    EXPECT_EQ(m.back(), 0xF7);
    EXPECT_TRUE(std::all_of(m.begin() + 1, m.end() - 1, [](std::uint8_t b) { return b < 0x80; })) << hex(m);
  }
}

TEST(VirtualCs2xRequests, OtherAddressesFormsAndDevicesGetNothing) {
  VirtualCs2x cs2x;
  Answers answers(cs2x);
  const std::vector<Bytes> unanswered{
      dumpRequest(kModelCs2x, {0x60, 0x00, 0x01}),  // inside Com1
      dumpRequest(kModelCs2x, {0x60, 0x05, 0x00}),  // no fifth layer
      dumpRequest(kModelCs2x, {0x08, 0x00, 0x00}),  // XG address in the instrument's space
      dumpRequest(kModelXg, {0x60, 0x00, 0x00}),    // and the other way round
      dumpRequest(kModelXg, {0x08, 0x10, 0x00}),    // part 17
      dumpRequest(kModelXg, {0x0A, 0x00, 0x00}),
      {0xF0, 0x43, 0x21, 0x63, 0x60, 0x00, 0x00, 0xF7},        // device 2
      {0xF0, 0x41, 0x20, 0x63, 0x60, 0x00, 0x00, 0xF7},        // another maker
      {0xF0, 0x43, 0x20, 0x63, 0x60, 0x00, 0x00, 0x00, 0xF7},  // one byte too many
      parmRequest({0x08, 0x00, 0x29}),                         // between two sections
      parmRequest({0x60, 0x00, 0x00}),
  };
  for (const Bytes& m : unanswered) EXPECT_TRUE(answers.to(m).empty()) << hex(m);
  EXPECT_EQ(answers.to(parmRequest({0x08, 0x02, 0x04})), std::vector<Bytes>{paramChange(kModelXg, {0x08, 0x02, 0x04}, 2)});
}

TEST(VirtualCs2xMemory, ParameterChangesWriteConsecutiveAddressesOfTheNextDump) {
  VirtualCs2x cs2x;
  Answers answers(cs2x);
  const Bytes com1 = cs2x.block(kCom1);
  const std::uint8_t cutoff = com1[kBulkDataOffset + 0x1F] ^ 0x55;
  cs2x.receive(paramChange(kModelCs2x, {0x60, 0x00, 0x1F}, cutoff));
  const Bytes after = answers.to(dumpRequest(kModelCs2x, kCom1)).at(0);
  for (std::size_t i = 0; i + 2 < com1.size(); ++i)  // the checksum follows the change
    EXPECT_EQ(after[i], i == kBulkDataOffset + 0x1F ? cutoff : com1[i]) << i;

  const EffectType& hall2 = RvrbTbl[2];
  cs2x.receive(paramChange2(kModelCs2x, kCom2, hall2.high, hall2.low));
  const Bytes com2 = cs2x.block(kCom2);
  EXPECT_EQ(findEffectType(RvrbTbl, com2[kBulkDataOffset], com2[kBulkDataOffset + 1]), &hall2);

  // Two bytes at the last address of Com1: the one beyond it belongs to no block.
  const auto before = allBlocks(cs2x);
  cs2x.receive(paramChange2(kModelCs2x, kAddrArpeggiator, 5, 0x11));
  EXPECT_EQ(cs2x.arpeggiator(), 5);
  auto blocks = allBlocks(cs2x);
  blocks[0] = before[0];
  EXPECT_EQ(blocks, before);

  cs2x.receive(paramChange(kModelCs2x, kAddrLocalSwitch, 0));
  cs2x.receive(paramChange(kModelCs2x, kAddrTransmitChannel, 4));
  EXPECT_EQ(cs2x.localSwitch(), 0);
  EXPECT_EQ(cs2x.transmitChannel(), 4);
  cs2x.receive(paramChange(kModelXg, {0x08, 0x03, 0x0B}, 0x33));
  EXPECT_EQ(answers.to(parmRequest({0x08, 0x03, 0x0B})), std::vector<Bytes>{paramChange(kModelXg, {0x08, 0x03, 0x0B}, 0x33)});
}

TEST(VirtualCs2xMemory, AReceivedBulkDumpIsWhatTheNextDumpHoldsWhateverItsChecksum) {
  VirtualCs2x cs2x;
  Answers answers(cs2x);
  for (const Request& r : {Request{kModelCs2x, {0x60, 0x02, 0x00}, 56}, Request{kModelXg, {0x08, 0x05, 0x30}, 74}}) {
    Bytes data(r.length - kBulkFrameBytes);
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<std::uint8_t>((i * 7 + 3) & 0x7F);
    Bytes dump = bulkDump(r.model, r.address, data);
    dump[dump.size() - 2] ^= 0x01;
    cs2x.receive(dump);
    EXPECT_EQ(answers.to(dumpRequest(r.model, r.address)), std::vector<Bytes>{bulkDump(r.model, r.address, data)});
  }
  // Data running past the end of Com3 fill Com3 and touch nothing else.
  const auto before = allBlocks(cs2x);
  cs2x.receive(bulkDump(kModelCs2x, {0x60, 0x00, 0x60}, Bytes(40, 0x12)));
  EXPECT_EQ(cs2x.block({0x60, 0x00, 0x60}), bulkDump(kModelCs2x, {0x60, 0x00, 0x60}, Bytes(9, 0x12)));
  auto blocks = allBlocks(cs2x);
  blocks[2] = before[2];
  EXPECT_EQ(blocks, before);
}

TEST(VirtualCs2xPerformances, BankSelectAndProgramChangeActOnlyOnThePerformanceChannel) {
  VirtualCs2x cs2x;
  EXPECT_EQ(cs2x.perfName(), PrfNames1[0]);
  EXPECT_EQ(cs2x.performanceChannel(), 0);
  play(cs2x, {paramChange(kModelCs2x, kAddrPerfChannel, 5), paramChange(kModelCs2x, kAddrLocalSwitch, 0)});
  const Bytes com0 = cs2x.block(kCom0);

  play(cs2x, {{0xB5, 0x00, 0x3F}, {0xB5, 0x20, 0x42}, {0xC5, 0x07}});
  EXPECT_EQ(cs2x.perfName(), PrfNames2[7]);
  EXPECT_EQ(cs2x.block(kCom0), com0);  // channel and the rest of Com0 stay

  play(cs2x, {{0xB0, 0x00, 0x3F}, {0xB0, 0x20, 0x40}, {0xC0, 0x01}, {0xC6, 0x02}});  // other channels
  EXPECT_EQ(cs2x.perfName(), PrfNames2[7]);
  play(cs2x, {{0xC5, 0x09}});  // the bank selected before stays selected
  EXPECT_EQ(cs2x.perfName(), PrfNames2[9]);
  play(cs2x, {{0xB5, 0x00, 0x00}, {0xC5, 0x0A}});  // not a bank of Performances
  EXPECT_EQ(cs2x.perfName(), PrfNames2[9]);
  EXPECT_EQ(cs2x.performanceChannel(), 5);
}

// Every stored Performance, and each of its Layers read as a Multi Part the way the program
// reads it: EQ gains from 60 0L 29/2A, frequency codes from 2B/2C. Gains lie in 34..4C and the
// codes in their sliders' ranges (4..40, 28..58), so a byte at the other's address shows.
TEST(VirtualCs2xPerformances, TheBanksHoldVariedNamedPerformancesWhoseLayersReadAsMultiParts) {
  VirtualCs2x cs2x;
  int withLayerOff = 0, offNotZero = 0;
  std::set<std::uint8_t> voices;
  std::set<std::string> userNames;
  LyrTemplate t;
  for (std::uint8_t bank : {VirtualCs2x::kPreset1, VirtualCs2x::kPreset2, VirtualCs2x::kUser1, VirtualCs2x::kUser2}) {
    for (std::uint8_t p = 0; p < 128; ++p) {
      ASSERT_TRUE(cs2x.loadPerformance(bank, p));
      const std::string name = cs2x.perfName();
      if (bank == VirtualCs2x::kPreset1 || bank == VirtualCs2x::kPreset2) {
        EXPECT_EQ(name, (bank == VirtualCs2x::kPreset1 ? PrfNames1 : PrfNames2)[p]);
      } else {
        EXPECT_EQ(std::count(PrfNames1.begin(), PrfNames1.end(), name) + std::count(PrfNames2.begin(), PrfNames2.end(), name), 0);
        userNames.insert(name);
      }
      const Bytes com2 = cs2x.block(kCom2);
      EXPECT_NE(findEffectType(RvrbTbl, com2[9], com2[10]), nullptr);
      EXPECT_NE(findEffectType(ChrsTbl, com2[11], com2[12]), nullptr);
      EXPECT_NE(findEffectType(VarTbl, com2[13], com2[14]), nullptr);
      EXPECT_EQ(cs2x.layerSwitch(1), 1);
      bool off = false;
      const Bytes com1 = cs2x.block(kCom1);
      for (std::uint8_t layer = 1; layer <= 4; ++layer) {
        off |= cs2x.layerSwitch(layer) != 1;
        offNotZero += cs2x.layerSwitch(layer) != 1 && cs2x.layerSwitch(layer) != 0;
        t.InitLyrTmpl();
        t.LyrToTmpl(cs2x.block({0x60, layer, 0x00}), com1);
        const auto s0 = t.section(0), s1 = t.section(1), s2 = t.section(2), s3 = t.section(3);
        SCOPED_TRACE(testing::Message() << name << " layer " << int(layer));
        ASSERT_TRUE(s2[11] >= 0x34 && s2[11] <= 0x4C && s2[12] >= 0x34 && s2[12] <= 0x4C) << hex(Bytes(s2.begin(), s2.end()));
        ASSERT_TRUE(s3[11] >= 4 && s3[11] <= 40 && s3[12] >= 28 && s3[12] <= 58) << hex(Bytes(s3.begin(), s3.end()));
        // What the edit panel shows: mono/poly, detune nibbles, note and velocity limits.
        ASSERT_TRUE(s0[14] <= 1 && s0[18] <= 0x0F && s0[19] <= 0x0F && s0[24] <= s0[25] && s1[70] <= s1[71]);
      }
      withLayerOff += off;
      voices.insert(cs2x.block({0x60, 0x01, 0x00})[kBulkDataOffset + 2]);
    }
  }
  EXPECT_EQ(userNames.size(), 256u);
  EXPECT_GT(withLayerOff, 0);
  EXPECT_LT(withLayerOff, 512);
  EXPECT_GT(offNotZero, 0);
  EXPECT_GT(voices.size(), 10u);
  // The same Performance twice is the same; another bank or program is another.
  cs2x.loadPerformance(VirtualCs2x::kPreset1, 3);
  const auto first = allBlocks(cs2x);
  cs2x.loadPerformance(VirtualCs2x::kUser1, 3);
  EXPECT_NE(allBlocks(cs2x), first);
  cs2x.loadPerformance(VirtualCs2x::kPreset1, 3);
  EXPECT_EQ(allBlocks(cs2x), first);
  EXPECT_FALSE(cs2x.loadPerformance(0x44, 0));
  EXPECT_FALSE(cs2x.loadPerformance(VirtualCs2x::kPreset1, 128));
  EXPECT_EQ(allBlocks(cs2x), first);
}

TEST(VirtualCs2xNotes, NotesSoundUntilNoteOffAndAllNotesOffClearsItsChannel) {
  using N = VirtualCs2x::SoundingNote;
  VirtualCs2x cs2x;
  play(cs2x, {{0x90, 0x3C, 0x64}, {0x90, 0x40, 0x64}, {0x91, 0x3C, 0x64}, {0x92, 0x30, 0x01}});
  EXPECT_EQ(cs2x.soundingNotes(), (std::vector<N>{{0, 0x3C}, {0, 0x40}, {1, 0x3C}, {2, 0x30}}));
  play(cs2x, {{0x80, 0x40, 0x40}, {0x90, 0x3C, 0x00}, {0xB3, 0x7B, 0x00}});
  EXPECT_EQ(cs2x.soundingNotes(), (std::vector<N>{{1, 0x3C}, {2, 0x30}}));
  play(cs2x, {{0xB1, 0x7B, 0x00}});
  EXPECT_EQ(cs2x.soundingNotes(), (std::vector<N>{{2, 0x30}}));
  // The program's own sequences leave nothing hanging on any channel.
  for (std::uint8_t c = 0; c < 16; ++c) cs2x.receive(Bytes{static_cast<std::uint8_t>(0x90 | c), 0x3C, 0x7F});
  for (const Bytes& m : splitMidiStream(testNoteOffSequence(0x3C, 0x40))) cs2x.receive(m);
  EXPECT_EQ(cs2x.soundingNotes(), (std::vector<N>{{2, 0x30}}));
  for (const Bytes& m : splitMidiStream(allNotesOffSequence())) cs2x.receive(m);
  EXPECT_TRUE(cs2x.soundingNotes().empty());
}

TEST(VirtualCs2xRobustness, GarbageAndTruncatedFramesAreIgnored) {
  VirtualCs2x cs2x;
  Answers answers(cs2x);
  // Every shortened request and bulk dump: no answer, no change.
  const auto before = allBlocks(cs2x);
  std::vector<Bytes> whole;
  for (const Request& r : allBlockRequests()) {
    whole.push_back(dumpRequest(r.model, r.address));
    whole.push_back(cs2x.block(r.address));
    whole.back()[kBulkDataOffset] ^= 0x01;
  }
  for (const Bytes& m : whole)
    for (std::size_t n = 0; n < m.size(); ++n) cs2x.receive(std::span(m.data(), n));
  EXPECT_TRUE(answers.take().empty());
  EXPECT_EQ(allBlocks(cs2x), before);

  std::mt19937 random(20240611);
  const std::uint8_t starts[] = {0xF0, 0x43, 0x90, 0xB0, 0xC0, 0xF7};
  for (int i = 0; i < 20000; ++i) {
    Bytes m(random() % 80);
    for (auto& b : m) b = static_cast<std::uint8_t>(random());
    if (!m.empty() && i % 2) m[0] = starts[random() % std::size(starts)];
    if (m.size() > 3 && i % 4 == 1) std::copy_n(Bytes{0x43, static_cast<std::uint8_t>(random() % 0x40), 0x63}.begin(), 3, m.begin() + 1);
    cs2x.receive(m);
  }
  for (const auto& a : answers.take()) EXPECT_TRUE(a.bytes.front() == 0xF0 && a.bytes.back() == 0xF7);
  EXPECT_EQ(answers.to(dumpRequest(kModelCs2x, kCom1)), std::vector<Bytes>{cs2x.block(kCom1)});
}

TEST(VirtualCs2xLog, KeepsTheNewestMessagesInOrderWithinItsCountAndByteBounds) {
  VirtualCs2x cs2x;
  // Sends messages first..last-1 of `size` bytes, another maker's SysEx with its number in
  // bytes 2 and 3 (logged, otherwise ignored); returns the numbers of the logged ones, with
  // SIZE_MAX for one of another size.
  const auto send = [&](std::size_t first, std::size_t last, std::size_t size) {
    for (std::size_t i = first; i < last; ++i) {
      Bytes m{0xF0, 0x7D, static_cast<std::uint8_t>(i >> 7), static_cast<std::uint8_t>(i & 0x7F)};
      m.resize(size - 1, 0x00);
      m.push_back(0xF7);
      cs2x.receive(m);
    }
    std::vector<std::size_t> numbers;
    for (const auto& r : cs2x.log()) numbers.push_back(r.bytes.size() == size ? std::size_t{r.bytes[2]} << 7 | r.bytes[3] : SIZE_MAX);
    return numbers;
  };
  const auto range = [](std::size_t first, std::size_t last) {
    std::vector<std::size_t> out(last - first);
    std::iota(out.begin(), out.end(), first);
    return out;
  };
  constexpr std::size_t kBig = 64 * 1024, kFit = VirtualCs2x::kLogBytes / kBig;
  EXPECT_EQ(send(0, kFit + 10, kBig), range(10, kFit + 10));
  EXPECT_EQ(send(1, 2, VirtualCs2x::kLogBytes + 1), range(1, 2));  // the newest stays, whatever its size
  cs2x.clearLog();
  constexpr std::size_t kSent = VirtualCs2x::kLogMessages + 100;
  EXPECT_EQ(send(0, kSent, 5), range(kSent - VirtualCs2x::kLogMessages, kSent));
}

TEST(VirtualCs2xTiming, AnswersWaitForTheLatencyAndPacedOnesForTheirWireTimeInOrder) {
  using std::chrono::microseconds;
  VirtualCs2x late({.silent = false, .replyLatency = microseconds(40000), .paced = false});
  Answers lateAnswers(late);
  const auto t0 = Clock::now();
  late.receive(dumpRequest(kModelCs2x, kCom1));
  const auto got = lateAnswers.take();
  ASSERT_EQ(got.size(), 1u);
  EXPECT_GE(got[0].time - t0, microseconds(40000));

  VirtualCs2x paced({.silent = false, .replyLatency = {}, .paced = true});
  Answers pacedAnswers(paced);
  const auto t1 = Clock::now();
  const Address order[] = {kCom1, {0x60, 0x00, 0x60}, kCom0};
  for (const Address& a : order) paced.receive(dumpRequest(kModelCs2x, a));
  const auto answers = pacedAnswers.take();
  ASSERT_EQ(answers.size(), 3u);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(answers[i].bytes, paced.block(order[i]));
  EXPECT_GE(answers[0].time - t1, kWireTimePerByte * (8 + 63));
  EXPECT_GE(answers[2].time - t1, kWireTimePerByte * (8 + 63 + 20 + 37));
}

TEST(VirtualCs2xTiming, SilentOrWithoutASinkNothingArrivesAndQueuedAnswersDoNotHoldDestruction) {
  {
    VirtualCs2x silent({.silent = true, .replyLatency = {}, .paced = false});
    Answers answers(silent);
    play(silent, {dumpRequest(kModelCs2x, kCom1), parmRequest({0x08, 0x00, 0x0B}), paramChange(kModelCs2x, kAddrPerfChannel, 9)});
    EXPECT_TRUE(answers.take().empty());
    EXPECT_EQ(silent.performanceChannel(), 9);  // it still takes changes
  }
  {
    VirtualCs2x cs2x;
    cs2x.receive(dumpRequest(kModelCs2x, kCom1));
    cs2x.waitIdle();
    Answers answers(cs2x);  // a sink that comes later does not get it
    EXPECT_TRUE(answers.take().empty());
  }
  VirtualCs2x slow({.silent = false, .replyLatency = std::chrono::seconds(30), .paced = true});
  Answers answers(slow);
  for (int i = 0; i < 5; ++i) slow.receive(dumpRequest(kModelCs2x, kCom1));
}  // the instrument goes with five answers queued

TEST(VirtualCs2xService, AnAnswerReachesTheArmedBufferAndPassesThruBackToTheInstrument) {
  test::BuiltIn rig;
  MidiHandle in = 0, out = 0;
  ASSERT_EQ(rig.midi.midiOutOpen(out, 0), MMSYSERR_NOERROR);
  ASSERT_EQ(rig.midi.midiInOpen(in, 0, nullptr, 0, 0), MMSYSERR_NOERROR);
  test::InBuffer buffer;
  rig.midi.midiConnect(in, out);
  ASSERT_EQ(test::arm(rig.midi, in, buffer), MMSYSERR_NOERROR);

  const Bytes request = dumpRequest(kModelXg, {0x08, 0x07, 0x00});
  ASSERT_EQ(test::sendLong(rig.midi, out, request), MMSYSERR_NOERROR);
  rig.cs2x.waitIdle();
  const Bytes expected = rig.cs2x.block({0x08, 0x07, 0x00});
  EXPECT_EQ(buffer.recorded(), expected);
  // Thru sent it back, from the instrument's own thread.
  EXPECT_EQ(rig.wire(), (std::vector<std::string>{hex(request), hex(expected)}));

  rig.midi.midiInStop(in);
  rig.midi.midiInUnprepareHeader(in, &buffer.hdr, kMidiHdrSize);
  ASSERT_EQ(rig.midi.midiInClose(in), MMSYSERR_NOERROR);
  test::sendLong(rig.midi, out, request);  // the input is closed: the answer is dropped
  rig.cs2x.waitIdle();
  EXPECT_EQ(rig.cs2x.log().size(), 3u);
}

}  // namespace tessivo
