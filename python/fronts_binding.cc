// The network's structure in time (fronts/): the main path, the longest
// citation path, search path count weights, author impact and rankings,
// timelines. Built on first use without the GIL, as the analyses are.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <vector>

#include "fronts/author_impact.h"
#include "fronts/main_path.h"
#include "network/citation_graph.h"
#include "python/arguments.h"
#include "python/bindings.h"
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
      .def("timeline", &timeline, py::arg("did") = py::none(), py::kw_only(), py::arg("author") = py::none(),
           "The citations that document `did`, or (author=ID) the documents of an author, received per\n"
           "year of the citing document: (year, count) pairs by ascending year, citing documents\n"
           "without a year left out. Raises ArgumentError for a DID without a graph record or an\n"
           "unknown author.");
}

}  // namespace refgrove::python
