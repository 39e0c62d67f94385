// Test support: files and directories of tests, the single word files
// written with the production writers, byte-exact comparisons, and capture
// of the standard streams.
#ifndef REFGROVE_TESTING_TEST_FILES_H_
#define REFGROVE_TESTING_TEST_FILES_H_

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "words/word_files.h"

namespace refgrove {

// The single files, for tests that need exact control of their contents.
void write_word_table(const std::string& dir, const std::vector<std::string>& words);
void write_word_idx(const std::string& dir, const std::vector<DocumentWordInfo>& headers);
void write_word_data(const std::string& dir, const std::vector<std::uint32_t>& ids);
void write_file(const std::string& path, const std::string& bytes);
std::string read_file(const std::string& path);

// Bytes as lowercase hex digits, and expected hex written with blanks and
// line ends for readability, with those removed: byte-exact file checks.
std::string hex(const std::string& bytes);
std::string compact_hex(const std::string& spaced);

// A fresh directory under the system's temporary directory, removed with its
// contents at the end of the scope. path() ends in "/".
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

// Redirects std::cout and std::cerr into strings for the scope's duration.
class StreamCapture {
 public:
  StreamCapture();
  ~StreamCapture();
  StreamCapture(const StreamCapture&) = delete;
  StreamCapture& operator=(const StreamCapture&) = delete;
  std::string out() const { return out_.str(); }
  std::string err() const { return err_.str(); }

 private:
  std::ostringstream out_, err_;
  std::streambuf* old_out_;
  std::streambuf* old_err_;
};

}  // namespace refgrove

#endif  // REFGROVE_TESTING_TEST_FILES_H_
