#include "network/components.h"

#include <algorithm>
#include <numeric>

#include "network/citation_graph.h"
#include "network/coauthor_graph.h"

namespace refgrove {
namespace {

// Union-find over nodes 0 .. n - 1, by size with path halving.
class DisjointSets {
 public:
  explicit DisjointSets(std::size_t n) : parent_(n), size_(n, 1) { std::iota(parent_.begin(), parent_.end(), 0); }

  std::int32_t find(std::int32_t v) {
    while (parent_[at(v)] != v) {
      parent_[at(v)] = parent_[at(parent_[at(v)])];
      v = parent_[at(v)];
    }
    return v;
  }
  void join(std::int32_t a, std::int32_t b) {
    a = find(a);
    b = find(b);
    if (a == b) return;
    if (size_[at(a)] < size_[at(b)]) std::swap(a, b);
    parent_[at(b)] = a;
    size_[at(a)] += size_[at(b)];
  }
  std::int64_t size_of_root(std::int32_t root) const { return size_[at(root)]; }

 private:
  static std::size_t at(std::int32_t v) { return static_cast<std::size_t>(v); }
  std::vector<std::int32_t> parent_;
  std::vector<std::int64_t> size_;
};

// Numbers the sets by size descending, then by smallest member.
Components numbered(DisjointSets& sets, std::size_t n) {
  std::vector<std::int32_t> roots;  // in order of their smallest member
  std::vector<std::int32_t> id_of_root(n, -1);
  for (std::size_t v = 0; v < n; ++v) {
    const std::int32_t r = sets.find(static_cast<std::int32_t>(v));
    if (id_of_root[static_cast<std::size_t>(r)] < 0) {
      id_of_root[static_cast<std::size_t>(r)] = 0;
      roots.push_back(r);
    }
  }
  std::stable_sort(roots.begin(), roots.end(),
                   [&](std::int32_t a, std::int32_t b) { return sets.size_of_root(a) > sets.size_of_root(b); });
  Components c;
  for (const std::int32_t r : roots) {
    id_of_root[static_cast<std::size_t>(r)] = static_cast<std::int32_t>(c.sizes.size());
    c.sizes.push_back(sets.size_of_root(r));
  }
  c.component_of.resize(n);
  for (std::size_t v = 0; v < n; ++v)
    c.component_of[v] = id_of_root[static_cast<std::size_t>(sets.find(static_cast<std::int32_t>(v)))];
  return c;
}

struct CitationComponents : Components {};
struct CoauthorComponents : Components {};

}  // namespace

const Components& citation_components(const RefgroveData& d) {
  const CitationGraph& g = CitationGraph::of(d);
  return d.derived().get<CitationComponents>([&] {
    DisjointSets sets(static_cast<std::size_t>(g.size()));
    for (std::int32_t v = 0; v < g.size(); ++v)
      for (const std::int32_t w : g.cited(v)) sets.join(v, w);
    return CitationComponents{numbered(sets, static_cast<std::size_t>(g.size()))};
  });
}

const Components& coauthor_components(const RefgroveData& d) {
  const CitationGraph& g = CitationGraph::of(d);
  const CoauthorGraph& coauthors = CoauthorGraph::of(d);
  return d.derived().get<CoauthorComponents>([&] {
    DisjointSets sets(static_cast<std::size_t>(coauthors.author_count()));
    for (std::int32_t v = 0; v < g.size(); ++v) {
      const auto authors = coauthors.authors(v);
      for (const std::int32_t a : authors) sets.join(authors.front(), a);
    }
    return CoauthorComponents{numbered(sets, static_cast<std::size_t>(coauthors.author_count()))};
  });
}

ComponentOf document_component(const RefgroveData& d, std::int32_t did) {
  const std::int32_t v = CitationGraph::of(d).require_node(did);
  const Components& c = citation_components(d);
  const std::int32_t id = c.component_of[static_cast<std::size_t>(v)];
  return {id, c.sizes[static_cast<std::size_t>(id)]};
}

ComponentOf author_component(const RefgroveData& d, std::int32_t author) {
  CoauthorGraph::of(d).require_author(author);
  const Components& c = coauthor_components(d);
  const std::int32_t id = c.component_of[static_cast<std::size_t>(author)];
  return {id, c.sizes[static_cast<std::size_t>(id)]};
}

}  // namespace refgrove
