// StringTable: interning of strings to dense ids during preprocessing.
//
// Ids are handed out from 0 in the order in which distinct strings are first
// met; a repeated string gets its first id back. Any byte sequence is a valid
// key, the empty string and NUL bytes included. The table only grows; it is
// frozen into a CompactedStringTable when a pass ends.
//
// The map is an open-addressing table (linear probing, power-of-two size, at
// most 7/8 full) over hash_name_hash_key. Interning runs once per word of
// the dumps, and in a table of tens of thousands of words a lookup is
// dominated by cache misses, so a slot of 16 bytes carries the key itself
// when it is short (nearly every word is): its length and up to kHeadBytes
// bytes. A lookup of such a key then touches one cache line. A longer key
// keeps its first bytes in the slot and is compared in full with by_id.
#ifndef REFGROVE_WORDS_STRING_TABLE_H_
#define REFGROVE_WORDS_STRING_TABLE_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace refgrove {

class StringTable {
 public:
  StringTable();

  // The id of `s`, interning it first if it is new.
  int String2ID(const std::string& s);
  // The same for the n bytes at s, of which `readable` >= n may be read
  // (16 or more make the lookup cheaper).
  int String2ID(const char* s, std::size_t n, std::size_t readable) {
    Key key;
    makeKey(s, n, readable, &key);
    return intern(key);
  }

  // String2ID in steps, for a run of strings: make the keys of all of
  // them, prefetch each key's slot, then intern them in order. The slot
  // loads of the run then overlap instead of stalling one after the other.
  // A key refers to the string's bytes, which must stay in place until it
  // is interned. makeKey writes the key in place, where it is read again
  // field by field (a returned key would be copied whole from where it was
  // just written field by field, which stalls).
  struct Key {
    std::uint64_t head;  // the slot form of the key (see Slot)
    std::uint32_t tail_length;
    std::uint32_t hash;  // hash_name_hash_key of the string
    const char* s;
    std::size_t n;
  };
  void makeKey(const char* s, std::size_t n, std::size_t readable, Key* key) const;
  void prefetch(const Key& key) const { __builtin_prefetch(&slots_[home_slot(key.hash, bits_)]); }
  int intern(const Key& key);

  // The id of each of `strings`, interning the new ones in their order:
  // how the strings of another table join this one.
  std::vector<int> String2IDs(const std::vector<std::string>& strings);

  int size() const { return static_cast<int>(by_id.size()); }

  // The key of every id, in id order.
  std::vector<std::string> by_id;

 private:
  static constexpr std::size_t kHeadBytes = 11;
  static constexpr std::uint32_t kLongKey = 0xFF;

  // A slot: the key's first kHeadBytes bytes, NUL-padded, and its length
  // (kLongKey when it is longer), as two words; then the id. Equal keys
  // have equal words, so for a short key the two words decide.
  struct Slot {
    std::uint64_t head;         // key bytes 0-7
    std::uint32_t tail_length;  // key bytes 8-10, then the length in the top byte
    std::int32_t id;            // -1: empty
  };
  static_assert(sizeof(Slot) == 16, "four slots to a cache line");

  void grow();

  // The slot where the probe for hash `h` starts, in a table of 2^bits
  // slots. The name hash (h = 5h + c) leaves its low bits to the last
  // characters only, so strings that differ in their first characters
  // would crowd into a few neighbouring slots; Fibonacci hashing (the top
  // bits of the product with 2^64 / golden ratio) brings every bit of h
  // into the slot number with one multiplication.
  static std::size_t home_slot(std::uint32_t h, unsigned bits) {
    return static_cast<std::size_t>((h * std::uint64_t{0x9E3779B97F4A7C15u}) >> (64 - bits));
  }

  // Allocates the slot array: a large one on huge pages where the system
  // offers them (see allocate_bytes).
  template <class T>
  struct SlotAllocator {
    using value_type = T;
    SlotAllocator() = default;
    template <class U>
    SlotAllocator(const SlotAllocator<U>&) {}
    T* allocate(std::size_t n) { return static_cast<T*>(allocate_bytes(n * sizeof(T))); }
    void deallocate(T* p, std::size_t n) { free_bytes(p, n * sizeof(T)); }
    bool operator==(const SlotAllocator&) const { return true; }
    bool operator!=(const SlotAllocator&) const { return false; }
  };
  static void* allocate_bytes(std::size_t bytes);
  static void free_bytes(void* p, std::size_t bytes);

  std::vector<Slot, SlotAllocator<Slot>> slots_;
  unsigned bits_;                      // slots_.size() is 2^bits_
  std::vector<std::uint32_t> hashes_;  // the hash of each id, for grow()
};

}  // namespace refgrove

#endif  // REFGROVE_WORDS_STRING_TABLE_H_
