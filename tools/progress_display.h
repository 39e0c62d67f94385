// ProgressDisplay: while `refgrove preprocess` reads its dumps, how far it
// has come, with the share of the dumps read, the rate and the time left, in
// place of the module's running counters. On a terminal it is one line on
// standard error, redrawn a few times a second; in a log (standard error
// not a terminal) it is a line for each tenth of the dumps read.
#ifndef REFGROVE_TOOLS_PROGRESS_DISPLAY_H_
#define REFGROVE_TOOLS_PROGRESS_DISPLAY_H_

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>

namespace refgrove {

// The text of the line after `seconds` with `read` of `total` bytes read:
//   "reading the dumps: 43% of 960.2 MB, 381.0 MB/s, 1 s left"
// The rate and the time left wait for a first measurement; once every byte
// is read the line says that the data directory is being written.
std::string progress_line(std::uint64_t read, std::uint64_t total, double seconds);

// Whether a log that last showed `*logged_tenths` tenths of the dumps read
// (-1: nothing yet) shows `read` of `total`: once for each tenth reached,
// the last one when all is read. Sets *logged_tenths when it does.
bool log_is_due(std::uint64_t read, std::uint64_t total, int* logged_tenths);

class ProgressDisplay {
 public:
  enum class Style {
    kTerminal,  // one line, redrawn in place
    kLog,       // "refgrove preprocess: <line>" a second into the run and
                // then at each further tenth of the dumps read (as
                // log_is_due says); a shorter run logs nothing
  };

  // Starts showing on `out` how far `bytes_read` (a run's
  // PreprocProgress::bytes_read) has come of `total_bytes`, the dumps' size
  // measured beforehand: the run sets its own total while this thread may
  // be reading.
  ProgressDisplay(const std::atomic<std::uint64_t>& bytes_read, std::uint64_t total_bytes, std::ostream& out,
                  Style style);
  // Stops, and clears the terminal's line.
  ~ProgressDisplay();

  ProgressDisplay(const ProgressDisplay&) = delete;
  ProgressDisplay& operator=(const ProgressDisplay&) = delete;

 private:
  void show_until_stopped();

  const std::atomic<std::uint64_t>& bytes_read_;
  const std::uint64_t total_bytes_;
  std::ostream& out_;
  const Style style_;
  int logged_tenths_ = -1;  // the tenths of the dumps read when last logged
  std::mutex mutex_;
  std::condition_variable stop_requested_;
  bool stop_ = false;
  std::thread thread_;
};

}  // namespace refgrove

#endif  // REFGROVE_TOOLS_PROGRESS_DISPLAY_H_
