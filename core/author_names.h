// Authors by name: the author ids of the graph's author table ordered by
// name with ASCII letters folded to lower case, so that a name given in
// any case, or the start of one, is found by bisection.
//
// Only ASCII letters are folded: "erdős" finds "P. Erdős" by its prefix
// "p. erd", but "ERDŐS" does not match "Erdős". Names are compared byte by
// byte, so a prefix may end within a UTF-8 character.
#ifndef REFGROVE_CORE_AUTHOR_NAMES_H_
#define REFGROVE_CORE_AUTHOR_NAMES_H_

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "graph/graph_file.h"

namespace refgrove {

class AuthorNameIndex {
 public:
  explicit AuthorNameIndex(const RefgroveGraph& graph);

  // The ids whose name equals `name` ignoring case, ascending.
  std::span<const std::int32_t> named(const RefgroveGraph& graph, std::string_view name) const;
  // The ids whose name starts with `prefix` ignoring case, by name (folded),
  // then id. The empty prefix gives every author.
  std::span<const std::int32_t> with_prefix(const RefgroveGraph& graph, std::string_view prefix) const;

 private:
  std::vector<std::int32_t> ids_;  // by folded name, then id
};

}  // namespace refgrove

#endif  // REFGROVE_CORE_AUTHOR_NAMES_H_
