// The Sys-Ex listing of the debug tools over any file: Load Sys-Ex reads the file (at most
// its first 42001 bytes) and writes the listing where the save dialog says.
//
// One line for each byte read and a blank line behind each F7, every line quoted and ended by
// CR LF; the line of byte i gives its position in hex and decimal and its value in decimal and
// hex, then the byte itself; nothing of the file beyond the limit is read.

#include <cstdio>
#include <cstring>

#include "common/program_rig.h"
#include "shell/debug_tools.h"

using namespace tessivo;
using namespace tessivo::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Straight from the bytes: any span, nothing read beyond it.
  const std::string text = sysExListing({data, size});
  const std::size_t n = std::min(size, kSysExListingLimit);
  std::size_t at = 0;
  char line[96];
  for (std::size_t i = 0; i < n; ++i) {
    const unsigned b = data[i];
    const int len = std::snprintf(line, sizeof line, "\"Sys Ex    %zX   %zu    %u  %X  ", i, i, b, b);
    FUZZ_PROMISE(text.compare(at, static_cast<std::size_t>(len), line) == 0, "a byte's line gives its position and value");
    at += static_cast<std::size_t>(len);
    FUZZ_PROMISE(at + 4 <= text.size() && static_cast<std::uint8_t>(text[at]) == b && text.compare(at + 1, 3, "\"\r\n") == 0,
                 "a byte's line ends with the byte, its quote and CR LF");
    at += 4;
    if (b == 0xF7) {
      FUZZ_PROMISE(text.compare(at, 5, "\" \"\r\n") == 0, "a blank line stands behind each F7");
      at += 5;
    }
  }
  FUZZ_PROMISE(at == text.size(), "the listing holds nothing else");

  // Through the program: the file read, the listing written to the chosen file.
  static ProgramRig* rig = new ProgramRig;
  static const std::string in = scratchPath("listing.syx"), out = scratchPath("listing.txt");
  rig->reset();
  writeBytes(in, {data, size});
  test::ScriptedScreen& screen = rig->program().screen;
  screen.openAnswers.push_back(in);
  screen.saveAnswers.push_back(out);
  rig->form().LdSysEx_Click();
  const Bytes written = readBytes(out);
  FUZZ_PROMISE(std::string(written.begin(), written.end()) == text,
               "the file's listing is the listing of its first 42001 bytes");
  FUZZ_PROMISE(rig->program().midi.sent.empty() && screen.boxes.empty(), "a listing sends nothing and asks nothing");
  return 0;
}
