// A small holder of one output file.
#ifndef REFGROVE_TOKENIZER_MY_OUTPUT_FILE_H_
#define REFGROVE_TOKENIZER_MY_OUTPUT_FILE_H_

#include <fstream>
#include <memory>
#include <ostream>
#include <string>

namespace refgrove {

// Opens a file for writing (created or truncated) and offers a stream over
// it. A failed open is not reported: the stream is then in a failed state
// and writes to it are lost.
class MyOutputFile {
 public:
  std::filebuf file_buffer;
  std::unique_ptr<std::ostream> stream;  // null while closed

  MyOutputFile() = default;
  MyOutputFile(const MyOutputFile&) = delete;
  MyOutputFile& operator=(const MyOutputFile&) = delete;
  ~MyOutputFile() { close(); }

  void open(const char* name);
  void open(const std::string& name) { open(name.c_str()); }
  void close();
};

}  // namespace refgrove

#endif  // REFGROVE_TOKENIZER_MY_OUTPUT_FILE_H_
