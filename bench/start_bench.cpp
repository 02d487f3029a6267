// How long the start takes, on a real X display (Xvfb): the program started as a new process
// until its preferences window is mapped, and from OK (Return on that window, its default
// button) until the main form is mapped, of which the splash's one-second timer is no part.
// The program runs against its built-in instrument, which answers at once. Several programs
// may be timed in turn, run by run (the editor itself, and a twin of it that pauses after each
// message it sends); the first run of each warms the caches and is not counted.
//
//   start_bench [runs] PROGRAM [PROGRAM...]     (DISPLAY set; scripts: bench/start_bench.sh)
//
// Each program's preferences file (tessivo.ini beside it) is taken away for the runs, so every
// run starts from the defaults, and put back at the end.
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/keysym.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;
double ms(Clock::duration d) { return std::chrono::duration<double, std::milli>(d).count(); }

constexpr const char* kPrefTitle = "Tessivo Startup Preferences";
constexpr const char* kSplashTitle = "Tessivo";
constexpr const char* kMainTitle = "CS2x Tessivo";
constexpr double kSplashTimerMs = 1000.0;
constexpr auto kTimeout = std::chrono::seconds(30);

// The value below which the fraction `p` of `v` lies (the nearest rank below).
double percentile(std::vector<double> v, double p) {
  std::sort(v.begin(), v.end());
  return v[static_cast<std::size_t>(p * static_cast<double>(v.size() - 1))];
}

class XDisplay {
 public:
  XDisplay() : dpy_(XOpenDisplay(nullptr)) {
    if (dpy_ == nullptr) {
      std::fprintf(stderr, "start_bench: no X display (set DISPLAY, or run bench/start_bench.sh)\n");
      std::exit(2);
    }
    // Every top-level window mapped on the screen is reported as the root's child.
    XSelectInput(dpy_, DefaultRootWindow(dpy_), SubstructureNotifyMask);
    utf8_ = XInternAtom(dpy_, "UTF8_STRING", False);
    netName_ = XInternAtom(dpy_, "_NET_WM_NAME", False);
    XSync(dpy_, False);
  }
  ~XDisplay() { XCloseDisplay(dpy_); }

  // A window whose unmapping is noted, and when the news came.
  Window watched = None;
  std::optional<Clock::time_point> unmappedAt;

  // Waits for a window with this title to be mapped; its id and the moment the news came.
  std::optional<std::pair<Window, Clock::time_point>> waitMapped(const std::string& title, Clock::time_point until) {
    for (;;) {
      while (XPending(dpy_) > 0) {
        XEvent e;
        XNextEvent(dpy_, &e);
        const auto now = Clock::now();
        if (e.type == UnmapNotify && e.xunmap.window == watched && !unmappedAt) unmappedAt = now;
        if (e.type != MapNotify) continue;
        if (titleOf(e.xmap.window) == title) return std::make_pair(e.xmap.window, now);
      }
      const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(until - Clock::now()).count();
      if (left <= 0) return std::nullopt;
      pollfd fd{ConnectionNumber(dpy_), POLLIN, 0};
      ::poll(&fd, 1, static_cast<int>(std::min<long long>(left, 100)));
    }
  }

  // Return pressed and let go on the window, as the keyboard sends it to the focused window.
  void pressReturn(Window w) {
    XSetInputFocus(dpy_, w, RevertToParent, CurrentTime);
    for (const int type : {KeyPress, KeyRelease}) {
      XEvent e{};
      e.xkey.type = type;
      e.xkey.display = dpy_;
      e.xkey.window = w;
      e.xkey.root = DefaultRootWindow(dpy_);
      e.xkey.subwindow = None;
      e.xkey.time = CurrentTime;
      e.xkey.x = e.xkey.y = e.xkey.x_root = e.xkey.y_root = 1;
      e.xkey.same_screen = True;
      e.xkey.keycode = XKeysymToKeycode(dpy_, XK_Return);
      XSendEvent(dpy_, w, True, type == KeyPress ? KeyPressMask : KeyReleaseMask, &e);
    }
    XFlush(dpy_);
  }

  // Drops what is queued (windows of the last run).
  void drain() {
    XSync(dpy_, False);
    while (XPending(dpy_) > 0) {
      XEvent e;
      XNextEvent(dpy_, &e);
    }
  }

