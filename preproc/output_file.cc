#include "preproc/output_file.h"

#include <cerrno>
#include <utility>

namespace refgrove {

namespace {

std::error_code last_error() { return std::error_code(errno != 0 ? errno : EIO, std::generic_category()); }

}  // namespace

OutputFile::OutputFile(std::string path, bool checked)
    : buffer_(new char[kBufferBytes]), path_(std::move(path)), checked_(checked) {
  rdbuf()->pubsetbuf(buffer_.get(), static_cast<std::streamsize>(kBufferBytes));
  open(path_, std::ios::out | std::ios::trunc | std::ios::binary);
  if (checked_ && !is_open()) throw_if_failed(path_, last_error());
  errno = 0;  // a failed write sets it; a failure without one is EIO
}

void OutputFile::finish() {
  close();
  if (checked_ && fail()) throw_if_failed(path_, last_error());
}

void throw_if_failed(const std::string& path, std::error_code error) {
  if (error) throw PreprocError(path, error.message());
}

}  // namespace refgrove
