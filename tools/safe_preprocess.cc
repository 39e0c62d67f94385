#include "tools/safe_preprocess.h"

#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <vector>

#include "core/data_view.h"
#include "core/validate.h"
#include "graph/graph_dump.h"
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
                             ToolRunHooks& hooks) {
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
    // The messages name the staging directory, which stands for the target.
    hooks.staging_made = [&](const std::string& staging_dir) {
      for (CounterFilter* filter : {&out_filter, &err_filter}) {
        filter->write_path_as(dir_prefix(staging_dir), dir_prefix(request.out_dir));
      }
    };
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

// What a parse error says is missing, in the dump's words: "expected
// 'Authors:', found ..." is "no Authors:".
std::string what_is_missing(const std::string& message) {
  const std::string expected = "expected '";
  if (const std::size_t end = message.find('\'', expected.size());
      message.starts_with(expected) && end != std::string::npos) {
    return "no " + message.substr(expected.size(), end - expected.size());
  }
  if (message.starts_with("expected integer")) return "a number is missing where the record needs one";
  return message;
}

// After the parser's own message, on a line of its own: the dump, the line
// of the record (a record is one line) and what it lacks.
void explain_parse_error(const DumpParseError& e, std::ostream& err) {
  err << "\n" << kPrefix << e.dump;
  if (e.pos.row > 0) err << ", line " << e.pos.row;
  err << ": " << what_is_missing(e.message) << "\n";
}

// A data directory given where the dumps are expected.
bool is_data_dir_not_dumps(const std::string& in_dir) {
  return data_dir_problem(in_dir).empty() && !std::filesystem::exists(as_dir(in_dir) + kGraphDumpFile);
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
  if (staging_made) staging_made(staging_dir);
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
  if (is_data_dir_not_dumps(request.in_dir)) {
    return fail(err, request.in_dir +
                         ": a data directory, made by preprocessing, not the text dumps it is made of; "
                         "the other commands read it as it is");
  }
  try {
    return preprocess_and_summarize(request, out, err, hooks);
  } catch (const DumpParseError& e) {
    // The module's own message as it writes it, then ours.
    e.write(err);
    explain_parse_error(e, err);
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
