// ProgressDisplay: while `refgrove preprocess` reads its dumps on a
// terminal, one line on standard error, redrawn a few times a second, with
// the share of the dumps read, the rate and the time left, in place of the
// module's running counters.
#ifndef REFGROVE_TOOLS_PROGRESS_DISPLAY_H_
#define REFGROVE_TOOLS_PROGRESS_DISPLAY_H_

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>

// The text of the line after `seconds` with `read` of `total` bytes read:
//   "reading the dumps: 43% of 960.2 MB, 381.0 MB/s, 1 s left"
// The rate and the time left wait for a first measurement; once every byte
// is read the line says that the data directory is being written.
std::string progress_line(std::uint64_t read, std::uint64_t total, double seconds);

class ProgressDisplay {
 public:
  // Starts redrawing the line on `out` from `bytes_read` (a run's
  // PreprocProgress::bytes_read) of `total_bytes`, the dumps' size measured
  // beforehand: the run sets its own total while this thread may be reading.
  ProgressDisplay(const std::atomic<std::uint64_t>& bytes_read, std::uint64_t total_bytes, std::ostream& out);
  // Stops and clears the line.
  ~ProgressDisplay();

  ProgressDisplay(const ProgressDisplay&) = delete;
  ProgressDisplay& operator=(const ProgressDisplay&) = delete;

 private:
  void redraw_until_stopped();

  const std::atomic<std::uint64_t>& bytes_read_;
  const std::uint64_t total_bytes_;
  std::ostream& out_;
  std::mutex mutex_;
  std::condition_variable stop_requested_;
  bool stop_ = false;
  std::thread thread_;
};

#endif  // REFGROVE_TOOLS_PROGRESS_DISPLAY_H_
