#include "fronts/main_path.h"

#include <algorithm>

namespace refgrove {
namespace {

std::size_t at(std::int32_t v) { return static_cast<std::size_t>(v); }

// Tarjan's strongly connected components without recursion (citation chains
// are far deeper than a thread's stack). Components come out numbered in the
// order they close, so every edge between two of them goes from a higher to
// a lower number.
template <class Cited>
std::vector<std::int32_t> strong_components(std::int32_t n, Cited cited) {
  constexpr std::int32_t kUnseen = -1;
  std::vector<std::int32_t> index(at(n), kUnseen), low(at(n)), component(at(n), -1);
  std::vector<std::int32_t> stack;                          // nodes of open components
  std::vector<std::pair<std::int32_t, std::int64_t>> walk;  // (node, next edge)
  std::int32_t next_index = 0, next_component = 0;
  for (std::int32_t root = 0; root < n; ++root) {
    if (index[at(root)] != kUnseen) continue;
    walk.push_back({root, 0});
    index[at(root)] = low[at(root)] = next_index++;
    stack.push_back(root);
    while (!walk.empty()) {
      auto& [v, edge] = walk.back();
      const auto out = cited(v);
      if (edge < static_cast<std::int64_t>(out.size())) {
        const std::int32_t w = out[static_cast<std::size_t>(edge++)];
        if (index[at(w)] == kUnseen) {
          index[at(w)] = low[at(w)] = next_index++;
          stack.push_back(w);
          walk.push_back({w, 0});
        } else if (component[at(w)] < 0) {
          low[at(v)] = std::min(low[at(v)], index[at(w)]);
        }
        continue;
      }
      const std::int32_t done = v;
      walk.pop_back();
      if (!walk.empty()) low[at(walk.back().first)] = std::min(low[at(walk.back().first)], low[at(done)]);
      if (low[at(done)] != index[at(done)]) continue;
      std::int32_t w = 0;
      do {
        w = stack.back();
        stack.pop_back();
        component[at(w)] = next_component;
      } while (w != done);
      ++next_component;
    }
  }
  return component;
}

}  // namespace

SearchPathCounts::SearchPathCounts(const Adjacency& cited) {
  build(cited.size(), [&](std::int32_t v) { return cited[v]; });
}

SearchPathCounts::SearchPathCounts(const CitationGraph& g) {
  build(g.size(), [&](std::int32_t v) { return g.cited(v); });
}

const SearchPathCounts& SearchPathCounts::of(const RefgroveData& d) {
  const CitationGraph& g = CitationGraph::of(d);
  return d.derived().get<SearchPathCounts>([&] { return SearchPathCounts(g); });
}

template <class Cited>
void SearchPathCounts::build(std::int32_t nodes, Cited cited) {
  component_ = strong_components(nodes, cited);
  const std::int32_t n = nodes == 0 ? 0 : *std::max_element(component_.begin(), component_.end()) + 1;

  // Members by component, ascending (a counting sort over the nodes).
  members_.offsets.assign(at(n) + 1, 0);
  for (const std::int32_t c : component_) ++members_.offsets[at(c) + 1];
  for (std::int32_t c = 0; c < n; ++c) members_.offsets[at(c) + 1] += members_.offsets[at(c)];
  members_.items.resize(at(nodes));
  std::vector<std::int64_t> fill(members_.offsets.begin(), members_.offsets.end() - 1);
  for (std::int32_t v = 0; v < nodes; ++v) members_.items[static_cast<std::size_t>(fill[at(component_[at(v)])]++)] = v;

  // The condensed edges, each once, in ascending order per component.
  std::vector<std::int32_t> last_source(at(n), -1);
  std::vector<std::int32_t> in_degree(at(n), 0);
  dag_.offsets.reserve(at(n) + 1);
  for (std::int32_t c = 0; c < n; ++c) {
    const auto first = static_cast<std::ptrdiff_t>(dag_.items.size());
    for (const std::int32_t v : members_[c])
      for (const std::int32_t w : cited(v)) {
        const std::int32_t cw = component_[at(w)];
        if (cw == c || last_source[at(cw)] == c) continue;
        last_source[at(cw)] = c;
        dag_.items.push_back(cw);
        ++in_degree[at(cw)];
      }
    std::sort(dag_.items.begin() + first, dag_.items.end());
    dag_.offsets.push_back(static_cast<std::int64_t>(dag_.items.size()));
  }

  // Paths from the sources into each component (edges go downwards, so
  // descending numbers visit every component after all its predecessors),
  // and from each component to the sinks (ascending).
  std::vector<double> from_sources(at(n), 0), to_sinks(at(n), 0);
  for (std::int32_t c = n - 1; c >= 0; --c) {
    if (in_degree[at(c)] == 0) from_sources[at(c)] = 1;
    for (const std::int32_t s : dag_[c]) from_sources[at(s)] += from_sources[at(c)];
  }
  for (std::int32_t c = 0; c < n; ++c) {
    if (dag_[c].empty()) to_sinks[at(c)] = 1;
    for (const std::int32_t s : dag_[c]) to_sinks[at(c)] += to_sinks[at(s)];
    if (in_degree[at(c)] == 0) total_paths_ += to_sinks[at(c)];
  }
  edge_weight_.resize(dag_.items.size());
  best_.assign(at(n), 0);
  for (std::int32_t c = 0; c < n; ++c) {
    const std::int64_t base = dag_.offsets[at(c)];
    const auto out = dag_[c];
    for (std::size_t i = 0; i < out.size(); ++i) {
      const double w = from_sources[at(c)] * to_sinks[at(out[i])];
      edge_weight_[static_cast<std::size_t>(base) + i] = w;
      best_[at(c)] = std::max(best_[at(c)], w + best_[at(out[i])]);
    }
  }
  for (std::int32_t c = 0; c < n; ++c)
    if (in_degree[at(c)] == 0) main_path_weight_ = std::max(main_path_weight_, best_[at(c)]);
}

double SearchPathCounts::weight(std::int32_t citing, std::int32_t cited) const {
  const std::int32_t c = component(citing), s = component(cited);
  const auto out = dag_[c];
  const auto it = std::lower_bound(out.begin(), out.end(), s);
  if (c == s || it == out.end() || *it != s) return 0;
  return edge_weight_[static_cast<std::size_t>(dag_.offsets[at(c)] + (it - out.begin()))];
}

void SearchPathCounts::append_members(std::int32_t c, std::vector<std::int32_t>& out) const {
  const auto m = members_[c];
  out.insert(out.end(), m.begin(), m.end());
}

std::vector<std::int32_t> SearchPathCounts::expand(const std::vector<std::int32_t>& components) const {
  std::vector<std::int32_t> nodes;
  for (const std::int32_t c : components) append_members(c, nodes);
  return nodes;
}

// Follows the best continuation from the best source. Among equal choices
// the component with the smallest node wins, which is the one whose first
// member is smallest.
std::vector<std::int32_t> SearchPathCounts::main_path() const {
  const std::int32_t n = component_count();
  std::vector<bool> cited(at(n), false);
  for (const std::int32_t s : dag_.items) cited[at(s)] = true;
  const auto first_node = [&](std::int32_t c) { return members_[c][0]; };
  std::int32_t c = -1;
  for (std::int32_t k = 0; k < n; ++k) {
    if (cited[at(k)] || best_[at(k)] != main_path_weight_) continue;
    if (c < 0 || first_node(k) < first_node(c)) c = k;
  }
  std::vector<std::int32_t> path;
  while (c >= 0) {
    path.push_back(c);
    std::int32_t next = -1;
    const auto out = dag_[c];
    for (std::size_t i = 0; i < out.size(); ++i) {
      const double through = edge_weight_[static_cast<std::size_t>(dag_.offsets[at(c)]) + i] + best_[at(out[i])];
      if (through == best_[at(c)] && (next < 0 || first_node(out[i]) < first_node(next))) next = out[i];
    }
    c = next;
  }
  return expand(path);
}

// The longest path in the condensed graph between the two components, by
// dynamic programming over the components numbered between them (edges
// only go downwards).
std::vector<std::int32_t> SearchPathCounts::longest_path(std::int32_t from, std::int32_t to) const {
  const std::int32_t start = component(from), goal = component(to);
  if (start < goal) return {};
  constexpr std::int32_t kUnreached = -1;
  const auto span = at(start - goal + 1);
  std::vector<std::int32_t> length(span, kUnreached), previous(span, -1);
  const auto slot = [&](std::int32_t c) { return at(start - c); };
  length[0] = 0;
  for (std::int32_t c = start; c > goal; --c) {
    if (length[slot(c)] == kUnreached) continue;
    for (const std::int32_t s : dag_[c]) {
      if (s < goal || length[slot(s)] >= length[slot(c)] + 1) continue;
      length[slot(s)] = length[slot(c)] + 1;
      previous[slot(s)] = c;
    }
  }
  if (length[slot(goal)] == kUnreached) return {};
  std::vector<std::int32_t> path;
  for (std::int32_t c = goal; c != start; c = previous[slot(c)]) path.push_back(c);
  path.push_back(start);
  std::reverse(path.begin(), path.end());
  return expand(path);
}

namespace {

std::vector<std::int32_t> as_dids(const CitationGraph& g, std::vector<std::int32_t> nodes) {
  for (std::int32_t& v : nodes) v = g.did(v);
  return nodes;
}

}  // namespace

std::vector<std::int32_t> main_path_dids(const RefgroveData& d) {
  return as_dids(CitationGraph::of(d), SearchPathCounts::of(d).main_path());
}

std::vector<std::int32_t> longest_path_dids(const RefgroveData& d, std::int32_t from, std::int32_t to) {
  const CitationGraph& g = CitationGraph::of(d);
  const std::int32_t u = g.require_node(from), v = g.require_node(to);
  return as_dids(g, SearchPathCounts::of(d).longest_path(u, v));
}

}  // namespace refgrove
