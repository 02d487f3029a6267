#include "link/midi_service.h"

namespace tessivo {

bool midiErrorText(MMRESULT code, std::string& text) {
  switch (code) {
    case MMSYSERR_NOERROR: text = "The operation succeeded."; break;
    case MMSYSERR_ERROR: text = "The MIDI system reported an unspecified error."; break;
    case MMSYSERR_BADDEVICEID: text = "The device number is out of range."; break;
    case MMSYSERR_NOTENABLED: text = "The MIDI driver could not be started."; break;
    case MMSYSERR_ALLOCATED: text = "The device is already in use by this or another program."; break;
    case MMSYSERR_INVALHANDLE: text = "The device is not open (invalid handle)."; break;
    case MMSYSERR_NODRIVER: text = "No MIDI system is running (neither ALSA nor JACK)."; break;
    case MMSYSERR_NOMEM: text = "Not enough memory for the operation."; break;
    case MMSYSERR_NOTSUPPORTED: text = "The operation is not supported by this device."; break;
    case MMSYSERR_BADERRNUM: text = "The error number is out of range."; break;
    case MMSYSERR_INVALFLAG: text = "An invalid flag was given."; break;
    case MMSYSERR_INVALPARAM: text = "An invalid parameter was given."; break;
    case MIDIERR_UNPREPARED: text = "The message header was not prepared."; break;
    case MIDIERR_STILLPLAYING: text = "The buffer is still in use by the device."; break;
    case MIDIERR_NOMAP: text = "There is no MIDI map."; break;
    case MIDIERR_NOTREADY: text = "The device is busy; try again later."; break;
    case MIDIERR_NODEVICE: text = "The MIDI port is gone (device disconnected or server stopped)."; break;
    case MIDIERR_INVALIDSETUP: text = "The MIDI setup is invalid."; break;
    case MIDIERR_BADOPENMODE: text = "The operation is not allowed in this open mode."; break;
    case MIDIERR_DONT_CONTINUE: text = "The device asked not to continue."; break;
    default: text.clear(); return false;
  }
  return true;
}

}  // namespace tessivo
