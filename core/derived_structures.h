// DerivedStructures: what the layers above core/ compute from a loaded data
// set (a word index, the citation network and its scores), kept with the set.
//
// Such a structure is built by the first caller that needs it; callers
// arriving during the build wait for it, later ones find it. It lives as long
// as the data set that holds it, so a reload or a replaced set takes its
// structures with it, and a set that is never queried that way pays nothing.
// Structures are told apart by their C++ type: each layer defines a type of
// its own for what it keeps.
#ifndef REFGROVE_CORE_DERIVED_STRUCTURES_H_
#define REFGROVE_CORE_DERIVED_STRUCTURES_H_

#include <memory>
#include <mutex>
#include <typeindex>
#include <typeinfo>
#include <utility>
#include <vector>

namespace refgrove {

class DerivedStructures {
 public:
  DerivedStructures() = default;
  DerivedStructures(const DerivedStructures&) = delete;
  DerivedStructures& operator=(const DerivedStructures&) = delete;

  // The structure of type T, made by `build()` (which returns a T) on first
  // use. A build that throws leaves nothing behind: the next caller builds
  // again.
  template <class T, class Build>
  const T& get(Build build) const {
    Entry& e = entry(std::type_index(typeid(T)));
    std::call_once(e.once, [&] { e.value = std::make_shared<const T>(build()); });
    return *static_cast<const T*>(e.value.get());
  }

 private:
  struct Entry {
    std::once_flag once;
    std::shared_ptr<const void> value;
  };

  Entry& entry(std::type_index type) const;

  mutable std::mutex mutex_;  // guards entries_, not the builds
  mutable std::vector<std::pair<std::type_index, std::unique_ptr<Entry>>> entries_;
};

}  // namespace refgrove

#endif  // REFGROVE_CORE_DERIVED_STRUCTURES_H_
