// The compiled DataSet (refgrove._refgrove._DataSet): loading, documents,
// the word search and the analyses. Lists and tuples are made here; the
// Python part (refgrove/_data_set.py) wraps some of them in its own types.
// Every call takes the set from its handle, does its work on it without the
// GIL and builds its Python answer afterwards.
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/data_view.h"
#include "core/document_text.h"
#include "core/json_fields.h"
#include "network/citation_graph.h"
#include "network/distance.h"
#include "network/neighbourhood.h"
#include "network/similarity.h"
#include "python/arguments.h"
#include "python/bindings.h"
#include "python/data_set_handle.h"
#include "python/errors.h"
#include "python/texts.h"
#include "search/word_search.h"

namespace refgrove::python {
namespace {

py::object optional_int(const std::optional<std::int32_t>& value) {
  return value ? py::object(py::int_(*value)) : py::object(py::none());
}

template <class Int>
py::list int_list(const std::vector<Int>& items) {
  py::list list(items.size());
  for (std::size_t i = 0; i < items.size(); ++i) list[i] = py::int_(items[i]);
  return list;
}

py::dict document(const DataSetHandle& self, py::handle did_arg) {
  const std::int32_t did = id_arg(did_arg, "DID");
  std::vector<std::int32_t> cited_by;
  const std::optional<DocumentText> doc = without_gil(self, [&](const RefgroveData& d) -> std::optional<DocumentText> {
    if (!has_graph_info(d, did) && !has_word_info(d, did)) return std::nullopt;
    const CitationGraph& g = CitationGraph::of(d);
    if (const std::int32_t v = g.node(did); v >= 0)
      for (const std::int32_t w : g.citing(v)) cited_by.push_back(g.did(w));
    return document_text(d, did);
  });
  if (!doc) throw FaceError(FaceError::Kind::not_found, "no document " + std::to_string(did));
  py::dict fields;
  fields[field::did] = did;
  fields[field::key] = doc->key.empty() ? py::object(py::none()) : utf8(doc->key);
  fields[field::year] = optional_int(doc->year);
  fields[field::title] = utf8(doc->title);
  py::list authors;
  for (const std::string& name : doc->authors) authors.append(utf8(name));
  fields[field::authors] = authors;
  fields[field::author_ids] = int_list(doc->author_ids);
  fields[field::abstract] = utf8(doc->abstract);
  fields[field::cites] = int_list(doc->cites);
  fields[field::cited_by] = int_list(cited_by);
  return fields;
}

std::int32_t did_of_key(const DataSetHandle& self, py::handle key_arg) {
  const std::string key = text_arg(key_arg, "the key");
  int did = 0;
  const bool found = without_gil(self, [&](const RefgroveData& d) {
    // A key never holds a NUL: one in the text would end the C string early.
    return key.find('\0') == std::string::npos && get_key_doc(d, key.c_str(), 0, &did);
  });
  if (!found) {
    std::string shown;  // a NUL would end the message
    for (const char c : key) shown += c == '\0' ? std::string("\\0") : std::string(1, c);
    throw FaceError(FaceError::Kind::not_found, "no document with key " + shown);
  }
  return did;
}

// The hits as cut() gives them, and the number of documents matching.
py::tuple search_hits(const DataSetHandle& self, py::handle query_arg, py::handle mode_arg, py::handle limit_arg,
                      bool exact) {
  const std::string query = text_arg(query_arg, "the query");
  const SearchMode mode = search_mode_from_text(text_arg(mode_arg, "the mode"));
  const std::int64_t limit = count_arg(limit_arg, "the limit");
  const std::int64_t asked = one_more(limit);
  const SearchAnswer answer = without_gil(self, [&](const RefgroveData& d) {
    return search(d, query, SearchRequest{mode, exact, asked == INT64_MAX ? 0 : static_cast<std::size_t>(asked)});
  });
  const py::tuple hits = cut(answer.hits, limit, [](const SearchHit& h) { return py::make_tuple(h.did, h.score); });
  return py::make_tuple(hits[0], hits[1], answer.total);
}

py::tuple ranked_documents(const DataSetHandle& self, py::handle by_arg, py::handle limit_arg, py::handle years_arg_) {
  const RankBy by = rank_by_from_text(text_arg(by_arg, "by"));
  const std::int64_t limit = count_arg(limit_arg, "the limit");
  const std::optional<YearRange> years = years_arg(years_arg_);
  const std::vector<RankedDocument> top =
      without_gil(self, [&](const RefgroveData& d) { return ranked(d, by, one_more(limit), years); });
  return cut(top, limit, [by](const RankedDocument& r) {
    return by == RankBy::citations ? py::make_tuple(r.did, static_cast<std::int64_t>(r.score))
                                   : py::make_tuple(r.did, r.score);
  });
}

// Counts as ints, the normalised measures as floats.
py::tuple similar_documents(const DataSetHandle& self, py::handle did_arg, py::handle by_arg, py::handle measure_arg,
                            py::handle limit_arg) {
  const std::int32_t did = id_arg(did_arg, "DID");
  const SimilarBy by = similar_by_from_text(text_arg(by_arg, "by"));
  const SimilarMeasure measure = similar_measure_from_text(text_arg(measure_arg, "measure"));
  const std::int64_t limit = count_arg(limit_arg, "the limit");
  const std::vector<SimilarDocument> found =
      without_gil(self, [&](const RefgroveData& d) { return similar(d, did, by, one_more(limit), measure); });
  if (measure == SimilarMeasure::count)
    return cut(found, limit, [](const SimilarDocument& s) { return py::make_tuple(s.did, s.count); });
  return cut(found, limit, [](const SimilarDocument& s) { return py::make_tuple(s.did, s.score); });
}

// The first `limit` nodes and the citations among them; the nodes come
// closest first, so a walk asked for one node more differs only by its last.
py::tuple neighbourhood_of(const DataSetHandle& self, py::handle did_arg, py::handle hops_arg, py::handle direction_arg,
                           py::handle limit_arg) {
  const std::int32_t did = id_arg(did_arg, "DID");
  NeighbourhoodOptions options;
  options.hops = count_arg(hops_arg, "the hop count");
  options.direction = direction_from_text(text_arg(direction_arg, "the direction"));
  const std::int64_t limit = count_arg(limit_arg, "the limit");
  options.limit = one_more(limit);
  const Neighbourhood n = without_gil(self, [&](const RefgroveData& d) { return neighbourhood(d, did, options); });
  const bool truncated = static_cast<std::int64_t>(n.nodes.size()) > limit;
  const auto dropped = [&](std::int32_t did) { return truncated && did == n.nodes.back().did; };
  py::list nodes, edges;
  for (std::size_t i = 0; i + (truncated ? 1 : 0) < n.nodes.size(); ++i)
    nodes.append(py::make_tuple(n.nodes[i].did, n.nodes[i].hops));
  for (const CitationEdge& e : n.edges)
    if (!dropped(e.citing) && !dropped(e.cited)) edges.append(py::make_tuple(e.citing, e.cited));
  return py::make_tuple(nodes, edges, truncated);
}

py::object collaboration(const DataSetHandle& self, py::handle a_arg, py::handle b_arg) {
  const std::int32_t a = id_arg(a_arg, "author id"), b = id_arg(b_arg, "author id");
  const std::optional<CollaborationPath> path =
      without_gil(self, [&](const RefgroveData& d) { return collaboration_path(d, a, b); });
  if (!path) return py::none();
  return py::make_tuple(int_list(path->authors), int_list(path->documents));
}

py::object citation_walk(const DataSetHandle& self, py::handle from_arg, py::handle to_arg, py::handle direction_arg) {
  const std::int32_t from = id_arg(from_arg, "DID"), to = id_arg(to_arg, "DID");
  const Direction dir = direction_from_text(text_arg(direction_arg, "the direction"));
  const std::optional<std::vector<std::int32_t>> path =
      without_gil(self, [&](const RefgroveData& d) { return citation_path(d, from, to, dir); });
  return path ? py::object(int_list(*path)) : py::object(py::none());
}

py::str author_name(const DataSetHandle& self, py::handle id_arg_) {
  const std::int32_t id = id_arg(id_arg_, "author id");
  const DataSetPtr d = self.get();
  const char* name = nullptr;
  if (!id2author(*d, id, &name)) throw FaceError(FaceError::Kind::not_found, "no author " + std::to_string(id));
  return utf8(author_name_text(*d, id));
}

std::vector<std::int32_t> authors_named(const DataSetHandle& self, py::handle text_arg_) {
  const std::string text = text_arg(text_arg_, "the name");
  return without_gil(self, [&](const RefgroveData& d) { return named_authors(d, text); });
}

}  // namespace

void bind_data_set(py::class_<DataSetHandle>& c) {
  c.def(py::init([](std::string path) {
          path = path_arg(std::move(path));
          const py::gil_scoped_release release;
          return std::make_unique<DataSetHandle>(std::move(path));
        }),
        py::arg("data_dir"),
        "Loads the data directory `data_dir` (made by refgrove preprocess).\n\n"
        "Raises DataDirectoryError when it is no data directory.")
      .def_property_readonly("path", &DataSetHandle::path, "The data directory, as given.")
      .def_property_readonly("closed", &DataSetHandle::closed, "Whether close() has been called.")
      .def("close", &DataSetHandle::close,
           "Lets go of the data set. Arrays handed out keep it alive until the last of them goes; any\n"
           "later call on this DataSet raises ClosedError.")
      .def(
          "__len__",
          [](const DataSetHandle& self) {
            return without_gil(self, [](const RefgroveData& d) { return CitationGraph::of(d).size(); });
          },
          "The number of documents with a graph record: the length of `dids`.")
      .def("_document", &document, py::arg("did"),
           "The fields of document `did` as a dict; NotFoundError when no document has it.")
      .def("did", &did_of_key, py::arg("key"),
           "The DID of the document with key `key` (str, or bytes as stored), the smallest when\n"
           "several share it. Raises NotFoundError when none has it.")
      .def("author_name", &author_name, py::arg("author_id"),
           "The name of author `author_id`. Raises NotFoundError outside the author table.")
      .def("authors_named", &authors_named, py::arg("text"),
           "The ids of the authors named `text`, ignoring case and accents, ascending; with a trailing\n"
           "\"*\", those whose name starts with the rest, by name. A text that names nobody is taken as\n"
           "words starting words of the names, the spellings of one person together.")
      .def("_search", &search_hits, py::arg("query"), py::arg("mode"), py::arg("limit"), py::arg("exact"),
           "Hits (did, score) best first, and whether the limit cut them.")
      .def("_ranked", &ranked_documents, py::arg("by"), py::arg("limit"), py::arg("years"),
           "Documents (did, score) best first, and whether the limit cut them.")
      .def("_similar", &similar_documents, py::arg("did"), py::arg("by"), py::arg("measure"), py::arg("limit"),
           "Documents (did, score) best first, and whether the limit cut them.")
      .def("_neighbourhood", &neighbourhood_of, py::arg("did"), py::arg("hops"), py::arg("direction"), py::arg("limit"),
           "Nodes (did, hops), edges (citing, cited), and whether the limit cut the nodes.")
      .def("_collaboration_path", &collaboration, py::arg("a"), py::arg("b"),
           "(authors, documents) of a shortest collaboration path, or None.")
      .def(
          "collaboration_distance",
          [](const DataSetHandle& self, py::handle a, py::handle b) {
            const std::int32_t x = id_arg(a, "author id"), y = id_arg(b, "author id");
            return optional_int(
                without_gil(self, [&](const RefgroveData& d) { return collaboration_distance(d, x, y); }));
          },
          py::arg("a"), py::arg("b"),
          "The collaboration distance of authors `a` and `b`: the links of a shortest path between\n"
          "them in the co-author graph (0 for an author and itself), or None when they are\n"
          "unconnected. Raises ArgumentError for an id outside the author table.")
      .def(
          "citation_distance",
          [](const DataSetHandle& self, py::handle a, py::handle b, py::handle direction) {
            const std::int32_t from = id_arg(a, "DID"), to = id_arg(b, "DID");
            const Direction dir = direction_from_text(text_arg(direction, "the direction"));
            return optional_int(
                without_gil(self, [&](const RefgroveData& d) { return citation_distance(d, from, to, dir); }));
          },
          py::arg("a"), py::arg("b"), py::arg("direction") = "out",
          "The length of a shortest path from document `a` to document `b` following citations:\n"
          "\"out\" from citing to cited, \"in\" the other way, \"both\" either way; None when there is\n"
          "none. Raises ArgumentError for a DID without a graph record.")
      .def("citation_path", &citation_walk, py::arg("a"), py::arg("b"), py::arg("direction") = "out",
           "The DIDs along a shortest path from `a` to `b` (as citation_distance), or None.");
}

}  // namespace refgrove::python
