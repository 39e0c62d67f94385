// The failures of the Python face as the package's exception classes
// (refgrove/_errors.py): what the layers below throw, and what the face finds
// wrong with its arguments, each with the message the tool would show.
#ifndef REFGROVE_PYTHON_ERRORS_H_
#define REFGROVE_PYTHON_ERRORS_H_

#include <stdexcept>
#include <string>

namespace refgrove::python {

// A failure the face finds itself, raised as the class of its kind.
class FaceError : public std::runtime_error {
 public:
  enum class Kind {
    argument,        // ArgumentError (a ValueError)
    not_found,       // NotFoundError (a KeyError)
    data_directory,  // DataDirectoryError (a FileNotFoundError)
    closed,          // ClosedError (a ValueError)
  };
  FaceError(Kind kind, const std::string& message) : std::runtime_error(message), kind(kind) {}
  Kind kind;
};

// Translates FaceError and the exceptions of the analyses, the search and
// preprocessing into the package's classes; everything else keeps
// pybind11's translation (MemoryError, RuntimeError).
void register_error_translation();

}  // namespace refgrove::python

#endif  // REFGROVE_PYTHON_ERRORS_H_
