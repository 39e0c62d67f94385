// The parts of the compiled module refgrove._refgrove, each bound by its own
// file and put together by module.cc.
#ifndef REFGROVE_PYTHON_BINDINGS_H_
#define REFGROVE_PYTHON_BINDINGS_H_

#include <pybind11/pybind11.h>

#include "python/data_set_handle.h"

namespace refgrove::python {

namespace py = pybind11;

// Loading, documents, the search and the analyses (data_set_binding.cc).
void bind_data_set(py::class_<DataSetHandle>& c);
// The per-document arrays and the graphs as arrays (array_binding.cc).
void bind_arrays(py::class_<DataSetHandle>& c);
// The whole set as Python objects for pandas, networkx and igraph
// (table_binding.cc).
void bind_tables(py::class_<DataSetHandle>& c);
// The main path, the authors' impact and the citations per year
// (fronts_binding.cc).
void bind_fronts(py::class_<DataSetHandle>& c);
// preprocess (preprocess_binding.cc).
void bind_preprocess(py::module_& m);
// import_works (import_binding.cc).
void bind_import(py::module_& m);

}  // namespace refgrove::python

#endif  // REFGROVE_PYTHON_BINDINGS_H_
