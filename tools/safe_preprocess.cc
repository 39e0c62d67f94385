#include "tools/safe_preprocess.h"

#include <iostream>
#include <memory>
#include <optional>
#include <vector>

#include "core/validate.h"
#include "preproc/preprocess.h"
#include "preproc/staged_preprocess.h"
#include "tools/counter_filter.h"
#include "tools/interrupt_cleanup.h"
#include "tools/progress_display.h"
#include "tools/tool_support.h"

namespace refgrove {

namespace {

constexpr char kPrefix[] = "refgrove preprocess: ";

int fail(std::ostream& err, const std::string& message) {
  err << kPrefix << message << "\n";
  return 1;
}

void print_summary(std::ostream& out, const std::string& target, const PreprocSummary& s) {
  out << "Made " << target << ":\n"
      << "  " << s.documents << " documents with abstracts, " << s.abstract_words << " abstract words\n"
      << "  " << s.records << " graph records, " << s.citations << " citations, " << s.authors << " authors\n"
      << "  " << s.words << " distinct words (abstracts and titles)\n"
      << "Skipped or changed:\n"
      << "  " << s.lines_without_did << " word dump lines without a DID (skipped)\n"
      << "  " << s.values_out_of_range << " numbers beyond the int32 range (stored as the nearest int32)\n"
      << "  " << s.unindexed << " documents whose DID cannot be indexed (negative or out of range: not found by DID)\n";
}

// Runs the request, showing the module's messages (-v), a progress line on
// a terminal, or log lines; then the summary.
int preprocess_and_summarize(const PreprocessRequest& request, std::ostream& out, std::ostream& err,
                             StagedRunHooks& hooks) {
  std::ostream quiet(nullptr);
  CounterFilter out_filter(out), err_filter(err);
  // The run's messages and the progress lines reach `err` through one
  // filter, from different threads: each with an ostream of its own.
  std::ostream out_log(&out_filter), err_log(&err_filter), progress_log(&err_filter);
  PreprocProgress progress;
  StagedRequest staged{request.in_dir, request.out_dir, {}, "refgrove preprocess", {}};
  PreprocOptions& options = staged.options;
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
  std::optional<ProgressDisplay> display;
  if (style) display.emplace(progress.bytes_read, dumps_size(as_dir(request.in_dir)), *display_out, *style);
  const StagedResult result = staged_preprocess(staged, hooks);
  display.reset();
  print_summary(out, result.target, result.summary);
  return 0;
}

}  // namespace

ToolRunHooks::ToolRunHooks(std::ostream& err, std::string prefix) : err_(err), prefix_(std::move(prefix)) {}

void ToolRunHooks::waiting(const TargetPaths& paths) {
  err_ << prefix_ << "another run is writing " << paths.target << " (lock " << paths.lock_file()
       << "); waiting for it to finish\n"
       << std::flush;
}

void ToolRunHooks::removed_leftover(const std::string& path) {
  err_ << prefix_ << "removed " << path << ", left behind by a run that was interrupted\n";
}

void ToolRunHooks::run_files_made(const std::string& staging_dir, const std::string& lock_file) {
  interrupts_.set_run_files(staging_dir, lock_file);
}

void ToolRunHooks::run_files_gone() { interrupts_.set_run_files("", ""); }

std::vector<std::string> ToolRunHooks::check(const std::string& dir) {
  std::vector<std::string> problems;
  for (const Finding& f : validate_data_dir(dir)) problems.push_back(f.text());
  return problems;
}

std::unique_lock<std::mutex> ToolRunHooks::moving() { return interrupts_.hold(); }

int safe_preprocess(const PreprocessRequest& request, std::ostream& out, std::ostream& err) {
  ToolRunHooks hooks(err, kPrefix);  // first: the threads started later inherit its signal mask
  if (const std::string problem = directory_problem(request.in_dir); !problem.empty()) {
    return fail(err, request.in_dir + ": " + problem);
  }
  try {
    return preprocess_and_summarize(request, out, err, hooks);
  } catch (const DumpParseError& e) {
    // Standard error ends exactly as the module leaves it.
    e.write(err);
    err.flush();
    return 3;
  } catch (const StagedRunError& e) {
    if (e.stage == StagedRunError::Stage::check) {
      err << kPrefix << "the data made does not pass refgrove check:\n";
      for (const std::string& problem : e.problems) err << "  " << problem << "\n";
    } else {
      fail(err, e.what());
    }
    const std::string left = e.outcome();
    return left.empty() ? 1 : fail(err, left);
  } catch (const std::exception& e) {  // memory or the system failing
    return fail(err, e.what());
  }
}

}  // namespace refgrove
