// The data set as numpy arrays: per document (aligned with `dids`, the
// citation graph's nodes), the graphs' edges and components. What the set
// keeps is handed out as a read-only view of it; what is computed for the
// call is handed over without a copy.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <string>
#include <vector>

#include "network/citation_graph.h"
#include "network/components.h"
#include "network/edge_lists.h"
#include "network/ranking.h"
#include "python/arguments.h"
#include "python/bindings.h"
#include "python/errors.h"
#include "python/numpy_arrays.h"

namespace refgrove::python {
namespace {

// The set of `self` and its citation graph, built without the GIL on first
// use.
struct GraphOfSet {
  DataSetPtr d;
  const CitationGraph* g;
};

GraphOfSet graph_of(const DataSetHandle& self) {
  DataSetPtr d = self.get();
  const CitationGraph* g = without_gil(*d, [](const RefgroveData& set) { return &CitationGraph::of(set); });
  return {std::move(d), g};
}

py::array node_view(const GraphOfSet& s, std::span<const std::int32_t> items) {
  return view_of(s.d, items.data(), {static_cast<py::ssize_t>(items.size())});
}

py::array pagerank(const DataSetHandle& self, double damping) {
  const GraphOfSet s = graph_of(self);
  if (damping == kPageRankDamping) {
    const std::vector<double>* scores = without_gil(*s.d, [](const RefgroveData& d) { return &pagerank_scores(d); });
    return view_of(s.d, scores->data(), {static_cast<py::ssize_t>(scores->size())});
  }
  std::vector<double> scores =
      without_gil(*s.d, [&](const RefgroveData&) { return compute_pagerank(*s.g, damping).scores; });
  const auto n = static_cast<py::ssize_t>(scores.size());
  return owning<double>(std::move(scores), {n});
}

py::array citation_counts(const DataSetHandle& self) {
  const GraphOfSet s = graph_of(self);
  std::vector<std::int32_t> counts(static_cast<std::size_t>(s.g->size()));
  for (std::int32_t v = 0; v < s.g->size(); ++v) counts[static_cast<std::size_t>(v)] = s.g->citation_count(v);
  const auto n = static_cast<py::ssize_t>(counts.size());
  return owning<std::int32_t>(std::move(counts), {n});
}

py::array citation_edge_view(const DataSetHandle& self) {
  const DataSetPtr d = self.get();
  const std::vector<CitationEdge>* edges =
      without_gil(*d, [](const RefgroveData& set) { return &citation_edges(set); });
  static_assert(sizeof(CitationEdge) == 2 * sizeof(std::int32_t), "an edge is two int32 side by side");
  return view_of(d, reinterpret_cast<const std::int32_t*>(edges->data()), {static_cast<py::ssize_t>(edges->size()), 2});
}

py::array coauthor_edges(const DataSetHandle& self) {
  std::vector<CoauthorLink> links = without_gil(self, [](const RefgroveData& d) { return coauthor_links(d); });
  static_assert(sizeof(CoauthorLink) == 2 * sizeof(std::int32_t), "a link is two int32 side by side");
  const auto n = static_cast<py::ssize_t>(links.size());
  return owning<std::int32_t>(std::move(links), {n, 2});
}

py::array components(const DataSetHandle& self, py::handle graph_arg) {
  const std::string graph = text_arg(graph_arg, "the graph");
  if (graph != "citation" && graph != "coauthor") {
    throw FaceError(FaceError::Kind::argument, "unknown graph \"" + graph + "\" (citation or coauthor)");
  }
  const DataSetPtr d = self.get();
  const Components* c = without_gil(*d, [&](const RefgroveData& set) {
    return graph == "citation" ? &citation_components(set) : &coauthor_components(set);
  });
  return view_of(d, c->component_of.data(), {static_cast<py::ssize_t>(c->component_of.size())});
}

// The adjacency lists of cited nodes: offsets (N + 1, int64) and items
// (int32), a CSR matrix's indptr and indices.
py::tuple cited_lists(const DataSetHandle& self) {
  const GraphOfSet s = graph_of(self);
  const Adjacency& lists = s.g->cited_lists();
  return py::make_tuple(view_of(s.d, lists.offsets.data(), {static_cast<py::ssize_t>(lists.offsets.size())}),
                        view_of(s.d, lists.items.data(), {static_cast<py::ssize_t>(lists.items.size())}));
}

}  // namespace

void bind_arrays(py::class_<DataSetHandle>& c) {
  c.def_property_readonly(
       "dids",
       [](const DataSetHandle& self) {
         const GraphOfSet s = graph_of(self);
         return node_view(s, s.g->dids());
       },
       "The DIDs of the documents with a graph record, ascending (int32, read-only). The\n"
       "per-document arrays are aligned with it.")
      .def(
          "years",
          [](const DataSetHandle& self) {
            const GraphOfSet s = graph_of(self);
            return node_view(s, s.g->years());
          },
          "The record year of each document of `dids` (int32, read-only; -1 when unknown).")
      .def("citation_counts", &citation_counts,
           "The citation count of each document of `dids`: the number of documents of the set citing\n"
           "it (int32).")
      .def("pagerank", &pagerank, py::arg("damping") = kPageRankDamping,
           "The PageRank score of each document of `dids` (float64, summing to 1): uniform teleport,\n"
           "the rank of documents citing nothing spread over all, each score within 1e-9 of the exact\n"
           "one. The scores at the default damping are kept with the set (a read-only view); another\n"
           "damping, from 0 to 0.99, is computed by the call. Raises ArgumentError for any other.")
      .def("citation_edges", &citation_edge_view,
           "Every citation between documents of the set, once, as an E x 2 int32 array of (citing,\n"
           "cited) DIDs by citing, then cited DID: a read-only view of the list the set keeps once\n"
           "it is first asked for.")
      .def("coauthor_edges", &coauthor_edges,
           "Every pair of authors who share a graph record, once, as an L x 2 int32 array of author ids\n"
           "(first < second), ascending. Made by the call.")
      .def("components", &components, py::arg("graph") = "citation",
           "The component of each node, numbered from 0 by size descending, then by smallest member:\n"
           "of the citation graph (weakly connected; aligned with `dids`) or of the co-author graph\n"
           "(\"coauthor\"; by author id). A read-only view of what the set keeps.")
      .def("_cited_lists", &cited_lists, "(offsets, items): the citation graph's lists of cited nodes.");
}

}  // namespace refgrove::python
