#pragma once
// What only a person sees or answers: message boxes, the busy pointer and the forms on the
// screen. The logic calls this interface; the Qt layer implements it, tests script it.

#include <string>

namespace tessivo {

inline constexpr const char* kAppTitle = "CS2x Tessivo";  // title of boxes that name no other

enum class MsgButtons { Ok, OkCancel, YesNo };
enum class MsgIcon { None, Question, Exclamation, Information, Critical };
enum class MsgAnswer { Ok, Cancel, Yes, No };

enum class FormId { Pref, Splash, Main, LoadAid };

// The file dialog's settings and, after it, the chosen file.
struct FileDialog {
  std::string filter;  // "Description (*.ext)|*.ext|..."
  int filterIndex = 1;
  int flags = 0;
  std::string fileName;
};

class Screen {
 public:
  virtual ~Screen() = default;
  virtual MsgAnswer messageBox(const std::string& text, const std::string& title,
                               MsgButtons buttons, MsgIcon icon) = 0;
  // Forms: created (loaded) hidden, shown modeless, hidden, unloaded.
  virtual void createForm(FormId form) = 0;
  virtual void showForm(FormId form) = 0;
  virtual void hideForm(FormId form) = 0;
  virtual void unloadForm(FormId form) = 0;
  virtual void setBusy(bool busy) = 0;
  // The open dialog; false when the user cancelled (fileName is then unchanged).
  virtual bool showOpen(FileDialog& dialog) = 0;
  // The save dialog, alike; with flags 2 it asks before a file is overwritten.
  virtual bool showSave(FileDialog& dialog) = 0;
  // The one-shot start timer of the main form (interval in milliseconds, 0 stops it).
  virtual void startTimer(int intervalMs) = 0;
};

}  // namespace tessivo
