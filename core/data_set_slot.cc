#include "core/data_set_slot.h"

#include <utility>
#include <vector>

namespace refgrove {
namespace {

// One thread's copy of one slot's set. Entries are held by pointer so that
// the reference current() returns survives the thread's use of other slots.
struct CachedSet {
  std::uint64_t slot_id;
  std::uint64_t generation;
  DataSetPtr set;
};

thread_local std::vector<std::unique_ptr<CachedSet>> cached_sets;

std::atomic<std::uint64_t> next_slot_id{0};

// This thread's entry for the slot `slot_id`, made on its first call with a
// generation (UINT64_MAX) that the slot never reaches, so that it is filled.
CachedSet& cached_set_of(std::uint64_t slot_id) {
  for (const std::unique_ptr<CachedSet>& c : cached_sets) {
    if (c->slot_id == slot_id) return *c;
  }
  cached_sets.push_back(std::make_unique<CachedSet>(CachedSet{slot_id, UINT64_MAX, nullptr}));
  return *cached_sets.back();
}

}  // namespace

DataSetSlot::DataSetSlot() : id_(next_slot_id.fetch_add(1, std::memory_order_relaxed)) {}

const DataSetPtr& DataSetSlot::current() const {
  CachedSet& cached = cached_set_of(id_);
  if (cached.generation != generation_.load(std::memory_order_acquire)) {
    std::lock_guard<std::mutex> lock(mutex_);
    cached.set = set_;
    cached.generation = generation_.load(std::memory_order_relaxed);
  }
  return cached.set;
}

void DataSetSlot::replace(DataSetPtr next) {
  DataSetPtr old;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    old = std::exchange(set_, std::move(next));
    generation_.fetch_add(1, std::memory_order_release);
  }
  // `old` is released here, outside the lock: freeing a set unmaps files.
}

}  // namespace refgrove
