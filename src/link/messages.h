#pragma once
// The instrument's System Exclusive forms: frames, the two address spaces (model 0x63 for the
// Performance, XG model 0x4C for the Multi Parts), the thirteen dump requests, the bulk dump
// checksum, and the splitting of a byte stream into single MIDI messages.

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace tessivo {

using Bytes = std::vector<std::uint8_t>;

// Status bytes of channel messages; the low nibble is the channel 0..15.
inline constexpr std::uint8_t kNoteOff = 0x80;
inline constexpr std::uint8_t kNoteOn = 0x90;
inline constexpr std::uint8_t kControlChange = 0xB0;
inline constexpr std::uint8_t kProgramChange = 0xC0;
// Controller numbers the program sends.
inline constexpr std::uint8_t kCtlBankMsb = 0x00;
inline constexpr std::uint8_t kCtlBankLsb = 0x20;
inline constexpr std::uint8_t kCtlAllNotesOff = 0x7B;

inline constexpr std::uint8_t kSysExStart = 0xF0;
inline constexpr std::uint8_t kSysExEnd = 0xF7;
inline constexpr std::uint8_t kYamahaId = 0x43;
inline constexpr std::uint8_t kModelCs2x = 0x63;  // the instrument's own space: the Performance
inline constexpr std::uint8_t kModelXg = 0x4C;    // XG space: the Multi Parts

// Third byte of a message: kind in the high nibble, device number (always 0 here) low.
inline constexpr std::uint8_t kBulkDump = 0x00;
inline constexpr std::uint8_t kParamChange = 0x10;
inline constexpr std::uint8_t kDumpRequest = 0x20;
inline constexpr std::uint8_t kParamRequest = 0x30;

// A bulk dump: F0 43 0n mm bh bl ah am al data.. cs F7. Its data starts at offset 9 and the
// frame costs 11 bytes.
inline constexpr std::size_t kBulkDataOffset = 9;
inline constexpr std::size_t kBulkFrameBytes = 11;

struct Address {
  std::uint8_t high, mid, low;
};

Bytes paramChange(std::uint8_t model, Address a, std::uint8_t data);
Bytes paramChange2(std::uint8_t model, Address a, std::uint8_t data1, std::uint8_t data2);
Bytes dumpRequest(std::uint8_t model, Address a);
Bytes parmRequest(Address a);  // XG parameter request, F0 43 30 4C ah am al F7
// A whole bulk dump of `data` at address a, with its count and a computed checksum.
Bytes bulkDump(std::uint8_t model, Address a, std::span<const std::uint8_t> data);

// Checksum of a bulk dump message of length n: bytes 4 to n-3 added, the sum modulo 128
// taken from 128, and 128 written as 0. Messages shorter than the frame give 0.
std::uint8_t SyxChksum(std::span<const std::uint8_t> message);

// Block kinds of a retrieval, the first argument of a block request.
enum BlockKind : std::int16_t {
  kKindCom1 = 0,
  kKindCom2 = 1,
  kKindCom3 = 2,
  kKindLyr1 = 3,
  kKindLyr2 = 4,
  kKindLyr3 = 5,
  kKindLyr4 = 6,
  kKindMulti = 7,
  kKindCom0 = 8,
};

// The eight Performance blocks: kind, dump request address, whole message length.
struct PerfBlock {
  std::int16_t kind;
  const char* label;
  Address address;
  std::int16_t length;
};
inline constexpr std::array<PerfBlock, 8> kPerfBlocks{{
    {kKindCom1, "Com1", {0x60, 0x00, 0x00}, 63},
    {kKindCom2, "Com2", {0x60, 0x00, 0x40}, 34},
    {kKindCom3, "Com3", {0x60, 0x00, 0x60}, 20},
    {kKindLyr1, "Lyr1", {0x60, 0x01, 0x00}, 56},
    {kKindLyr2, "Lyr2", {0x60, 0x02, 0x00}, 56},
    {kKindLyr3, "Lyr3", {0x60, 0x03, 0x00}, 56},
    {kKindLyr4, "Lyr4", {0x60, 0x04, 0x00}, 56},
    {kKindCom0, "Com0", {0x50, 0x00, 0x00}, 37},
}};
// The block of a Performance kind, or nullptr for kind 7 and kinds outside 0..8.
const PerfBlock* perfBlock(std::int16_t kind);

// The five sections of an XG Multi Part: high and low address byte (the middle one is the
// part index) and the whole message length.
struct MultiSection {
  std::uint8_t high, low;
  std::int16_t length;
};
inline constexpr std::array<MultiSection, 5> kMultiSections{{
    {0x08, 0x00, 52},
    {0x08, 0x30, 74},
    {0x08, 0x70, 15},
    {0x08, 0x74, 23},
    {0x0A, 0x20, 13},
}};
// The message length tables as the start sets them. SctnLen: Multi sections 0..4, then 5 Com1,
// 6 Com2, 7 Com3, 8 Com0, 9 a Layer (index 10 stays 0). RtrvLen: Layers 0..3, 4 Com0, 5..7 Com1..3.
inline constexpr std::array<std::int16_t, 10> kSctnLenAtStart{52, 74, 15, 23, 13, 63, 34, 20, 37, 56};
inline constexpr std::array<std::int16_t, 8> kRtrvLenAtStart{56, 56, 56, 56, 37, 63, 34, 20};

// The twelve Multi Parts the program works on are numbered M5 to M16; the part index, the
// middle byte of a part's XG addresses, is M - 1.
inline constexpr int kFirstMulti = 5;
inline constexpr int kLastMulti = 16;
inline constexpr int kMultiRows = kLastMulti - kFirstMulti + 1;

// Dump request of section s of the part numbered `part` (1-based: M5 is 5).
Bytes multiSectionRequest(std::int16_t part, std::int16_t section);

// Addresses of the instrument's own settings that the commands send to.
inline constexpr Address kAddrPerfChannel{0x50, 0x00, 0x00};
inline constexpr Address kAddrTransmitChannel{0x50, 0x00, 0x0A};
inline constexpr Address kAddrLocalSwitch{0x50, 0x00, 0x0B};
inline constexpr Address kAddrArpeggiator{0x60, 0x00, 0x33};

// All Notes Off on the sixteen channels: (B0 + c) 7B 00 for c = 0..15, 48 bytes.
Bytes allNotesOffSequence();
// Note Offs of the test note: (80 + c) note velocity for c = 0..15 and again for c = 4..15,
// 84 bytes (the Multi channels 5..16 get theirs twice).
Bytes testNoteOffSequence(std::uint8_t note, std::uint8_t velocity);

// Cuts a stream of MIDI bytes, as a long message may carry several, into whole messages, read
// as a receiver on the wire reads them (MidiParser). What such a receiver drops is dropped
// here too: data bytes with no status before them, a message whose data stop short (the lone
// 00 that the program change sequence carries behind its Bank Select LSB), and a SysEx that
// does not end in F7, so that no port is ever handed half a SysEx.
std::vector<Bytes> splitMidiStream(std::span<const std::uint8_t> stream);

}  // namespace tessivo
