// The structure of the network in time as predicates: clusters, the main
// path, author impact and timelines. As in network_predicates.cc, the
// foreign predicates take plain, checked arguments and prolog/refgrove.pl
// holds the option lists and their defaults; an unknown DID or author makes
// a call fail.
//
// A clustering's options come as one term,
// cluster_options(Graph, Quality, Resolution, Seed, MinCitations, MinWeight, Iterations),
// so that the predicates naming a clustering read it in one place.
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fronts/author_impact.h"
#include "fronts/clusters.h"
#include "fronts/main_path.h"
#include "swipl/analysis_args.h"
#include "swipl/library_data.h"
#include "swipl/prolog_text.h"

namespace refgrove::swipl {
namespace {

bool get_float_input(term_t t, double* value) {
  if (!PL_is_number(t)) return PL_type_error("number", t);
  return PL_get_float(t, value);
}

// An int64 input within [low, high]; else a domain error naming the range.
bool get_int64_within(term_t t, std::int64_t low, std::int64_t high, std::int64_t* value) {
  if (!get_int64_input(t, value)) return false;
  return (*value >= low && *value <= high) || PL_domain_error(low == 0 ? "nonneg" : "positive_integer", t);
}

bool get_cluster_options(term_t t, ClusterOptions* o) {
  static const functor_t options = PL_new_functor(PL_new_atom("cluster_options"), 7);
  if (!PL_is_functor(t, options)) return PL_type_error("cluster_options", t);
  const term_t arg = PL_new_term_ref();
  std::int64_t seed = 0, min_citations = 0, min_weight = 0, iterations = 0;
  const auto at = [&](int i) {  // t is known to have 7 arguments
    _PL_get_arg(i, t, arg);
    return arg;
  };
  if (!get_choice(at(1), cluster_graph_from_text, &o->graph) ||
      !get_choice(at(2), cluster_quality_from_text, &o->quality) || !get_float_input(at(3), &o->resolution) ||
      !get_int64_within(at(4), 0, INT64_MAX, &seed) || !get_int64_within(at(5), 0, INT32_MAX, &min_citations) ||
      !get_int64_within(at(6), 1, INT32_MAX, &min_weight) || !get_int64_within(at(7), 0, 1000000, &iterations))
    return false;
  if (!(o->resolution >= 0)) return PL_domain_error("nonneg", at(3));
  o->seed = static_cast<std::uint64_t>(seed);
  o->min_citations = static_cast<std::int32_t>(min_citations);
  o->min_weight = static_cast<std::int32_t>(min_weight);
  o->iterations = static_cast<std::int32_t>(iterations);
  return true;
}

// A cluster(Id, Size, Label) term, Label the list of its words.
bool put_cluster(term_t t, std::int32_t id, const Cluster& c) {
  static const functor_t cluster = PL_new_functor(PL_new_atom("cluster"), 3);
  const term_t args = PL_new_term_refs(3);
  const std::vector<std::string_view> words(c.label.begin(), c.label.end());
  return PL_put_int64(args, id) && PL_put_int64(args + 1, c.size) && unify_text_atoms(args + 2, words) &&
         PL_cons_functor_v(t, cluster, args);
}

// '$refgrove_clusters'(+Options, -Clusters, -Modularity)
foreign_t clusters_pred(term_t args, int, control_t) {
  ClusterOptions options;
  if (!get_cluster_options(args, &options)) return false;
  const std::shared_ptr<const Clustering> c = Clustering::of(current_data(), options);
  const term_t list = PL_new_term_ref(), item = PL_new_term_ref();
  PL_put_nil(list);
  for (auto id = static_cast<std::int32_t>(c->clusters().size()) - 1; id >= 0; --id) {
    if (!put_cluster(item, id, c->clusters()[id]) || !PL_cons_list(list, item, list)) return false;
  }
  return PL_unify(args + 1, list) && PL_unify_float(args + 2, c->modularity());
}

// '$refgrove_cluster_members'(+Options, -Pairs): Member-Cluster pairs,
// members ascending.
foreign_t cluster_members_pred(term_t args, int, control_t) {
  ClusterOptions options;
  if (!get_cluster_options(args, &options)) return false;
  const std::shared_ptr<const Clustering> c = Clustering::of(current_data(), options);
  using Pair = std::pair<std::int32_t, std::int32_t>;
  std::vector<Pair> pairs(c->members().size());
  for (std::size_t i = 0; i < pairs.size(); ++i) pairs[i] = {c->members()[i], c->cluster_of_members()[i]};
  return unify_pairs(
      args + 1, pairs, [](const Pair& p) { return std::int64_t{p.first}; },
      [](const Pair& p) { return std::int64_t{p.second}; });
}

// '$refgrove_cluster_of'(+Options, +Member, -Cluster), failing for an id
// that is no member.
foreign_t cluster_of_pred(term_t args, int, control_t) {
  ClusterOptions options;
  int member = 0;
  if (!get_cluster_options(args, &options) || !get_int_input(args + 1, &member)) return false;
  const std::int32_t cluster = Clustering::of(current_data(), options)->cluster_of(member);
  return cluster >= 0 && PL_unify_int64(args + 2, cluster);
}

foreign_t main_path_pred(term_t args, int, control_t) {
  const std::vector<std::int32_t> path = main_path_dids(current_data());
  return unify_int_list(args, path);
}

foreign_t h_index_pred(term_t args, int, control_t) {
  int author = 0;
  if (!get_int_input(args, &author)) return false;
  return answered([&] { return PL_unify_int64(args + 1, author_impact(current_data(), author).h_index); });
}

// '$refgrove_author_ranked'(+By, +Limit, -Pairs)
foreign_t author_ranked_pred(term_t args, int, control_t) {
  AuthorRankBy by{};
  std::int64_t limit = 0;
  if (!get_choice(args, author_rank_by_from_text, &by) || !get_int64_input(args + 1, &limit)) return false;
  return unify_pairs(
      args + 2, ranked_authors(current_data(), by, limit), [](const RankedAuthor& r) { return std::int64_t{r.author}; },
      [](const RankedAuthor& r) { return r.value; });
}

bool unify_timeline(term_t t, const Timeline& timeline) {
  using Year = std::pair<std::int32_t, std::int64_t>;
  return unify_pairs(
      t, timeline, [](const Year& y) { return std::int64_t{y.first}; }, [](const Year& y) { return y.second; });
}

foreign_t citations_by_year_pred(term_t args, int, control_t) {
  int did = 0;
  if (!get_int_input(args, &did)) return false;
  return answered([&] { return unify_timeline(args + 1, document_citations_by_year(current_data(), did)); });
}

foreign_t author_citations_by_year_pred(term_t args, int, control_t) {
  int author = 0;
  if (!get_int_input(args, &author)) return false;
  return answered([&] { return unify_timeline(args + 1, author_citations_by_year(current_data(), author)); });
}

constexpr ForeignPredicate kPredicates[] = {
    {"$refgrove_clusters", 3, guarded<clusters_pred>, false},
    {"$refgrove_cluster_members", 2, guarded<cluster_members_pred>, false},
    {"$refgrove_cluster_of", 3, guarded<cluster_of_pred>, false},
    {"refgrove_main_path", 1, guarded<main_path_pred>, false},
    {"refgrove_h_index", 2, guarded<h_index_pred>, false},
    {"$refgrove_author_ranked", 3, guarded<author_ranked_pred>, false},
    {"$refgrove_citations_by_year", 2, guarded<citations_by_year_pred>, false},
    {"$refgrove_author_citations_by_year", 2, guarded<author_citations_by_year_pred>, false},
};

}  // namespace

std::span<const ForeignPredicate> fronts_predicates() { return kPredicates; }

}  // namespace refgrove::swipl
