// Distances in the two graphs: between authors in the co-author graph, and
// between papers along citations.
#ifndef REFGROVE_NETWORK_DISTANCE_H_
#define REFGROVE_NETWORK_DISTANCE_H_

#include <cstdint>
#include <optional>
#include <vector>

#include "core/data_set.h"
#include "network/citation_graph.h"

namespace refgrove {

// A shortest collaboration path: authors[0] is the first author, authors
// back the second, and documents[i] a document that authors[i] and
// authors[i + 1] wrote together (by DID). Its length is documents.size().
struct CollaborationPath {
  std::vector<std::int32_t> authors;
  std::vector<std::int32_t> documents;

  // Authors and documents alternating: [a, d1, x, d2, b].
  std::vector<std::int32_t> alternating() const;
};

// The collaboration path between authors a and b (a single author for a ==
// b), or none when they are unconnected. Throws NetworkArgumentError for an
// author id outside the author table.
std::optional<CollaborationPath> collaboration_path(const RefgroveData& d, std::int32_t a, std::int32_t b);
// Its length: 0 for an author and itself.
std::optional<std::int32_t> collaboration_distance(const RefgroveData& d, std::int32_t a, std::int32_t b);

// A shortest path from paper `from` to paper `to` following citations in
// direction `dir` (out: from citing to cited), as the DIDs along it, or none.
// Throws NetworkArgumentError for a DID without a graph record.
std::optional<std::vector<std::int32_t>> citation_path(const RefgroveData& d, std::int32_t from, std::int32_t to,
                                                       Direction dir);
std::optional<std::int32_t> citation_distance(const RefgroveData& d, std::int32_t from, std::int32_t to, Direction dir);

}  // namespace refgrove

#endif  // REFGROVE_NETWORK_DISTANCE_H_
