// safe_preprocess(): what `refgrove preprocess` runs. The dumps are
// preprocessed into a staging directory beside the target, checked, given a
// manifest and only then moved into place (preproc/staged_output.h), so that a
// run that fails, does not parse, is interrupted or runs beside another one
// leaves the target as it was. Inputs and writes are checked; at the end a
// summary says what was made and what had to be skipped or changed.
#ifndef REFGROVE_TOOLS_SAFE_PREPROCESS_H_
#define REFGROVE_TOOLS_SAFE_PREPROCESS_H_

#include <functional>
#include <ostream>
#include <string>

#include "preproc/format_limits.h"
#include "preproc/staged_preprocess.h"
#include "tools/interrupt_cleanup.h"

namespace refgrove {

struct PreprocessRequest {
  std::string in_dir, out_dir;  // as given; a trailing "/" is optional
  // The module's own messages ("Preproc word data ...", the running DID
  // counters, the lines without a DID), exactly as refgrove_preproc_1
  // writes them, instead of a progress display.
  bool verbose = false;
  // Standard error is a terminal: without `verbose`, a progress line stands
  // in for the module's messages. Otherwise they go to `out` and `err`
  // without their running counters, and log lines on `err` tell how far
  // the run has read.
  bool terminal = false;
  // What the data files can hold; smaller limits stand in for them in tests.
  FormatLimits limits;
};

// The tool's part in a staged run (`refgrove preprocess`, `refgrove import`):
// its messages on `err`, each after `prefix`, the run's files removed on
// SIGINT and SIGTERM, and `refgrove check` on the data made. Make it before
// any thread: the threads started later inherit its signal mask.
class ToolRunHooks : public StagedRunHooks {
 public:
  ToolRunHooks(std::ostream& err, std::string prefix);
  void waiting(const TargetPaths& paths) override;
  void removed_leftover(const std::string& path) override;
  void run_files_made(const std::string& staging_dir, const std::string& lock_file) override;
  void run_files_gone() override;
  std::vector<std::string> check(const std::string& dir) override;
  std::unique_lock<std::mutex> moving() override;

  // Called with the staging directory once the run has made it.
  std::function<void(const std::string& staging_dir)> staging_made;

 private:
  std::ostream& err_;
  std::string prefix_;
  InterruptCleanup interrupts_;
};

// Runs the request; `out` gets the summary, `err` the errors. Returns the
// exit status: 0 done, 1 an input, output or check failed (the target is
// left as it was), 3 a dump does not parse (the parse error on `err`, as the
// module writes it, then the dump, the record's line and what it lacks).
// SIGINT and SIGTERM meanwhile end the process with 130 and 143 after
// removing what the run had written.
int safe_preprocess(const PreprocessRequest& request, std::ostream& out, std::ostream& err);

}  // namespace refgrove

#endif  // REFGROVE_TOOLS_SAFE_PREPROCESS_H_
