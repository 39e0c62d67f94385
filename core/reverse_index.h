// The reverse indexes of a data set: from a cited DID to the records citing
// it, from an author id to its documents, from a key to its documents.
//
// Each is built from the records reachable through the DID index (the record
// a DID's entry names; a record shadowed by a later one with the same DID is
// not seen), so that its answers agree with the forward queries. The
// indexes are flat arrays built in one pass and a sort: no per-entry
// allocation, and nothing that copies the graph's strings.
#ifndef REFGROVE_CORE_REVERSE_INDEX_H_
#define REFGROVE_CORE_REVERSE_INDEX_H_

#include <cstdint>
#include <mutex>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "graph/graph_file.h"

namespace refgrove {

struct WordGraphDataIds;

// Values grouped by an int32 key: the distinct keys in ascending order, and
// for the k-th of them the values values_[offsets_[k] .. offsets_[k + 1]).
// Keys are searched by bisection, so sparse or negative keys (a citation of
// a DID far beyond the data) cost no more than dense ones.
class GroupedIndex {
 public:
  GroupedIndex() = default;
  // Groups (key, value) pairs given in ascending order of value; each
  // group's values keep that order. With `distinct`, a pair given more
  // than once is kept once.
  GroupedIndex(std::vector<std::pair<std::int32_t, std::int32_t>> pairs, bool distinct);

  // The values of `key`, empty when it has none.
  std::span<const std::int32_t> find(std::int32_t key) const;

 private:
  static void sort_by_key(std::vector<std::pair<std::int32_t, std::int32_t>>& pairs);

  std::vector<std::int32_t> keys_;
  std::vector<std::int32_t> offsets_;  // keys_.size() + 1 entries
  std::vector<std::int32_t> values_;
};

// The positions in the graph's records of the reachable records with a key,
// ordered by key, then by DID. Keys are read from the records themselves.
class KeyIndex {
 public:
  KeyIndex() = default;
  KeyIndex(const RefgroveGraph& graph, const std::vector<WordGraphDataIds>& did_index);

  // Positions of the records whose key is `key`, by ascending DID.
  std::span<const std::int32_t> find(const RefgroveGraph& graph, std::string_view key) const;

  // The empty key (a dump's "-") and "-" itself name no document.
  static bool is_key(std::string_view key) { return !key.empty() && key != "-"; }

 private:
  std::vector<std::int32_t> positions_;
};

GroupedIndex cited_by_index(const RefgroveGraph& graph, const std::vector<WordGraphDataIds>& did_index);
GroupedIndex author_docs_index(const RefgroveGraph& graph, const std::vector<WordGraphDataIds>& did_index);

// A value computed by the first caller of get() and shared by all: callers
// arriving during the computation wait for it, later ones only check a flag.
template <class T>
class BuiltOnce {
 public:
  template <class Build>
  const T& get(Build build) const {
    std::call_once(once_, [&] { value_ = build(); });
    return value_;
  }

 private:
  mutable std::once_flag once_;
  mutable T value_;
};

}  // namespace refgrove

#endif  // REFGROVE_CORE_REVERSE_INDEX_H_
