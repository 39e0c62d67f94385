// The whole set as Python objects, for the conversions of the Python part
// (refgrove/_convert.py): the text and list columns of a table, and the
// citations as tuples, the one form of edges that networkx and igraph take
// quickly. Objects that repeat (an author's name, a DID) are made once and
// shared.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <string>
#include <vector>

#include "core/data_view.h"
#include "core/document_text.h"
#include "core/lookup.h"
#include "core/utf8_text.h"
#include "network/citation_graph.h"
#include "python/bindings.h"
#include "python/texts.h"

namespace refgrove::python {
namespace {

// The Python objects standing for the ids 0 .. size - 1, each made on first
// use.
class SharedObjects {
 public:
  explicit SharedObjects(std::size_t size) : objects_(size) {}

  template <class Make>
  py::object get(std::int64_t id, Make make) {
    if (id < 0 || static_cast<std::size_t>(id) >= objects_.size()) return make();
    py::object& object = objects_[static_cast<std::size_t>(id)];
    if (!object) object = make();
    return object;
  }

 private:
  std::vector<py::object> objects_;
};

// A one-dimensional numpy array of objects, filled by set(): pandas takes
// such a column as it is, where from a list it would look at every item.
class ObjectColumn {
 public:
  explicit ObjectColumn(std::size_t n)
      : array_(py::dtype("O"), std::vector<py::ssize_t>{static_cast<py::ssize_t>(n)}),
        slots_(static_cast<PyObject**>(array_.mutable_data())) {}
  void set(std::size_t row, py::object value) {
    PyObject* old = slots_[row];
    slots_[row] = value.release().ptr();
    Py_XDECREF(old);
  }
  const py::array& array() const { return array_; }

 private:
  py::array array_;  // its slots start as null (which numpy takes for None) or None
  PyObject** slots_;
};

const CitationGraph& graph(const RefgroveData& d) {
  const py::gil_scoped_release release;
  return CitationGraph::of(d);
}

// key (str or None), title, authors (lists of names) and cites (lists of
// DIDs in the record's order) of every document of `dids`, as object arrays.
py::dict table(const DataSetHandle& self) {
  const DataSetPtr d = self.get();
  const CitationGraph& g = graph(*d);
  SharedObjects names(static_cast<std::size_t>(get_nb_authors(*d)));
  SharedObjects dids(d->did_index.size());
  const auto n = static_cast<std::size_t>(g.size());
  ObjectColumn keys(n), titles(n), authors(n), cites(n);
  for (std::int32_t v = 0; v < g.size(); ++v) {
    const auto row = static_cast<std::size_t>(v);
    const std::int32_t did = g.did(v);
    const RefgroveGraphData& record = *graph_record(*d, did);
    keys.set(row, record.key.empty() ? py::object(py::none()) : utf8(as_utf8(record.key)));
    titles.set(row, utf8(title_text(*d, did)));
    py::list names_of_row;
    for (std::int32_t i = 0; i < record.nb_authors; ++i) {
      const std::int32_t id = record.authors[i];
      if (author_text(*d, id) != nullptr)
        names_of_row.append(names.get(id, [&] { return utf8(author_name_text(*d, id)); }));
    }
    authors.set(row, std::move(names_of_row));
    py::list cited(static_cast<std::size_t>(record.citations.size()));
    for (std::int32_t i = 0; i < record.citations.size(); ++i) {
      const std::int32_t c = record.citations[i].did;
      cited[static_cast<std::size_t>(i)] = dids.get(c, [c] { return py::int_(c); });
    }
    cites.set(row, std::move(cited));
  }
  py::dict columns;
  columns["key"] = keys.array();
  columns["title"] = titles.array();
  columns["authors"] = authors.array();
  columns["cites"] = cites.array();
  return columns;
}

// Every citation-graph edge as a tuple, of node numbers or of DIDs.
py::list edge_tuples(const DataSetHandle& self, bool by_node) {
  const DataSetPtr d = self.get();
  const CitationGraph& g = graph(*d);
  SharedObjects nodes(static_cast<std::size_t>(g.size()));
  const auto node = [&](std::int32_t v) { return nodes.get(v, [&] { return py::int_(by_node ? v : g.did(v)); }); };
  py::list edges(static_cast<std::size_t>(g.edge_count()));
  std::size_t at = 0;
  for (std::int32_t v = 0; v < g.size(); ++v) {
    const py::object citing = node(v);
    for (const std::int32_t w : g.cited(v)) edges[at++] = py::make_tuple(citing, node(w));
  }
  return edges;
}

}  // namespace

void bind_tables(py::class_<DataSetHandle>& c) {
  c.def("_table", &table, "The text and list columns of to_pandas(), aligned with `dids`.")
      .def("_edge_tuples", &edge_tuples, py::arg("by_node"),
           "The citation graph's edges as (citing, cited) tuples of node numbers or of DIDs.");
}

}  // namespace refgrove::python
