#include "words/byte_io.h"

#include <iterator>

namespace refgrove {

std::string read_rest_of_stream(std::istream& in) {
  std::string bytes;
  if (!in) return bytes;
  const std::istream::pos_type start = in.tellg();
  if (start != std::istream::pos_type(-1) && in.seekg(0, std::ios::end)) {
    const std::istream::pos_type end = in.tellg();
    in.seekg(start);
    if (end > start) bytes.resize(static_cast<std::size_t>(end - start));
    in.read(&bytes[0], static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    return bytes;
  }
  in.clear();
  bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return bytes;
}

}  // namespace refgrove
