// StringTable: interning of strings to dense ids during preprocessing.
//
// Ids are handed out from 0 in the order in which distinct strings are first
// met; a repeated string gets its first id back. Any byte sequence is a valid
// key, the empty string and NUL bytes included. The table only grows; it is
// frozen into a CompactedStringTable when a pass ends.
//
// The map is an open-addressing table (linear probing, power-of-two size, at
// most half full) over hash_name_hash_key. A slot holds the full hash and
// the id; the keys lie back to back in one character arena, found through
// the offset of each id, so that a probe compares text only when the hashes
// agree and then reads a few bytes from a small, dense array instead of
// following a std::string.
#ifndef REFGROVE_WORDS_STRING_TABLE_H_
#define REFGROVE_WORDS_STRING_TABLE_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class StringTable {
 public:
  StringTable();

  // The id of `s`, interning it first if it is new.
  int String2ID(const std::string& s);

  int size() const { return static_cast<int>(by_id.size()); }

  // The key of every id, in id order.
  std::vector<std::string> by_id;

 private:
  struct Slot {
    std::uint32_t hash;
    std::int32_t id;  // -1: empty
  };
  // The slot where the probe for hash `h` starts. The name hash (h = 5h + c)
  // leaves its low bits to the last characters only, so strings that differ
  // in their first characters would crowd into a few neighbouring slots;
  // mixing the high bits in spreads them over the table.
  static std::size_t home_slot(std::uint32_t h, std::size_t mask) {
    h ^= h >> 16;
    h *= 0x85ebca6bu;
    h ^= h >> 13;
    h *= 0xc2b2ae35u;
    h ^= h >> 16;
    return h & mask;
  }
  static std::uint32_t hash_of(const char* s, std::size_t n);
  void grow();

  std::vector<Slot> slots_;
  std::vector<char> chars_;            // every key, back to back
  std::vector<std::size_t> starts_;    // key i is [starts_[i], starts_[i + 1]) of chars_
};

#endif  // REFGROVE_WORDS_STRING_TABLE_H_
