// The analyses of the citation network as predicates. These foreign
// predicates take plain, checked arguments; the option lists, defaults and
// the enumeration of a ranking are in prolog/refgrove.pl. A DID without a
// graph record, an unknown author or an unconnected pair makes a call fail,
// as absent documents do elsewhere in the library.
#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "network/components.h"
#include "network/distance.h"
#include "network/neighbourhood.h"
#include "network/ranking.h"
#include "network/similarity.h"
#include "swipl/analysis_args.h"
#include "swipl/library_data.h"
#include "swipl/prolog_text.h"

namespace refgrove::swipl {
namespace {

foreign_t citation_count_pred(term_t args, int, control_t) {
  int did = 0;
  if (!get_int_input(args, &did)) return false;
  return answered([&] { return PL_unify_int64(args + 1, citation_count(current_data(), did)); });
}

foreign_t pagerank_pred(term_t args, int, control_t) {
  int did = 0;
  if (!get_int_input(args, &did)) return false;
  return answered([&] { return PL_unify_float(args + 1, pagerank(current_data(), did)); });
}

// '$refgrove_ranked'(+By, +Limit, +From, +To, -Pairs); From and To are
// checked by the caller.
foreign_t ranked_pred(term_t args, int, control_t) {
  RankBy by{};
  std::int64_t limit = 0, from = 0, to = 0;
  if (!get_choice(args, rank_by_from_text, &by) || !get_int64_input(args + 1, &limit) ||
      !get_int64_input(args + 2, &from) || !get_int64_input(args + 3, &to))
    return false;
  const auto clamp = [](std::int64_t year) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(year, INT32_MIN, INT32_MAX));
  };
  const auto top = ranked(current_data(), by, limit, YearRange{clamp(from), clamp(to)});
  const auto did = [](const RankedDocument& r) { return std::int64_t{r.did}; };
  if (by == RankBy::citations)  // counts as integers
    return unify_pairs(args + 4, top, did, [](const RankedDocument& r) { return static_cast<std::int64_t>(r.score); });
  return unify_pairs(args + 4, top, did, [](const RankedDocument& r) { return r.score; });
}

foreign_t collaboration_distance_pred(term_t args, int, control_t) {
  int a = 0, b = 0;
  if (!get_int_input(args, &a) || !get_int_input(args + 1, &b)) return false;
  return answered([&] {
    const std::optional<std::int32_t> d = collaboration_distance(current_data(), a, b);
    return d && PL_unify_int64(args + 2, *d);
  });
}

foreign_t collaboration_path_pred(term_t args, int, control_t) {
  int a = 0, b = 0;
  if (!get_int_input(args, &a) || !get_int_input(args + 1, &b)) return false;
  return answered([&] {
    const std::optional<CollaborationPath> path = collaboration_path(current_data(), a, b);
    return path && unify_int_list(args + 2, path->alternating());
  });
}

// '$refgrove_citation_distance'(+From, +To, +Direction, -D)
foreign_t citation_distance_pred(term_t args, int, control_t) {
  int from = 0, to = 0;
  Direction dir{};
  if (!get_int_input(args, &from) || !get_int_input(args + 1, &to) || !get_choice(args + 2, direction_from_text, &dir))
    return false;
  return answered([&] {
    const std::optional<std::int32_t> d = citation_distance(current_data(), from, to, dir);
    return d && PL_unify_int64(args + 3, *d);
  });
}

// '$refgrove_neighbourhood'(+Did, +Hops, +Direction, +Limit, -Nodes, -Edges)
foreign_t neighbourhood_pred(term_t args, int, control_t) {
  int did = 0;
  NeighbourhoodOptions options;
  if (!get_int_input(args, &did) || !get_int64_input(args + 1, &options.hops) ||
      !get_choice(args + 2, direction_from_text, &options.direction) || !get_int64_input(args + 3, &options.limit))
    return false;
  return answered([&] {
    const Neighbourhood n = neighbourhood(current_data(), did, options);
    return unify_pairs(
               args + 4, n.nodes, [](const NeighbourNode& v) { return std::int64_t{v.did}; },
               [](const NeighbourNode& v) { return std::int64_t{v.hops}; }) &&
           unify_pairs(
               args + 5, n.edges, [](const CitationEdge& e) { return std::int64_t{e.citing}; },
               [](const CitationEdge& e) { return std::int64_t{e.cited}; });
  });
}

// '$refgrove_similar'(+Did, +By, +Measure, +Limit, -Pairs): counts as
// integers, the normalised measures as floats.
foreign_t similar_pred(term_t args, int, control_t) {
  int did = 0;
  SimilarBy by{};
  SimilarMeasure measure{};
  std::int64_t limit = 0;
  if (!get_int_input(args, &did) || !get_choice(args + 1, similar_by_from_text, &by) ||
      !get_choice(args + 2, similar_measure_from_text, &measure) || !get_int64_input(args + 3, &limit))
    return false;
  return answered([&] {
    const auto found = similar(current_data(), did, by, limit, measure);
    const auto did_of = [](const SimilarDocument& s) { return std::int64_t{s.did}; };
    if (measure == SimilarMeasure::count)
      return unify_pairs(args + 4, found, did_of, [](const SimilarDocument& s) { return std::int64_t{s.count}; });
    return unify_pairs(args + 4, found, did_of, [](const SimilarDocument& s) { return s.score; });
  });
}

foreign_t component_pred(term_t args, int, control_t) {
  int did = 0;
  if (!get_int_input(args, &did)) return false;
  return answered([&] {
    const ComponentOf c = document_component(current_data(), did);
    return PL_unify_int64(args + 1, c.id) && PL_unify_int64(args + 2, c.size);
  });
}

constexpr ForeignPredicate kPredicates[] = {
    {"refgrove_citation_count", 2, guarded<citation_count_pred>, false},
    {"refgrove_pagerank", 2, guarded<pagerank_pred>, false},
    {"$refgrove_ranked", 5, guarded<ranked_pred>, false},
    {"refgrove_collaboration_distance", 3, guarded<collaboration_distance_pred>, false},
    {"refgrove_collaboration_path", 3, guarded<collaboration_path_pred>, false},
    {"$refgrove_citation_distance", 4, guarded<citation_distance_pred>, false},
    {"$refgrove_neighbourhood", 6, guarded<neighbourhood_pred>, false},
    {"$refgrove_similar", 5, guarded<similar_pred>, false},
    {"refgrove_component", 3, guarded<component_pred>, false},
};

}  // namespace

std::span<const ForeignPredicate> network_predicates() { return kPredicates; }

}  // namespace refgrove::swipl
