#include "words/string_table.h"

#include <cstring>

namespace {
constexpr std::size_t kInitialSlots = 1024;

// The slot where the probe for hash `h` starts. The name hash (h = 5h + c)
// leaves its low bits to the last characters only, so strings that differ in
// their first characters would crowd into a few neighbouring slots; mixing
// the high bits in spreads them over the table.
std::size_t home_slot(std::uint32_t h, std::size_t mask) {
  h ^= h >> 16;
  h *= 0x85ebca6bu;
  h ^= h >> 13;
  h *= 0xc2b2ae35u;
  h ^= h >> 16;
  return h & mask;
}

// The 12 bytes after a slot's id, as two words.
struct KeyBytes {
  std::uint32_t a;
  std::uint64_t b;
  bool operator==(const KeyBytes& o) const { return a == o.a && b == o.b; }
};

template <class Slot>
KeyBytes key_bytes(const Slot& slot) {
  const char* p = reinterpret_cast<const char*>(&slot) + sizeof slot.id;
  KeyBytes k;
  std::memcpy(&k.a, p, sizeof k.a);
  std::memcpy(&k.b, p + sizeof k.a, sizeof k.b);
  return k;
}
}  // namespace

StringTable::StringTable() : slots_(kInitialSlots, Slot{-1, 0, {}}) {}

int StringTable::String2ID(const std::string& key) {
  const char* s = key.data();
  const std::size_t n = key.size();
  // The hash (hash_name_hash_key: up to the first NUL byte) and the slot
  // form of the key, in one pass over its first bytes.
  Slot probe{-1, n <= kHeadBytes ? static_cast<std::uint8_t>(n) : kLongKey, {}};
  std::uint32_t h = 0;
  bool hashing = true;
  for (std::size_t i = 0; i < n; ++i) {
    const char c = s[i];
    if (i < kHeadBytes) probe.head[i] = c;
    if (c == '\0') hashing = false;
    if (hashing) h = 5 * h + static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<signed char>(c)));
  }
  const KeyBytes wanted = key_bytes(probe);

  const std::size_t mask = slots_.size() - 1;
  for (std::size_t i = home_slot(h, mask);; i = (i + 1) & mask) {
    Slot& slot = slots_[i];
    if (slot.id < 0) {
      slot = probe;
      slot.id = static_cast<std::int32_t>(by_id.size());
      by_id.push_back(key);
      hashes_.push_back(h);
      if (by_id.size() * 2 > slots_.size()) grow();
      return static_cast<int>(by_id.size()) - 1;
    }
    if (key_bytes(slot) == wanted) {
      if (probe.length != kLongKey) return slot.id;
      if (by_id[static_cast<std::size_t>(slot.id)] == key) return slot.id;
    }
  }
}

void StringTable::grow() {
  std::vector<Slot> old;
  old.swap(slots_);
  slots_.assign(old.size() * 2, Slot{-1, 0, {}});
  const std::size_t mask = slots_.size() - 1;
  for (const Slot& slot : old) {
    if (slot.id < 0) continue;
    std::size_t i = home_slot(hashes_[static_cast<std::size_t>(slot.id)], mask);
    while (slots_[i].id >= 0) i = (i + 1) & mask;
    slots_[i] = slot;
  }
}
