#include "tokenizer/my_output_file.h"

namespace refgrove {

void MyOutputFile::open(const char* name) {
  close();
  file_buffer.open(name, std::ios_base::out | std::ios_base::trunc | std::ios_base::binary);
  stream.reset(new std::ostream(&file_buffer));
  // A stream over a buffer that did not open fails its first write, so
  // mark it failed now: writes are then dropped without touching the file.
  if (!file_buffer.is_open()) stream->setstate(std::ios_base::badbit);
}

void MyOutputFile::close() {
  if (!stream) return;
  stream->flush();
  file_buffer.close();
  stream.reset();
}

}  // namespace refgrove
