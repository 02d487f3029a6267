#pragma once
// The Load Aid: a small form for going through a folder of the program's files, one click a
// load. The type of the list decides the reader, by its pattern; the file's length then
// decides, as always, whether it loads.

#include <functional>
#include <string>
#include <vector>

#include "data/controls.h"

namespace tessivo {

class Files;

class LoadAid {
 public:
  static constexpr const char* kCaption = "CS2x Load Aid";

  explicit LoadAid(Files& files);

  ListCtl cmbLdAid;                  // the five types, "Workspace     |*.tvw" ..
  std::string cmbText;               // the list's edit box
  std::vector<std::string> drives;   // drvLdAid: the file systems a user picks from
  std::string drive;
  std::vector<std::string> folders;  // dirLdAid: ".." and the folders in `folder`
  std::string folder;
  std::string pattern;               // flLdAid's pattern, "*.tvw" ..
  std::vector<std::string> files;    // flLdAid: the names in `folder` that match, sorted
  bool loaded = false;

  // First showing: the five entries, none selected, the Workspace pattern, the home folder.
  void Form_Load(const std::string& home);
  void cmbLdAid_Click();
  void drvLdAid_Change(const std::string& newDrive);
  void dirLdAid_Change(const std::string& newFolder);
  // A click on a name: that file is loaded by the reader of the pattern.
  void flLdAid_Click(const std::string& name);
  // LdAid: the reader whose pattern is exactly `pattern` loads `path`; any other does nothing.
  void LdAid(const std::string& pattern, const std::string& path);
  // The folders and files as the disk has them now.
  void refresh();

 private:
  Files& files_;
};

}  // namespace tessivo
