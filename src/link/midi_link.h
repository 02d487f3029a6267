#pragma once
// The instrument link: the two port handles and their device numbers, the one send path
// (SndSysEx / SndSysExData), the failure boxes of every MIDI call, the device lists and the
// dump request senders. Everything the program sends goes through SndSysExData.

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "link/messages.h"
#include "link/midi_service.h"
#include "link/screen.h"

namespace tessivo {

// Shape of the Multi Part image that Mode 1 sends from: 17 parts of 6 sections of 129 bytes.
inline constexpr std::size_t kMultiParts = 17;
inline constexpr std::size_t kMultiSectionsPerPart = 6;
inline constexpr std::size_t kSectionBytes = 129;
inline constexpr std::size_t kMultiImageBytes = kMultiParts * kMultiSectionsPerPart * kSectionBytes;

inline constexpr int kUnprepareTries = 400;  // tries of midiOutUnprepareHeader before the box
inline constexpr int kPollMs = 5;             // the wait between two tries

using SleepFn = std::function<void(int milliseconds)>;
void sleepMilliseconds(int milliseconds);

class MidiLink {
 public:
  MidiLink(MidiService& midi, Screen& screen, SleepFn sleep = sleepMilliseconds);

  MidiService& midi() { return midi_; }
  Screen& screen() { return screen_; }
  void sleep(int milliseconds) { sleep_(milliseconds); }

  // Module globals of the link.
  MidiHandle MidiInHnd = 0;
  MidiHandle MidiOutHnd = 0;
  std::int32_t MidiInDev = 0;
  std::int32_t MidiOutDev = 0;
  std::atomic<std::int16_t> LongDataFlag{0};  // 0 or -1 (0xFFFF), raised by MidiInCB

  // Tables of message lengths, set at start-up. SctnLen: 0..4 Multi sections, 5 Com1, 6 Com2,
  // 7 Com3, 8 Com0, 9 Layer; index 10 stays 0. RtrvLen: 0..3 Layers, 4 Com0, 5..7 Com1..Com3.
  std::array<std::int16_t, 11> SctnLen{};
  std::array<std::int16_t, 8> RtrvLen{};
  std::array<std::uint8_t, 129> SndBuf{};  // Mode 2 source, filled by the caller

  // The Multi Part image that Mode 1 reads (kMultiImageBytes); none until attached.
  void attachMultiImage(const std::uint8_t* image) { multiImage_ = image; }

  // Fill a device list in device order; a failing capability call shows
  // "midiInGetDevCaps Error: <code>" (or the Out twin) and ends that list.
  void ListInDevs(const std::function<void(const std::string&)>& add);
  void ListOutDevs(const std::function<void(const std::string&)>& add);

  // The one box of a failed call: "Operation: " label CR LF, the code's text in 132 places.
  void MidiOutErr(const std::string& label, std::int16_t code);
  void MidiInErr(const std::string& label, std::int16_t code);
  static std::string errorBoxText(const std::string& label, const std::string& codeText);

  // The input callback. Instance is the address of LongDataFlag; raises it on MIM_LONGDATA.
  static std::uint32_t MidiInCB(MidiHandle handle, std::uint32_t message, std::uintptr_t instance,
                                std::uintptr_t param1, std::uintptr_t param2);
  std::uintptr_t callbackInstance() { return reinterpret_cast<std::uintptr_t>(&LongDataFlag); }

  // Send a byte sequence (at most 128 bytes) as one long message; returns once it went out.
  void SndSysEx(std::span<const std::uint8_t> text);
  // Mode 0: Text; Mode 1: MultiImage part Part, section Section, SctnLen[Section] bytes;
  // Mode 2: SndBuf, SctnLen[Section] bytes. A source outside its bounds sends nothing.
  void SndSysExData(std::span<const std::uint8_t> text, std::int16_t mode, std::int16_t part,
                    std::int16_t section);

  // Dump requests of the Performance blocks (kinds 0..6 and 8) and of a Multi section.
  void ReqPerfBlock(std::int16_t kind);
  void ReqMltSctn(std::int16_t part, std::int16_t section);

 private:
  void send(std::span<const std::uint8_t> message);

  MidiService& midi_;
  Screen& screen_;
  SleepFn sleep_;
  const std::uint8_t* multiImage_ = nullptr;
};

}  // namespace tessivo
