// StringTable: interning of strings to dense ids during preprocessing.
//
// Ids are handed out from 0 in the order in which distinct strings are first
// met; a repeated string gets its first id back. Any byte sequence is a valid
// key, the empty string and NUL bytes included. The table only grows; it is
// frozen into a CompactedStringTable when a pass ends.
//
// The map is an open-addressing table (linear probing, power-of-two size, at
// most half full) over hash_name_hash_key; each slot keeps the full hash so
// that a probe compares strings only when the hashes agree.
#ifndef REFGROVE_WORDS_STRING_TABLE_H_
#define REFGROVE_WORDS_STRING_TABLE_H_

#include <cstdint>
#include <string>
#include <vector>

class StringTable {
 public:
  StringTable();

  // The id of `s`, interning it first if it is new.
  int String2ID(const std::string& s);

  // Batches of lookups. A lookup misses the cache twice in a large table:
  // at the slot and at the key it compares with. Preparing a batch first
  // lets those memory accesses overlap instead of following each other:
  //
  //   for each s: h[i] = hash_of(s); prefetch_slot(h[i]);
  //   for each s: prefetch_key(h[i]);
  //   for each s: id[i] = String2ID(s, h[i]);
  //
  // gives the ids that String2ID(s) would give, in the same order.
  static std::uint32_t hash_of(const std::string& s);
  void prefetch_slot(std::uint32_t hash) const;
  void prefetch_key(std::uint32_t hash) const;
  // String2ID with the hash of `s` from hash_of.
  int String2ID(const std::string& s, std::uint32_t hash);

  int size() const { return static_cast<int>(by_id.size()); }

  // The key of every id, in id order.
  std::vector<std::string> by_id;

 private:
  struct Slot {
    std::uint32_t hash;
    std::int32_t id;  // -1: empty
  };
  void grow();

  std::vector<Slot> slots_;
};

#endif  // REFGROVE_WORDS_STRING_TABLE_H_
