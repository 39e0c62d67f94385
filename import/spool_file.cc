#include "import/spool_file.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "import/input_files.h"

namespace refgrove {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{1} << 20;

std::string spool_dir(const std::string& dir) {
  if (!dir.empty()) return dir;
  const char* tmp = std::getenv("TMPDIR");
  return tmp && *tmp ? tmp : "/tmp";
}

}  // namespace

SpoolFile::SpoolFile(const std::string& dir) : path_(spool_dir(dir) + "/.refgrove-spool.XXXXXX") {
  fd_ = mkstemp(path_.data());
  if (fd_ < 0) throw ImportError(path_, 0, "", std::strerror(errno));
  unlink(path_.c_str());
  buffer_.reserve(kBufferBytes);
}

SpoolFile::~SpoolFile() { close(fd_); }

std::uint64_t SpoolFile::append(std::string_view bytes) {
  const std::uint64_t offset = size_ + buffer_.size();
  if (buffer_.size() + bytes.size() > kBufferBytes) flush();
  if (bytes.size() > kBufferBytes) {
    buffer_ = bytes;
    flush();
  } else {
    buffer_ += bytes;
  }
  return offset;
}

void SpoolFile::flush() {
  for (std::size_t done = 0; done < buffer_.size();) {
    const ssize_t n = write(fd_, buffer_.data() + done, buffer_.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) throw ImportError(path_, 0, "", std::string("cannot be written: ") + std::strerror(errno));
    done += static_cast<std::size_t>(n);
  }
  size_ += buffer_.size();
  buffer_.clear();
}

std::string_view SpoolFile::read(std::uint64_t offset, std::size_t size) {
  if (!reading_) {
    flush();
    reading_ = true;
  }
  if (offset < window_at_ || offset + size > window_at_ + window_.size()) {
    // Read ahead: the records are mostly asked for in the order written.
    const std::size_t want =
        static_cast<std::size_t>(std::min<std::uint64_t>(std::max(size, kBufferBytes), size_ - offset));
    window_.resize(want);
    window_at_ = offset;
    for (std::size_t done = 0; done < want;) {
      const ssize_t n = pread(fd_, window_.data() + done, want - done, static_cast<off_t>(offset + done));
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) throw ImportError(path_, 0, "", std::string("cannot be read: ") + std::strerror(errno));
      done += static_cast<std::size_t>(n);
    }
  }
  return std::string_view(window_).substr(static_cast<std::size_t>(offset - window_at_), size);
}

}  // namespace refgrove
