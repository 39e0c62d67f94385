// How `refgrove preprocess` replaces a data directory without ever leaving
// it half written: the run writes into a staging directory beside the
// target (same file system, a hidden name no one takes for data), and only a
// run that finished and passed the checks has its files renamed into place,
// the manifest last. One run at a time per target, serialized by a lock
// file beside it.
//
// For the target /data/out:
//   /data/.out.refgrove-lock           the lock file (flock), removed by the
//                                      holder when it is done
//   /data/.out.refgrove-tmp.<pid>      the staging directory of run <pid>
//
// Only the holder of the lock makes a staging directory, so every staging
// directory found by the holder is a leftover of a run that was killed: it
// is removed, never read.
#ifndef REFGROVE_TOOLS_STAGED_DATA_DIR_H_
#define REFGROVE_TOOLS_STAGED_DATA_DIR_H_

#include <sys/types.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

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
  // Takes the lock. While another run holds it, says so on `err` once and
  // waits for it. Null with the reason in `error` when the lock file cannot
  // be made.
  static std::unique_ptr<TargetLock> acquire(const TargetPaths& paths, std::ostream& err, std::string* error);

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

// Flushes the files of `staging` to disk and moves them into the target: the
// whole directory when there is no target yet, otherwise the four data
// files one by one and the manifest last, so that the target's old manifest
// gives away a move cut short. Files of the target that are not data files
// stay as they are. False with a message in `error` on failure.
bool move_into_place(const std::string& staging, const TargetPaths& paths, std::string* error);

#endif  // REFGROVE_TOOLS_STAGED_DATA_DIR_H_
