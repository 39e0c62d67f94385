#include "preproc/staged_output.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "preproc/file_sync.h"

namespace refgrove {

namespace fs = std::filesystem;

namespace {

constexpr char kLockSuffix[] = ".refgrove-lock";
constexpr char kStagingInfix[] = ".refgrove-tmp.";

// Whether `fd` is still the file at `path`: the last holder removes the lock
// file, and a run that was waiting on it must then lock the new one.
bool is_current(int fd, const std::string& path) {
  struct stat held, named;
  return fstat(fd, &held) == 0 && stat(path.c_str(), &named) == 0 && held.st_dev == named.st_dev &&
         held.st_ino == named.st_ino;
}

int flock_retrying(int fd, int operation) {
  int r;
  do r = flock(fd, operation);
  while (r != 0 && errno == EINTR);
  return r;
}

bool rename_into(const std::string& from, const std::string& to, std::string* error) {
  if (std::rename(from.c_str(), to.c_str()) == 0) return true;
  *error = "cannot move " + from + " to " + to + ": " + std::strerror(errno);
  return false;
}

// fsync of the files `names` of `staging` and of the directory itself.
bool sync_staging(const std::string& staging, const std::vector<std::string>& names, std::string* error) {
  for (const std::string& name : names) {
    if (!sync_path(staging + "/" + name, error)) return false;
  }
  return sync_path(staging, error);
}

}  // namespace

std::string TargetPaths::lock_file() const { return parent + "/." + name + kLockSuffix; }

std::string TargetPaths::staging_dir(pid_t pid) const {
  return parent + "/." + name + kStagingInfix + std::to_string(pid);
}

bool TargetPaths::is_staging_name(const std::string& entry) const {
  const std::string prefix = "." + name + kStagingInfix;
  return entry.size() > prefix.size() && entry.compare(0, prefix.size(), prefix) == 0 &&
         entry.find_first_not_of("0123456789", prefix.size()) == std::string::npos;
}

bool resolve_target(const std::string& arg, TargetPaths* paths, std::string* error) {
  std::error_code ec;
  fs::path path = fs::path(arg).lexically_normal();
  if (!path.has_filename()) path = path.parent_path();  // "out/" names "out"
  path = fs::weakly_canonical(fs::absolute(path, ec), ec);
  if (ec || !path.has_filename() || path.filename() == "." || path.filename() == "..") {
    *error = arg + ": cannot be used as the data directory";
    return false;
  }
  paths->target = path.string();
  paths->parent = path.parent_path().string();
  paths->name = path.filename().string();
  const fs::file_status status = fs::status(path, ec);
  if (fs::exists(status)) {
    if (!fs::is_directory(status)) {
      *error = arg + ": exists and is not a directory";
      return false;
    }
    if (access(paths->target.c_str(), W_OK | X_OK) != 0) {
      *error = system_error_text(arg, errno);
      return false;
    }
  }
  fs::create_directories(paths->parent, ec);
  if (ec) *error = system_error_text(paths->parent, ec.value());
  return !ec;
}

std::unique_ptr<TargetLock> TargetLock::acquire(const TargetPaths& paths, const std::function<void()>& waiting,
                                                std::string* error) {
  const std::string path = paths.lock_file();
  bool said_waiting = false;
  for (;;) {
    const int fd = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0) {
      *error = "cannot make the lock file " + system_error_text(path, errno);
      return nullptr;
    }
    if (flock_retrying(fd, LOCK_EX | LOCK_NB) != 0) {
      if (!said_waiting) waiting();
      said_waiting = true;
      flock_retrying(fd, LOCK_EX);
    }
    if (is_current(fd, path)) return std::unique_ptr<TargetLock>(new TargetLock(path, fd));
    close(fd);
  }
}

TargetLock::~TargetLock() {
  unlink(path_.c_str());
  close(fd_);
}

std::vector<std::string> remove_leftovers(const TargetPaths& paths) {
  std::vector<std::string> removed;
  std::error_code ec;
  for (const fs::directory_entry& entry : fs::directory_iterator(paths.parent, ec)) {
    if (!paths.is_staging_name(entry.path().filename().string())) continue;
    if (fs::remove_all(entry.path(), ec) != static_cast<std::uintmax_t>(-1)) removed.push_back(entry.path().string());
  }
  return removed;
}

StagingDir::~StagingDir() {
  std::error_code ec;
  fs::remove_all(path_, ec);
}

bool StagingDir::make(std::string* error) const {
  if (mkdir(path_.c_str(), 0777) == 0) return true;
  *error = "cannot make " + system_error_text(path_, errno);
  return false;
}

bool move_into_place(const std::string& staging, const TargetPaths& paths, const std::vector<std::string>& names,
                     std::string* error) {
  if (!sync_staging(staging, names, error)) return false;
  // An existing target keeps its inode, its mode and the files of others,
  // even when empty: it may be some process's working directory.
  struct stat target;
  if (lstat(paths.target.c_str(), &target) != 0 && errno == ENOENT) {
    return rename_into(staging, paths.target, error) && sync_path(paths.parent, error);
  }
  for (const std::string& name : names) {
    if (!rename_into(staging + "/" + name, paths.target + "/" + name, error)) return false;
  }
  if (!sync_path(paths.target, error)) return false;
  rmdir(staging.c_str());
  return true;
}

}  // namespace refgrove
