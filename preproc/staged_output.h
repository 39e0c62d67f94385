// Replacing a data directory without ever leaving it half written: a run
// writes into a staging directory beside the target (same file system, a
// hidden name no one takes for data), and only a run that finished has its
// files renamed into place, in the order the caller gives, so that the file
// named last tells a move cut short. One run at a time per target,
// serialized by a lock file beside it: flock(2) on the lock file, which
// excludes other processes and, each opening the file anew, other threads.
//
// For the target /data/out:
//   /data/.out.refgrove-lock           the lock file (flock), removed by the
//                                      holder when it is done
//   /data/.out.refgrove-tmp.<pid>      the staging directory of run <pid>
//
// Only the holder of the lock makes a staging directory, so every staging
// directory found by the holder is a leftover of a run that was killed: it
// is removed, never read.
#ifndef REFGROVE_PREPROC_STAGED_OUTPUT_H_
#define REFGROVE_PREPROC_STAGED_OUTPUT_H_

#include <sys/types.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace refgrove {

struct TargetPaths {
  std::string target;  // absolute, symbolic links resolved, no trailing "/"
  std::string parent;  // the directory holding it
  std::string name;    // its last component

  std::string lock_file() const;
  std::string staging_dir(pid_t pid) const;
  // Whether `entry`, a name in `parent`, is a staging directory's name.
  bool is_staging_name(const std::string& entry) const;
};

// Resolves the target argument, creating its parent directories when
// missing. False with a message naming the path in `error` when the target
// exists and is not a directory or cannot be written, or when its parent
// cannot be made.
bool resolve_target(const std::string& arg, TargetPaths* paths, std::string* error);

// The lock of one target, held for the object's lifetime.
class TargetLock {
 public:
  // Takes the lock. While another run holds it, calls `waiting` once and
  // waits for it. Null with the reason in `error` when the lock file cannot
  // be made.
  static std::unique_ptr<TargetLock> acquire(const TargetPaths& paths, const std::function<void()>& waiting,
                                             std::string* error);

  // Removes the lock file while still holding it, then lets go. A run
  // waiting on the removed file notices and takes a fresh one.
  ~TargetLock();

  TargetLock(const TargetLock&) = delete;
  TargetLock& operator=(const TargetLock&) = delete;

 private:
  TargetLock(std::string path, int fd) : path_(std::move(path)), fd_(fd) {}
  std::string path_;
  int fd_;
};

// Removes the staging directories of earlier runs; call with the lock held.
// Returns the paths removed.
std::vector<std::string> remove_leftovers(const TargetPaths& paths);

// A staging directory, removed with what it holds when the object goes,
// unless it was moved into place whole. Make it with the lock held.
class StagingDir {
 public:
  explicit StagingDir(std::string path) : path_(std::move(path)) {}
  ~StagingDir();
  StagingDir(const StagingDir&) = delete;
  StagingDir& operator=(const StagingDir&) = delete;

  // mkdir(2); false with "cannot make <path>: <system error>" in `error`.
  bool make(std::string* error) const;
  const std::string& path() const { return path_; }
  std::string prefix() const { return path_ + "/"; }

 private:
  std::string path_;
};

// Flushes the files `names` of `staging` to disk and moves them into the
// target: the whole directory when there is no target yet,
// otherwise the files one by one in the order given. Files of the target
// that are not named stay as they are. False with a message in `error` on
// failure.
bool move_into_place(const std::string& staging, const TargetPaths& paths, const std::vector<std::string>& names,
                     std::string* error);

}  // namespace refgrove

#endif  // REFGROVE_PREPROC_STAGED_OUTPUT_H_
