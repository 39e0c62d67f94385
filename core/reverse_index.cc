#include "core/reverse_index.h"

#include <algorithm>

#include "core/data_set.h"

namespace refgrove {

namespace {

// Calls visit(record) for each record reachable through the DID index, by
// ascending DID.
template <class Visit>
void for_each_indexed_record(const RefgroveGraph& graph, const std::vector<WordGraphDataIds>& did_index, Visit visit) {
  for (const WordGraphDataIds& e : did_index) {
    if (e.graph_index >= 0) visit(*graph.docs[static_cast<std::size_t>(e.graph_index)]);
  }
}

}  // namespace

GroupedIndex::GroupedIndex(std::vector<std::pair<std::int32_t, std::int32_t>> pairs, bool distinct) {
  sort_by_key(pairs);
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

// A stable sort by key: the values keep their order within each key. Keys
// are DIDs or author ids, nearly always in a range not much wider than the
// number of pairs, where a counting sort is linear; a damaged file's far
// keys fall back to a comparison sort.
void GroupedIndex::sort_by_key(std::vector<std::pair<std::int32_t, std::int32_t>>& pairs) {
  if (pairs.empty()) return;
  const auto [min, max] = std::minmax_element(pairs.begin(), pairs.end());
  const std::int64_t lo = min->first;
  const std::int64_t range = std::int64_t{max->first} - lo + 1;
  if (range > 2 * static_cast<std::int64_t>(pairs.size()) + 1024) {
    std::stable_sort(pairs.begin(), pairs.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    return;
  }
  std::vector<std::size_t> start(static_cast<std::size_t>(range) + 1, 0);
  for (const auto& p : pairs) ++start[static_cast<std::size_t>(p.first - lo) + 1];
  for (std::size_t k = 1; k < start.size(); ++k) start[k] += start[k - 1];
  std::vector<std::pair<std::int32_t, std::int32_t>> sorted(pairs.size());
  for (const auto& p : pairs) sorted[start[static_cast<std::size_t>(p.first - lo)]++] = p;
  pairs.swap(sorted);
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
  // Sorted beside their keys, which spares the sort a visit to each record
  // per comparison; collected by ascending DID, which a stable sort keeps
  // among equal keys.
  std::vector<std::pair<std::string_view, std::int32_t>> keyed;
  for (const WordGraphDataIds& e : did_index) {
    if (e.graph_index < 0) continue;
    const std::string_view key = graph.docs[static_cast<std::size_t>(e.graph_index)]->key;
    if (is_key(key)) keyed.emplace_back(key, e.graph_index);
  }
  std::stable_sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  positions_.reserve(keyed.size());
  for (const auto& k : keyed) positions_.push_back(k.second);
}

std::span<const std::int32_t> KeyIndex::find(const RefgroveGraph& graph, std::string_view key) const {
  if (!is_key(key)) return {};
  const auto key_of = [&](std::int32_t p) { return graph.docs[static_cast<std::size_t>(p)]->key; };
  const auto first =
      std::partition_point(positions_.begin(), positions_.end(), [&](std::int32_t p) { return key_of(p) < key; });
  const auto last = std::partition_point(first, positions_.end(), [&](std::int32_t p) { return key_of(p) == key; });
  return {first, last};
}

}  // namespace refgrove
