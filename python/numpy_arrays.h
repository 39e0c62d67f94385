// numpy arrays over refgrove's memory: views of what a data set holds,
// which keep the set alive and are read-only (the set is shared by every
// array and thread), and arrays that take over a vector made for them.
#ifndef REFGROVE_PYTHON_NUMPY_ARRAYS_H_
#define REFGROVE_PYTHON_NUMPY_ARRAYS_H_

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <utility>
#include <vector>

#include "core/data_set_slot.h"

namespace refgrove::python {

namespace py = pybind11;

// An array of `shape` over `items`, memory of the data set `owner`. The
// array holds its own reference to the set: closing or dropping the
// DataSet leaves it valid, and the set is freed with the last such array.
template <class T>
py::array view_of(const DataSetPtr& owner, const T* items, std::vector<py::ssize_t> shape) {
  const py::capsule keep(new DataSetPtr(owner), [](void* held) { delete static_cast<DataSetPtr*>(held); });
  py::array array(py::dtype::of<T>(), std::move(shape), items, keep);
  py::detail::array_proxy(array.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
  return array;
}

// An array of T, of `shape`, that owns `items`, moved into it: no copy. An
// Item may be a struct of Ts side by side (an edge as two int32).
template <class T, class Item = T>
py::array owning(std::vector<Item> items, std::vector<py::ssize_t> shape) {
  static_assert(sizeof(Item) % sizeof(T) == 0 && alignof(Item) >= alignof(T));
  auto* held = new std::vector<Item>(std::move(items));
  const py::capsule keep(held, [](void* vector) { delete static_cast<std::vector<Item>*>(vector); });
  return py::array(py::dtype::of<T>(), std::move(shape), reinterpret_cast<const T*>(held->data()), keep);
}

}  // namespace refgrove::python

#endif  // REFGROVE_PYTHON_NUMPY_ARRAYS_H_
