#include "preproc/staged_preprocess.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <future>
#include <memory>
#include <utility>

#include "preproc/file_sync.h"
#include "preproc/manifest.h"

namespace refgrove {

namespace {

using Stage = StagedRunError::Stage;

// Errors come as sentences. One that starts with its path keeps the path
// out of the reason; one that starts with another absolute path (a parent
// directory that cannot be made) is about that path.
[[noreturn]] void fail(Stage stage, const std::string& target, std::string path, const std::string& error) {
  const std::size_t colon = error.find(": ");
  if (error.rfind(path + ": ", 0) != 0 && error.rfind('/', 0) == 0 && colon != std::string::npos) {
    path = error.substr(0, colon);
  }
  const std::string lead = path + ": ";
  const std::string reason = error.rfind(lead, 0) == 0 ? error.substr(lead.size()) : error;
  throw StagedRunError(stage, target, path, reason, error);
}

[[noreturn]] void fail(Stage stage, const TargetPaths& paths, const std::string& error) {
  fail(stage, paths.target, paths.target, error);
}

// The input must be a directory; its dumps are checked by preprocess().
void check_input_dir(const std::string& arg) {
  struct stat st;
  if (stat(arg.c_str(), &st) != 0) fail(Stage::setup, "", arg, system_error_text(arg, errno));
  if (!S_ISDIR(st.st_mode)) fail(Stage::setup, "", arg, arg + ": is not a directory");
}

// The run's files are announced to the hooks for the object's lifetime.
// Declared after the staging directory, so that they are forgotten before
// that is removed.
class AnnouncedRunFiles {
 public:
  AnnouncedRunFiles(StagedRunHooks& hooks, const StagingDir& staging, const TargetPaths& paths) : hooks_(hooks) {
    hooks_.run_files_made(staging.path(), paths.lock_file());
  }
  ~AnnouncedRunFiles() { hooks_.run_files_gone(); }
  AnnouncedRunFiles(const AnnouncedRunFiles&) = delete;
  AnnouncedRunFiles& operator=(const AnnouncedRunFiles&) = delete;

 private:
  StagedRunHooks& hooks_;
};

// The files moved into place, the manifest last, so that the target's old
// manifest gives away a move cut short.
std::vector<std::string> files_to_move(const StagedRequest& request) {
  std::vector<std::string> names = data_file_names();
  for (const auto& [name, contents] : request.extra_files) names.push_back(name);
  names.push_back(kManifestFile);
  return names;
}

PreprocSummary preprocess_into(const StagedRequest& request, const StagingDir& staging, const TargetPaths& paths) {
  PreprocOptions options = request.options;
  options.checked = true;
  try {
    return preprocess(dir_prefix(request.in_dir), staging.prefix(), options);
  } catch (const FormatLimitError& e) {  // about the dumps as a whole, not the file it stopped at
    throw StagedRunError(Stage::run, paths.target, paths.target, e.reason, e.reason);
  } catch (const PreprocError& e) {
    const std::string path = with_path_replaced(e.path, staging.path(), paths.target);
    throw StagedRunError(Stage::run, paths.target, path, e.reason, path + ": " + e.reason);
  }
}

void check_made(const StagingDir& staging, const TargetPaths& paths, StagedRunHooks& hooks) {
  std::vector<std::string> problems = hooks.check(staging.prefix());
  if (problems.empty()) return;
  const std::string reason = "the data made does not pass the consistency check";
  StagedRunError error(Stage::check, paths.target, paths.target, reason, reason);
  error.problems = std::move(problems);
  throw error;
}

}  // namespace

std::string dir_prefix(const std::string& path) { return path.empty() || path.back() == '/' ? path : path + "/"; }

std::string with_path_replaced(std::string text, const std::string& from, const std::string& to) {
  if (from.empty()) return text;
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

StagedRunError::StagedRunError(Stage stage, std::string target, std::string path, std::string reason, std::string what)
    : PreprocError(std::move(path), std::move(reason)),
      stage(stage),
      target(std::move(target)),
      what_(std::move(what)) {}

std::string StagedRunError::outcome() const {
  switch (stage) {
    case Stage::setup:
      return "";
    case Stage::move:
      return target + " may now hold files of two runs (refgrove check tells)";
    default:
      return target + " is left as it was";
  }
}

StagedResult staged_preprocess(const StagedRequest& request, StagedRunHooks& hooks) {
  check_input_dir(request.in_dir);
  std::string error;
  TargetPaths paths;
  if (!resolve_target(request.out_dir, &paths, &error)) fail(Stage::setup, request.out_dir, request.out_dir, error);
  const std::unique_ptr<TargetLock> lock = TargetLock::acquire(
      paths, [&] { hooks.waiting(paths); }, &error);
  if (lock == nullptr) fail(Stage::setup, paths, error);
  for (const std::string& removed : remove_leftovers(paths)) hooks.removed_leftover(removed);
  // Declared after the lock: the staging directory is gone before the lock
  // is let go.
  const StagingDir staging(paths.staging_dir(getpid()));
  if (!staging.make(&error)) fail(Stage::setup, paths, error);
  const AnnouncedRunFiles announced(hooks, staging, paths);

  StagedResult result{paths.target, preprocess_into(request, staging, paths)};
  for (const auto& [name, contents] : request.extra_files) {
    if (!write_synced(staging.prefix() + name, contents, &error)) {
      fail(Stage::run, paths, with_path_replaced(error, staging.path(), paths.target));
    }
  }
  // The check, the manifest's checksums and writing the data files to disk
  // each read the files or wait for the disk: they run side by side. The
  // files are flushed here once and for all; the flush before the move
  // then finds nothing left to write.
  std::future<void> flushed = std::async(std::launch::async, [&staging] {
    std::string ignored;  // a failure shows again in the flush before the move
    for (const std::string& name : data_file_names()) sync_path(staging.prefix() + name, &ignored);
  });
  std::future<bool> manifest = std::async(std::launch::async, [&] {
    return write_manifest(staging.prefix(), staging.prefix() + kManifestFile, request.made_by, &error);
  });
  check_made(staging, paths, hooks);
  if (!manifest.get()) {
    error = with_path_replaced(error, staging.path(), paths.target);
    fail(Stage::run, paths.target, error.substr(0, error.find(": ")), error);
  }
  flushed.get();
  const std::unique_lock<std::mutex> moving = hooks.moving();
  if (!move_into_place(staging.path(), paths, files_to_move(request), &error)) fail(Stage::move, paths, error);
  return result;
}

}  // namespace refgrove
