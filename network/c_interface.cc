// The C operations of refgrove_network.h: the analyses applied to the one
// global data set, with bad arguments answered by -1 (or 0) instead of an
// exception.
#include "network/refgrove_network.h"

#include <algorithm>
#include <climits>
#include <optional>

#include "core/refgrove.h"
#include "network/components.h"
#include "network/distance.h"
#include "network/neighbourhood.h"
#include "network/ranking.h"
#include "network/similarity.h"

using namespace refgrove;

namespace {

const RefgroveData& loaded() { return refgrove_data == nullptr ? RefgroveData::empty() : *refgrove_data; }

// Runs an analysis; a bad argument gives `failed`.
template <class F>
auto answer(F f, decltype(f()) failed) -> decltype(f()) {
  try {
    return f();
  } catch (const NetworkArgumentError&) {
    return failed;
  }
}

std::optional<Direction> direction_of(int direction) {
  switch (direction) {
    case REFGROVE_DIRECTION_OUT: return Direction::out;
    case REFGROVE_DIRECTION_IN: return Direction::in;
    case REFGROVE_DIRECTION_BOTH: return Direction::both;
    default: return std::nullopt;
  }
}

Direction require_direction(int direction) {
  const std::optional<Direction> dir = direction_of(direction);
  if (!dir) throw NetworkArgumentError("unknown direction");
  return *dir;
}

// Writes items[0 .. room) through put(i, item) and returns the item count.
template <class Items, class Put>
int give(const Items& items, int room, Put put) {
  const auto n = std::min<std::size_t>(items.size(), static_cast<std::size_t>(std::max(room, 0)));
  for (std::size_t i = 0; i < n; ++i) put(i, items[i]);
  return static_cast<int>(items.size());
}

Neighbourhood neighbourhood_of(int did, int hops, int direction, int limit, bool edges) {
  return neighbourhood(loaded(), did, {hops, require_direction(direction), limit, edges});
}

int give_component(const ComponentOf& c, int* id, int* size) {
  *id = c.id;
  *size = static_cast<int>(std::min<std::int64_t>(c.size, INT_MAX));
  return 1;
}

}  // namespace

int refgrove_citation_count_1(int did, int* out) {
  return answer([&] { *out = citation_count(loaded(), did); return 1; }, 0);
}

int refgrove_pagerank_1(int did, double* out) {
  return answer([&] { *out = pagerank(loaded(), did); return 1; }, 0);
}

int refgrove_ranked_1(int by, int year_from, int year_to, int room, int* dids, double* scores) {
  return answer(
      [&] {
        if (by != REFGROVE_BY_CITATIONS && by != REFGROVE_BY_PAGERANK) return -1;
        const RankBy rank_by = by == REFGROVE_BY_CITATIONS ? RankBy::citations : RankBy::pagerank;
        const auto top = ranked(loaded(), rank_by, std::max(room, 0), YearRange{year_from, year_to});
        return give(top, room, [&](std::size_t i, const RankedDocument& r) {
          dids[i] = r.did;
          scores[i] = r.score;
        });
      },
      -1);
}

int refgrove_collaboration_distance_1(int a, int b) {
  return answer([&] { return collaboration_distance(loaded(), a, b).value_or(-1); }, -1);
}

int refgrove_collaboration_path_1(int a, int b, int room, int* path) {
  return answer(
      [&] {
        const std::optional<CollaborationPath> p = collaboration_path(loaded(), a, b);
        if (!p) return -1;
        return give(p->alternating(), room, [&](std::size_t i, int item) { path[i] = item; });
      },
      -1);
}

int refgrove_citation_distance_1(int from, int to, int direction) {
  return answer([&] { return citation_distance(loaded(), from, to, require_direction(direction)).value_or(-1); },
                -1);
}

int refgrove_neighbourhood_1(int did, int hops, int direction, int limit, int room, int* dids, int* hop_counts) {
  return answer(
      [&] {
        return give(neighbourhood_of(did, hops, direction, limit, false).nodes, room,
                    [&](std::size_t i, const NeighbourNode& n) {
                      dids[i] = n.did;
                      hop_counts[i] = n.hops;
                    });
      },
      -1);
}

int refgrove_neighbourhood_edges_1(int did, int hops, int direction, int limit, int room, int* citing, int* cited) {
  return answer(
      [&] {
        return give(neighbourhood_of(did, hops, direction, limit, true).edges, room,
                    [&](std::size_t i, const CitationEdge& e) {
                      citing[i] = e.citing;
                      cited[i] = e.cited;
                    });
      },
      -1);
}

int refgrove_similar_1(int did, int by, int room, int* dids, int* counts) {
  return answer(
      [&] {
        if (by != REFGROVE_BY_COCITATION && by != REFGROVE_BY_COUPLING) return -1;
        const SimilarBy similar_by = by == REFGROVE_BY_COCITATION ? SimilarBy::cocitation : SimilarBy::coupling;
        return give(similar(loaded(), did, similar_by, std::max(room, 0)), room,
                    [&](std::size_t i, const SimilarDocument& s) {
                      dids[i] = s.did;
                      counts[i] = s.count;
                    });
      },
      -1);
}

int refgrove_component_count_1(void) { return static_cast<int>(citation_components(loaded()).count()); }
int refgrove_author_component_count_1(void) { return static_cast<int>(coauthor_components(loaded()).count()); }

int refgrove_component_1(int did, int* id, int* size) {
  return answer([&] { return give_component(document_component(loaded(), did), id, size); }, 0);
}

int refgrove_author_component_1(int author_id, int* id, int* size) {
  return answer([&] { return give_component(author_component(loaded(), author_id), id, size); }, 0);
}
