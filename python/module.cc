// refgrove._refgrove, the compiled part of the Python package `refgrove`.
#include <pybind11/pybind11.h>

#include "core/json_fields.h"
#include "python/bindings.h"
#include "python/errors.h"

PYBIND11_MODULE(_refgrove, m) {
  namespace py = pybind11;
  using namespace refgrove::python;
  m.doc() = "The compiled part of refgrove: data sets, their queries and preprocessing.";
  m.attr("__version__") = REFGROVE_VERSION;
  py::tuple field_names(std::size(refgrove::kJsonFieldNames));
  for (std::size_t i = 0; i < std::size(refgrove::kJsonFieldNames); ++i)
    field_names[i] = py::str(refgrove::kJsonFieldNames[i].data(), refgrove::kJsonFieldNames[i].size());
  m.attr("_field_names") = field_names;  // the names every face gives its fields
  register_error_translation();
  py::class_<DataSetHandle> data_set(m, "_DataSet", "A loaded data directory.");
  bind_data_set(data_set);
  bind_arrays(data_set);
  bind_fronts(data_set);
  bind_tables(data_set);
  bind_preprocess(m);
  bind_import(m);
}
