#include "files/file_io.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>

namespace tessivo {

namespace {
// Closes a descriptor on every way out.
struct Fd {
  int fd = -1;
  ~Fd() {
    if (fd >= 0) ::close(fd);
  }
};
}  // namespace

std::optional<std::uint64_t> fileLength(const std::string& path) {
  Fd f{::open(path.c_str(), O_RDONLY | O_CLOEXEC)};
  struct stat st {};
  if (f.fd < 0 || ::fstat(f.fd, &st) != 0 || !S_ISREG(st.st_mode)) return std::nullopt;
  return static_cast<std::uint64_t>(st.st_size);
}

std::optional<std::uint64_t> readRecord(const std::string& path, std::span<std::uint8_t> into) {
  Fd f{::open(path.c_str(), O_RDONLY | O_CLOEXEC)};
  struct stat st {};
  if (f.fd < 0 || ::fstat(f.fd, &st) != 0 || !S_ISREG(st.st_mode)) return std::nullopt;
  std::size_t done = 0;
  while (done < into.size()) {
    const ssize_t n = ::read(f.fd, into.data() + done, into.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return std::nullopt;
    if (n == 0) break;  // a file shorter than the record (or shrunk since its length was taken)
    done += static_cast<std::size_t>(n);
  }
  return static_cast<std::uint64_t>(st.st_size);
}

namespace {
bool writeAll(int fd, std::span<const std::uint8_t> record) {
  for (std::size_t done = 0; done < record.size();) {
    const ssize_t n = ::write(fd, record.data() + done, record.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += static_cast<std::size_t>(n);
  }
  return true;
}

// The record in a file without a name in `folder`, on the disk before it takes a name of the
// pattern `stem` + six characters and that name is renamed over `path`: a save killed before
// then leaves nothing behind. Nothing when the file system makes no such files.
std::optional<bool> writeUnnamed(const std::string& folder, const std::string& stem, const std::string& path,
                                 std::span<const std::uint8_t> record) {
  Fd f{::open(folder.c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666)};
  if (f.fd < 0) {
    if (errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL) return std::nullopt;
    return false;
  }
  if (!writeAll(f.fd, record) || ::fsync(f.fd) != 0) return false;
  const std::string self = "/proc/self/fd/" + std::to_string(f.fd);
  static std::atomic<unsigned> count{0};
  for (int attempt = 0; attempt < 16; ++attempt) {
    char suffix[8];
    const unsigned seed = static_cast<unsigned>(::getpid()) * 2654435761u + ++count * 40503u +
                          static_cast<unsigned>(std::chrono::steady_clock::now().time_since_epoch().count());
    std::snprintf(suffix, sizeof suffix, "%06x", seed & 0xFFFFFFu);
    const std::string temp = stem + suffix;
    if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, temp.c_str(), AT_SYMLINK_FOLLOW) != 0) {
      if (errno == EEXIST) continue;
      if (errno == ENOENT) return std::nullopt;  // no /proc to name it by
      return false;
    }
    if (::rename(temp.c_str(), path.c_str()) == 0) return true;
    ::unlink(temp.c_str());
    return false;
  }
  return false;
}
}  // namespace

bool writeRecord(const std::string& path, std::span<const std::uint8_t> record) {
  const std::filesystem::path target(path);
  const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : std::filesystem::path(".");
  const std::string stem = (folder / ("." + target.filename().string() + ".")).string();
  if (const auto written = writeUnnamed(folder.string(), stem, path, record)) return *written;
  std::string temp = stem + "XXXXXX";
  Fd f{::mkstemp(temp.data())};
  if (f.fd < 0) return false;
  bool ok = writeAll(f.fd, record);
  // The file takes the usual rights of a new file, not mkstemp's owner-only ones.
  const mode_t mask = ::umask(0);
  ::umask(mask);
  ok = ok && ::fchmod(f.fd, 0666 & ~mask) == 0 && ::fsync(f.fd) == 0;
  ok = ::close(f.fd) == 0 && ok;
  f.fd = -1;
  if (ok && ::rename(temp.c_str(), path.c_str()) == 0) return true;
  ::unlink(temp.c_str());
  return false;
}

}  // namespace tessivo
