#pragma once
// The virtual CS2x tool behind JACK ports as a child process, for the runs that need an
// instrument on the other end. The including target defines VIRTUAL_CS2X_TOOL.
#include <signal.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace tessivo::test {

// The shell's pid comes first and stays the tool's (exec); the tool says "ready" once its
// ports are open.
struct InstrumentProcess {
  explicit InstrumentProcess(const std::string& name)
      : out(popen(("echo $$; exec '" VIRTUAL_CS2X_TOOL "' --jack --name " + name).c_str(), "r")) {
    if (out && std::fscanf(out, "%d", &pid) != 1) pid = -1;
  }
  ~InstrumentProcess() {
    if (pid > 0) kill(pid, SIGTERM);
    if (out) pclose(out);
  }
  InstrumentProcess(const InstrumentProcess&) = delete;
  InstrumentProcess& operator=(const InstrumentProcess&) = delete;
  bool waitReady() {
    char line[256];
    while (out && std::fgets(line, sizeof line, out))
      if (std::string_view(line).starts_with("ready")) return true;
    return false;
  }
  FILE* out;
  pid_t pid = -1;
};

}  // namespace tessivo::test
