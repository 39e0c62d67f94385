// refgrove._refgrove._import_works: the run of `refgrove import`
// (import/import.h), watched from Python (watched_run.h): an interrupt
// stops it after the input file being read, or at the check of the data
// made.
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <atomic>
#include <sstream>
#include <string>
#include <vector>

#include "import/import.h"
#include "python/arguments.h"
#include "python/bindings.h"
#include "python/errors.h"
#include "python/texts.h"
#include "python/watched_run.h"

namespace refgrove::python {
namespace {

py::dict summary(const ImportSummary& s, const std::vector<std::string>& refusals) {
  py::dict d;
  d["target"] = s.target;
  d["works_read"] = s.works.read;
  d["works_kept"] = s.works.kept;
  d["works_replaced"] = s.works.replaced;
  d["records_refused"] = s.refused;
  d["citations_within"] = s.works.citations_within;
  d["citations_outside"] = s.works.citations_outside;
  d["outside_works"] = s.works.outside_works;
  d["documents"] = s.data.documents;
  d["words"] = s.data.words;
  d["authors"] = s.data.authors;
  py::list refused;
  for (const std::string& message : refusals) refused.append(utf8(message));
  d["refusals"] = py::tuple(refused);
  return d;
}

py::dict import_works(const py::handle& format_arg, const std::vector<std::string>& input_args, std::string target,
                      py::handle years_arg_, bool skip_bad, const py::object& progress) {
  const std::string format = text_arg(format_arg, "the format");
  std::vector<std::string> inputs;
  for (const std::string& input : input_args) inputs.push_back(path_arg(input));
  target = path_arg(std::move(target));
  ImportOptions options;
  options.years = years_arg(years_arg_);
  if (options.years && options.years->from > options.years->to) {
    throw FaceError(FaceError::Kind::argument, "years (" + std::to_string(options.years->from) + ", " +
                                                   std::to_string(options.years->to) +
                                                   "): not (first, last), two years with first <= last");
  }
  options.skip_bad = skip_bad;
  std::ostringstream out_messages, err_messages;  // preprocessing's own, which the tool does not show either
  options.out = &out_messages;
  options.err = &err_messages;
  std::atomic<std::size_t> files_read{0}, files{0};
  std::vector<std::string> refusals;
  ImportSummary result;
  watched_run(
      [&](WatchedRunHooks& hooks) {
        options.progress = [&](std::size_t read, std::size_t all, std::int64_t) {
          files_read = read;
          files = all;
          hooks.stop_point();
        };
        result = refgrove::import_works(format, inputs, target, options, hooks,
                                        [&](const ImportError& e) { refusals.emplace_back(e.what()); });
      },
      [&] {
        if (!progress.is_none() && files > 0) progress(files_read.load(), files.load());
      });
  return summary(result, refusals);
}

}  // namespace

void bind_import(py::module_& m) {
  m.def("_import_works", &import_works, py::arg("format"), py::arg("inputs"), py::arg("data_dir"), py::arg("years"),
        py::arg("skip_bad"), py::arg("progress"),
        "Imports the works of `inputs` of `format` into `data_dir` as refgrove import does; calls\n"
        "progress(files_read, files) about ten times a second unless it is None. Returns the summary\n"
        "as a dict.");
}

}  // namespace refgrove::python