 private:
  std::string titleOf(Window w) {
    for (const Atom property : {netName_, static_cast<Atom>(XA_WM_NAME)}) {
      Atom type = None;
      int format = 0;
      unsigned long items = 0, after = 0;
      unsigned char* data = nullptr;
      if (XGetWindowProperty(dpy_, w, property, 0, 256, False, AnyPropertyType, &type, &format, &items, &after,
                             &data) == Success &&
          data != nullptr) {
        std::string title(reinterpret_cast<char*>(data), items);
        XFree(data);
        if (!title.empty()) return title;
      }
    }
    return {};
  }

  ::Display* dpy_;
  Atom utf8_, netName_;
};

struct Run {
  double toPref = -1, okToSplash = -1, okToMain = -1;
  double splashShown = -1, splashToMain = -1;  // mapped to unmapped; unmapped to the main form
  double rssMb = -1, hwmMb = -1;  // once the main form has been up for half a second
  double cpuAtPref = -1, cpuMs = -1;  // the program's processor time (user and system) at the
                                     // preferences and at the main form
};

// The processor time a process has used, in ms (to the kernel's tick).
double cpuOf(pid_t pid) {
  FILE* f = std::fopen(("/proc/" + std::to_string(pid) + "/stat").c_str(), "r");
  if (f == nullptr) return -1;
  char buffer[1024];
  const std::size_t n = std::fread(buffer, 1, sizeof buffer - 1, f);
  std::fclose(f);
  buffer[n] = 0;
  // The fields after the name in parentheses: state is field 3, utime 14, stime 15.
  const char* after = std::strrchr(buffer, ')');
  unsigned long utime = 0, stime = 0;
  if (after == nullptr ||
      std::sscanf(after + 2, "%*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %lu %lu", &utime, &stime) != 2)
    return -1;
  return static_cast<double>(utime + stime) * 1000.0 / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

// VmRSS and VmHWM of a process, in MB.
std::pair<double, double> memoryOf(pid_t pid) {
  FILE* f = std::fopen(("/proc/" + std::to_string(pid) + "/status").c_str(), "r");
  if (f == nullptr) return {-1, -1};
  char line[256];
  double rss = -1, hwm = -1;
  while (std::fgets(line, sizeof line, f)) {
    long kb = 0;
    if (std::sscanf(line, "VmRSS: %ld", &kb) == 1) rss = kb / 1024.0;
    if (std::sscanf(line, "VmHWM: %ld", &kb) == 1) hwm = kb / 1024.0;
  }
  std::fclose(f);
  return {rss, hwm};
}

// One start of `program`: until the preferences, OK, until the main form; then SIGTERM.
std::optional<Run> startOnce(XDisplay& display, const std::string& program) {
  display.drain();
  const std::string prefs = (std::filesystem::path(program).parent_path() / "tessivo.ini").string();
  std::filesystem::remove(prefs);  // the defaults, as at a first start

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  std::vector<char*> argv{const_cast<char*>(program.c_str()), nullptr};
  pid_t pid = 0;
  const auto t0 = Clock::now();
  const int spawned = posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (spawned != 0) {
    std::fprintf(stderr, "start_bench: cannot start %s\n", program.c_str());
    return std::nullopt;
  }

  Run run;
  std::optional<Run> result;
  if (auto pref = display.waitMapped(kPrefTitle, t0 + kTimeout)) {
    run.toPref = ms(pref->second - t0);
    run.cpuAtPref = cpuOf(pid);
    const auto ok = Clock::now();
    display.pressReturn(pref->first);
    std::optional<Clock::time_point> splash;
    display.unmappedAt.reset();
    if (auto s = display.waitMapped(kSplashTitle, ok + kTimeout)) {
      splash = s->second;
      display.watched = s->first;
    }
    if (auto main = display.waitMapped(kMainTitle, ok + kTimeout)) {
      run.okToMain = ms(main->second - ok);
      if (splash) run.okToSplash = ms(*splash - ok);
      if (splash && display.unmappedAt) {
        run.splashShown = ms(*display.unmappedAt - *splash);
        run.splashToMain = ms(main->second - *display.unmappedAt);
      }
      run.cpuMs = cpuOf(pid);
      ::usleep(500000);
      std::tie(run.rssMb, run.hwmMb) = memoryOf(pid);
      result = run;
    } else {
      std::fprintf(stderr, "start_bench: %s: no main form within %lld s of OK\n", program.c_str(),
                   static_cast<long long>(kTimeout.count()));
    }
  } else {
    std::fprintf(stderr, "start_bench: %s: no preferences window within %lld s\n", program.c_str(),
                 static_cast<long long>(kTimeout.count()));
  }

  // The program ends on SIGTERM as on Exit; one that does not is killed after five seconds.
  ::kill(pid, SIGTERM);
  int status = 0;
  for (int i = 0; i < 500 && ::waitpid(pid, &status, WNOHANG) == 0; ++i) ::usleep(10000);
  if (::waitpid(pid, &status, WNOHANG) == 0) {
    ::kill(pid, SIGKILL);
    ::waitpid(pid, &status, 0);
    std::fprintf(stderr, "start_bench: %s did not end on SIGTERM\n", program.c_str());
  }
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  int first = 1, runs = 10;
  if (argc > 1 && std::atoi(argv[1]) > 0) runs = std::atoi(argv[first++]);
  if (first >= argc) {
    std::fprintf(stderr, "usage: start_bench [runs] PROGRAM [PROGRAM...]\n");
    return 2;
  }
  std::vector<std::string> programs;
  for (int i = first; i < argc; ++i) programs.push_back(std::filesystem::absolute(argv[i]).string());

  // Each program's preferences file is put back at the end.
  std::vector<std::pair<std::filesystem::path, std::filesystem::path>> kept;
  for (const std::string& p : programs) {
    const auto prefs = std::filesystem::path(p).parent_path() / "tessivo.ini";
    const auto aside = std::filesystem::path(prefs.string() + ".start_bench");
    if (std::filesystem::exists(prefs) && !std::filesystem::exists(aside)) {
      std::filesystem::rename(prefs, aside);
      kept.emplace_back(prefs, aside);
    }
  }

  XDisplay display;
  std::vector<std::vector<Run>> results(programs.size());
  long failed = 0;
  for (int run = 0; run <= runs; ++run) {  // run 0 warms the caches
    for (std::size_t p = 0; p < programs.size(); ++p) {
      const auto r = startOnce(display, programs[p]);
      if (!r) ++failed;
      else if (run > 0) results[p].push_back(*r);
    }
  }
  for (const auto& [prefs, aside] : kept) std::filesystem::rename(aside, prefs);

  std::printf("Start on X (%s), built-in instrument answering at once; %d runs after one warm-up, ms\n",
              std::getenv("DISPLAY"), runs);
  std::printf("%-44s %9s %9s %9s %9s\n", "", "median", "p90", "min", "max");
  for (std::size_t p = 0; p < programs.size(); ++p) {
    std::printf("-- %s\n", programs[p].c_str());
    if (results[p].empty()) continue;
    auto row = [&](const char* name, double Run::*field, double less) {
      std::vector<double> v;
      for (const Run& r : results[p])
        if (r.*field >= 0) v.push_back(r.*field - less);
      if (v.empty()) return;
      std::printf("%-44s %9.1f %9.1f %9.1f %9.1f\n", name, percentile(v, 0.5), percentile(v, 0.9),
                  *std::min_element(v.begin(), v.end()), *std::max_element(v.begin(), v.end()));
    };
    row("process start -> preferences mapped (300)", &Run::toPref, 0);
    row("OK -> splash mapped", &Run::okToSplash, 0);
    row("OK -> main form mapped", &Run::okToMain, 0);
    row("  less the splash's 1000 ms timer (100)", &Run::okToMain, kSplashTimerMs);
    row("  of it: splash mapped -> unmapped", &Run::splashShown, 0);
    row("  of it: splash unmapped -> main form mapped", &Run::splashToMain, 0);
    row("processor time until the preferences", &Run::cpuAtPref, 0);
    row("processor time until the main form", &Run::cpuMs, 0);
    row("VmRSS, MB, main form up 0.5 s (60)", &Run::rssMb, 0);
    row("VmHWM, MB", &Run::hwmMb, 0);
    std::printf("%-44s", "OK -> main form less 1000 ms, run by run");
    for (const Run& r : results[p]) std::printf(" %.0f", r.okToMain - kSplashTimerMs);
    std::printf("\n");
  }
  if (failed) std::printf("(%ld starts failed)\n", failed);
  return failed ? 1 : 0;
}
