// refgrove._refgrove._preprocess: the staged run of `refgrove preprocess`
// (preproc/staged_preprocess.h), with the tool's check of the data made,
// run on a thread of its own while the calling thread, holding the GIL
// only for that, reports progress and watches for an interrupt.
//
// An interrupt (Ctrl-C), or an exception from the progress callback, stops
// the run at its check, before the target is touched; preprocessing itself
// cannot be cut short, so the call returns once it has finished. Runs go
// one at a time in the process, as in the SWI-Prolog library.
#include <pybind11/pybind11.h>

#include <atomic>
#include <chrono>
#include <exception>
#include <future>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "core/data_view.h"
#include "core/validate.h"
#include "preproc/preprocess.h"
#include "preproc/staged_preprocess.h"
#include "python/arguments.h"
#include "python/bindings.h"
#include "python/errors.h"

namespace refgrove::python {
namespace {

std::mutex run_mutex;

// Thrown by the check when the caller asked the run to stop.
struct RunStopped {};

class PythonHooks : public StagedRunHooks {
 public:
  explicit PythonHooks(const std::atomic<bool>& stop) : stop_(stop) {}
  std::vector<std::string> check(const std::string& dir) override {
    if (stop_) throw RunStopped();
    std::vector<std::string> problems;
    for (const Finding& f : validate_data_dir(dir)) problems.push_back(f.text());
    return problems;
  }

 private:
  const std::atomic<bool>& stop_;
};

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
  std::atomic<bool> stop{false};
  PythonHooks hooks(stop);
  PreprocProgress read;
  read.total_bytes = dumps_size(dir_prefix(in_dir));
  std::ostringstream out_messages, err_messages;  // written by different threads
  StagedRequest request{in_dir, out_dir, {}, "refgrove.preprocess (Python)", {}};
  request.options.out = &out_messages;
  request.options.err = &err_messages;
  request.options.progress = &read;

  std::future<StagedResult> run = std::async(std::launch::async, [&] {
    const std::lock_guard one_at_a_time(run_mutex);
    return staged_preprocess(request, hooks);
  });
  std::optional<py::error_already_set> pending;  // the interrupt or the callback's exception
  for (bool done = false; !done;) {
    {
      const py::gil_scoped_release release;
      done = run.wait_for(std::chrono::milliseconds(100)) == std::future_status::ready;
    }
    try {
      if (PyErr_CheckSignals() != 0) throw py::error_already_set();
      if (!pending && !progress.is_none()) progress(read.bytes_read.load(), read.total_bytes);
    } catch (py::error_already_set& e) {
      if (!pending) pending = std::move(e);
      stop = true;
    }
  }
  // The caller's exception comes first: it may be why the run stopped.
  std::exception_ptr failure;
  StagedResult result;
  try {
    result = run.get();
  } catch (...) {
    failure = std::current_exception();
  }
  if (pending) throw std::move(*pending);
  if (failure) std::rethrow_exception(failure);
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
