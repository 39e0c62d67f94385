#include "words/string_table.h"

#include "tokenizer/name_hash.h"

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
}  // namespace

StringTable::StringTable() : slots_(kInitialSlots, Slot{0, -1}) {}

std::uint32_t StringTable::hash_of(const std::string& s) { return hash_name_hash_key::hash(s.c_str()); }

int StringTable::String2ID(const std::string& s) { return String2ID(s, hash_of(s)); }

void StringTable::prefetch_slot(std::uint32_t hash) const {
  __builtin_prefetch(&slots_[home_slot(hash, slots_.size() - 1)]);
}

void StringTable::prefetch_key(std::uint32_t hash) const {
  const Slot& slot = slots_[home_slot(hash, slots_.size() - 1)];
  if (slot.id >= 0 && slot.hash == hash) __builtin_prefetch(&by_id[static_cast<std::size_t>(slot.id)]);
}

int StringTable::String2ID(const std::string& s, std::uint32_t h) {
  const std::size_t mask = slots_.size() - 1;
  const eq_name_hash_key equal;
  for (std::size_t i = home_slot(h, mask);; i = (i + 1) & mask) {
    Slot& slot = slots_[i];
    if (slot.id < 0) {
      slot = Slot{h, static_cast<std::int32_t>(by_id.size())};
      by_id.push_back(s);
      if (by_id.size() * 2 > slots_.size()) grow();
      return static_cast<int>(by_id.size()) - 1;
    }
    if (slot.hash == h && equal(by_id[slot.id], s)) return slot.id;
  }
}

void StringTable::grow() {
  std::vector<Slot> old;
  old.swap(slots_);
  slots_.assign(old.size() * 2, Slot{0, -1});
  const std::size_t mask = slots_.size() - 1;
  for (const Slot& slot : old) {
    if (slot.id < 0) continue;
    std::size_t i = home_slot(slot.hash, mask);
    while (slots_[i].id >= 0) i = (i + 1) & mask;
    slots_[i] = slot;
  }
}
