// Bytes set aside while the works of an import are read, copied out once
// the set is whole: titles, names and abstracts, which are written here as
// they are read instead of being held in memory.
//
// The file is unlinked as soon as it is made, so that a run that is killed
// leaves nothing behind.
#ifndef REFGROVE_IMPORT_SPOOL_FILE_H_
#define REFGROVE_IMPORT_SPOOL_FILE_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace refgrove {

class SpoolFile {
 public:
  // A file in `dir`, or in $TMPDIR (else /tmp) when `dir` is empty. Throws
  // ImportError when it cannot be made.
  explicit SpoolFile(const std::string& dir = "");
  ~SpoolFile();
  SpoolFile(const SpoolFile&) = delete;
  SpoolFile& operator=(const SpoolFile&) = delete;

  // Appends `bytes` and returns the offset they start at. Throws
  // ImportError when the file cannot be written.
  std::uint64_t append(std::string_view bytes);

  // The `size` bytes from `offset`, valid until the next read. Once read
  // from, the spool takes no more appends.
  std::string_view read(std::uint64_t offset, std::size_t size);

 private:
  void flush();

  std::string path_;  // for messages: the file is gone from its directory
  int fd_ = -1;
  std::string buffer_;  // appended bytes not written yet
  std::uint64_t size_ = 0;
  bool reading_ = false;
  std::string window_;  // the bytes of the file from window_at_, once read from
  std::uint64_t window_at_ = 0;
};

}  // namespace refgrove

#endif  // REFGROVE_IMPORT_SPOOL_FILE_H_
