#include "preproc/file_sync.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace refgrove {

namespace {

// Closes `fd`, keeping the first error seen.
bool close_keeping(int fd, bool ok, int* error) {
  if (close(fd) != 0 && ok) {
    *error = errno;
    return false;
  }
  return ok;
}

}  // namespace

std::string system_error_text(const std::string& path, int error) { return path + ": " + std::strerror(error); }

bool sync_path(const std::string& path, std::string* error) {
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  int e = errno;
  bool ok = fd >= 0;
  if (ok) {
    ok = fsync(fd) == 0;
    if (!ok) e = errno;
    ok = close_keeping(fd, ok, &e);
  }
  if (!ok) *error = system_error_text(path, e);
  return ok;
}

bool write_synced(const std::string& path, const std::string& bytes, std::string* error) {
  const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  int e = errno;
  bool ok = fd >= 0;
  for (std::size_t done = 0; ok && done < bytes.size();) {
    const ssize_t n = write(fd, bytes.data() + done, bytes.size() - done);
    if (n > 0) {
      done += static_cast<std::size_t>(n);
    } else if (n == 0 || errno != EINTR) {
      ok = false;
      e = n < 0 ? errno : EIO;
    }
  }
  if (ok && fsync(fd) != 0) {
    ok = false;
    e = errno;
  }
  if (fd >= 0) ok = close_keeping(fd, ok, &e);
  if (!ok) *error = system_error_text(path, e);
  return ok;
}

}  // namespace refgrove
