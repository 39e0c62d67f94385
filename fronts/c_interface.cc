// The C operations of refgrove/fronts.h: the analyses of fronts/ applied to
// the one global data set, with bad arguments answered by kNoAnswer
// instead of an exception.
#include "refgrove/fronts.h"

#include <climits>
#include <cstdint>
#include <memory>
#include <vector>

#include "core/c_results.h"
#include "core/data_set.h"
#include "fronts/author_impact.h"
#include "fronts/clusters.h"
#include "fronts/main_path.h"
#include "network/c_answer.h"

using namespace refgrove;

namespace {

// The numbers of the C enums in the order of the C++ ones.
constexpr ClusterGraphKind kGraphs[] = {ClusterGraphKind::citation, ClusterGraphKind::cocitation,
                                        ClusterGraphKind::coupling, ClusterGraphKind::coauthor};
constexpr ClusterQuality kQualities[] = {ClusterQuality::modularity, ClusterQuality::cpm};
constexpr AuthorRankBy kAuthorRankings[] = {AuthorRankBy::h_index, AuthorRankBy::citations, AuthorRankBy::documents};

static_assert(kGraphs[REFGROVE_GRAPH_COAUTHOR] == ClusterGraphKind::coauthor &&
              static_cast<int>(ClusterGraphKind::coauthor) == REFGROVE_GRAPH_COAUTHOR &&
              static_cast<int>(ClusterQuality::cpm) == REFGROVE_QUALITY_CPM);

template <class T, std::size_t N>
T require_choice(const T (&choices)[N], int value, const char* what) {
  if (value < 0 || static_cast<std::size_t>(value) >= N) throw NetworkArgumentError(what);
  return choices[value];
}

ClusterOptions cluster_options(const refgrove_cluster_options* given) {
  ClusterOptions o;
  if (given == nullptr) return o;
  o.graph = require_choice(kGraphs, given->graph, "unknown graph");
  o.quality = require_choice(kQualities, given->quality, "unknown quality");
  if (!(given->resolution >= 0) || given->seed < 0 || given->min_citations < 0 || given->min_weight < 1 ||
      given->iterations < 0)
    throw NetworkArgumentError("cluster option out of range");
  o.resolution = given->resolution;
  o.seed = static_cast<std::uint64_t>(given->seed);
  o.min_citations = given->min_citations;
  o.min_weight = given->min_weight;
  o.iterations = given->iterations;
  return o;
}

std::shared_ptr<const Clustering> clustering(const refgrove_cluster_options* options) {
  return Clustering::of(loaded_data(), cluster_options(options));
}

int give_timeline(const Timeline& timeline, int capacity, int* years, long long* counts) {
  return give_list(timeline, capacity, [&](std::size_t i, const auto& year) {
    years[i] = year.first;
    counts[i] = year.second;
  });
}

}  // namespace

void refgrove_cluster_defaults_1(refgrove_cluster_options* options) {
  const ClusterOptions o;
  *options = {static_cast<int>(o.graph),
              static_cast<int>(o.quality),
              o.resolution,
              static_cast<long long>(o.seed),
              o.min_citations,
              o.min_weight,
              o.iterations};
}

int refgrove_clusters_1(const refgrove_cluster_options* options, int capacity, int* members, int* clusters) {
  return answer([&] {
    const std::shared_ptr<const Clustering> c = clustering(options);
    return give_list(c->members(), capacity, [&](std::size_t i, std::int32_t member) {
      members[i] = member;
      clusters[i] = c->cluster_of_members()[i];
    });
  });
}

int refgrove_cluster_sizes_1(const refgrove_cluster_options* options, int capacity, int* sizes) {
  return answer([&] {
    const std::shared_ptr<const Clustering> c = clustering(options);
    return give_list(c->clusters(), capacity, [&](std::size_t i, const Cluster& cluster) { sizes[i] = cluster.size; });
  });
}

int refgrove_main_path_1(int capacity, int* dids) {
  return give_list(main_path_dids(loaded_data()), capacity, [&](std::size_t i, std::int32_t did) { dids[i] = did; });
}

int refgrove_h_index_1(int author_id) {
  return answer([&] { return author_impact(loaded_data(), author_id).h_index; });
}

int refgrove_author_ranked_1(int by, int capacity, int* author_ids, long long* values) {
  return answer([&] {
    const AuthorRankBy ranking = require_choice(kAuthorRankings, by, "unknown ranking");
    return give_list(ranked_authors(loaded_data(), ranking, INT64_MAX), capacity,
                     [&](std::size_t i, const RankedAuthor& a) {
                       author_ids[i] = a.author;
                       values[i] = a.value;
                     });
  });
}

int refgrove_citations_by_year_1(int did, int capacity, int* years, long long* counts) {
  return answer([&] { return give_timeline(document_citations_by_year(loaded_data(), did), capacity, years, counts); });
}

int refgrove_author_citations_by_year_1(int author_id, int capacity, int* years, long long* counts) {
  return answer(
      [&] { return give_timeline(author_citations_by_year(loaded_data(), author_id), capacity, years, counts); });
}
