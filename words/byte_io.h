// Little-endian integers on disk, whatever the build's own byte order.
//
// Writers append to a std::ostream; readers take bytes from a ByteReader, a
// cursor over a block of memory that never reads past its end. A reader that
// runs short fails: it reads nothing more and every later read fails too, so
// a truncated file yields exactly the items that are whole.
#ifndef REFGROVE_WORDS_BYTE_IO_H_
#define REFGROVE_WORDS_BYTE_IO_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <istream>
#include <ostream>
#include <string>

namespace refgrove {

// The n low bytes of v, least significant first.
inline void encode_le(char* b, std::uint32_t v, int n) {
  for (int i = 0; i < n; ++i) b[i] = static_cast<char>(v >> (8 * i));
}

// Appends n bytes to a stream, or to bytes gathered in a std::string: a
// record built there goes to its stream in one write instead of one for
// each field.
inline void put_bytes(std::ostream& out, const char* b, std::size_t n) {
  out.write(b, static_cast<std::streamsize>(n));
}
inline void put_bytes(std::string& out, const char* b, std::size_t n) { out.append(b, n); }

// `Out` is a std::ostream or a std::string.
template <class Out>
void put_uint8(Out& out, std::uint8_t v) {
  const char b = static_cast<char>(v);
  put_bytes(out, &b, 1);
}

template <class Out>
void put_uint16(Out& out, std::uint16_t v) {
  char b[2];
  encode_le(b, v, 2);
  put_bytes(out, b, 2);
}

template <class Out>
void put_int32(Out& out, std::int32_t v) {
  char b[4];
  encode_le(b, static_cast<std::uint32_t>(v), 4);
  put_bytes(out, b, 4);
}

inline std::uint16_t get_uint16(const unsigned char* p) { return static_cast<std::uint16_t>(p[0] | (p[1] << 8)); }

inline std::int32_t get_int32(const unsigned char* p) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(p[0]) | (static_cast<std::uint32_t>(p[1]) << 8) |
                                   (static_cast<std::uint32_t>(p[2]) << 16) | (static_cast<std::uint32_t>(p[3]) << 24));
}

class ByteReader {
 public:
  ByteReader(const char* data, std::size_t size) : p_(reinterpret_cast<const unsigned char*>(data)), end_(p_ + size) {}

  std::size_t remaining() const { return static_cast<std::size_t>(end_ - p_); }
  bool failed() const { return failed_; }

  // Marks the reader as exhausted: used when a count in the data cannot be
  // trusted, so that nothing behind it is interpreted either.
  void fail() {
    failed_ = true;
    p_ = end_;
  }

  // Returns the next n bytes and moves past them, or null (and fails) when
  // fewer than n remain.
  const unsigned char* take(std::size_t n) {
    if (failed_ || n > remaining()) {
      fail();
      return nullptr;
    }
    const unsigned char* at = p_;
    p_ += n;
    return at;
  }

  bool read_int32(std::int32_t* out) {
    const unsigned char* p = take(4);
    if (p) *out = get_int32(p);
    return p != nullptr;
  }
  bool read_int16(std::int16_t* out) {
    const unsigned char* p = take(2);
    if (p) *out = static_cast<std::int16_t>(get_uint16(p));
    return p != nullptr;
  }

  // Reads a count of items of item_size bytes each: fails when the count is
  // negative or the items could not fit in the bytes that remain.
  bool read_count(std::size_t item_size, std::int32_t* out) {
    if (!read_int32(out)) return false;
    if (*out < 0 || static_cast<std::uint64_t>(*out) * item_size > remaining()) {
      fail();
      return false;
    }
    return true;
  }

 private:
  const unsigned char* p_;
  const unsigned char* end_;
  bool failed_ = false;
};

// The rest of a stream, from its current position to its end; empty for a
// stream in a failed state.
std::string read_rest_of_stream(std::istream& in);

}  // namespace refgrove

#endif  // REFGROVE_WORDS_BYTE_IO_H_
