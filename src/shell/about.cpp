#include "shell/about.h"

#include <unistd.h>

#include <array>
#include <cstdlib>
#include <sstream>

#ifndef TESSIVO_VERSION
#define TESSIVO_VERSION "0.0.0"
#endif

namespace tessivo {

namespace {
// The system information tools of the Linux desktops, the most complete first.
constexpr std::array<const char*, 5> kSysInfoTools{"hardinfo", "kinfocenter", "gnome-system-monitor", "mate-system-monitor",
                                                   "xfce4-taskmanager"};
}  // namespace

std::string versionText() { return std::string("Version ") + TESSIVO_VERSION; }

std::optional<std::string> findSysInfoTool(const std::function<bool(const std::string&)>& exists) {
  for (const char* tool : kSysInfoTools)
    if (exists(tool)) return std::string(tool);
  return std::nullopt;
}

bool onPath(const std::string& program) {
  const char* path = std::getenv("PATH");
  std::stringstream folders(path ? path : "");
  for (std::string folder; std::getline(folders, folder, ':');)
    if (!folder.empty() && ::access((folder + "/" + program).c_str(), X_OK) == 0) return true;
  return false;
}

void StartSysInfo(Screen& screen, const std::function<bool(const std::string&)>& exists,
                  const std::function<bool(const std::string&)>& start) {
  if (const auto tool = findSysInfoTool(exists)) {
    start(*tool);  // a tool that fails to start ends the click in silence
    return;
  }
  screen.messageBox(kSysInfoUnavailable, kAppTitle, MsgButtons::Ok, MsgIcon::None);
}

}  // namespace tessivo
