// BackgroundJob: work run in a thread of its own while the caller goes on;
// the preprocessor reads some of its dumps this way.
#ifndef REFGROVE_PREPROC_BACKGROUND_JOB_H_
#define REFGROVE_PREPROC_BACKGROUND_JOB_H_

#include <exception>
#include <functional>
#include <system_error>
#include <thread>
#include <utility>

namespace refgrove {

class BackgroundJob {
 public:
  // Starts `work` in a new thread. Where no thread can be had, wait() does
  // the work instead.
  explicit BackgroundJob(std::function<void()> work) : work_(std::move(work)) {
    try {
      thread_ = std::thread(&BackgroundJob::run, this);
    } catch (const std::system_error&) {
    }
  }
  ~BackgroundJob() {
    if (thread_.joinable()) thread_.join();
  }
  BackgroundJob(const BackgroundJob&) = delete;
  BackgroundJob& operator=(const BackgroundJob&) = delete;

  // Waits for the work to end (once); returns what it threw, or null.
  std::exception_ptr wait() {
    if (thread_.joinable()) {
      thread_.join();
    } else {
      run();
    }
    return error_;
  }

 private:
  void run() {
    try {
      work_();
    } catch (...) {
      error_ = std::current_exception();
    }
  }

  std::function<void()> work_;
  std::exception_ptr error_;
  std::thread thread_;
};

}  // namespace refgrove

#endif  // REFGROVE_PREPROC_BACKGROUND_JOB_H_
