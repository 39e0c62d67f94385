#include "words/string_table.h"

#include <sys/mman.h>

#include <cstdlib>
#include <cstring>
#include <new>

namespace refgrove {

namespace {
constexpr unsigned kInitialBits = 10;

std::uint64_t load8(const char* p) {
  std::uint64_t v;
  std::memcpy(&v, p, sizeof v);
  return v;
}

std::uint32_t load4(const char* p) {
  std::uint32_t v;
  std::memcpy(&v, p, sizeof v);
  return v;
}

// The n bytes at p (n < 8), little-endian, zero-padded. Two loads that may
// overlap cover 4 to 7 bytes; three single bytes cover 1 to 3.
std::uint64_t load_short(const char* p, std::size_t n) {
  if (n >= 4) return load4(p) | static_cast<std::uint64_t>(load4(p + n - 4)) << (8 * (n - 4));
  if (n == 0) return 0;
  const auto byte = [p](std::size_t i) { return static_cast<std::uint64_t>(static_cast<unsigned char>(p[i])); };
  return byte(0) | byte(n / 2) << (8 * (n / 2)) | byte(n - 1) << (8 * (n - 1));
}

// The low `bytes` bytes of v (bytes <= 8), the others cleared.
std::uint64_t low_bytes(std::uint64_t v, std::size_t bytes) {
  // Two shifts, so that no shift is by 64 bits.
  const std::uint64_t mask = ~((~std::uint64_t{0} << (4 * bytes)) << (4 * bytes));
  return v & mask;
}

// Whether the low `bytes` bytes of v hold a NUL or a byte above 127.
bool zero_or_high_byte(std::uint64_t v, std::size_t bytes) {
  const std::uint64_t high = 0x8080808080808080u;
  const std::uint64_t filled = v | ~low_bytes(~std::uint64_t{0}, bytes);  // 0xFF past them
  const std::uint64_t zero = (filled - 0x0101010101010101u) & ~filled & high;
  return (zero | (low_bytes(v, bytes) & high)) != 0;
}

// hash_name_hash_key of the n <= 11 bytes held in `head` (bytes 0-7) and
// `tail` (bytes 8-10), little-endian, none of them NUL or above 127: the sum
// of byte i times 5^(n-1-i), added up pairwise in the lanes of a word
// instead of one byte after another.
std::uint32_t name_hash_11(std::uint64_t head, std::uint32_t tail, std::size_t n) {
  const std::size_t k = n < 8 ? n : 8;  // bytes in head
  const std::size_t rest = n - k;       // bytes in tail
  // The last byte of head at the top, weight 5^0; two shifts for k = 0.
  const std::uint64_t v = (head << (4 * (8 - k))) << (4 * (8 - k));
  const std::uint64_t m16 = 0x00FF00FF00FF00FFu, m32 = 0x0000FFFF0000FFFFu;
  const std::uint64_t pairs = (v & m16) * 5 + ((v >> 8) & m16);            // 16-bit lanes
  const std::uint64_t quads = (pairs & m32) * 25 + ((pairs >> 16) & m32);  // 32-bit lanes
  const std::uint32_t h8 = static_cast<std::uint32_t>((quads & 0xFFFFFFFFu) * 625 + (quads >> 32));
  static constexpr std::uint32_t kPow5[4] = {1, 5, 25, 125};
  const std::uint32_t t = (tail << (8 * (3 - rest))) & 0xFFFFFFu;  // the last byte at byte 2
  return h8 * kPow5[rest] + (t & 0xFF) * 25 + ((t >> 8) & 0xFF) * 5 + (t >> 16);
}

bool same_key(const std::string& key, const char* s, std::size_t n) {
  return key.size() == n && std::memcmp(key.data(), s, n) == 0;
}

std::uint32_t signed_byte(char c) {
  return static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<signed char>(c)));
}
}  // namespace

StringTable::StringTable() : slots_(std::size_t{1} << kInitialBits, Slot{0, 0, -1}), bits_(kInitialBits) {}

int StringTable::String2ID(const std::string& key) {
  // The string's storage holds capacity() + 1 >= 16 bytes.
  return String2ID(key.data(), key.size(), key.capacity() + 1);
}

std::vector<int> StringTable::String2IDs(const std::vector<std::string>& strings) {
  std::vector<int> ids;
  ids.reserve(strings.size());
  for (const std::string& s : strings) ids.push_back(String2ID(s));
  return ids;
}

