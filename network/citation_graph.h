// CitationGraph: the citation network of a loaded data set, as adjacency
// arrays in both directions over dense node numbers.
//
// Its nodes are the documents that have a graph record (the record a DID's
// index entry names), numbered by ascending DID. There is one edge per
// distinct (citing, cited) pair of such documents, self-citations included;
// citations of DIDs without a record are left out. A document's citation
// count is its in-degree here.
//
// The graph is built from the set on first use and kept with it (see
// DerivedStructures), so it is released on reload and shared by all threads.
#ifndef REFGROVE_NETWORK_CITATION_GRAPH_H_
#define REFGROVE_NETWORK_CITATION_GRAPH_H_

#include <climits>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/data_set.h"

namespace refgrove {

// A bad argument of an analysis (a DID without a graph record, an unknown
// author, a reversed year range, an unknown option value); the message is
// for people.
class NetworkArgumentError : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

// Which citations a walk follows: from citing to cited (out), from cited to
// citing (in), or either way (both).
enum class Direction { out, in, both };

// A citation between two documents, by their DIDs.
struct CitationEdge {
  std::int32_t citing;
  std::int32_t cited;
  friend bool operator==(const CitationEdge&, const CitationEdge&) = default;
};

// Lists of int32 per node: the list of node v is items[offsets[v] ..
// offsets[v + 1]).
struct Adjacency {
  std::vector<std::int64_t> offsets{0};
  std::vector<std::int32_t> items;

  std::span<const std::int32_t> operator[](std::int32_t v) const {
    const auto at = static_cast<std::size_t>(v);
    return {items.data() + offsets[at], items.data() + offsets[at + 1]};
  }
  std::int32_t size() const { return static_cast<std::int32_t>(offsets.size() - 1); }

  // The lists of `sources` read the other way round: for every v in the list
  // of u, u in the list of v. Lists come out in ascending order of u.
  static Adjacency transposed(const Adjacency& sources, std::int32_t nodes);
};

class CitationGraph {
 public:
  explicit CitationGraph(const RefgroveData& d);

  // The graph of `d`, built on first use.
  static const CitationGraph& of(const RefgroveData& d);

  std::int32_t size() const { return static_cast<std::int32_t>(dids_.size()); }
  std::int64_t edge_count() const { return static_cast<std::int64_t>(cited_.items.size()); }

  // The node of `did`, or -1 when it has no graph record.
  std::int32_t node(std::int64_t did) const {
    if (did < 0 || did >= static_cast<std::int64_t>(node_of_did_.size())) return -1;
    return node_of_did_[static_cast<std::size_t>(did)];
  }
  // The node of `did`; throws NetworkArgumentError when it has none.
  std::int32_t require_node(std::int64_t did) const;
  std::int32_t did(std::int32_t node) const { return dids_[static_cast<std::size_t>(node)]; }
  // The DIDs of all nodes, ascending, and their record years (-1 when
  // unknown), by node.
  std::span<const std::int32_t> dids() const { return dids_; }
  std::span<const std::int32_t> years() const { return years_; }

