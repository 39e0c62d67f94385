// staged_preprocess(): preprocessing that users can trust with their files,
// the one run behind every face that preprocesses (the tool's `refgrove
// preprocess`, the SWI-Prolog library's refgrove_preproc/2).
//
// The target's lock is taken, leftovers of killed runs are removed, the
// dumps are preprocessed into a staging directory beside the target
// (staged_output.h), the result is checked and given a manifest
// (manifest.h), and only then are the files moved into place, the manifest
// last. A run that fails at any step before the move leaves the target as
// it was; a missing target (and its parents) is made.
#ifndef REFGROVE_PREPROC_STAGED_PREPROCESS_H_
#define REFGROVE_PREPROC_STAGED_PREPROCESS_H_

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "preproc/preprocess.h"
#include "preproc/staged_output.h"

namespace refgrove {

struct StagedRequest {
  std::string in_dir, out_dir;  // directories; a trailing "/" is optional
  // Where the module's messages go, and the progress counter. The run is
  // always checked (PreprocOptions::checked).
  PreprocOptions options;
  std::string made_by;  // the face, recorded in the manifest
  // Optional data files (optional_data_file_names() in manifest.h) written
  // beside the others: name and contents. Listed in the manifest and moved
  // into place with the data files.
  std::vector<std::pair<std::string, std::string>> extra_files;
};

// What a face says or does at the steps of a run; every hook may be left
// as it is.
class StagedRunHooks {
 public:
  virtual ~StagedRunHooks() = default;
  // Another run holds the target's lock: this one waits for it.
  virtual void waiting(const TargetPaths&) {}
  // The staging directory `path` of a killed run was removed.
  virtual void removed_leftover(const std::string& /*path*/) {}
  // The run's own files exist (staging directory, lock file) until
  // run_files_gone(): the tool removes them when interrupted.
  virtual void run_files_made(const std::string& /*staging_dir*/, const std::string& /*lock_file*/) {}
  virtual void run_files_gone() {}
  // The problems found in the finished data directory `dir` (a prefix);
  // any problem keeps it from being moved into place.
  virtual std::vector<std::string> check(const std::string& /*dir*/) { return {}; }
  // Held while the files are moved into place.
  virtual std::unique_lock<std::mutex> moving() { return {}; }
};

// A run that did not finish. `path` and `reason` as for PreprocError (an
// input, the target or one of its files), what() a whole sentence naming
// the path.
class StagedRunError : public PreprocError {
 public:
  enum class Stage {
    setup,  // the input, the target, the lock or the staging directory: nothing was written
    run,    // preprocessing or the manifest failed: the target is as it was
    check,  // the data made has `problems`: the target is as it was
    move,   // the move into place failed: the target may hold files of two runs
  };
  StagedRunError(Stage stage, std::string target, std::string path, std::string reason, std::string what);
  const char* what() const noexcept override { return what_.c_str(); }
  // What the failure left of the target, for people: empty when nothing was
  // written, else "<target> is left as it was" or, after a move cut short,
  // "<target> may now hold files of two runs (refgrove check tells)".
  std::string outcome() const;

  Stage stage;
  std::string target;                 // absolute; as given when it could not be resolved
  std::vector<std::string> problems;  // Stage::check

 private:
  std::string what_;
};

struct StagedResult {
  std::string target;  // absolute, without a trailing "/"
  PreprocSummary summary;
};

// `path` as the prefix that file names are appended to: with a trailing "/".
std::string dir_prefix(const std::string& path);

// `text` with every occurrence of the path `from` replaced by `to`: a
// run's messages name its staging directory, which stands for the target.
std::string with_path_replaced(std::string text, const std::string& from, const std::string& to);

// Runs the request. Throws StagedRunError, or DumpParseError when a dump
// does not parse (the target is then as it was).
StagedResult staged_preprocess(const StagedRequest& request, StagedRunHooks& hooks);

}  // namespace refgrove

#endif  // REFGROVE_PREPROC_STAGED_PREPROCESS_H_
