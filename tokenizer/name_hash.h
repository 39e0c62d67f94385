// The string hash and equality function objects of every string-keyed hash
// map in refgrove: the interning table of the word data and the element tree
// of tokenizer languages.
#ifndef REFGROVE_TOKENIZER_NAME_HASH_H_
#define REFGROVE_TOKENIZER_NAME_HASH_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace refgrove {

// h = 5*h + c over the bytes up to the first NUL, c taken as a signed 8-bit
// value, h an unsigned 32-bit value that wraps.
struct hash_name_hash_key {
  std::size_t operator()(const std::string& s) const { return hash(s.c_str()); }
  static std::uint32_t hash(const char* s) {
    std::uint32_t h = 0;
    for (; *s != '\0'; ++s)
      h = 5 * h + static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<signed char>(*s)));
    return h;
  }
};

// Equal in length and in every byte (NUL bytes included).
struct eq_name_hash_key {
  bool operator()(const std::string& a, const std::string& b) const {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size()) == 0;
  }
};

}  // namespace refgrove

#endif  // REFGROVE_TOKENIZER_NAME_HASH_H_
