#include "words/string_table.h"

#include <cstring>

namespace {
constexpr std::size_t kInitialSlots = 1024;

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

// The n bytes at a and b are equal. Words are short: up to 16 bytes are
// compared with two loads from each side (overlapping when n is not a power
// of two) instead of a call to memcmp.
bool same_bytes(const char* a, const char* b, std::size_t n) {
  if (n >= 8) {
    if (n > 16) return std::memcmp(a, b, n) == 0;
    return ((load8(a) ^ load8(b)) | (load8(a + n - 8) ^ load8(b + n - 8))) == 0;
  }
  if (n >= 4) return ((load4(a) ^ load4(b)) | (load4(a + n - 4) ^ load4(b + n - 4))) == 0;
  if (n == 0) return true;
  return a[0] == b[0] && a[n / 2] == b[n / 2] && a[n - 1] == b[n - 1];
}
}  // namespace

StringTable::StringTable() : slots_(kInitialSlots, Slot{0, -1}), starts_(1, 0) {}

std::uint32_t StringTable::hash_of(const char* s, std::size_t n) {
  // hash_name_hash_key, which stops at the first NUL byte.
  std::uint32_t h = 0;
  for (std::size_t i = 0; i < n && s[i] != '\0'; ++i) {
    h = 5 * h + static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<signed char>(s[i])));
  }
  return h;
}

int StringTable::String2ID(const std::string& key) {
  const char* s = key.data();
  const std::size_t n = key.size();
  const std::uint32_t h = hash_of(s, n);
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t i = home_slot(h, mask);; i = (i + 1) & mask) {
    Slot& slot = slots_[i];
    if (slot.id < 0) {
      slot = Slot{h, static_cast<std::int32_t>(by_id.size())};
      by_id.emplace_back(s, n);
      chars_.insert(chars_.end(), s, s + n);
      starts_.push_back(chars_.size());
      if (by_id.size() * 2 > slots_.size()) grow();
      return static_cast<int>(by_id.size()) - 1;
    }
    if (slot.hash == h) {
      const std::size_t id = static_cast<std::size_t>(slot.id);
      const std::size_t start = starts_[id];
      if (starts_[id + 1] - start == n && same_bytes(chars_.data() + start, s, n)) return slot.id;
    }
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
