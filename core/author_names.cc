#include "core/author_names.h"

#include <algorithm>

namespace refgrove {

namespace {

unsigned char fold(char c) {
  const unsigned char u = static_cast<unsigned char>(c);
  return u >= 'A' && u <= 'Z' ? static_cast<unsigned char>(u - 'A' + 'a') : u;
}

// Compares `a` with `b` byte by byte with ASCII letters folded, as
// strcmp does: negative, zero or positive.
int compare_folded(std::string_view a, std::string_view b) {
  const std::size_t n = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < n; ++i) {
    if (fold(a[i]) != fold(b[i])) return fold(a[i]) < fold(b[i]) ? -1 : 1;
  }
  return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

std::string_view name_of(const RefgroveGraph& graph, std::int32_t id) {
  const char* name = graph.author_name(id);
  return name == nullptr ? std::string_view() : std::string_view(name);
}

}  // namespace

AuthorNameIndex::AuthorNameIndex(const RefgroveGraph& graph) {
  const std::int32_t n = graph.author_table == nullptr ? 0 : graph.author_table->count;
  ids_.resize(static_cast<std::size_t>(std::max(n, 0)));
  for (std::int32_t id = 0; id < n; ++id) ids_[static_cast<std::size_t>(id)] = id;
  // Stable: equal folded names keep ascending ids.
  std::stable_sort(ids_.begin(), ids_.end(), [&](std::int32_t a, std::int32_t b) {
    return compare_folded(name_of(graph, a), name_of(graph, b)) < 0;
  });
}

std::span<const std::int32_t> AuthorNameIndex::named(const RefgroveGraph& graph, std::string_view name) const {
  const auto first = std::partition_point(
      ids_.begin(), ids_.end(), [&](std::int32_t id) { return compare_folded(name_of(graph, id), name) < 0; });
  const auto last = std::partition_point(
      first, ids_.end(), [&](std::int32_t id) { return compare_folded(name_of(graph, id), name) == 0; });
  return {first, last};
}

std::span<const std::int32_t> AuthorNameIndex::with_prefix(const RefgroveGraph& graph, std::string_view prefix) const {
  const auto first = std::partition_point(
      ids_.begin(), ids_.end(), [&](std::int32_t id) { return compare_folded(name_of(graph, id), prefix) < 0; });
  const auto last = std::partition_point(first, ids_.end(), [&](std::int32_t id) {
    return compare_folded(name_of(graph, id).substr(0, prefix.size()), prefix) == 0;
  });
  return {first, last};
}

}  // namespace refgrove
