#include "core/derived_structures.h"

namespace refgrove {

// Entries are never removed, and each lives behind its own pointer, so a
// reference handed out stays valid while other types are added.
DerivedStructures::Entry& DerivedStructures::entry(std::type_index type) const {
  std::lock_guard<std::mutex> lock(mutex_);
  for (auto& [t, e] : entries_) {
    if (t == type) return *e;
  }
  entries_.emplace_back(type, std::make_unique<Entry>());
  return *entries_.back().second;
}

}  // namespace refgrove
