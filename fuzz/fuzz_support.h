// Helpers shared by the fuzz targets: silenced standard streams, a scratch
// directory per fuzzing process, and a small deterministic choice source.
#ifndef REFGROVE_FUZZ_FUZZ_SUPPORT_H_
#define REFGROVE_FUZZ_FUZZ_SUPPORT_H_

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include <stdlib.h>
#include <unistd.h>

namespace refgrove {

namespace fuzz {

// A stream buffer that drops everything written to it.
class NullBuffer : public std::streambuf {
 protected:
  int overflow(int c) override { return traits_type::not_eof(c); }
  std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
};

// Sends std::cout and std::cerr nowhere for the scope's duration: the
// readers report progress on them, which would drown the fuzzer's output
// and slow it down.
class Silence {
 public:
  Silence() : out_(std::cout.rdbuf(&null_)), err_(std::cerr.rdbuf(&null_)) {}
  ~Silence() {
    std::cout.rdbuf(out_);
    std::cerr.rdbuf(err_);
    std::cout.clear();
    std::cerr.clear();
  }

 private:
  NullBuffer null_;
  std::streambuf* out_;
  std::streambuf* err_;
};

// A directory of this process's own under $TMPDIR (or /tmp), made on first
// use; the path ends in "/". Files in it are overwritten by every run.
inline const std::string& scratch_dir() {
  static const std::string dir = [] {
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") + "/refgrove-fuzz-XXXXXX";
    if (mkdtemp(&pattern[0]) == nullptr) {
      std::perror("mkdtemp");
      std::abort();
    }
    static std::string removal;
    removal = pattern;
    std::atexit([] {
      std::error_code ignored;
      std::filesystem::remove_all(removal, ignored);
    });
    return pattern + "/";
  }();
  return dir;
}

inline void write_file(const std::string& path, const std::uint8_t* data, std::size_t size) {
  std::ofstream out(path, std::ios::out | std::ios::trunc | std::ios::binary);
  out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

// Stops the fuzzer with a message when a property of the code under test
// does not hold: libFuzzer saves the input that caused it.
#define FUZZ_CHECK(cond)                                                            \
  do {                                                                              \
    if (!(cond)) {                                                                  \
      std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #cond); \
      std::abort();                                                                 \
    }                                                                               \
  } while (0)

// Choices drawn from a seed (xorshift32), so that one input always makes the
// same choices.
class Choices {
 public:
  explicit Choices(std::uint32_t seed) : state_(seed | 1u) {}
  unsigned next(unsigned n) {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 17;
    state_ ^= state_ << 5;
    return state_ % n;
  }

 private:
  std::uint32_t state_;
};

}  // namespace fuzz

}  // namespace refgrove

#endif  // REFGROVE_FUZZ_FUZZ_SUPPORT_H_
