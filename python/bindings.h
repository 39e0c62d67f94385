// The parts of the compiled module refgrove._refgrove, each bound by its own
// file and put together by module.cc.
#ifndef REFGROVE_PYTHON_BINDINGS_H_
#define REFGROVE_PYTHON_BINDINGS_H_

#include <pybind11/pybind11.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "python/data_set_handle.h"

namespace refgrove::python {

namespace py = pybind11;

// Runs `work` on the set `d`, or that of `self`, with the GIL released, and
// returns what it returns (no Python object: those are made once the GIL
// is back).
template <class Work>
auto without_gil(const RefgroveData& d, Work work) {
  const py::gil_scoped_release release;
  return work(d);
}
template <class Work>
auto without_gil(const DataSetHandle& self, Work work) {
  const DataSetPtr d = self.get();
  return without_gil(*d, work);
}

// A list cut by a limit asked for one item more: the first `limit` items as
// Python objects, and whether there were more.
template <class Item, class ToPython>
py::tuple cut(const std::vector<Item>& items, std::int64_t limit, ToPython to_python) {
  const auto n = static_cast<std::size_t>(std::min<std::int64_t>(limit, static_cast<std::int64_t>(items.size())));
  py::list list(n);
  for (std::size_t i = 0; i < n; ++i) list[i] = to_python(items[i]);
  return py::make_tuple(list, items.size() > n);
}

// Loading, documents, the search and the analyses (data_set_binding.cc).
void bind_data_set(py::class_<DataSetHandle>& c);
// The per-document arrays and the graphs as arrays (array_binding.cc).
void bind_arrays(py::class_<DataSetHandle>& c);
// Main paths, author impact and timelines (fronts_binding.cc).
void bind_fronts(py::class_<DataSetHandle>& c);
// The whole set as Python objects for pandas, networkx and igraph
// (table_binding.cc).
void bind_tables(py::class_<DataSetHandle>& c);
// preprocess (preprocess_binding.cc).
void bind_preprocess(py::module_& m);
// import_works (import_binding.cc).
void bind_import(py::module_& m);

}  // namespace refgrove::python

#endif  // REFGROVE_PYTHON_BINDINGS_H_
