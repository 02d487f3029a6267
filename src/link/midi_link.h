#pragma once
// The instrument link: the two port handles and their device numbers, the one send path
// (SndSysEx / SndSysExData), the failure boxes of every MIDI call, the device lists and the
// dump request senders. Everything the program sends goes through SndSysExData.

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "link/messages.h"
#include "link/midi_service.h"
#include "link/screen.h"
#include "link/wake_flag.h"

namespace tessivo {

// Shape of the Multi Part image that Mode 1 sends from: 17 parts of 6 sections of 129 bytes.
inline constexpr std::size_t kMultiParts = 17;
inline constexpr std::size_t kMultiSectionsPerPart = 6;
inline constexpr std::size_t kSectionBytes = 129;
inline constexpr std::size_t kMultiImageBytes = kMultiParts * kMultiSectionsPerPart * kSectionBytes;

inline constexpr int kUnprepareTries = 400;  // tries of midiOutUnprepareHeader before the box
inline constexpr int kPollMs = 5;             // the wait between two tries

inline constexpr int kReplyPolls = 400;  // polls of 5 ms for a reply: about two seconds

using SleepFn = std::function<void(int milliseconds)>;

// Where retrieved blocks land and where Mode 1 sends from: the byte images.
class BlockStore {
 public:
  virtual ~BlockStore() = default;
  // The section that a block fills: kinds 0..6 and 8 a Performance section, kind 7 the
  // Multi section (part number 1..17, section 0..5). Empty when there is none.
  virtual std::span<std::uint8_t> blockDestination(std::int16_t kind, std::int16_t part, std::int16_t section) = 0;
  // A section of the Multi image by part index 0..16 and section 0..5.
  virtual std::span<const std::uint8_t> multiSection(std::int16_t partIndex, std::int16_t section) = 0;
};

class MidiLink {
 public:
  // `sleep` replaces every wait of the link (tests count them); without it the link sleeps
  // for real and a reply wakes it at once.
  MidiLink(MidiService& midi, Screen& screen, SleepFn sleep = {});

  MidiService& midi() { return midi_; }
  Screen& screen() { return screen_; }
  void sleep(int milliseconds);

  // Module globals of the link.
  MidiHandle MidiInHnd = 0;
  MidiHandle MidiOutHnd = 0;
  std::int32_t MidiInDev = 0;
  std::int32_t MidiOutDev = 0;
  // 0 or -1 (0xFFFF), raised by MidiInCB; the waiting side wakes as soon as it rises.
  WakeFlag LongDataFlag;
  // Non-zero (-1) while the main form fills: blocks then leave the thru path off.
  std::int16_t LoadingFlag = 0;
  // List1: one text line for every byte received by a block.
  std::vector<std::string> List1;
  // Sends the parameter request of the manual fields; used for kinds outside 0..8.
  std::function<void()> ReqParm;

  // Tables of message lengths, set at start-up. SctnLen: 0..4 Multi sections, 5 Com1, 6 Com2,
  // 7 Com3, 8 Com0, 9 Layer; index 10 stays 0. RtrvLen: 0..3 Layers, 4 Com0, 5..7 Com1..Com3.
  std::array<std::int16_t, 11> SctnLen{};
  std::array<std::int16_t, 8> RtrvLen{};
  std::array<std::uint8_t, 129> SndBuf{};  // Mode 2 source, filled by the caller

  // SctnLen and RtrvLen as the start sets them.
  void setLengthTables();

  // The images that blocks fill and Mode 1 reads; none until attached.
  void attachImages(BlockStore* images) { images_ = images; }

  // Fill a device list in device order; a failing capability call shows
  // "midiInGetDevCaps Error: <code>" (or the Out twin) and ends that list.
  void ListInDevs(const std::function<void(const std::string&)>& add);
  void ListOutDevs(const std::function<void(const std::string&)>& add);

  // The one box of a failed call: "Operation: " label CR LF, the code's text in 132 places.
  void MidiOutErr(const std::string& label, std::int16_t code);
  void MidiInErr(const std::string& label, std::int16_t code);
  static std::string errorBoxText(const std::string& label, const std::string& codeText);

  // The input callback. Instance is the address of LongDataFlag; raises it on MIM_LONGDATA and
  // does nothing else: it runs on the driver's thread.
  static std::uint32_t MidiInCB(MidiHandle handle, std::uint32_t message, std::uintptr_t instance,
                                std::uintptr_t param1, std::uintptr_t param2);
  std::uintptr_t callbackInstance() { return reinterpret_cast<std::uintptr_t>(&LongDataFlag); }

  // Send a byte sequence (at most 128 bytes) as one long message; returns once it went out.
  void SndSysEx(std::span<const std::uint8_t> text);
  // Mode 0: Text; Mode 1: MultiImage part Part, section Section, SctnLen[Section] bytes;
  // Mode 2: SndBuf, SctnLen[Section] bytes. A source outside its bounds sends nothing.
  void SndSysExData(std::span<const std::uint8_t> text, std::int16_t mode, std::int16_t part,
                    std::int16_t section);

  // The thru path on: midiConnect, and only if that worked midiInStart, each failure in its box.
  void ConnectThru();

  // Dump requests of the Performance blocks (kinds 0..6 and 8) and of a Multi section.
  void ReqPerfBlock(std::int16_t kind);
  void ReqMltSctn(std::int16_t part, std::int16_t section);

  // Requests one block and copies the reply over its section: the input is armed, the thru
  // path cut, the request sent, and the reply awaited for about two seconds at most. A
  // missing reply is not detected: the section's first bytes become 0.
  void RtrvBlock(std::int16_t kind, std::int16_t part, std::int16_t section);
  // The five sections of the Multi numbered `part` (5..16), after clearing List1.
  void RtrvMlt(std::int16_t part);
  // A log line of List1: byte i (1-based) of a reply under `label`.
  static std::string logLine(const std::string& label, int i, std::uint8_t byte);

 private:
  void send(std::span<const std::uint8_t> message);
  void pollReply();

  MidiService& midi_;
  Screen& screen_;
  SleepFn sleep_;
  BlockStore* images_ = nullptr;
};

}  // namespace tessivo
