// The network's structure in time (fronts/): the main path, the authors'
// impact and the citations per year, as the tool's `main-path`, `authors`
// and `timeline` give them.
#include <pybind11/pybind11.h>

#include <optional>
#include <string>
#include <vector>

#include "fronts/author_impact.h"
#include "fronts/main_path.h"
#include "python/arguments.h"
#include "python/bindings.h"
#include "python/errors.h"
#include "python/numpy_arrays.h"

namespace refgrove::python {
namespace {

py::array main_path(const DataSetHandle& self) {
  const DataSetPtr d = self.get();
  std::vector<std::int32_t> dids;
  {
    const py::gil_scoped_release release;
    dids = main_path_dids(*d);
  }
  const auto n = static_cast<py::ssize_t>(dids.size());
  return owning<std::int32_t>(std::move(dids), {n});
}

// The h-indexes as a view of the impacts the set keeps: one field of each.
py::array h_index(const DataSetHandle& self) {
  const DataSetPtr d = self.get();
  const std::vector<AuthorImpact>* all = nullptr;
  {
    const py::gil_scoped_release release;
    all = &author_impacts(*d);
  }
  const std::int32_t* first = all->empty() ? nullptr : &all->front().h_index;
  return view_of(d, first, {static_cast<py::ssize_t>(all->size())}, {sizeof(AuthorImpact)});
}

py::tuple authors_ranked(const DataSetHandle& self, py::handle by_arg, py::handle limit_arg) {
  const AuthorRankBy by = author_rank_by_from_text(text_arg(by_arg, "by"));
  const std::int64_t limit = count_arg(limit_arg, "the limit");
  const DataSetPtr d = self.get();
  std::vector<RankedAuthor> ranked;
  {
    const py::gil_scoped_release release;
    ranked = ranked_authors(*d, by, one_more(limit));
  }
  const auto n = static_cast<std::size_t>(std::min<std::int64_t>(limit, static_cast<std::int64_t>(ranked.size())));
  py::list list(n);
  for (std::size_t i = 0; i < n; ++i) list[i] = py::make_tuple(ranked[i].author, ranked[i].value);
  return py::make_tuple(list, ranked.size() > n);
}

py::list citations_by_year(const DataSetHandle& self, py::handle did_arg, py::handle author_arg) {
  if (did_arg.is_none() == author_arg.is_none()) {
    throw FaceError(FaceError::Kind::argument, "citations_by_year takes a did or an author, one of the two");
  }
  const std::optional<std::int32_t> did =
      did_arg.is_none() ? std::nullopt : std::optional<std::int32_t>(id_arg(did_arg, "DID"));
  const std::int32_t author = did ? 0 : id_arg(author_arg, "author id");
  const DataSetPtr d = self.get();
  Timeline timeline;
  {
    const py::gil_scoped_release release;
    timeline = did ? document_citations_by_year(*d, *did) : author_citations_by_year(*d, author);
  }
  py::list years(timeline.size());
  for (std::size_t i = 0; i < timeline.size(); ++i) years[i] = py::make_tuple(timeline[i].first, timeline[i].second);
  return years;
}

}  // namespace

void bind_fronts(py::class_<DataSetHandle>& c) {
  c.def("main_path", &main_path,
        "The global main path of the citation graph as DIDs (int32), from a document no one cites to\n"
        "one citing nothing, each citing the next: the path with the largest sum of search path count\n"
        "weights. Documents citing each other in a cycle are taken together, in ascending DID order,\n"
        "wherever the path passes through them. As refgrove main-path.")
      .def("h_index", &h_index,
           "The h-index of every author, aligned with the author ids (int32, read-only; h[id] is author\n"
           "id's): the largest h such that h of the graph records listing the author have at least h\n"
           "citations each within the set. pandas.Series(ds.h_index()) is indexed by author id.")
      .def("_authors_ranked", &authors_ranked, py::arg("by"), py::arg("limit"),
           "Authors (id, value) best first, and whether the limit cut them.")
      .def("citations_by_year", &citations_by_year, py::arg("did") = py::none(), py::arg("author") = py::none(),
           "The citations that document `did`, or author `author` (an author id), received per year\n"
           "of the citing document, as (year, count) pairs by ascending year; citing documents without\n"
           "a year are left out. Give one of the two. As refgrove timeline. Raises ArgumentError for a\n"
           "DID without a graph record or an id outside the author table.");
}

}  // namespace refgrove::python
