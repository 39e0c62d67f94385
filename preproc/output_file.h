// OutputFile: a file of the data directory being written. Checked, it
// throws PreprocError naming the file and the system's error when it cannot
// be opened or when a write to it failed; unchecked, it is a plain ofstream
// whose failures go unnoticed.
#ifndef REFGROVE_PREPROC_OUTPUT_FILE_H_
#define REFGROVE_PREPROC_OUTPUT_FILE_H_

#include <fstream>
#include <string>
#include <system_error>

#include "preproc/preprocess.h"

class OutputFile : public std::ofstream {
 public:
  OutputFile(std::string path, bool checked);

  // Closes the file; checked, throws when a write or the close failed.
  void finish();

 private:
  std::string path_;
  bool checked_;
};

// Throws PreprocError for `path` when `error` is set.
void throw_if_failed(const std::string& path, std::error_code error);

#endif  // REFGROVE_PREPROC_OUTPUT_FILE_H_
