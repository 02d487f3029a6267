#include "shell/app.h"

namespace tessivo {

App::App(MidiService& midi, Screen& screen, SleepFn sleep)
    : screen_(screen), link_(midi, screen, std::move(sleep)), pref_(link_) {
  // A new channel reaches the instrument at once, but only once the program has started.
  pref_.cmbPerfChnl.click = [this] {
    if (!StartingUp && main_) main_->performance().ChngPrfMidiChan();
  };
}

void App::Main() {
  StartingUp = true;
  pref_.Form_Load();
  screen_.createForm(FormId::Pref);
  screen_.showForm(FormId::Pref);
}

void App::OKButton_Click() {
  if (StartingUp) {
    screen_.createForm(FormId::Splash);
    screen_.showForm(FormId::Splash);
    main_ = std::make_unique<MainForm>(link_, pref_);
    screen_.createForm(FormId::Main);
    timerEnabled_ = true;
    screen_.startTimer(kStartTimerMs);
    StartingUp = false;
  }
  pref_.SvPrefs();
  screen_.hideForm(FormId::Pref);
}

void App::Timer1_Tick() {
  if (!timerEnabled_ || !main_) return;
  timerEnabled_ = false;
  screen_.startTimer(0);
  loaded_ = true;
  main_->Form_Loadx();
  screen_.unloadForm(FormId::Splash);
  screen_.showForm(FormId::Main);
}

void App::PrefClosed() {
  if (StartingUp) {
    screen_.unloadForm(FormId::Pref);
    finished_ = true;
  } else {
    screen_.hideForm(FormId::Pref);
  }
}

void App::StrtupPref_Click() { screen_.showForm(FormId::Pref); }

void App::Terminate() {
  if (finished_) return;
  if (main_ && loaded_) main_->ClosePorts(false);
  timerEnabled_ = false;
  screen_.startTimer(0);
  screen_.unloadForm(FormId::Splash);
  screen_.unloadForm(FormId::Pref);
  screen_.unloadForm(FormId::LoadAid);
  if (main_) screen_.unloadForm(FormId::Main);
  finished_ = true;
}

bool App::ExitRequested() {
  if (!main_ || main_->Form_Unload()) return false;
  screen_.unloadForm(FormId::Pref);
  screen_.unloadForm(FormId::LoadAid);
  screen_.unloadForm(FormId::Main);
  finished_ = true;
  return true;
}

}  // namespace tessivo
