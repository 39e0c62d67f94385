// InterruptCleanup: SIGINT and SIGTERM during a run of `refgrove preprocess`
// remove the run's staging directory and lock file before the process ends
// with the usual status of a death by that signal (130, 143).
//
// The signals are blocked in the constructing thread, and so in every thread
// it starts afterwards; a watcher thread takes them with sigwaitinfo(), so
// the cleanup runs as ordinary code rather than in a signal handler. The
// destructor wakes the watcher with a real-time signal of its own, blocked
// the same way, so that a run ends as soon as it is done. Whoever
// must not be cut short (moving the finished files into place) holds the
// lock returned by hold(): a signal that comes meanwhile is acted on after.
#ifndef REFGROVE_TOOLS_INTERRUPT_CLEANUP_H_
#define REFGROVE_TOOLS_INTERRUPT_CLEANUP_H_

#include <atomic>
#include <mutex>
#include <string>
#include <thread>

#include <signal.h>

namespace refgrove {

class InterruptCleanup {
 public:
  InterruptCleanup();
  // Stops the watcher and restores the signal mask; a signal still pending
  // then takes its default action.
  ~InterruptCleanup();

  InterruptCleanup(const InterruptCleanup&) = delete;
  InterruptCleanup& operator=(const InterruptCleanup&) = delete;

  // What to remove on a signal: the run's staging directory and the lock
  // file it holds ("" for none).
  void set_run_files(const std::string& staging_dir, const std::string& lock_file);

  std::unique_lock<std::mutex> hold() { return std::unique_lock<std::mutex>(mutex_); }

 private:
  void watch();
  [[noreturn]] void clean_up_and_exit(int signal);

  sigset_t signals_, old_mask_;  // signals_: SIGINT, SIGTERM and the wake-up
  std::mutex mutex_;             // guards the two paths, held while the files are moved
  std::string staging_dir_, lock_file_;
  std::atomic<bool> stop_{false};
  std::thread watcher_;
};

}  // namespace refgrove

#endif  // REFGROVE_TOOLS_INTERRUPT_CLEANUP_H_
