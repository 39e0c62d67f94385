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
#include "swipl/library_data.h"
#include "swipl/prolog_text.h"

namespace refgrove::swipl {
namespace {

// Runs an analysis whose unknown DID or author makes the call fail.
template <class F>
bool answered(F f) {
  try {
    return f();
  } catch (const NetworkArgumentError&) {
    return false;
  }
}

bool get_int64_input(term_t t, std::int64_t* value) {
  if (!PL_is_integer(t)) return PL_type_error("integer", t);
  return PL_get_int64(t, value) || PL_representation_error("int64");
}

// An atom out of the names `text_of` gives for the values of T.
template <class T>
bool get_choice(term_t t, T (*from_text)(const std::string&), T* value) {
  char* text = nullptr;
  if (!PL_get_atom_chars(t, &text)) return PL_type_error("atom", t);
  try {
    *value = from_text(text);
    return true;
  } catch (const NetworkArgumentError&) {
    return PL_domain_error("refgrove_option", t);
  }
}

bool put_number(term_t t, double value) { return PL_put_float(t, value); }
bool put_number(term_t t, std::int64_t value) { return PL_put_int64(t, value); }

// Unifies `list` with [A1-B1, ...].
template <class Item, class Left, class Right>
bool unify_pairs(term_t list, const std::vector<Item>& items, Left left, Right right) {
  static const functor_t minus = PL_new_functor(PL_new_atom("-"), 2);
  const term_t result = PL_new_term_ref(), pair = PL_new_term_ref(), a = PL_new_term_ref(), b = PL_new_term_ref();
  PL_put_nil(result);
  for (auto it = items.rbegin(); it != items.rend(); ++it) {
    if (!put_number(a, left(*it)) || !put_number(b, right(*it)) || !PL_cons_functor(pair, minus, a, b) ||
        !PL_cons_list(result, pair, result))
      return false;
  }
  return PL_unify(list, result);
}

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
  if (!get_int_input(args, &from) || !get_int_input(args + 1, &to) ||
      !get_choice(args + 2, direction_from_text, &dir))
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

// '$refgrove_similar'(+Did, +By, +Limit, -Pairs)
foreign_t similar_pred(term_t args, int, control_t) {
  int did = 0;
  SimilarBy by{};
  std::int64_t limit = 0;
  if (!get_int_input(args, &did) || !get_choice(args + 1, similar_by_from_text, &by) ||
      !get_int64_input(args + 2, &limit))
    return false;
  return answered([&] {
    return unify_pairs(
        args + 3, similar(current_data(), did, by, limit),
        [](const SimilarDocument& s) { return std::int64_t{s.did}; },
        [](const SimilarDocument& s) { return std::int64_t{s.count}; });
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
    {"$refgrove_similar", 4, guarded<similar_pred>, false},
    {"refgrove_component", 3, guarded<component_pred>, false},
};

}  // namespace

std::span<const ForeignPredicate> network_predicates() { return kPredicates; }

}  // namespace refgrove::swipl
