#pragma once
// The end of a run asked for from outside: SIGTERM (a logout, a service manager), SIGINT (Ctrl-C
// in the terminal) and SIGHUP (the terminal closed). The signal handler only writes one byte
// into a socket pair; the event loop reads it and ends the program as the exit does once its
// question is answered, so the MIDI ports close in order instead of dying with the process.

#include <QObject>
#include <functional>

class QSocketNotifier;

namespace tessivo::qt {

class UnixSignals : public QObject {
 public:
  // `end` runs on the event thread, once, for the first of the signals that arrives.
  explicit UnixSignals(std::function<void()> end, QObject* parent = nullptr);
  ~UnixSignals() override;
  UnixSignals(const UnixSignals&) = delete;
  UnixSignals& operator=(const UnixSignals&) = delete;

  bool installed() const { return notifier_ != nullptr; }

 private:
  void arrived();

  std::function<void()> end_;
  QSocketNotifier* notifier_ = nullptr;
  bool ended_ = false;
};

}  // namespace tessivo::qt
