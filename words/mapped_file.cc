#include "words/mapped_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace refgrove {

MappedFile::MappedFile(const std::string& name, std::size_t max_size) {
  fd_ = open(name.c_str(), O_RDONLY);
  struct stat st;
  if (fd_ < 0 || fstat(fd_, &st) != 0) return;
  const std::size_t length = std::min(max_size, static_cast<std::size_t>(st.st_size));
  if (length == 0) return;
  void* base = mmap(nullptr, length, PROT_READ, MAP_PRIVATE, fd_, 0);
  if (base == MAP_FAILED) return;
  data_ = static_cast<const unsigned char*>(base);
  size_ = length;
}

MappedFile::~MappedFile() {
  if (data_ != nullptr) munmap(const_cast<unsigned char*>(data_), size_);
  if (fd_ >= 0) close(fd_);
}

}  // namespace refgrove
