#include "network/distance.h"

#include "network/coauthor_graph.h"
#include "network/shortest_path.h"

namespace refgrove {
namespace {

Direction reversed(Direction dir) {
  if (dir == Direction::out) return Direction::in;
  if (dir == Direction::in) return Direction::out;
  return Direction::both;
}

}  // namespace

std::vector<std::int32_t> CollaborationPath::alternating() const {
  std::vector<std::int32_t> items;
  for (std::size_t i = 0; i < authors.size(); ++i) {
    if (i > 0) items.push_back(documents[i - 1]);
    items.push_back(authors[i]);
  }
  return items;
}

// The search runs over authorship: authors are nodes 0 .. A - 1 and document
// v is node A + v, so every other node of a path is a shared document.
std::optional<CollaborationPath> collaboration_path(const RefgroveData& d, std::int32_t a, std::int32_t b) {
  const CitationGraph& citations = CitationGraph::of(d);
  const CoauthorGraph& coauthors = CoauthorGraph::of(d);
  coauthors.require_author(a);
  coauthors.require_author(b);
  const std::int32_t authors = coauthors.author_count();
  const auto neighbours = [&](std::int32_t v, auto f) {
    if (v < authors) {
      for (const std::int32_t doc : coauthors.documents(v)) f(authors + doc);
    } else {
      for (const std::int32_t author : coauthors.authors(v - authors)) f(author);
    }
  };
  const auto degree = [&](int, std::int32_t v) -> std::int64_t {
    return v < authors ? coauthors.documents(v).size() : coauthors.authors(v - authors).size();
  };
  const std::vector<std::int32_t> nodes =
      shortest_path(authors + citations.size(), a, b, neighbours, neighbours, degree);
  if (nodes.empty()) return std::nullopt;
  CollaborationPath path;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (i % 2 == 0)
      path.authors.push_back(nodes[i]);
    else
      path.documents.push_back(citations.did(nodes[i] - authors));
  }
  return path;
}

std::optional<std::int32_t> collaboration_distance(const RefgroveData& d, std::int32_t a, std::int32_t b) {
  const std::optional<CollaborationPath> path = collaboration_path(d, a, b);
  if (!path) return std::nullopt;
  return static_cast<std::int32_t>(path->documents.size());
}

std::optional<std::vector<std::int32_t>> citation_path(const RefgroveData& d, std::int32_t from, std::int32_t to,
                                                       Direction dir) {
  const CitationGraph& g = CitationGraph::of(d);
  const std::int32_t s = g.require_node(from);
  const std::int32_t t = g.require_node(to);
  const auto forward = [&](std::int32_t v, auto f) { g.for_each_neighbour(v, dir, f); };
  const auto backward = [&](std::int32_t v, auto f) { g.for_each_neighbour(v, reversed(dir), f); };
  const auto degree = [&](int side, std::int32_t v) -> std::int64_t {
    const Direction d = side == 0 ? dir : reversed(dir);
    return (d != Direction::in ? g.cited(v).size() : 0) + (d != Direction::out ? g.citing(v).size() : 0);
  };
  std::vector<std::int32_t> nodes = shortest_path(g.size(), s, t, forward, backward, degree);
  if (nodes.empty()) return std::nullopt;
  for (std::int32_t& v : nodes) v = g.did(v);
  return nodes;
}

std::optional<std::int32_t> citation_distance(const RefgroveData& d, std::int32_t from, std::int32_t to,
                                              Direction dir) {
  const auto path = citation_path(d, from, to, dir);
  if (!path) return std::nullopt;
  return static_cast<std::int32_t>(path->size() - 1);
}

}  // namespace refgrove
