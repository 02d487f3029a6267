#include "files/load_aid.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>

#include "files/files.h"

namespace tessivo {

namespace fs = std::filesystem;

namespace {
constexpr std::array<const char*, 5> kEntries{"Workspace     |*.tvw", "Setup                |*.tvf", "Performance   |*.tvx",
                                              "Layer Pool        |*.tvp", "All Multis      |*.tvm"};
}  // namespace

LoadAid::LoadAid(Files& files) : files_(files) {
  cmbLdAid.click = [this] { cmbLdAid_Click(); };
}

void LoadAid::Form_Load(const std::string& home) {
  cmbLdAid.clear();
  for (const char* entry : kEntries) cmbLdAid.addItem(entry);
  cmbText = kEntries[0];
  pattern = "*.tvw";
  // The file systems a user picks from: the root, the home folder and what is mounted for him.
  drives = {"/"};
  if (!home.empty()) drives.push_back(home);
  for (const char* base : {"/media", "/mnt", "/run/media"}) {
    std::error_code e;
    for (fs::directory_iterator it(base, e), end; !e && it != end; it.increment(e))
      if (it->is_directory(e)) drives.push_back(it->path().string());
  }
  drive = home.empty() ? "/" : home;
  folder = drive;
  loaded = true;
  refresh();
}

void LoadAid::cmbLdAid_Click() {
  cmbText = cmbLdAid.text();
  const auto bar = cmbText.find('|');
  pattern = bar == std::string::npos ? std::string() : cmbText.substr(bar + 1);
  refresh();
}

void LoadAid::drvLdAid_Change(const std::string& newDrive) {
  drive = newDrive;
  dirLdAid_Change(newDrive);
}

void LoadAid::dirLdAid_Change(const std::string& newFolder) {
  std::error_code e;
  const fs::path next = fs::weakly_canonical(fs::path(folder) / newFolder, e);
  if (e || !fs::is_directory(next, e)) return;  // gone or unreadable: stay where we are
  folder = next.string();
  refresh();
}

void LoadAid::refresh() {
  folders = {".."};
  files.clear();
  // "*.ext": the names that end in ".ext".
  const std::string suffix = pattern.starts_with("*") ? pattern.substr(1) : pattern;
  std::error_code e;
  for (fs::directory_iterator it(folder, fs::directory_options::skip_permission_denied, e), end; !e && it != end; it.increment(e)) {
    const std::string name = it->path().filename().string();
    if (it->is_directory(e)) {
      if (!name.starts_with(".")) folders.push_back(name);
    } else if (name.size() >= suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0) {
      files.push_back(name);
    }
  }
  std::sort(folders.begin() + 1, folders.end());
  std::sort(files.begin(), files.end());
}

void LoadAid::flLdAid_Click(const std::string& name) { LdAid(pattern, (fs::path(folder) / name).string()); }

void LoadAid::LdAid(const std::string& pat, const std::string& path) {
  struct Reader {
    const char* pattern;
    void (Files::*load)();
  };
  static constexpr std::array<Reader, 5> kReaders{{{"*.tvw", &Files::LdWrkSpaceFile},
                                                   {"*.tvf", &Files::LdFullSetupFile},
                                                   {"*.tvx", &Files::LdPerformFile},
                                                   {"*.tvp", &Files::LdLyrPoolFile},
                                                   {"*.tvm", &Files::LdMultAllFile}}};
  for (const Reader& r : kReaders)
    if (pat == r.pattern) {
      files_.CurFilePath = path;
      (files_.*r.load)();
      return;
    }
}

}  // namespace tessivo
