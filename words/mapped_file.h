// MappedFile: a read-only, private memory mapping of (the head of) a file.
//
// The mapping never extends past the end of the file, since pages beyond it
// cannot be read; a file that is missing, empty or cannot be mapped gives an
// empty mapping (data() null, size() 0).
#ifndef REFGROVE_WORDS_MAPPED_FILE_H_
#define REFGROVE_WORDS_MAPPED_FILE_H_

#include <cstddef>
#include <cstdint>
#include <string>

namespace refgrove {

class MappedFile {
 public:
  // Maps at most max_size bytes from the start of `name`.
  explicit MappedFile(const std::string& name, std::size_t max_size = SIZE_MAX);
  ~MappedFile();

  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  const unsigned char* data() const { return data_; }
  std::size_t size() const { return size_; }
  int fd() const { return fd_; }  // open while mapped; -1 when the open failed

 private:
  int fd_ = -1;
  const unsigned char* data_ = nullptr;
  std::size_t size_ = 0;
};

}  // namespace refgrove

#endif  // REFGROVE_WORDS_MAPPED_FILE_H_
