// CoauthorGraph: who wrote with whom, kept as the two sides of authorship.
//
// The co-author graph has the authors of the author table as its nodes; two
// authors are linked when both are authors of one graph record (an author
// listed twice on one record counts once). Rather than the links themselves,
// whose number grows with the square of a record's authors, it keeps each
// document's distinct authors and each author's documents: a walk from
// author to author passes through the document they share, which is also
// what a collaboration path shows.
//
// Documents are the nodes of the citation graph; author ids outside the
// author table are left out.
#ifndef REFGROVE_NETWORK_COAUTHOR_GRAPH_H_
#define REFGROVE_NETWORK_COAUTHOR_GRAPH_H_

#include <cstdint>
#include <span>

#include "core/data_set.h"
#include "network/citation_graph.h"

namespace refgrove {

class CoauthorGraph {
 public:
  CoauthorGraph(const RefgroveData& d, const CitationGraph& citations);

  // The co-author graph of `d`, built on first use.
  static const CoauthorGraph& of(const RefgroveData& d);

  std::int32_t author_count() const { return documents_.size(); }
  bool is_author(std::int64_t author) const { return author >= 0 && author < author_count(); }
  // Throws NetworkArgumentError for an id outside the author table.
  void require_author(std::int64_t author) const;

  // The distinct authors of citation-graph node v, ascending.
  std::span<const std::int32_t> authors(std::int32_t v) const { return authors_[v]; }
  // The citation-graph nodes the author wrote, ascending.
  std::span<const std::int32_t> documents(std::int32_t author) const { return documents_[author]; }

 private:
  Adjacency authors_;    // document node -> authors
  Adjacency documents_;  // author -> document nodes
};

}  // namespace refgrove

#endif  // REFGROVE_NETWORK_COAUTHOR_GRAPH_H_
