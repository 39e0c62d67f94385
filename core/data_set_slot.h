// DataSetSlot: the data set that many threads query, replaceable while they
// do.
//
// Readers call current() at the start of each piece of work and use the set
// it gives until they are done. Each thread keeps its own copy of the
// shared pointer together with the slot's generation number; current()
// compares the generation (one atomic load) and hands out that copy, taking
// no lock and touching no shared reference count, until replace() has
// published a new set. Only then does the thread take the slot's mutex, once,
// to refresh its copy. Readers therefore never wait on each other.
//
// Memory: a replaced set is freed when the last thread holding it refreshes
// its copy or ends. A thread that stays idle after a replace() keeps the old
// set alive (its files mapped, its memory held) until it calls current()
// again or exits; a thread's copy for a slot that has been destroyed is only
// released when the thread exits.
#ifndef REFGROVE_CORE_DATA_SET_SLOT_H_
#define REFGROVE_CORE_DATA_SET_SLOT_H_

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>

namespace refgrove {

class RefgroveData;

using DataSetPtr = std::shared_ptr<const RefgroveData>;

class DataSetSlot {
 public:
  DataSetSlot();
  DataSetSlot(const DataSetSlot&) = delete;
  DataSetSlot& operator=(const DataSetSlot&) = delete;

  // The published set (null before the first replace()), as this thread's
  // own copy. The reference, and the texts borrowed from the set, stay valid
  // until this thread's next current() on this slot; copy the pointer to
  // hold the set longer.
  const DataSetPtr& current() const;

  // Publishes `next` (null allowed); threads pick it up on their next
  // current().
  void replace(DataSetPtr next);

 private:
  const std::uint64_t id_;  // tells this slot apart in the threads' caches; never reused
  std::atomic<std::uint64_t> generation_{0};
  mutable std::mutex mutex_;  // guards set_
  DataSetPtr set_;
};

}  // namespace refgrove

#endif  // REFGROVE_CORE_DATA_SET_SLOT_H_
