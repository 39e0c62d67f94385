#include "network/citation_graph.h"

#include <algorithm>

#include "core/lookup.h"

namespace refgrove {

Adjacency Adjacency::transposed(const Adjacency& sources, std::int32_t nodes) {
  Adjacency t;
  t.offsets.assign(static_cast<std::size_t>(nodes) + 1, 0);
  for (const std::int32_t v : sources.items) ++t.offsets[static_cast<std::size_t>(v) + 1];
  for (std::size_t v = 0; v < static_cast<std::size_t>(nodes); ++v) t.offsets[v + 1] += t.offsets[v];
  t.items.resize(sources.items.size());
  std::vector<std::int64_t> next(t.offsets.begin(), t.offsets.end() - 1);
  for (std::int32_t u = 0; u < sources.size(); ++u)
    for (const std::int32_t v : sources[u]) t.items[static_cast<std::size_t>(next[static_cast<std::size_t>(v)]++)] = u;
  return t;
}

CitationGraph::CitationGraph(const RefgroveData& d) : node_of_did_(d.did_index.size(), -1) {
  for (std::size_t did = 0; did < d.did_index.size(); ++did) {
    if (d.did_index[did].graph_index < 0) continue;
    node_of_did_[did] = static_cast<std::int32_t>(dids_.size());
    dids_.push_back(static_cast<std::int32_t>(did));
  }
  years_.reserve(dids_.size());
  cited_.offsets.reserve(dids_.size() + 1);
  std::size_t citations = 0;
  for (const std::int32_t did : dids_) citations += static_cast<std::size_t>(graph_record(d, did)->citations.size());
  cited_.items.reserve(citations);
  for (const std::int32_t did : dids_) {
    const RefgroveGraphData& record = *graph_record(d, did);
    years_.push_back(record.year);
    const auto first = static_cast<std::ptrdiff_t>(cited_.items.size());
    for (const CitationInfo& c : record.citations) {
      const std::int32_t w = node(c.did);
      if (w >= 0) cited_.items.push_back(w);
    }
    const auto begin = cited_.items.begin() + first;
    std::sort(begin, cited_.items.end());
    cited_.items.erase(std::unique(begin, cited_.items.end()), cited_.items.end());
    cited_.offsets.push_back(static_cast<std::int64_t>(cited_.items.size()));
  }
  cited_.items.shrink_to_fit();
  citing_ = Adjacency::transposed(cited_, size());
  cited_counts_ = counts_of(cited_.items);
  citing_counts_ = counts_of(citing_.items);
}

std::vector<std::int32_t> CitationGraph::counts_of(const std::vector<std::int32_t>& nodes) const {
  std::vector<std::int32_t> counts;
  counts.reserve(nodes.size());
  for (const std::int32_t w : nodes) counts.push_back(citation_count(w));
  return counts;
}

const CitationGraph& CitationGraph::of(const RefgroveData& d) {
  return d.derived().get<CitationGraph>([&] { return CitationGraph(d); });
}

std::int32_t CitationGraph::require_node(std::int64_t did) const {
  const std::int32_t v = node(did);
  if (v < 0) throw NetworkArgumentError("no graph record for DID " + std::to_string(did));
  return v;
}

std::size_t CitationGraph::memory() const {
  const auto bytes = [](const auto& v) { return v.capacity() * sizeof(v[0]); };
  return bytes(dids_) + bytes(node_of_did_) + bytes(years_) + bytes(cited_.offsets) + bytes(cited_.items) +
         bytes(citing_.offsets) + bytes(citing_.items) + bytes(cited_counts_) + bytes(citing_counts_);
}

const char* to_text(Direction dir) {
  switch (dir) {
    case Direction::out:
      return "out";
    case Direction::in:
      return "in";
    case Direction::both:
      return "both";
  }
  return "both";
}

Direction direction_from_text(const std::string& text) {
  for (const Direction dir : {Direction::out, Direction::in, Direction::both})
    if (text == to_text(dir)) return dir;
  throw NetworkArgumentError("unknown direction \"" + text + "\" (out, in or both)");
}

}  // namespace refgrove
