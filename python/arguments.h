// The arguments of the Python face read into what the layers below take,
// with an ArgumentError or a TypeError naming what cannot be read. Any
// Python integer is accepted where a number is (numpy's too), any str or
// bytes where a text is.
#ifndef REFGROVE_PYTHON_ARGUMENTS_H_
#define REFGROVE_PYTHON_ARGUMENTS_H_

#include <pybind11/pybind11.h>

#include <cstdint>
#include <optional>
#include <string>

#include "network/ranking.h"

namespace refgrove::python {

namespace py = pybind11;

// A DID or an author id (`what` names it in messages). Beyond the int32
// range it is an ArgumentError, as the tool's arguments are.
std::int32_t id_arg(py::handle value, const char* what);

// A limit or a hop count: None for no limit, else an integer of at least
// 0; one beyond the int64 range counts as no limit.
std::int64_t count_arg(py::handle value, const char* what);

// A text: a str as UTF-8, bytes as they are.
std::string text_arg(py::handle value, const char* what);

// A path, which the system's calls end at its first NUL: one with a NUL
// is a ValueError, as for Python's own open().
std::string path_arg(std::string path);

// None for all years, else a pair (first, last) of integers, both
// included; years beyond the int32 range are the range's ends.
std::optional<YearRange> years_arg(py::handle value);

// What a limit asks for, one more to tell whether it cut the answer.
inline std::int64_t one_more(std::int64_t limit) { return limit == INT64_MAX ? limit : limit + 1; }

}  // namespace refgrove::python

#endif  // REFGROVE_PYTHON_ARGUMENTS_H_
