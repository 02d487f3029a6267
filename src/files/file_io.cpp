#include "files/file_io.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
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

bool writeRecord(const std::string& path, std::span<const std::uint8_t> record) {
  const std::filesystem::path target(path);
  const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : std::filesystem::path(".");
  std::string temp = (folder / ("." + target.filename().string() + ".XXXXXX")).string();
  Fd f{::mkstemp(temp.data())};
  if (f.fd < 0) return false;
  bool ok = true;
  for (std::size_t done = 0; ok && done < record.size();) {
    const ssize_t n = ::write(f.fd, record.data() + done, record.size() - done);
    if (n < 0 && errno == EINTR) continue;
    ok = n > 0;
    if (ok) done += static_cast<std::size_t>(n);
  }
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
