// A shortest path between two nodes of a graph given by its neighbour
// functions, searched from both ends at once.
//
// Each round extends by one whole level the side whose frontier costs less
// to extend (the sum of its nodes' degrees).
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
// for every edge v -> w, backward(v, f) for every edge w -> v; degree(side,
// v) is the number of calls that forward (side 0) or backward (side 1) make.
template <class Forward, class Backward, class Degree>
std::vector<std::int32_t> shortest_path(std::int32_t nodes, std::int32_t s, std::int32_t t, Forward forward,
                                        Backward backward, Degree degree) {
  if (s == t) return {s};
  NodeMarks& marks = NodeMarks::fresh(static_cast<std::size_t>(nodes));
  marks.mark(0, s, -1);
  marks.mark(1, t, -1);
  std::vector<std::int32_t> frontier[2] = {{s}, {t}};
  std::int64_t cost[2] = {degree(0, s), degree(1, t)};
  std::vector<std::int32_t> next;
  std::int32_t meeting = -1;
  while (meeting < 0 && !frontier[0].empty() && !frontier[1].empty()) {
    const int side = cost[0] <= cost[1] ? 0 : 1;
    next.clear();
    cost[side] = 0;
    const auto reach = [&](std::int32_t from) {
      return [&, from](std::int32_t w) {
        if (meeting >= 0 || marks.marked(side, w)) return;
        marks.mark(side, w, from);
        if (marks.marked(1 - side, w)) meeting = w;
        next.push_back(w);
        cost[side] += degree(side, w);
      };
    };
    for (const std::int32_t v : frontier[side]) {
      if (side == 0)
        forward(v, reach(v));
      else
        backward(v, reach(v));
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
