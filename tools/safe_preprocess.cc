#include "tools/safe_preprocess.h"

#include <unistd.h>

#include <iostream>
#include <memory>
#include <optional>
#include <vector>

#include "core/data_set.h"
#include "core/data_view.h"
#include "core/validate.h"
#include "preproc/file_sync.h"
#include "preproc/preprocess.h"
#include "preproc/staged_output.h"
#include "tokenizer/parser_error.h"
#include "tools/counter_filter.h"
#include "tools/interrupt_cleanup.h"
#include "tools/manifest.h"
#include "tools/progress_display.h"
#include "tools/tool_support.h"

namespace {

constexpr char kPrefix[] = "refgrove preprocess: ";

int fail(std::ostream& err, const std::string& message) {
  err << kPrefix << message << "\n";
  return 1;
}

// The input must be a directory; its dumps are checked by preprocess().
bool check_input_dir(const std::string& arg, std::string* error) {
  const std::string problem = directory_problem(arg);
  if (!problem.empty()) *error = arg + ": " + problem;
  return problem.empty();
}

// The documents that loading `dir` leaves out of the DID index.
std::size_t unindexed_documents(const std::string& dir) {
  std::ostream quiet(nullptr);  // the loading messages
  return refgrove::load_data_set(dir, quiet)->unindexed();
}

void print_summary(std::ostream& out, const std::string& target, const PreprocSummary& s, std::size_t unindexed) {
  out << "Made " << target << ":\n"
      << "  " << s.documents << " documents with abstracts, " << s.abstract_words << " abstract words\n"
      << "  " << s.records << " graph records, " << s.citations << " citations, " << s.authors << " authors\n"
      << "  " << s.words << " distinct words (abstracts and titles)\n"
      << "Skipped or changed:\n"
      << "  " << s.lines_without_did << " word dump lines without a DID (skipped)\n"
      << "  " << s.values_out_of_range << " numbers beyond the int32 range (stored as the nearest int32)\n"
      << "  " << unindexed << " documents whose DID cannot be indexed (negative or out of range: not found by DID)\n";
}

// The run's files, for InterruptCleanup to remove on a signal, for the
// object's lifetime. Declared after the staging directory, so that it is
// forgotten before that is removed.
class RunFiles {
 public:
  RunFiles(InterruptCleanup* interrupts, const StagingDir& staging, const TargetPaths& paths)
      : interrupts_(interrupts) {
    interrupts_->set_run_files(staging.path(), paths.lock_file());
  }
  ~RunFiles() { interrupts_->set_run_files("", ""); }
  RunFiles(const RunFiles&) = delete;
  RunFiles& operator=(const RunFiles&) = delete;

 private:
  InterruptCleanup* interrupts_;
};

// The files moved into place, the manifest last, so that the target's old
// manifest gives away a move cut short.
std::vector<std::string> files_to_move() {
  std::vector<std::string> names = data_file_names();
  names.push_back(kManifestFile);
  return names;
}

// Preprocesses into the staging directory; an exit status when that failed.
std::optional<int> preprocess_into(const PreprocessRequest& request, const std::string& in_dir,
                                   const StagingDir& staging, std::ostream& out, std::ostream& err,
                                   PreprocSummary* summary) {
  std::ostream quiet(nullptr);
  CounterFilter out_filter(out), err_filter(err);
  // The run's messages and the progress lines reach `err` through one
  // filter, from different threads: each with an ostream of its own.
  std::ostream out_log(&out_filter), err_log(&err_filter), progress_log(&err_filter);
  PreprocProgress progress;
  PreprocOptions options;
  options.checked = true;
  options.limits = request.limits;
  options.progress = &progress;
  std::optional<ProgressDisplay::Style> style;
  std::ostream* display_out = &err;
  if (request.verbose) {
    options.out = &out;
    options.err = &err;
  } else if (request.terminal) {
    options.out = options.err = &quiet;
    style = ProgressDisplay::Style::kTerminal;
  } else {
    options.out = &out_log;
    options.err = &err_log;
    style = ProgressDisplay::Style::kLog;
    display_out = &progress_log;
  }
  try {
    std::optional<ProgressDisplay> display;
    if (style) display.emplace(progress.bytes_read, dumps_size(in_dir), *display_out, *style);
    *summary = preprocess(in_dir, staging.prefix(), options);
  } catch (const ParserError& e) {
    e.write(err);
    err.flush();
    return 3;
  } catch (const FormatLimitError& e) {  // the file named is the staging directory's
    return fail(err, e.reason);
  } catch (const std::exception& e) {  // PreprocError, or memory or the system failing
    return fail(err, e.what());
  }
  return std::nullopt;
}

// Whether what the run made passes `refgrove check`; the findings on `err`.
bool passes_check(const StagingDir& staging, std::ostream& err) {
  const std::vector<Finding> findings = validate_data_dir(staging.prefix());
  if (findings.empty()) return true;
  err << kPrefix << "the data made does not pass refgrove check:\n";
  for (const Finding& f : findings) err << "  " << f.text() << "\n";
  return false;
}

}  // namespace

int safe_preprocess(const PreprocessRequest& request, std::ostream& out, std::ostream& err) {
  InterruptCleanup interrupts;  // first: the threads started later inherit its signal mask
  std::string error;
  TargetPaths paths;
  if (!check_input_dir(request.in_dir, &error) || !resolve_target(request.out_dir, &paths, &error)) {
    return fail(err, error);
  }
  const auto waiting = [&] {
    err << kPrefix << "another run is writing " << paths.target << " (lock " << paths.lock_file()
        << "); waiting for it to finish\n"
        << std::flush;
  };
  const std::unique_ptr<TargetLock> lock = TargetLock::acquire(paths, waiting, &error);
  if (lock == nullptr) return fail(err, error);
  for (const std::string& removed : remove_leftovers(paths)) {
    err << kPrefix << "removed " << removed << ", left behind by a run that was interrupted\n";
  }
  // Declared after the lock: the staging directory is gone before the lock
  // is let go.
  const StagingDir staging(paths.staging_dir(getpid()));
  if (!staging.make(&error)) return fail(err, error);
  const RunFiles run_files(&interrupts, staging, paths);

  const std::string in_dir = as_dir(request.in_dir);
  const std::string left_as_it_was = paths.target + " is left as it was";
  PreprocSummary summary;
  if (const std::optional<int> status = preprocess_into(request, in_dir, staging, out, err, &summary)) {
    // A parse error ends standard error exactly as the module leaves it.
    if (*status != 3) err << kPrefix << left_as_it_was << "\n";
    return *status;
  }
  const std::size_t unindexed = unindexed_documents(staging.prefix());
  if (!passes_check(staging, err)) return fail(err, left_as_it_was);
  if (!write_manifest(staging.prefix(), staging.prefix() + kManifestFile, &error)) {
    return fail(err, error + "; " + left_as_it_was);
  }
  {
    const std::unique_lock<std::mutex> no_interrupts = interrupts.hold();
    if (!move_into_place(staging.path(), paths, files_to_move(), &error)) {
      return fail(err, error + "; " + paths.target + " may now hold files of two runs (refgrove check tells)");
    }
  }
  print_summary(out, paths.target, summary, unindexed);
  return 0;
}
