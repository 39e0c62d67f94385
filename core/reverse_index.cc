#include "core/reverse_index.h"

#include <algorithm>

#include "core/data_set.h"

namespace {

// Calls visit(record) for each record reachable through the DID index, by
// ascending DID.
template <class Visit>
void for_each_indexed_record(const RefgroveGraph& graph, const std::vector<WordGraphDataIds>& did_index,
                             Visit visit) {
  for (const WordGraphDataIds& e : did_index) {
    if (e.graph_index >= 0) visit(*graph.docs[static_cast<std::size_t>(e.graph_index)]);
  }
}

}  // namespace

GroupedIndex::GroupedIndex(std::vector<std::pair<std::int32_t, std::int32_t>> pairs, bool distinct) {
  std::sort(pairs.begin(), pairs.end());
  if (distinct) pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
  values_.reserve(pairs.size());
  for (std::size_t i = 0; i < pairs.size(); ++i) {
    if (i == 0 || pairs[i].first != pairs[i - 1].first) {
      keys_.push_back(pairs[i].first);
      offsets_.push_back(static_cast<std::int32_t>(i));
    }
    values_.push_back(pairs[i].second);
  }
  offsets_.push_back(static_cast<std::int32_t>(values_.size()));
}

std::span<const std::int32_t> GroupedIndex::find(std::int32_t key) const {
  const auto it = std::lower_bound(keys_.begin(), keys_.end(), key);
  if (it == keys_.end() || *it != key) return {};
  const std::size_t k = static_cast<std::size_t>(it - keys_.begin());
  return std::span<const std::int32_t>(values_).subspan(static_cast<std::size_t>(offsets_[k]),
                                                        static_cast<std::size_t>(offsets_[k + 1] - offsets_[k]));
}

GroupedIndex cited_by_index(const RefgroveGraph& graph, const std::vector<WordGraphDataIds>& did_index) {
  std::vector<std::pair<std::int32_t, std::int32_t>> pairs;
  for_each_indexed_record(graph, did_index, [&](const RefgroveGraphData& r) {
    for (const CitationInfo& c : r.citations) pairs.emplace_back(c.did, r.did);
  });
  return GroupedIndex(std::move(pairs), false);
}

GroupedIndex author_docs_index(const RefgroveGraph& graph, const std::vector<WordGraphDataIds>& did_index) {
  std::vector<std::pair<std::int32_t, std::int32_t>> pairs;
  for_each_indexed_record(graph, did_index, [&](const RefgroveGraphData& r) {
    for (int k = 0; k < r.nb_authors; ++k) pairs.emplace_back(r.authors[k], r.did);
  });
  return GroupedIndex(std::move(pairs), true);
}

KeyIndex::KeyIndex(const RefgroveGraph& graph, const std::vector<WordGraphDataIds>& did_index) {
  for (const WordGraphDataIds& e : did_index) {
    if (e.graph_index >= 0 && is_key(graph.docs[static_cast<std::size_t>(e.graph_index)]->key)) {
      positions_.push_back(e.graph_index);
    }
  }
  // Collected by ascending DID; a stable sort keeps that order among equal keys.
  std::stable_sort(positions_.begin(), positions_.end(), [&](std::int32_t a, std::int32_t b) {
    return graph.docs[static_cast<std::size_t>(a)]->key < graph.docs[static_cast<std::size_t>(b)]->key;
  });
}

std::span<const std::int32_t> KeyIndex::find(const RefgroveGraph& graph, std::string_view key) const {
  if (!is_key(key)) return {};
  const auto key_of = [&](std::int32_t p) { return graph.docs[static_cast<std::size_t>(p)]->key; };
  const auto first = std::partition_point(positions_.begin(), positions_.end(),
                                          [&](std::int32_t p) { return key_of(p) < key; });
  const auto last = std::partition_point(first, positions_.end(), [&](std::int32_t p) { return key_of(p) == key; });
  return {first, last};
}
