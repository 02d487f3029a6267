// The virtual CS2x where the program's own runs do not look: requests it must not answer, what
// parameter changes, bulk dumps, bank selects and notes do to it, how its Layers read, what
// its log keeps, and when its answers arrive.
#include <gtest/gtest.h>

#include <numeric>
#include <set>

#include "data/multi_template.h"
#include "data/tables.h"
#include "support/scripted.h"

namespace tessivo {
using test::hex;
using Clock = std::chrono::steady_clock;
using Dumps = std::vector<Bytes>;

namespace {
// Collects the instrument's answers with their arrival times.
struct Answers {
  explicit Answers(VirtualCs2x& c) : cs2x(c) {
    cs2x.setAnswerSink([this](std::span<const std::uint8_t> m) {
      std::lock_guard lock(mutex);
      got.push_back({Clock::now(), Bytes(m.begin(), m.end())});
    });
  }
  ~Answers() { cs2x.setAnswerSink(nullptr); }
  std::vector<VirtualCs2x::Received> take() {
    cs2x.waitIdle();
    std::lock_guard lock(mutex);
    return std::exchange(got, {});
  }
  Dumps to(const Bytes& message) {  // everything the instrument says after `message`
    cs2x.receive(message);
    Dumps out;
    for (auto& r : take()) out.push_back(std::move(r.bytes));
    return out;
  }
  VirtualCs2x& cs2x;
  std::mutex mutex;
  std::vector<VirtualCs2x::Received> got;
};

// The dumps of every block the instrument holds: Performance blocks first, Com1 to Com3 in front.
Dumps allBlocks(const VirtualCs2x& cs2x) {
  Dumps out;
  for (const PerfBlock& b : kPerfBlocks) out.push_back(cs2x.block(b.address));
  for (std::uint8_t part = 0; part < 16; ++part)
    for (const MultiSection& s : kMultiSections) out.push_back(cs2x.block({s.high, part, s.low}));
  return out;
}

void play(VirtualCs2x& cs2x, std::initializer_list<Bytes> messages) {
  for (const Bytes& m : messages) cs2x.receive(m);
}

constexpr Address kCom0{0x50, 0x00, 0x00}, kCom1{0x60, 0x00, 0x00}, kCom2{0x60, 0x00, 0x40}, kCom3{0x60, 0x00, 0x60};
}  // namespace

TEST(VirtualCs2xRequests, OtherAddressesFormsDevicesAndTruncatedFramesGetNothingAndChangeNothing) {
  VirtualCs2x cs2x;
  Answers answers(cs2x);
  const Dumps before = allBlocks(cs2x);
  for (Bytes dump : before) {  // every shortened request and bulk dump
    dump[kBulkDataOffset] ^= 0x01;
    for (const Bytes& m : {dumpRequest(dump[3], {dump[6], dump[7], dump[8]}), dump})
      for (std::size_t n = 0; n < m.size(); ++n) cs2x.receive(std::span(m.data(), n));
  }
  EXPECT_TRUE(answers.take().empty());
  EXPECT_EQ(allBlocks(cs2x), before);
  for (const Bytes& m : {dumpRequest(kModelCs2x, {0x60, 0x00, 0x01}),  // inside Com1
                         dumpRequest(kModelCs2x, {0x60, 0x05, 0x00}),  // no fifth layer
                         dumpRequest(kModelCs2x, {0x08, 0x00, 0x00}),  // XG address in the instrument's space
                         dumpRequest(kModelXg, {0x60, 0x00, 0x00}),    // and the other way round
                         dumpRequest(kModelXg, {0x08, 0x10, 0x00}),    // part 17
                         dumpRequest(kModelXg, {0x0A, 0x00, 0x00}),
                         Bytes{0xF0, 0x43, 0x21, 0x63, 0x60, 0x00, 0x00, 0xF7},        // device 2
                         Bytes{0xF0, 0x41, 0x20, 0x63, 0x60, 0x00, 0x00, 0xF7},        // another maker
                         Bytes{0xF0, 0x43, 0x20, 0x63, 0x60, 0x00, 0x00, 0x00, 0xF7},  // one byte too many
                         parmRequest({0x08, 0x00, 0x29}),                               // between two sections
                         parmRequest({0x60, 0x00, 0x00})})
    EXPECT_TRUE(answers.to(m).empty()) << hex(m);
}

TEST(VirtualCs2xMemory, ParameterChangesAndBulkDumpsWriteOnlyTheBytesTheyAddress) {
  VirtualCs2x cs2x;
  Answers answers(cs2x);
  const Bytes com1 = cs2x.block(kCom1);
  Bytes data(com1.begin() + kBulkDataOffset, com1.end() - 2);
  data[0x1F] ^= 0x55;
  cs2x.receive(paramChange(kModelCs2x, {0x60, 0x00, 0x1F}, data[0x1F]));
  EXPECT_EQ(answers.to(dumpRequest(kModelCs2x, kCom1)), Dumps{bulkDump(kModelCs2x, kCom1, data)});  // checksum follows
  cs2x.receive(paramChange2(kModelCs2x, kCom2, 0x01, 0x10));  // two bytes, consecutive addresses
  const Bytes com2 = cs2x.block(kCom2);
  EXPECT_EQ(hex(Bytes(com2.begin() + kBulkDataOffset, com2.begin() + 11)), "01 10");
  cs2x.receive(paramChange(kModelXg, {0x08, 0x03, 0x0B}, 0x33));
  EXPECT_EQ(answers.to(parmRequest({0x08, 0x03, 0x0B})), Dumps{paramChange(kModelXg, {0x08, 0x03, 0x0B}, 0x33)});
  // A bulk dump is taken whatever its checksum.
  for (const auto& [model, address, size] : {std::tuple{kModelCs2x, Address{0x60, 0x02, 0x00}, 45}, {kModelXg, {0x08, 0x05, 0x30}, 63}}) {
    Bytes written(static_cast<std::size_t>(size));
    for (std::size_t i = 0; i < written.size(); ++i) written[i] = static_cast<std::uint8_t>((i * 7 + 3) & 0x7F);
    Bytes dump = bulkDump(model, address, written);
    dump[dump.size() - 2] ^= 0x01;
    cs2x.receive(dump);
    EXPECT_EQ(answers.to(dumpRequest(model, address)), Dumps{bulkDump(model, address, written)});
  }
  // Two bytes at the last address of Com1, and a dump running past the end of Com3: the bytes
  // beyond belong to no block and touch nothing.
  Dumps before = allBlocks(cs2x);
  cs2x.receive(paramChange2(kModelCs2x, kAddrArpeggiator, 5, 0x11));
  EXPECT_EQ(cs2x.arpeggiator(), 5);
  cs2x.receive(bulkDump(kModelCs2x, kCom3, Bytes(40, 0x12)));
  before[0] = cs2x.block(kCom1);
  before[2] = bulkDump(kModelCs2x, kCom3, Bytes(9, 0x12));
  EXPECT_EQ(allBlocks(cs2x), before);
}

TEST(VirtualCs2xPerformances, BankSelectAndProgramChangeActOnlyOnThePerformanceChannel) {
  VirtualCs2x cs2x;
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
}

// Each stored Layer read as a Multi Part the way the program reads it: EQ gains from 60 0L
// 29/2A, frequency codes from 2B/2C. Gains lie in 34..4C and the codes in their sliders' ranges
// (4..40, 28..58), so a byte at the other's address shows; so do the edit panel's mono/poly,
// detune nibbles, note and velocity limits. Some Layers are off, holding 0 or another value.
TEST(VirtualCs2xPerformances, EveryStoredLayerReadsAsAMultiPartWithinTheSlidersRanges) {
  VirtualCs2x cs2x;
  std::set<std::uint8_t> offSwitches;
  LyrTemplate t;
  for (std::uint8_t bank : {VirtualCs2x::kPreset1, VirtualCs2x::kPreset2, VirtualCs2x::kUser1, VirtualCs2x::kUser2})
    for (std::uint8_t p = 0; p < 128; ++p) {
      ASSERT_TRUE(cs2x.loadPerformance(bank, p));
      for (std::uint8_t layer = 1; layer <= 4; ++layer) {
        if (cs2x.layerSwitch(layer) != 1) offSwitches.insert(cs2x.layerSwitch(layer));
        t.InitLyrTmpl();
        t.LyrToTmpl(cs2x.block({0x60, layer, 0x00}), cs2x.block(kCom1));
        const auto s0 = t.section(0), s1 = t.section(1), s2 = t.section(2), s3 = t.section(3);
        ASSERT_TRUE(s2[11] >= 0x34 && s2[11] <= 0x4C && s2[12] >= 0x34 && s2[12] <= 0x4C &&  //
                    s3[11] >= 4 && s3[11] <= 40 && s3[12] >= 28 && s3[12] <= 58 &&              //
                    s0[14] <= 1 && s0[18] <= 0x0F && s0[19] <= 0x0F && s0[24] <= s0[25] && s1[70] <= s1[71])
            << cs2x.perfName() << " layer " << int(layer);
      }
    }
  EXPECT_GT(offSwitches.size(), 1u);
}

TEST(VirtualCs2xNotes, NoteOnWithVelocityZeroEndsANoteAndAllNotesOffClearsOnlyItsChannel) {
  VirtualCs2x cs2x;
  play(cs2x, {{0x90, 0x3C, 0x64}, {0x90, 0x40, 0x64}, {0x91, 0x3C, 0x64}, {0x92, 0x30, 0x01}});
  play(cs2x, {{0x80, 0x40, 0x40}, {0x90, 0x3C, 0x00}, {0xB3, 0x7B, 0x00}, {0xB1, 0x7B, 0x00}});
  EXPECT_EQ(cs2x.soundingNotes(), (std::vector<VirtualCs2x::SoundingNote>{{2, 0x30}}));
}

TEST(VirtualCs2xLog, KeepsTheNewestMessagesInOrderWithinItsCountAndByteBounds) {
  VirtualCs2x cs2x;
  // Sends messages first..last-1 of `size` bytes, numbered in bytes 2 and 3; returns the numbers
  // of the logged ones, SIZE_MAX for one of another size.
  const auto send = [&](std::size_t first, std::size_t last, std::size_t size) {
    for (std::size_t i = first; i < last; ++i) {
      Bytes m(size, 0x00);
      m[0] = 0xF0, m[1] = 0x7D, m[2] = static_cast<std::uint8_t>(i >> 7), m[3] = i & 0x7F, m.back() = 0xF7;
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
  constexpr std::size_t kBig = 64 * 1024, kFit = VirtualCs2x::kLogBytes / kBig, kSent = VirtualCs2x::kLogMessages + 100;
  EXPECT_EQ(send(0, kFit + 10, kBig), range(10, kFit + 10));
  EXPECT_EQ(send(1, 2, VirtualCs2x::kLogBytes + 1), range(1, 2));  // the newest stays, whatever its size
  cs2x.clearLog();
  EXPECT_EQ(send(0, kSent, 5), range(kSent - VirtualCs2x::kLogMessages, kSent));
}

TEST(VirtualCs2xTiming, AnswersWaitForTheLatencyPacedOnesForTheirWireTimeInOrderAndSilentOnesNever) {
  using std::chrono::microseconds;
  VirtualCs2x late({.replyLatency = microseconds(40000)}), paced({.paced = true}), silent({.silent = true});
  Answers lateAnswers(late), pacedAnswers(paced), silentAnswers(silent);
  const auto t0 = Clock::now();
  late.receive(dumpRequest(kModelCs2x, kCom1));
  const Address order[] = {kCom1, kCom3, kCom0};
  for (const Address& a : order) paced.receive(dumpRequest(kModelCs2x, a));
  play(silent, {dumpRequest(kModelCs2x, kCom1), parmRequest({0x08, 0x00, 0x0B}), paramChange(kModelCs2x, kAddrPerfChannel, 9)});
  const auto got = lateAnswers.take(), answers = pacedAnswers.take();
  ASSERT_EQ(got.size(), 1u);
  EXPECT_GE(got[0].time - t0, microseconds(40000));
  ASSERT_EQ(answers.size(), 3u);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(answers[i].bytes, paced.block(order[i]));
  EXPECT_GE(answers[0].time - t0, kWireTimePerByte * (8 + 63));
  EXPECT_GE(answers[2].time - t0, kWireTimePerByte * (8 + 63 + 20 + 37));
  EXPECT_TRUE(silentAnswers.take().empty());
  EXPECT_EQ(silent.performanceChannel(), 9);  // it still takes changes
  const auto t1 = Clock::now();
  {
    VirtualCs2x slow({.replyLatency = std::chrono::seconds(30), .paced = true});
    for (int i = 0; i < 5; ++i) slow.receive(dumpRequest(kModelCs2x, kCom1));
  }  // the instrument goes with five answers queued, and at once
  EXPECT_LT(Clock::now() - t1, std::chrono::seconds(5));
}

}  // namespace tessivo
