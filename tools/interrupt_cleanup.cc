#include "tools/interrupt_cleanup.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace refgrove {

namespace {

int wake_signal() { return SIGRTMIN; }

// A writer thread may still create a file in the directory while it is
// being removed; the removal is repeated until the directory is gone (its
// files then fail to open).
void remove_directory(const std::string& path) {
  std::error_code ec;
  for (int attempt = 0; attempt < 100 && std::filesystem::exists(path, ec); ++attempt) {
    std::filesystem::remove_all(path, ec);
  }
}

}  // namespace

InterruptCleanup::InterruptCleanup() {
  sigemptyset(&signals_);
  sigaddset(&signals_, SIGINT);
  sigaddset(&signals_, SIGTERM);
  sigaddset(&signals_, wake_signal());
  pthread_sigmask(SIG_BLOCK, &signals_, &old_mask_);
  watcher_ = std::thread([this] { watch(); });
}

InterruptCleanup::~InterruptCleanup() {
  stop_ = true;
  pthread_kill(watcher_.native_handle(), wake_signal());
  watcher_.join();
  pthread_sigmask(SIG_SETMASK, &old_mask_, nullptr);
}

void InterruptCleanup::set_run_files(const std::string& staging_dir, const std::string& lock_file) {
  std::lock_guard<std::mutex> lock(mutex_);
  staging_dir_ = staging_dir;
  lock_file_ = lock_file;
}

void InterruptCleanup::watch() {
  while (!stop_) {
    const int signal = sigwaitinfo(&signals_, nullptr);
    if (signal == SIGINT || signal == SIGTERM) clean_up_and_exit(signal);
  }
}

void InterruptCleanup::clean_up_and_exit(int signal) {
  std::lock_guard<std::mutex> lock(mutex_);
  if (!staging_dir_.empty()) remove_directory(staging_dir_);
  if (!lock_file_.empty()) unlink(lock_file_.c_str());  // still held: the process ends with it
  static const char text[] = "\nrefgrove preprocess: interrupted; the data directory is left as it was\n";
  [[maybe_unused]] const ssize_t n = write(STDERR_FILENO, text, sizeof text - 1);
  _exit(128 + signal);
}

}  // namespace refgrove
