// OutputFile: a file of the data directory being written. Checked, it
// throws PreprocError naming the file and the system's error when it cannot
// be opened or when a write to it failed; unchecked, it is a plain ofstream
// whose failures go unnoticed. Writes go out in blocks of kBufferBytes:
// the word data arrives a few hundred bytes per document, which the
// stream's own 8 KB buffer turned into tens of thousands of system calls.
#ifndef REFGROVE_PREPROC_OUTPUT_FILE_H_
#define REFGROVE_PREPROC_OUTPUT_FILE_H_

#include <cstddef>
#include <fstream>
#include <memory>
#include <string>
#include <system_error>

#include "preproc/preprocess.h"

namespace refgrove {

class OutputFile : public std::ofstream {
 public:
  OutputFile(std::string path, bool checked);
  ~OutputFile() override { close(); }  // before the buffer goes

  // Closes the file; checked, throws when a write or the close failed.
  void finish();

  static constexpr std::size_t kBufferBytes = std::size_t{256} << 10;

 private:
  std::unique_ptr<char[]> buffer_;  // set before the file is opened: later, the stream ignores it
  std::string path_;
  bool checked_;
};

// Throws PreprocError for `path` when `error` is set.
void throw_if_failed(const std::string& path, std::error_code error);

}  // namespace refgrove

#endif  // REFGROVE_PREPROC_OUTPUT_FILE_H_
