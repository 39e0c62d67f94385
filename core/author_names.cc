#include "core/author_names.h"

#include <algorithm>

#include "core/text_folding.h"

namespace refgrove {

AuthorNameIndex::AuthorNameIndex(const RefgroveGraph& graph) {
  const std::int32_t n = graph.author_table == nullptr ? 0 : std::max(graph.author_table->count, 0);
  folded_.reserve(static_cast<std::size_t>(n));
  ids_.resize(static_cast<std::size_t>(n));
  for (std::int32_t id = 0; id < n; ++id) {
    const char* name = graph.author_name(id);
    folded_.push_back(name == nullptr ? std::string() : refgrove::fold_text(name));
    ids_[static_cast<std::size_t>(id)] = id;
  }
  // Stable: equal folded names keep ascending ids.
  std::stable_sort(ids_.begin(), ids_.end(), [&](std::int32_t a, std::int32_t b) {
    return folded_[static_cast<std::size_t>(a)] < folded_[static_cast<std::size_t>(b)];
  });
}

std::span<const std::int32_t> AuthorNameIndex::named(std::string_view name) const {
  const std::string folded = refgrove::fold_text(name);
  const auto first = std::partition_point(ids_.begin(), ids_.end(), [&](std::int32_t id) { return text(id) < folded; });
  const auto last = std::partition_point(first, ids_.end(), [&](std::int32_t id) { return text(id) == folded; });
  return {first, last};
}

std::span<const std::int32_t> AuthorNameIndex::with_prefix(std::string_view prefix) const {
  const std::string folded = refgrove::fold_text(prefix);
  const auto first = std::partition_point(ids_.begin(), ids_.end(), [&](std::int32_t id) { return text(id) < folded; });
  const auto last =
      std::partition_point(first, ids_.end(), [&](std::int32_t id) { return text(id).starts_with(folded); });
  return {first, last};
}

}  // namespace refgrove
