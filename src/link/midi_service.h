#pragma once
// The MIDI service as the program sees it: one method per operation of the Windows
// multimedia MIDI interface, each returning its result code (0 = success). Keeping the
// operations and the codes keeps every failure path of the program real: a backend fails a
// call with a code and the program shows the box that belongs to that call.

#include <cstdint>
#include <string>

namespace tessivo {

using MMRESULT = std::uint32_t;
using MidiHandle = std::uintptr_t;  // 0 while a port is not open

// Result codes, with the values of the Windows multimedia interface.
inline constexpr MMRESULT MMSYSERR_NOERROR = 0;
inline constexpr MMRESULT MMSYSERR_ERROR = 1;
inline constexpr MMRESULT MMSYSERR_BADDEVICEID = 2;
inline constexpr MMRESULT MMSYSERR_NOTENABLED = 3;
inline constexpr MMRESULT MMSYSERR_ALLOCATED = 4;
inline constexpr MMRESULT MMSYSERR_INVALHANDLE = 5;
inline constexpr MMRESULT MMSYSERR_NODRIVER = 6;
inline constexpr MMRESULT MMSYSERR_NOMEM = 7;
inline constexpr MMRESULT MMSYSERR_NOTSUPPORTED = 8;
inline constexpr MMRESULT MMSYSERR_BADERRNUM = 9;
inline constexpr MMRESULT MMSYSERR_INVALFLAG = 10;
inline constexpr MMRESULT MMSYSERR_INVALPARAM = 11;
inline constexpr MMRESULT MIDIERR_UNPREPARED = 64;
inline constexpr MMRESULT MIDIERR_STILLPLAYING = 65;
inline constexpr MMRESULT MIDIERR_NOMAP = 66;
inline constexpr MMRESULT MIDIERR_NOTREADY = 67;
inline constexpr MMRESULT MIDIERR_NODEVICE = 68;
inline constexpr MMRESULT MIDIERR_INVALIDSETUP = 69;
inline constexpr MMRESULT MIDIERR_BADOPENMODE = 70;
inline constexpr MMRESULT MIDIERR_DONT_CONTINUE = 71;

// Messages of the input callback.
inline constexpr std::uint32_t MIM_OPEN = 0x3C1;
inline constexpr std::uint32_t MIM_CLOSE = 0x3C2;
inline constexpr std::uint32_t MIM_DATA = 0x3C3;
inline constexpr std::uint32_t MIM_LONGDATA = 0x3C4;
inline constexpr std::uint32_t MIM_ERROR = 0x3C5;
inline constexpr std::uint32_t MIM_LONGERROR = 0x3C6;

inline constexpr std::uint32_t CALLBACK_FUNCTION = 0x30000;
inline constexpr std::uint32_t kMidiHdrSize = 28;  // the size given with every header call

// dwFlags bits of a header.
inline constexpr std::uint32_t MHDR_DONE = 1;
inline constexpr std::uint32_t MHDR_PREPARED = 2;
inline constexpr std::uint32_t MHDR_INQUEUE = 4;

// The seven-word message header of the long-message calls.
struct MidiHdr {
  std::uint8_t* lpData = nullptr;
  std::uint32_t dwBufferLength = 0;
  std::uint32_t dwBytesRecorded = 0;
  std::uintptr_t dwUser = 0;
  std::uint32_t dwFlags = 0;
  MidiHdr* lpNext = nullptr;
  std::uintptr_t reserved = 0;
};

// The input callback: handle, message, instance, parameter 1, parameter 2. For MIM_LONGDATA
// parameter 1 is the address of the filled header; for MIM_DATA it is the packed short message.
using MidiInProc = std::uint32_t (*)(MidiHandle, std::uint32_t, std::uintptr_t, std::uintptr_t,
                                     std::uintptr_t);

class MidiService {
 public:
  virtual ~MidiService() = default;

  virtual std::uint32_t midiOutGetNumDevs() = 0;
  virtual std::uint32_t midiInGetNumDevs() = 0;
  // Name of a device (szPname, at most 31 characters).
  virtual MMRESULT midiOutGetDevCaps(std::uint32_t device, std::string& name) = 0;
  virtual MMRESULT midiInGetDevCaps(std::uint32_t device, std::string& name) = 0;

  virtual MMRESULT midiOutOpen(MidiHandle& handle, std::uint32_t device) = 0;
  virtual MMRESULT midiInOpen(MidiHandle& handle, std::uint32_t device, MidiInProc callback,
                              std::uintptr_t instance, std::uint32_t flags) = 0;

  virtual MMRESULT midiConnect(MidiHandle in, MidiHandle out) = 0;
  virtual MMRESULT midiDisconnect(MidiHandle in, MidiHandle out) = 0;

  virtual MMRESULT midiInStart(MidiHandle in) = 0;
  virtual MMRESULT midiInStop(MidiHandle in) = 0;
  virtual MMRESULT midiInReset(MidiHandle in) = 0;
  virtual MMRESULT midiInPrepareHeader(MidiHandle in, MidiHdr* hdr, std::uint32_t size) = 0;
  virtual MMRESULT midiInAddBuffer(MidiHandle in, MidiHdr* hdr, std::uint32_t size) = 0;
  virtual MMRESULT midiInUnprepareHeader(MidiHandle in, MidiHdr* hdr, std::uint32_t size) = 0;

  virtual MMRESULT midiOutPrepareHeader(MidiHandle out, MidiHdr* hdr, std::uint32_t size) = 0;
  virtual MMRESULT midiOutLongMsg(MidiHandle out, MidiHdr* hdr, std::uint32_t size) = 0;
  virtual MMRESULT midiOutUnprepareHeader(MidiHandle out, MidiHdr* hdr, std::uint32_t size) = 0;

  virtual MMRESULT midiOutReset(MidiHandle out) = 0;
  virtual MMRESULT midiInClose(MidiHandle in) = 0;
  virtual MMRESULT midiOutClose(MidiHandle out) = 0;

  // A readable text for a code, at most 127 characters (the 128-byte buffer of the call).
  virtual MMRESULT midiOutGetErrorText(MMRESULT code, std::string& text) = 0;
  virtual MMRESULT midiInGetErrorText(MMRESULT code, std::string& text) = 0;
};

// Our own words for the codes, used by every backend's error-text calls. Returns false (and
// an empty text) for a number that is no code.
bool midiErrorText(MMRESULT code, std::string& text);

}  // namespace tessivo
