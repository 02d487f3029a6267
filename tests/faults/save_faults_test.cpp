// Saves of every own file type that cannot finish: into a folder the program may not write,
// onto a disk that is full half way through the record, and in a program killed half way.
// Each runs in a child process of its own, started there against the built-in instrument, so
// its limits, its user and its death stay its own. Afterwards the old file is whole and the
// folder holds nothing else.
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>

#include "support/scripted.h"

namespace tessivo {
namespace fs = std::filesystem;

namespace {

enum class Failure { UnwritableFolder, FullDisk, Killed };
constexpr uid_t kNobody = 65534;

struct SaveType {
  const char* name;
  std::size_t bytes;
  std::function<void(Files&)> save;  // the menu entry
};

const std::vector<SaveType>& saveTypes() {
  static const std::vector<SaveType> types{
      {"old.tvw", 27850, [](Files& f) { f.SvWrkSpace_Click(); }},
      {"old.tvf", 2952, [](Files& f) { f.SvSetuptvf_Click(); }},
      {"old.tvx", 456, [](Files& f) { f.SvPerform_Click(); }},
      {"old.tvp", 24898, [](Files& f) { f.SvLayerPool_Click(); }},
      {"old.tvm", 2496, [](Files& f) { f.SvMultAll_Click(); }},
      {"old.tvs", 192, [](Files& f) { f.SvMultDlg(6); }},
  };
  return types;
}

// The program started in the child; its preferences file lies outside the folder looked at.
struct ChildProgram : test::StartedOnInstrument {
  explicit ChildProgram(const std::string& prefsPath) {
    prefs.path = prefsPath;
    SetUp();
  }
  void TestBody() override {}
  void save(const SaveType& type, const std::string& path) {
    screen.saveAnswers.push_back(path);
    type.save(form->files());
  }
  bool silent() const { return screen.boxes.empty(); }
};

int gStopped = -1;  // the pipe the killed child reports on
extern "C" void stopInTheWrite(int) {
  const char c = 'x';
  [[maybe_unused]] const auto n = ::write(gStopped, &c, 1);
  for (;;) ::pause();
}

// Bytes of the file that a descriptor of process `pid` holds open in `folder`; -1 if none.
long long openFileSize(pid_t pid, const fs::path& folder) {
  const fs::path fds = "/proc/" + std::to_string(pid) + "/fd";
  for (const auto& entry : fs::directory_iterator(fds)) {
    std::error_code ec;
    const std::string target = fs::read_symlink(entry.path(), ec).string();
    struct stat st {};
    if (!ec && target.starts_with(folder.string() + "/") && ::stat(entry.path().c_str(), &st) == 0)
      return st.st_size;
  }
  return -1;
}

// Whether the file system of `folder` makes files without a name (O_TMPFILE): where it does
// not, a save killed half way cannot help leaving its temporary file behind.
bool unnamedFiles(const fs::path& folder) {
  const int fd = ::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
  if (fd < 0) return false;
  ::close(fd);
  return true;
}

std::vector<std::string> names(const fs::path& folder) {
  std::vector<std::string> out;
  for (const auto& entry : fs::directory_iterator(folder)) out.push_back(entry.path().filename().string());
  return out;
}

}  // namespace

TEST(SaveFaults, EveryTypeKeepsItsOldFileWholeAndLeavesNothingBehind) {
  const fs::path root = fs::temp_directory_path() / ("tessivo-save-faults-" + std::to_string(::getpid()));
  for (const Failure failure : {Failure::UnwritableFolder, Failure::FullDisk, Failure::Killed}) {
    for (const SaveType& type : saveTypes()) {
      SCOPED_TRACE(std::string(type.name) + " failure " + std::to_string(static_cast<int>(failure)));
      const fs::path folder = root / "folder";
      fs::remove_all(root);
      fs::create_directories(folder);
      const std::string target = (folder / type.name).string();
      Bytes old(type.bytes);
      for (std::size_t i = 0; i < old.size(); ++i) old[i] = static_cast<std::uint8_t>(i * 7 + 1);
      test::writeFile(target, old);
      if (failure == Failure::UnwritableFolder) {
        // The old file is the saving user's to write; only the folder is not.
        fs::permissions(folder, fs::perms(0555));
        if (::geteuid() == 0) {
          ASSERT_EQ(::chown(target.c_str(), kNobody, kNobody), 0);
        }
      }
      const rlim_t half = type.bytes / 2;
      int pipeFds[2];
      ASSERT_EQ(::pipe(pipeFds), 0);

      const pid_t child = ::fork();
      ASSERT_GE(child, 0);
      if (child == 0) {
        ::close(pipeFds[0]);
        gStopped = pipeFds[1];
        ChildProgram program((root / "prefs").string());
        if (failure == Failure::UnwritableFolder && ::geteuid() == 0) {
          // Root writes anywhere: the save runs as a user without rights to the folder.
          if (::setgroups(0, nullptr) != 0 || ::setgid(kNobody) != 0 || ::setuid(kNobody) != 0) ::_exit(3);
        }
        if (failure != Failure::UnwritableFolder) {
          // The disk takes half the record, then no more.
          const rlimit limit{half, half};
          if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) ::_exit(4);
          struct sigaction action {};
          action.sa_handler = failure == Failure::Killed ? &stopInTheWrite : SIG_IGN;
          ::sigaction(SIGXFSZ, &action, nullptr);
        }
        program.save(type, target);
        ::_exit(program.silent() ? 0 : 1);  // a save that cannot be written ends in silence
      }
      ::close(pipeFds[1]);
      if (failure == Failure::Killed) {
        char c = 0;
        ASSERT_EQ(::read(pipeFds[0], &c, 1), 1) << "the child ended before its save stopped";
        // Half the record written, and the program killed right there.
        EXPECT_EQ(openFileSize(child, folder), static_cast<long long>(half));
        ::kill(child, SIGKILL);
      }
      ::close(pipeFds[0]);
      int status = 0;
      ASSERT_EQ(::waitpid(child, &status, 0), child);
      if (failure == Failure::Killed) {
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
      } else {
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0)
            << "status " << status << " (exit 1: a box was shown, 3: no unprivileged user to save as, 4: no file size limit)";
      }
      fs::permissions(folder, fs::perms(0755));
      EXPECT_EQ(test::readFile(target), old);
      if (failure != Failure::Killed || unnamedFiles(folder)) {
        EXPECT_EQ(names(folder), std::vector<std::string>{type.name});
      } else {
        std::printf("%s: no unnamed files here, so the killed save left its temporary file\n", folder.c_str());
        EXPECT_LE(names(folder).size(), 2u);
      }
    }
  }
  fs::remove_all(root);
}

}  // namespace tessivo
