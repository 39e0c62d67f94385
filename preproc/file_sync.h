// Small POSIX helpers for files that must survive a crash once written: a
// file or directory flushed to disk, and a whole file written and flushed.
// Errors come back as "<path>: <system error>".
#ifndef REFGROVE_PREPROC_FILE_SYNC_H_
#define REFGROVE_PREPROC_FILE_SYNC_H_

#include <string>

namespace refgrove {

// "<path>: <strerror(error)>".
std::string system_error_text(const std::string& path, int error);

// fsync(2) of the file or directory `path`.
bool sync_path(const std::string& path, std::string* error);

// Creates or replaces `path` with `bytes` and flushes it to disk.
bool write_synced(const std::string& path, const std::string& bytes, std::string* error);

}  // namespace refgrove

#endif  // REFGROVE_PREPROC_FILE_SYNC_H_
