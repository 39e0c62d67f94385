// A shortest path between two nodes of a graph given by its neighbour
// functions, searched from both ends at once.
//
// Each round extends the side whose frontier is smaller by one whole level.
// The first node reached from both sides lies on a shortest path: until then
// the two searched balls were disjoint, so no path was shorter than their
// depths plus one, which is the length of the path through that node.
#ifndef REFGROVE_NETWORK_SHORTEST_PATH_H_
#define REFGROVE_NETWORK_SHORTEST_PATH_H_

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "network/node_marks.h"

namespace refgrove {

// The nodes of a shortest path from s to t over nodes 0 .. nodes - 1, s
// first and t last; empty when t cannot be reached. forward(v, f) calls f(w)
// for every edge v -> w, backward(v, f) for every edge w -> v.
template <class Forward, class Backward>
std::vector<std::int32_t> shortest_path(std::int32_t nodes, std::int32_t s, std::int32_t t, Forward forward,
                                        Backward backward) {
  if (s == t) return {s};
  NodeMarks& marks = NodeMarks::fresh(static_cast<std::size_t>(nodes));
  marks.mark(0, s, -1);
  marks.mark(1, t, -1);
  std::vector<std::int32_t> frontier[2] = {{s}, {t}};
  std::vector<std::int32_t> next;
  std::int32_t meeting = -1;
  while (meeting < 0 && !frontier[0].empty() && !frontier[1].empty()) {
    const int side = frontier[0].size() <= frontier[1].size() ? 0 : 1;
    next.clear();
    const auto reach = [&](std::int32_t from) {
      return [&, from](std::int32_t w) {
        if (meeting >= 0 || marks.marked(side, w)) return;
        marks.mark(side, w, from);
        if (marks.marked(1 - side, w)) meeting = w;
        next.push_back(w);
      };
    };
    for (const std::int32_t v : frontier[side]) {
      if (side == 0) forward(v, reach(v));
      else backward(v, reach(v));
      if (meeting >= 0) break;
    }
    std::swap(frontier[side], next);
  }
  if (meeting < 0) return {};
  std::vector<std::int32_t> path;
  for (std::int32_t v = meeting; v >= 0; v = marks.value(0, v)) path.push_back(v);
  std::reverse(path.begin(), path.end());
  for (std::int32_t v = marks.value(1, meeting); v >= 0; v = marks.value(1, v)) path.push_back(v);
  return path;
}

}  // namespace refgrove

#endif  // REFGROVE_NETWORK_SHORTEST_PATH_H_