void StringTable::makeKey(const char* s, std::size_t n, std::size_t readable, Key* key) const {
  // The slot form of the key: its first kHeadBytes bytes as two NUL-padded
  // words. With 16 bytes readable that is two loads and two masks, the same
  // whatever the length; otherwise a few loads that never go past the key.
  const bool long_key = n > kHeadBytes;
  const std::size_t in_head = n < 8 ? n : 8;
  const std::size_t in_tail = n < 8 ? 0 : n - 8 < 3 ? n - 8 : 3;
  std::uint64_t head;
  std::uint32_t tail;
  if (readable >= 16) {
    head = low_bytes(load8(s), in_head);
    tail = static_cast<std::uint32_t>(low_bytes(load4(s + 8), in_tail));
  } else if (n >= 8) {
    head = load8(s);
    tail = long_key ? load4(s + 8) & 0xFFFFFFu : static_cast<std::uint32_t>(load_short(s + 8, n - 8));
  } else {
    head = load_short(s, n);
    tail = 0;
  }

  // The hash: hash_name_hash_key, which stops at the first NUL byte. A
  // short key shows in its words whether it holds a NUL or a byte that the
  // hash takes as negative.
  std::uint32_t h = 0;
  if (!long_key && !zero_or_high_byte(head, in_head) && !zero_or_high_byte(tail, in_tail)) {
    h = name_hash_11(head, tail, n);
  } else {
    for (std::size_t i = 0; i < n && s[i] != '\0'; ++i) h = 5 * h + signed_byte(s[i]);
  }
  tail |= (long_key ? kLongKey : static_cast<std::uint32_t>(n)) << 24;
  *key = Key{head, tail, h, s, n};
}

int StringTable::intern(const Key& key) {
  const bool long_key = key.n > kHeadBytes;
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t i = home_slot(key.hash, bits_);; i = (i + 1) & mask) {
    Slot& slot = slots_[i];
    if (slot.id < 0) {
      slot = Slot{key.head, key.tail_length, static_cast<std::int32_t>(by_id.size())};
      by_id.emplace_back(key.s, key.n);
      hashes_.push_back(key.hash);
      // Up to 7/8 full: with four slots to a cache line most probes still
      // end in the first line or the next, and the table takes half the
      // cache that it would at most half full; the slot loads of rarer
      // words are what interning costs.
      if (by_id.size() * 8 > slots_.size() * 7) grow();
      return static_cast<int>(by_id.size()) - 1;
    }
    if (slot.head == key.head && slot.tail_length == key.tail_length &&
        (!long_key || same_key(by_id[static_cast<std::size_t>(slot.id)], key.s, key.n))) {
      return slot.id;
    }
  }
}

namespace {
constexpr std::size_t kHugePage = std::size_t{2} << 20;
// Slot arrays from this size on are rounded up to whole huge pages.
constexpr std::size_t kHugeFrom = kHugePage / 4;
}  // namespace

// A lookup reads one slot of a table of a megabyte or more at random; on
// pages of 4 KB nearly every lookup of a rarer word also misses the TLB. A
// large array is therefore aligned to 2 MB and marked for transparent huge
// pages, which leaves it a few TLB entries. Where the system has none, the
// advice is ignored and only the rounding up remains.
void* StringTable::allocate_bytes(std::size_t bytes) {
  if (bytes < kHugeFrom) return ::operator new(bytes);
  const std::size_t rounded = (bytes + kHugePage - 1) / kHugePage * kHugePage;
  void* p = std::aligned_alloc(kHugePage, rounded);
  if (p == nullptr) throw std::bad_alloc();
#ifdef MADV_HUGEPAGE
  madvise(p, rounded, MADV_HUGEPAGE);
#endif
  return p;
}

void StringTable::free_bytes(void* p, std::size_t bytes) {
  if (bytes < kHugeFrom) {
    ::operator delete(p);
  } else {
    std::free(p);
  }
}

void StringTable::grow() {
  std::vector<Slot, SlotAllocator<Slot>> old;
  old.swap(slots_);
  slots_.assign(old.size() * 2, Slot{0, 0, -1});
  ++bits_;
  const std::size_t mask = slots_.size() - 1;
  for (const Slot& slot : old) {
    if (slot.id < 0) continue;
    std::size_t i = home_slot(hashes_[static_cast<std::size_t>(slot.id)], bits_);
    while (slots_[i].id >= 0) i = (i + 1) & mask;
    slots_[i] = slot;
  }
}

}  // namespace refgrove
