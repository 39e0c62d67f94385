#include "tools/progress_display.h"

#include <chrono>
#include <cstdio>

namespace refgrove {

namespace {

constexpr auto kRedrawInterval = std::chrono::milliseconds(250);
constexpr auto kLogInterval = std::chrono::seconds(1);
// Clears from the cursor to the end of the line, so that a shorter line
// leaves nothing of the longer one before it.
constexpr char kClearLine[] = "\r\033[K";

std::string megabytes(double bytes) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f MB", bytes / 1e6);
  return text;
}

std::string duration(double seconds) {
  const long s = static_cast<long>(seconds + 0.5);
  char text[32];
  if (s < 60) {
    std::snprintf(text, sizeof text, "%ld s", s);
  } else {
    std::snprintf(text, sizeof text, "%ld min %02ld s", s / 60, s % 60);
  }
  return text;
}

}  // namespace

std::string progress_line(std::uint64_t read, std::uint64_t total, double seconds) {
  if (read >= total && total > 0)
    return "read " + megabytes(static_cast<double>(total)) + "; writing the data directory";
  const int percent = total > 0 ? static_cast<int>(100.0 * static_cast<double>(read) / static_cast<double>(total)) : 0;
  std::string line = "reading the dumps: " + std::to_string(percent) + "% of " + megabytes(static_cast<double>(total));
  if (read == 0 || seconds <= 0) return line;
  const double rate = static_cast<double>(read) / seconds;
  return line + ", " + megabytes(rate) + "/s, " + duration(static_cast<double>(total - read) / rate) + " left";
}

bool log_is_due(std::uint64_t read, std::uint64_t total, int* logged_tenths) {
  const int tenths = read >= total ? 10 : static_cast<int>(10 * read / total);
  if (tenths <= *logged_tenths) return false;
  *logged_tenths = tenths;
  return true;
}

ProgressDisplay::ProgressDisplay(const std::atomic<std::uint64_t>& bytes_read, std::uint64_t total_bytes,
                                 std::ostream& out, Style style)
    : bytes_read_(bytes_read), total_bytes_(total_bytes), out_(out), style_(style), thread_([this] {
        show_until_stopped();
      }) {}

ProgressDisplay::~ProgressDisplay() {
  {
    std::lock_guard<std::mutex> lock(mutex_);
    stop_ = true;
  }
  stop_requested_.notify_one();
  thread_.join();
  if (style_ == Style::kTerminal) out_ << kClearLine << std::flush;
}

void ProgressDisplay::show_until_stopped() {
  const auto start = std::chrono::steady_clock::now();
  const auto interval = style_ == Style::kTerminal ? kRedrawInterval : kLogInterval;
  std::unique_lock<std::mutex> lock(mutex_);
  // A log waits first: a run that ends within a second needs no progress.
  if (style_ == Style::kLog && stop_requested_.wait_for(lock, interval, [this] { return stop_; })) return;
  do {
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    const std::uint64_t read = bytes_read_;
    const std::string line = progress_line(read, total_bytes_, elapsed.count());
    if (style_ == Style::kTerminal) {
      out_ << kClearLine << line << std::flush;
    } else if (log_is_due(read, total_bytes_, &logged_tenths_)) {
      out_ << "refgrove preprocess: " + line + "\n" << std::flush;  // one write: the run writes there too
    }
  } while (!stop_requested_.wait_for(lock, interval, [this] { return stop_; }));
}

}  // namespace refgrove
