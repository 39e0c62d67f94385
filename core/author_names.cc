#include "core/author_names.h"

#include <algorithm>
#include <cctype>
#include <unordered_map>

#include "core/text_folding.h"

namespace refgrove {
namespace {

// Whether `word` starts a word of `name`: at its start or after a byte that
// is not an ASCII letter or digit.
bool starts_a_word(std::string_view name, std::string_view word) {
  for (std::size_t at = name.find(word); at != std::string_view::npos; at = name.find(word, at + 1)) {
    if (at == 0 || !std::isalnum(static_cast<unsigned char>(name[at - 1]))) return true;
  }
  return false;
}

}  // namespace

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

std::vector<std::int32_t> AuthorNameIndex::with_words(std::string_view words) const {
  std::vector<std::string> folded;
  for (const std::string_view word : split_terms(words)) folded.push_back(refgrove::fold_text(word));
  std::vector<std::int32_t> found;
  if (folded.empty()) return found;  // no word names nobody, not everybody
  for (std::int32_t id = 0; id < static_cast<std::int32_t>(folded_.size()); ++id) {
    if (std::ranges::all_of(folded, [&](const std::string& word) { return starts_a_word(text(id), word); }))
      found.push_back(id);
  }
  return spellings_together(found);
}

std::vector<std::int32_t> AuthorNameIndex::spellings_together(std::span<const std::int32_t> ids) const {
  std::unordered_map<std::string_view, std::size_t> group;  // folded name -> rank of its first id
  std::vector<std::pair<std::size_t, std::int32_t>> ranked;
  for (const std::int32_t id : ids) ranked.emplace_back(group.try_emplace(text(id), group.size()).first->second, id);
  std::ranges::stable_sort(ranked, {}, &std::pair<std::size_t, std::int32_t>::first);
  std::vector<std::int32_t> together;
  for (const auto& [rank, id] : ranked) together.push_back(id);
  return together;
}

}  // namespace refgrove