  // The nodes cited by `v` and those citing it, each in ascending order.
  std::span<const std::int32_t> cited(std::int32_t v) const { return cited_[v]; }
  std::span<const std::int32_t> citing(std::int32_t v) const { return citing_[v]; }
  // The lists of cited nodes of all nodes, for handing the whole graph on.
  const Adjacency& cited_lists() const { return cited_; }
  std::int32_t citation_count(std::int32_t v) const { return static_cast<std::int32_t>(citing(v).size()); }
  // Asks the cache for what is kept of node v (its DID and the places of
  // its lists), and once that is there, for the start of its list of cited
  // nodes: a caller about to visit many nodes asks for all of them first,
  // so that the misses overlap instead of coming one after another.
  void prefetch_node(std::int32_t v) const {
    const auto at = static_cast<std::size_t>(v);
    __builtin_prefetch(&dids_[at]);
    __builtin_prefetch(&cited_.offsets[at]);
    __builtin_prefetch(&citing_.offsets[at]);
  }
  void prefetch_did(std::int32_t v) const { __builtin_prefetch(&dids_[static_cast<std::size_t>(v)]); }
  void prefetch_cited(std::int32_t v) const {
    __builtin_prefetch(cited_.items.data() + cited_.offsets[static_cast<std::size_t>(v)]);
  }
  // The starts of v's lists in direction `dir`, once prefetch_node(v) is done.
  // With the citation counts kept beside them (for_each_neighbour_key).
  void prefetch_neighbours(std::int32_t v, Direction dir) const {
    const auto at = static_cast<std::size_t>(v);
    if (dir != Direction::in) {
      prefetch_cited(v);
      __builtin_prefetch(cited_counts_.data() + cited_.offsets[at]);
    }
    if (dir != Direction::out) {
      __builtin_prefetch(citing_.items.data() + citing_.offsets[at]);
      __builtin_prefetch(citing_counts_.data() + citing_.offsets[at]);
    }
  }

  // Calls f(w) for every neighbour w of v in direction `dir` (with `both`, a
  // node both citing and cited by v comes twice).
  template <class F>
  void for_each_neighbour(std::int32_t v, Direction dir, F f) const {
    if (dir != Direction::in)
      for (const std::int32_t w : cited(v)) f(w);
    if (dir != Direction::out)
      for (const std::int32_t w : citing(v)) f(w);
  }

  // The order of nodes in a ring of a neighbourhood as one number: by
  // citation count descending, then by node (DID order). The node is the
  // low half (see node_of_ring_key).
  static std::uint64_t ring_key(std::int32_t citation_count, std::int32_t w) {
    return static_cast<std::uint64_t>(INT32_MAX - citation_count) << 32 | static_cast<std::uint32_t>(w);
  }
  static std::int32_t node_of_ring_key(std::uint64_t key) { return static_cast<std::int32_t>(key & 0xffffffffu); }

  // Calls f(ring_key(citation_count(w), w)) for every neighbour w of v, as
  // for_each_neighbour does. The counts are kept beside the lists, so that
  // ordering a ring reads nothing of its nodes but the lists that hold them.
  template <class F>
  void for_each_neighbour_key(std::int32_t v, Direction dir, F f) const {
    const auto at = static_cast<std::size_t>(v);
    const auto each = [&](const Adjacency& lists, const std::vector<std::int32_t>& counts) {
      for (auto i = lists.offsets[at]; i < lists.offsets[at + 1]; ++i) {
        const auto item = static_cast<std::size_t>(i);
        f(ring_key(counts[item], lists.items[item]));
      }
    };
    if (dir != Direction::in) each(cited_, cited_counts_);
    if (dir != Direction::out) each(citing_, citing_counts_);
  }

  // The record year of node v (-1 when unknown).
  std::int32_t year(std::int32_t v) const { return years_[static_cast<std::size_t>(v)]; }

  // Bytes held by this graph.
  std::size_t memory() const;

 private:
  // The citation count of each of `nodes`, in their order.
  std::vector<std::int32_t> counts_of(const std::vector<std::int32_t>& nodes) const;

  std::vector<std::int32_t> dids_;         // node -> DID, ascending
  std::vector<std::int32_t> node_of_did_;  // DID -> node or -1
  std::vector<std::int32_t> years_;        // node -> year
  Adjacency cited_;                        // node -> cited nodes
  Adjacency citing_;                       // node -> citing nodes
  // The citation count of each node listed, item by item beside cited_ and
  // citing_.
  std::vector<std::int32_t> cited_counts_;
  std::vector<std::int32_t> citing_counts_;
};

// The text of a direction ("out", "in", "both") and back; from_text throws
// NetworkArgumentError for any other text.
const char* to_text(Direction dir);
Direction direction_from_text(const std::string& text);

}  // namespace refgrove

#endif  // REFGROVE_NETWORK_CITATION_GRAPH_H_
