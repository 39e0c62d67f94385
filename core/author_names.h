// Authors by name: the author ids of the graph's author table ordered by
// folded name (text_folding.h), so that a name given in any case, with or
// without its accents, or the start of one, is found by bisection:
// "P. ERDŐS", "p. erdos" and "P. Erdős" written with a combining accent all
// find "P. Erdős". A prefix is folded the same way and compared byte by
// byte with the folded names.
#ifndef REFGROVE_CORE_AUTHOR_NAMES_H_
#define REFGROVE_CORE_AUTHOR_NAMES_H_

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "graph/graph_file.h"

namespace refgrove {

class AuthorNameIndex {
 public:
  explicit AuthorNameIndex(const RefgroveGraph& graph);

  // The ids whose folded name equals the folded `name`, ascending.
  std::span<const std::int32_t> named(std::string_view name) const;
  // The ids whose folded name starts with the folded `prefix`, by folded
  // name, then id. The empty prefix gives every author.
  std::span<const std::int32_t> with_prefix(std::string_view prefix) const;
  // The ids whose folded name has each folded word of `words` at the start
  // of one of its own words ("witten" finds "E. Witten" and "L. Witten"),
  // in spelling groups (spellings_together); none for no word.
  std::vector<std::int32_t> with_words(std::string_view words) const;
  // `ids` reordered so that names folding alike, the spellings of one person
  // ("P. Erdős" and "P. Erdos"), stand together: the groups in the order of
  // their first id in `ids`, each in its own order.
  std::vector<std::int32_t> spellings_together(std::span<const std::int32_t> ids) const;

 private:
  std::string_view text(std::int32_t id) const { return folded_[static_cast<std::size_t>(id)]; }

  std::vector<std::string> folded_;  // by id
  std::vector<std::int32_t> ids_;    // by folded name, then id
};

}  // namespace refgrove

#endif  // REFGROVE_CORE_AUTHOR_NAMES_H_
