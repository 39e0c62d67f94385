// The C operations of refgrove/network.h: the analyses applied to the one
// global data set, with bad arguments answered by kNoAnswer instead of an
// exception.
#include "refgrove/network.h"

#include <algorithm>
#include <climits>
#include <optional>

#include "core/c_results.h"
#include "core/data_set.h"
#include "network/c_answer.h"
#include "network/components.h"
#include "network/distance.h"
#include "network/neighbourhood.h"
#include "network/ranking.h"
#include "network/similarity.h"

using namespace refgrove;

namespace {

std::optional<Direction> direction_of(int direction) {
  switch (direction) {
    case REFGROVE_DIRECTION_OUT:
      return Direction::out;
    case REFGROVE_DIRECTION_IN:
      return Direction::in;
    case REFGROVE_DIRECTION_BOTH:
      return Direction::both;
    default:
      return std::nullopt;
  }
}

Direction require_direction(int direction) {
  const std::optional<Direction> dir = direction_of(direction);
  if (!dir) throw NetworkArgumentError("unknown direction");
  return *dir;
}

// The whole of a list that an operation cuts to the caller's capacity.
constexpr std::int64_t kAll = INT64_MAX;

Neighbourhood neighbourhood_of(int did, int hops, int direction, int limit, bool edges) {
  return neighbourhood(loaded_data(), did, {hops, require_direction(direction), limit, edges});
}

int give_component(const ComponentOf& c, int* id, int* size) {
  *id = c.id;
  *size = static_cast<int>(std::min<std::int64_t>(c.size, INT_MAX));
  return 1;
}

}  // namespace

int refgrove_citation_count_1(int did, int* out) {
  return answer([&] {
    *out = citation_count(loaded_data(), did);
    return 1;
  });
}

int refgrove_pagerank_1(int did, double* out) {
  return answer([&] {
    *out = pagerank(loaded_data(), did);
    return 1;
  });
}

int refgrove_ranked_1(int by, int year_from, int year_to, int capacity, int* dids, double* scores) {
  return answer([&] {
    if (by != REFGROVE_BY_CITATIONS && by != REFGROVE_BY_PAGERANK) return kNoAnswer;
    const RankBy rank_by = by == REFGROVE_BY_CITATIONS ? RankBy::citations : RankBy::pagerank;
    const auto top = ranked(loaded_data(), rank_by, kAll, YearRange{year_from, year_to});
    return give_list(top, capacity, [&](std::size_t i, const RankedDocument& r) {
      dids[i] = r.did;
      scores[i] = r.score;
    });
  });
}

int refgrove_collaboration_distance_1(int author_a, int author_b) {
  return answer([&] { return collaboration_distance(loaded_data(), author_a, author_b).value_or(kNoAnswer); });
}

int refgrove_collaboration_path_1(int author_a, int author_b, int capacity, int* path) {
  return answer([&] {
    const std::optional<CollaborationPath> p = collaboration_path(loaded_data(), author_a, author_b);
    if (!p) return kNoAnswer;
    return give_list(p->alternating(), capacity, [&](std::size_t i, int item) { path[i] = item; });
  });
}

int refgrove_citation_distance_1(int from, int to, int direction) {
  return answer(
      [&] { return citation_distance(loaded_data(), from, to, require_direction(direction)).value_or(kNoAnswer); });
}

int refgrove_neighbourhood_1(int did, int hops, int direction, int limit, int capacity, int* dids, int* hop_counts) {
  return answer([&] {
    return give_list(neighbourhood_of(did, hops, direction, limit, false).nodes, capacity,
                     [&](std::size_t i, const NeighbourNode& n) {
                       dids[i] = n.did;
                       hop_counts[i] = n.hops;
                     });
  });
}

int refgrove_neighbourhood_edges_1(int did, int hops, int direction, int limit, int capacity, int* citing, int* cited) {
  return answer([&] {
    return give_list(neighbourhood_of(did, hops, direction, limit, true).edges, capacity,
                     [&](std::size_t i, const CitationEdge& e) {
                       citing[i] = e.citing;
                       cited[i] = e.cited;
                     });
  });
}

int refgrove_similar_1(int did, int by, int capacity, int* dids, int* counts) {
  return answer([&] {
    if (by != REFGROVE_BY_COCITATION && by != REFGROVE_BY_COUPLING) return kNoAnswer;
    const SimilarBy similar_by = by == REFGROVE_BY_COCITATION ? SimilarBy::cocitation : SimilarBy::coupling;
    return give_list(similar(loaded_data(), did, similar_by, kAll), capacity,
                     [&](std::size_t i, const SimilarDocument& s) {
                       dids[i] = s.did;
                       counts[i] = s.count;
                     });
  });
}

int refgrove_component_count_1(void) { return static_cast<int>(citation_components(loaded_data()).count()); }
int refgrove_author_component_count_1(void) { return static_cast<int>(coauthor_components(loaded_data()).count()); }

int refgrove_component_1(int did, int* id, int* size) {
  return answer([&] { return give_component(document_component(loaded_data(), did), id, size); });
}

int refgrove_author_component_1(int author_id, int* id, int* size) {
  return answer([&] { return give_component(author_component(loaded_data(), author_id), id, size); });
}
