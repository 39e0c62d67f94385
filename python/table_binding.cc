// The whole set for the conversions of the Python part
// (refgrove/_convert.py): the text and list columns of a table, and the
// citations as tuples for networkx and as text for igraph. Objects that
// repeat (an author's name, a DID) are made once and shared.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "core/data_view.h"
#include "core/document_text.h"
#include "core/json_fields.h"
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

// Python's cyclic garbage collector held off for the scope: the objects
// made here (texts, ints, lists of them) form no cycles, and it would
// otherwise walk the young ones again and again as they pile up.
class NoCollection {
 public:
  NoCollection() : was_enabled_(PyGC_Disable() == 1) {}
  ~NoCollection() {
    if (was_enabled_) PyGC_Enable();
  }
  NoCollection(const NoCollection&) = delete;
  NoCollection& operator=(const NoCollection&) = delete;

 private:
  bool was_enabled_;
};

const CitationGraph& graph(const RefgroveData& d) {
  return *without_gil(d, [](const RefgroveData& set) { return &CitationGraph::of(set); });
}

// key (str or None), title, authors (lists of names) and cites (lists of
// DIDs in the record's order) of every document of `dids`, as object arrays.
py::dict table(const DataSetHandle& self) {
  const DataSetPtr d = self.get();
  const CitationGraph& g = graph(*d);
  const NoCollection no_collection;
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
  columns[field::key] = keys.array();
  columns[field::title] = titles.array();
  columns[field::authors] = authors.array();
  columns[field::cites] = cites.array();
  return columns;
}

// Every citation-graph edge as a tuple of DIDs, the form networkx takes.
py::list edge_tuples(const DataSetHandle& self) {
  const DataSetPtr d = self.get();
  const CitationGraph& g = graph(*d);
  const NoCollection no_collection;
  SharedObjects dids(static_cast<std::size_t>(g.size()));  // by node
  const auto did = [&](std::int32_t v) { return dids.get(v, [&] { return py::int_(g.did(v)); }); };
  py::list edges(static_cast<std::size_t>(g.edge_count()));
  std::size_t at = 0;
  for (std::int32_t v = 0; v < g.size(); ++v) {
    const py::object citing = did(v);
    for (const std::int32_t w : g.cited(v)) edges[at++] = py::make_tuple(citing, did(w));
  }
  return edges;
}

// The citation graph's edges as text, "CITING CITED" lines of node
// numbers, written into a pipe by a thread of its own: text is what igraph
// builds a graph from fastest (Read_Edgelist parses it in C, while a list of
// tuples would cost a Python object per edge), and the pipe keeps the text
// out of memory. The reader opens `path`; close() ends the writer, done or
// not.
class EdgeText {
 public:
  explicit EdgeText(DataSetPtr d) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
    read_fd_ = ends[0];
    writer_ = std::thread([d = std::move(d), fd = ends[1]] { write_edges(*d, fd); });
  }
  ~EdgeText() { close(); }
  EdgeText(const EdgeText&) = delete;
  EdgeText& operator=(const EdgeText&) = delete;

  std::string path() const { return "/dev/fd/" + std::to_string(read_fd_); }

  void close() {
    if (read_fd_ >= 0) ::close(read_fd_);  // a writer still writing gets EPIPE and stops
    read_fd_ = -1;
    if (writer_.joinable()) {
      const py::gil_scoped_release release;
      writer_.join();
    }
  }

 private:
  static void write_edges(const RefgroveData& d, int fd) {
    sigset_t pipe_signal;  // EPIPE instead of a SIGPIPE for the process
    sigemptyset(&pipe_signal);
    sigaddset(&pipe_signal, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe_signal, nullptr);
    const CitationGraph& g = CitationGraph::of(d);
    std::string buffer;
    bool open = true;
    const auto append = [&buffer](std::int32_t n) {
      char digits[16];
      buffer.append(digits, std::to_chars(digits, digits + sizeof digits, n).ptr);
    };
    for (std::int32_t v = 0; v < g.size() && open; ++v) {
      for (const std::int32_t w : g.cited(v)) {
        append(v);
        buffer += ' ';
        append(w);
        buffer += '\n';
      }
      if (buffer.size() >= (1 << 16)) open = write_all(fd, &buffer);
    }
    if (open) write_all(fd, &buffer);
    ::close(fd);
  }

  // Writes and empties `buffer`; false once the reader has gone.
  static bool write_all(int fd, std::string* buffer) {
    for (std::size_t at = 0; at < buffer->size();) {
      const ssize_t n = ::write(fd, buffer->data() + at, buffer->size() - at);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) return false;
      at += static_cast<std::size_t>(n);
    }
    buffer->clear();
    return true;
  }

  int read_fd_ = -1;
  std::thread writer_;
};

}  // namespace

void bind_tables(py::class_<DataSetHandle>& c) {
  c.def("_table", &table, "The text and list columns of to_pandas(), aligned with `dids`.")
      .def("_edge_tuples", &edge_tuples, "The citation graph's edges as (citing, cited) tuples of DIDs.")
      .def(
          "_edge_text",
          [](const DataSetHandle& self) {
            DataSetPtr d = self.get();
            graph(*d);  // built here, without the GIL, rather than by the writer
            return std::make_unique<EdgeText>(std::move(d));
          },
          "The citation graph's edges as text lines of node numbers, from a pipe.");
  py::class_<EdgeText>(c, "_EdgeText", "A pipe from which the citation graph's edges are read as text.")
      .def_property_readonly("path", &EdgeText::path, "The path to open for reading.")
      .def("close", &EdgeText::close, "Closes the pipe and waits for its writer.");
}

}  // namespace refgrove::python
