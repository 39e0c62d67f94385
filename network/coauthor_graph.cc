#include "network/coauthor_graph.h"

#include <algorithm>
#include <string>

#include "core/lookup.h"

namespace refgrove {

CoauthorGraph::CoauthorGraph(const RefgroveData& d, const CitationGraph& citations) {
  const std::int32_t table_size = d.graph->author_table->count;
  authors_.offsets.reserve(static_cast<std::size_t>(citations.size()) + 1);
  for (std::int32_t v = 0; v < citations.size(); ++v) {
    const RefgroveGraphData& record = *graph_record(d, citations.did(v));
    const auto first = static_cast<std::ptrdiff_t>(authors_.items.size());
    for (std::int32_t i = 0; i < record.nb_authors; ++i) {
      const std::int32_t a = record.authors[i];
      if (a >= 0 && a < table_size) authors_.items.push_back(a);
    }
    const auto begin = authors_.items.begin() + first;
    std::sort(begin, authors_.items.end());
    authors_.items.erase(std::unique(begin, authors_.items.end()), authors_.items.end());
    authors_.offsets.push_back(static_cast<std::int64_t>(authors_.items.size()));
  }
  authors_.items.shrink_to_fit();
  documents_ = Adjacency::transposed(authors_, std::max(table_size, 0));
}

const CoauthorGraph& CoauthorGraph::of(const RefgroveData& d) {
  const CitationGraph& citations = CitationGraph::of(d);
  return d.derived().get<CoauthorGraph>([&] { return CoauthorGraph(d, citations); });
}

void CoauthorGraph::require_author(std::int64_t author) const {
  if (!is_author(author)) throw NetworkArgumentError("no author with id " + std::to_string(author));
}

}  // namespace refgrove
