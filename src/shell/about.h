#pragma once
// The About box's logic: the program's version as it shows, and the desktop's system
// information tool, when one is installed.

#include <functional>
#include <optional>
#include <string>

#include "link/screen.h"

namespace tessivo {

inline constexpr const char* kSysInfoUnavailable = "System Information Is Unavailable At This Time";

// "Version 1.2.0": the build's own major, minor and revision.
std::string versionText();

// The first system information tool that `exists` finds among those a Linux desktop offers, by
// the program's name; nothing when there is none.
std::optional<std::string> findSysInfoTool(const std::function<bool(const std::string&)>& exists);
// Whether a program of that name lies in a folder of PATH and may be run.
bool onPath(const std::string& program);

// StartSysInfo: the tool is started by `start`, else the box says it is unavailable.
void StartSysInfo(Screen& screen, const std::function<bool(const std::string&)>& exists,
                  const std::function<bool(const std::string&)>& start);

}  // namespace tessivo
