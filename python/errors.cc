#include "python/errors.h"

#include <pybind11/pybind11.h>

#include <sstream>

#include "core/utf8_text.h"
#include "import/input_files.h"
#include "network/citation_graph.h"
#include "preproc/preprocess.h"
#include "preproc/staged_preprocess.h"
#include "python/texts.h"
#include "search/word_search.h"

namespace refgrove::python {
namespace {

namespace py = pybind11;

const char* class_name(FaceError::Kind kind) {
  switch (kind) {
    case FaceError::Kind::argument:
      return "ArgumentError";
    case FaceError::Kind::not_found:
      return "NotFoundError";
    case FaceError::Kind::data_directory:
      return "DataDirectoryError";
    case FaceError::Kind::closed:
      return "ClosedError";
  }
  return "Error";
}

// A message as a str: it may quote the bytes of an argument, which are
// read as refgrove reads all texts (core/utf8_text.h).
py::str message_text(const std::string& message) { return utf8(as_utf8(message)); }

// Raises refgrove.<name>(*args). Should the package's classes be out of
// reach, the import's own error is raised instead.
void raise(const char* name, const py::tuple& args) {
  try {
    const py::object cls = py::module_::import("refgrove._errors").attr(name);
    PyErr_SetObject(cls.ptr(), cls(*args).ptr());
  } catch (py::error_already_set& e) {
    e.restore();
  }
}

// A run that failed: its sentence, the problems the check found, and what
// is left of the target.
std::string preprocess_message(const StagedRunError& e) {
  std::string message = e.what();
  for (const std::string& problem : e.problems) message += "\n  " + problem;
  if (const std::string left = e.outcome(); !left.empty()) message += "\n" + left;
  return message;
}

}  // namespace

void register_error_translation() {
  py::register_exception_translator([](std::exception_ptr thrown) {
    try {
      std::rethrow_exception(thrown);
    } catch (const FaceError& e) {
      raise(class_name(e.kind), py::make_tuple(message_text(e.what())));
    } catch (const NetworkArgumentError& e) {
      raise("ArgumentError", py::make_tuple(message_text(e.what())));
    } catch (const SearchUsageError& e) {
      raise("ArgumentError", py::make_tuple(message_text(e.what())));
    } catch (const DumpParseError& e) {
      std::ostringstream message;
      e.write(message);
      // Rows count from 1, columns from 0 as printed; unknown ones are None.
      const py::object row = e.pos.row < 0 ? py::object(py::none()) : py::int_(e.pos.row);
      const py::object column = e.pos.column < 0 ? py::object(py::none()) : py::int_(e.pos.column - 1);
      raise("DumpSyntaxError", py::make_tuple(message_text(message.str()), message_text(e.dump), row, column));
    } catch (const ImportError& e) {
      const py::object line = e.line == 0 ? py::object(py::none()) : py::int_(e.line);
      const py::object field = e.field.empty() ? py::object(py::none()) : py::object(message_text(e.field));
      raise("InputError", py::make_tuple(message_text(std::string(e.what()) + "\nnothing was written"),
                                         message_text(e.file), line, field));
    } catch (const StagedRunError& e) {
      raise("PreprocessError", py::make_tuple(message_text(preprocess_message(e)), message_text(e.path)));
    } catch (const PreprocError& e) {
      raise("PreprocessError", py::make_tuple(message_text(e.what()), message_text(e.path)));
    }
  });
}

}  // namespace refgrove::python
