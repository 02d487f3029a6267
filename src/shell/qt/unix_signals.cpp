#include "shell/qt/unix_signals.h"

#include <QSocketNotifier>
#include <csignal>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace tessivo::qt {

namespace {
constexpr int kSignals[] = {SIGTERM, SIGINT, SIGHUP};
int pipeEnds[2] = {-1, -1};  // [0] read by the event loop, [1] written by the handler

void onSignal(int) {
  const int saved = errno;
  const char byte = 1;
  [[maybe_unused]] const auto written = ::write(pipeEnds[1], &byte, 1);  // async-signal-safe
  errno = saved;
}
}  // namespace

UnixSignals::UnixSignals(std::function<void()> end, QObject* parent) : QObject(parent), end_(std::move(end)) {
  if (pipeEnds[0] >= 0) return;  // one watcher a process
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pipeEnds) != 0) return;
  // A flood of signals must never block the handler.
  ::fcntl(pipeEnds[1], F_SETFL, ::fcntl(pipeEnds[1], F_GETFL) | O_NONBLOCK);
  notifier_ = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
  connect(notifier_, &QSocketNotifier::activated, this, [this] { arrived(); });
  struct sigaction action {};
  action.sa_handler = &onSignal;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESTART;
  for (int s : kSignals) ::sigaction(s, &action, nullptr);
}

UnixSignals::~UnixSignals() {
  if (!notifier_) return;
  struct sigaction action {};
  action.sa_handler = SIG_DFL;
  sigemptyset(&action.sa_mask);
  for (int s : kSignals) ::sigaction(s, &action, nullptr);
  delete notifier_;
  ::close(pipeEnds[0]);
  ::close(pipeEnds[1]);
  pipeEnds[0] = pipeEnds[1] = -1;
}

void UnixSignals::arrived() {
  char bytes[64];
  [[maybe_unused]] const auto read = ::read(pipeEnds[0], bytes, sizeof bytes);
  if (ended_) return;
  ended_ = true;
  end_();
}

}  // namespace tessivo::qt
