// A file written through a large buffer: the generators append to text()
// and call flush_if_full() now and then.
#ifndef REFGROVE_GENERATE_BUFFERED_FILE_H_
#define REFGROVE_GENERATE_BUFFERED_FILE_H_

#include <cstdint>
#include <cstdio>
#include <string>

namespace refgrove {

class BufferedFile {
 public:
  BufferedFile() = default;
  BufferedFile(const BufferedFile&) = delete;
  BufferedFile& operator=(const BufferedFile&) = delete;
  bool open(const std::string& name) {
    name_ = name;
    file_ = std::fopen(name.c_str(), "wb");
    return file_ != nullptr;
  }
  std::string& text() { return buffer_; }
  bool flush_if_full() { return buffer_.size() < (1u << 20) || flush(); }
  bool flush() {
    ok_ = ok_ && std::fwrite(buffer_.data(), 1, buffer_.size(), file_) == buffer_.size();
    bytes_ += static_cast<std::int64_t>(buffer_.size());
    buffer_.clear();
    return ok_;
  }
  bool close() {
    flush();
    ok_ = std::fclose(file_) == 0 && ok_;
    file_ = nullptr;
    return ok_;
  }
  ~BufferedFile() {
    if (file_ != nullptr) std::fclose(file_);
  }
  const std::string& name() const { return name_; }
  std::int64_t bytes() const { return bytes_; }

 private:
  std::string name_;
  std::FILE* file_ = nullptr;
  std::string buffer_;
  std::int64_t bytes_ = 0;
  bool ok_ = true;
};

// `v` in decimal at the end of `s`.
inline void append_int(std::string& s, std::int64_t v) {
  char buf[24];
  const int n = std::snprintf(buf, sizeof buf, "%lld", static_cast<long long>(v));
  s.append(buf, static_cast<std::size_t>(n));
}

}  // namespace refgrove

#endif  // REFGROVE_GENERATE_BUFFERED_FILE_H_
