#pragma once
// The program's frame: the entry, the OK of the first preferences, the one tick of the start
// timer and the end. Owns the link and the forms' logic; the screen shows them.

#include <memory>

#include "link/midi_link.h"
#include "shell/main_form.h"
#include "shell/pref_form.h"

namespace tessivo {

inline constexpr int kStartTimerMs = 1000;

class App {
 public:
  App(MidiService& midi, Screen& screen, SleepFn sleep = {});

  void Main();
  void OKButton_Click();
  void Timer1_Tick();
  // The user closes frmPref by its window: at the first start that ends the program,
  // later the form is only hidden, as its settings stay in use.
  void PrefClosed();
  void StrtupPref_Click();
  // The exit menu entry and the closing of the main form; false when the user cancelled.
  bool ExitRequested();
  // The end asked for from outside (SIGTERM, SIGINT, SIGHUP): the exit without its question.
  // The ports close in the exit's order where the start opened them, and nothing is saved;
  // no box waits for an answer, since nobody may be there to give one.
  void Terminate();

  bool StartingUp = false;
  bool finished() const { return finished_; }  // no form left: the process ends

  MidiLink& link() { return link_; }
  PrefForm& pref() { return pref_; }
  MainForm* mainForm() { return main_.get(); }

 private:
  Screen& screen_;
  MidiLink link_;
  PrefForm pref_;
  std::unique_ptr<MainForm> main_;
  bool timerEnabled_ = false;
  bool loaded_ = false;  // the start timer has run Form_Loadx
  bool finished_ = false;
};

}  // namespace tessivo
