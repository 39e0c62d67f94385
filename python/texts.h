// Texts handed to Python. refgrove's texts are valid UTF-8 once decoded
// (core/utf8_text.h); should one not be, its bad bytes become U+FFFD rather
// than an exception.
#ifndef REFGROVE_PYTHON_TEXTS_H_
#define REFGROVE_PYTHON_TEXTS_H_

#include <pybind11/pybind11.h>

#include <string_view>

namespace refgrove::python {

namespace py = pybind11;

inline py::str utf8(std::string_view text) {
  PyObject* str = PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "replace");
  if (str == nullptr) throw py::error_already_set();  // out of memory
  return py::reinterpret_steal<py::str>(str);
}

}  // namespace refgrove::python

#endif  // REFGROVE_PYTHON_TEXTS_H_
