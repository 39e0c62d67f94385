// The network's structure in time (fronts/): clusters, the main path, the
// longest citation path, search path count weights, author impact and
// rankings, timelines. Built on first use without the GIL, as the analyses
// are.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

#include "fronts/author_impact.h"
#include "fronts/clusters.h"
#include "fronts/main_path.h"
#include "network/citation_graph.h"
#include "python/arguments.h"
#include "python/bindings.h"
#include "python/errors.h"
#include "python/numpy_arrays.h"

namespace refgrove::python {
namespace {

py::object optional_year(std::int32_t year) { return year == -1 ? py::object(py::none()) : py::int_(year); }

// The SPC weight of each citation, in the order of citation_edges().
py::array search_path_counts(const DataSetHandle& self) {
  std::vector<double> weights = without_gil(self, [](const RefgroveData& d) {
    const CitationGraph& g = CitationGraph::of(d);
    const SearchPathCounts& spc = SearchPathCounts::of(d);
    std::vector<double> w;
    w.reserve(static_cast<std::size_t>(g.edge_count()));
    for (std::int32_t v = 0; v < g.size(); ++v)
      for (const std::int32_t u : g.cited(v)) w.push_back(spc.weight(v, u));
    return w;
  });
  const auto n = static_cast<py::ssize_t>(weights.size());
  return owning<double>(std::move(weights), {n});
}

py::tuple impact(const DataSetHandle& self, py::handle author_arg) {
  const std::int32_t author = id_arg(author_arg, "author id");
  const AuthorImpact a = without_gil(self, [&](const RefgroveData& d) { return author_impact(d, author); });
  return py::make_tuple(a.documents, a.citations, a.h_index, optional_year(a.first_year), optional_year(a.last_year));
}

py::tuple authors_ranked(const DataSetHandle& self, py::handle by_arg, py::handle limit_arg) {
  const AuthorRankBy by = author_rank_by_from_text(text_arg(by_arg, "by"));
  const std::int64_t limit = count_arg(limit_arg, "the limit");
  const std::vector<RankedAuthor> top =
      without_gil(self, [&](const RefgroveData& d) { return ranked_authors(d, by, one_more(limit)); });
  return cut(top, limit, [](const RankedAuthor& r) { return py::make_tuple(r.author, r.value); });
}

Timeline timeline(const DataSetHandle& self, py::handle did_arg, py::handle author_arg) {
  if (did_arg.is_none() == author_arg.is_none()) {
    throw py::type_error("timeline() takes a DID or an author, not both or neither");
  }
  if (!did_arg.is_none()) {
    const std::int32_t did = id_arg(did_arg, "DID");
    return without_gil(self, [&](const RefgroveData& d) { return document_citations_by_year(d, did); });
  }
  const std::int32_t author = id_arg(author_arg, "author id");
  return without_gil(self, [&](const RefgroveData& d) { return author_citations_by_year(d, author); });
}

// The options of a clustering, as the Python part passes them: a tuple
// (graph, quality, resolution, seed, min_citations, min_weight, iterations).
ClusterOptions cluster_options(const py::tuple& t) {
  if (t.size() != 7) throw py::type_error("cluster options: a tuple of 7 items");
  const py::handle graph = t[0], quality = t[1], seed = t[3], min_citations = t[4], min_weight = t[5],
                   iterations = t[6];
  const double resolution = t[2].cast<double>();
  ClusterOptions o;
  o.graph = cluster_graph_from_text(text_arg(graph, "graph"));
  o.quality = cluster_quality_from_text(text_arg(quality, "quality"));
  if (!(resolution >= 0)) throw FaceError(FaceError::Kind::argument, "the resolution must be 0 or more");
  o.resolution = resolution;
  o.seed = static_cast<std::uint64_t>(count_arg(seed, "the seed"));
  const auto int32_count = [](py::handle value, const char* what) {
    return static_cast<std::int32_t>(std::min<std::int64_t>(count_arg(value, what), INT32_MAX));
  };
  o.min_citations = int32_count(min_citations, "min_citations");
  o.min_weight = int32_count(min_weight, "min_weight");
  if (o.min_weight < 1) throw FaceError(FaceError::Kind::argument, "min_weight must be 1 or more");
  o.iterations = int32_count(iterations, "iterations");
  return o;
}

py::tuple describe(const Cluster& c) {
  return py::make_tuple(c.size, c.documents, c.modularity, optional_year(c.first_year), optional_year(c.last_year),
                        c.top, c.label);
}

// (members, membership, clusters, modularity, quality, iterations, stable):
// the members and each one's cluster as arrays, each cluster described.
py::tuple clusters(const DataSetHandle& self, const py::tuple& options_arg) {
  const ClusterOptions options = cluster_options(options_arg);
  const std::shared_ptr<const Clustering> c =
      without_gil(self, [&](const RefgroveData& d) { return Clustering::of(d, options); });
  const auto n = static_cast<py::ssize_t>(c->members().size());
  std::vector<std::int32_t> members(c->members().begin(), c->members().end());
  std::vector<std::int32_t> membership(c->cluster_of_members().begin(), c->cluster_of_members().end());
  py::list described;
  for (const Cluster& cluster : c->clusters()) described.append(describe(cluster));
  return py::make_tuple(owning<std::int32_t>(std::move(members), {n}), owning<std::int32_t>(std::move(membership), {n}),
                        described, c->modularity(), c->quality(), c->iterations(), c->stable());
}

Timeline cluster_timeline(const DataSetHandle& self, const py::tuple& options_arg, py::handle cluster_arg,
                          bool documents) {
  const ClusterOptions options = cluster_options(options_arg);
  const std::int64_t cluster = count_arg(cluster_arg, "cluster id");
  return without_gil(self, [&](const RefgroveData& d) {
    const std::shared_ptr<const Clustering> c = Clustering::of(d, options);
    c->require_cluster(cluster);
    const auto id = static_cast<std::int32_t>(cluster);
    return documents ? cluster_documents_by_year(d, *c, id) : cluster_citations_by_year(d, *c, id);
  });
}

// The h-index of every author, by author id.
py::array h_indexes(const DataSetHandle& self) {
  std::vector<std::int32_t> h = without_gil(self, [](const RefgroveData& d) {
    std::vector<std::int32_t> out;
    for (const AuthorImpact& a : author_impacts(d)) out.push_back(a.h_index);
    return out;
  });
  const auto n = static_cast<py::ssize_t>(h.size());
  return owning<std::int32_t>(std::move(h), {n});
}

}  // namespace

void bind_fronts(py::class_<DataSetHandle>& c) {
  c.def(
       "main_path",
       [](const DataSetHandle& self) {
         return without_gil(self, [](const RefgroveData& d) { return main_path_dids(d); });
       },
       "The global main path of the citation graph, as DIDs from a document no one cites to one\n"
       "citing nothing, each citing the next: the path with the largest sum of search path count\n"
       "weights. Documents citing each other in a cycle are taken together, in ascending DID order.")
      .def(
          "longest_path",
          [](const DataSetHandle& self, py::handle a, py::handle b) -> py::object {
            const std::int32_t from = id_arg(a, "DID"), to = id_arg(b, "DID");
            std::vector<std::int32_t> path =
                without_gil(self, [&](const RefgroveData& d) { return longest_path_dids(d, from, to); });
            if (path.empty()) return py::none();
            return py::cast(std::move(path));
          },
          py::arg("a"), py::arg("b"),
          "The path with the most citations from document `a` to document `b`, following them, as\n"
          "DIDs (a cycle's documents together, as for main_path), or None when there is none. Raises\n"
          "ArgumentError for a DID without a graph record.")
      .def("search_path_counts", &search_path_counts,
           "The search path count weight of each citation, aligned with citation_edges() (float64): the\n"
           "number of paths from a document no one cites to one citing nothing that pass through it,\n"
           "cycles condensed first (a citation within one weighs 0). Approximate where counts exceed\n"
           "2**53.")
      .def("_author_impact", &impact, py::arg("author"),
           "(documents, citations, h_index, first_year, last_year) of an author.")
      .def("_ranked_authors", &authors_ranked, py::arg("by"), py::arg("limit"),
           "Authors (id, value) best first, and whether the limit cut them.")
      .def("_clusters", &clusters, py::arg("options"),
           "(members, membership, clusters, modularity, quality, iterations, stable) of a clustering.")
      .def("_cluster_timeline", &cluster_timeline, py::arg("options"), py::arg("cluster"), py::arg("documents"),
           "(year, count) pairs of a cluster: citations received, or its documents.")
      .def("h_index", &h_indexes,
           "The h-index of every author, indexed by author id (int32): the largest h such that h of\n"
           "their documents have at least h citations each within the set.")
      .def("citations_by_year", &timeline, py::arg("did") = py::none(), py::kw_only(), py::arg("author") = py::none(),
           "The citations that document `did`, or (author=ID) the documents of an author, received per\n"
           "year of the citing document: (year, count) pairs by ascending year, citing documents\n"
           "without a year left out. Raises ArgumentError for a DID without a graph record or an\n"
           "unknown author.");
}

}  // namespace refgrove::python
