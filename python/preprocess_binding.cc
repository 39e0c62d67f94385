// refgrove._refgrove._preprocess: the staged run of `refgrove preprocess`
// (preproc/staged_preprocess.h), watched from Python (watched_run.h).
// Preprocessing itself cannot be cut short: an interrupt stops the run at
// its check.
#include <pybind11/pybind11.h>

#include <sstream>
#include <string>
#include <vector>

#include "core/data_view.h"
#include "preproc/preprocess.h"
#include "preproc/staged_preprocess.h"
#include "python/arguments.h"
#include "python/bindings.h"
#include "python/errors.h"
#include "python/watched_run.h"

namespace refgrove::python {
namespace {

py::dict summary(const StagedResult& result) {
  const PreprocSummary& s = result.summary;
  py::dict d;
  d["target"] = result.target;
  d["documents"] = s.documents;
  d["abstract_words"] = s.abstract_words;
  d["words"] = s.words;
  d["records"] = s.records;
  d["authors"] = s.authors;
  d["citations"] = s.citations;
  d["lines_without_did"] = s.lines_without_did;
  d["values_out_of_range"] = s.values_out_of_range;
  d["unindexed"] = s.unindexed;
  return d;
}

py::dict preprocess(std::string in_dir, std::string out_dir, const py::object& progress) {
  in_dir = path_arg(std::move(in_dir));
  out_dir = path_arg(std::move(out_dir));
  if (const std::string problem = directory_problem(in_dir); !problem.empty()) {
    throw FaceError(FaceError::Kind::data_directory, in_dir + ": " + problem);
  }
  PreprocProgress read;
  read.total_bytes = dumps_size(dir_prefix(in_dir));
  std::ostringstream out_messages, err_messages;  // written by different threads
  StagedRequest request{in_dir, out_dir, {}, "refgrove.preprocess (Python)", {}};
  request.options.out = &out_messages;
  request.options.err = &err_messages;
  request.options.progress = &read;
  StagedResult result;
  watched_run([&](WatchedRunHooks& hooks) { result = staged_preprocess(request, hooks); },
              [&] {
                if (!progress.is_none()) progress(read.bytes_read.load(), read.total_bytes);
              });
  return summary(result);
}

}  // namespace

void bind_preprocess(py::module_& m) {
  m.def("_preprocess", &preprocess, py::arg("dumps_dir"), py::arg("data_dir"), py::arg("progress"),
        "Preprocesses the dumps of `dumps_dir` into `data_dir` as refgrove preprocess does; calls\n"
        "progress(bytes_read, total_bytes) about ten times a second unless it is None. Returns the\n"
        "summary as a dict.");
}

}  // namespace refgrove::python
