#include "python/arguments.h"

#include <climits>
#include <string>

#include "python/errors.h"

namespace refgrove::python {
namespace {

std::string type_name(py::handle value) { return py::str(py::type::handle_of(value).attr("__name__")); }

std::string text_of(const py::int_& value) { return py::str(static_cast<py::handle>(value)); }

// The integer `value` stands for (PyNumber_Index: int, numpy integers,
// bool), or a TypeError naming `what`.
py::int_ integer(py::handle value, const char* what) {
  PyObject* index = PyNumber_Index(value.ptr());
  if (index == nullptr) {
    PyErr_Clear();
    throw py::type_error(std::string(what) + " must be an integer, not " + type_name(value));
  }
  return py::reinterpret_steal<py::int_>(index);
}

// The integer as int64, or none beyond its range.
std::optional<std::int64_t> as_int64(const py::int_& value) {
  int overflow = 0;
  const long long v = PyLong_AsLongLongAndOverflow(value.ptr(), &overflow);
  if (overflow != 0) return std::nullopt;
  return v;
}

std::int32_t clamped_int32(py::handle value, const char* what) {
  const py::int_ i = integer(value, what);
  const std::optional<std::int64_t> v = as_int64(i);
  if (!v) return py::int_(0) < i ? INT32_MAX : INT32_MIN;
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(*v, INT32_MIN, INT32_MAX));
}

}  // namespace

std::int32_t id_arg(py::handle value, const char* what) {
  const py::int_ i = integer(value, what);
  const std::optional<std::int64_t> v = as_int64(i);
  if (!v || *v < INT32_MIN || *v > INT32_MAX) {
    throw FaceError(FaceError::Kind::argument,
                    std::string(what) + " " + text_of(i) + " is beyond the int32 range, -2147483648 to 2147483647");
  }
  return static_cast<std::int32_t>(*v);
}

std::int64_t count_arg(py::handle value, const char* what) {
  if (value.is_none()) return INT64_MAX;
  const py::int_ i = integer(value, what);
  const std::optional<std::int64_t> v = as_int64(i);
  if (v && *v >= 0) return *v;
  if (!v && py::int_(0) < i) return INT64_MAX;
  throw FaceError(FaceError::Kind::argument, std::string(what) + " must not be negative, not " + text_of(i));
}

std::string text_arg(py::handle value, const char* what) {
  if (PyBytes_Check(value.ptr())) return std::string(py::bytes(py::reinterpret_borrow<py::bytes>(value)));
  if (!PyUnicode_Check(value.ptr())) {
    throw py::type_error(std::string(what) + " must be a str or bytes, not " + type_name(value));
  }
  Py_ssize_t size = 0;
  const char* utf8 = PyUnicode_AsUTF8AndSize(value.ptr(), &size);  // fails on lone surrogates
  if (utf8 == nullptr) throw py::error_already_set();
  return std::string(utf8, static_cast<std::size_t>(size));
}

std::string path_arg(std::string path) {
  if (path.find('\0') != std::string::npos) throw py::value_error("embedded null byte in a path");
  return path;
}

std::optional<YearRange> years_arg(py::handle value) {
  if (value.is_none()) return std::nullopt;
  const bool pair = PySequence_Check(value.ptr()) && !PyUnicode_Check(value.ptr()) && !PyBytes_Check(value.ptr()) &&
                    PySequence_Size(value.ptr()) == 2;
  if (!pair) {
    PyErr_Clear();
    throw py::type_error("years must be None or a pair (first, last), not " + type_name(value));
  }
  const py::sequence years = py::reinterpret_borrow<py::sequence>(value);
  return YearRange{clamped_int32(years[0], "the first year"), clamped_int32(years[1], "the last year")};
}

}  // namespace refgrove::python
