// CounterFilter: a stream buffer that passes text on to another stream
// without the running counters of preprocessing ("\r" and a count, written
// every thousand documents or records so that on a terminal each overwrites
// the last). In a log they would run together as "10002000300040005000";
// the line end that closes a run of them goes with them.
//
// It can also write one path as another: the staging directory of a run as
// the target it stands for.
//
// Several threads may write through it at once, each through an ostream of
// its own: every write reaches the target whole.
#ifndef REFGROVE_TOOLS_COUNTER_FILTER_H_
#define REFGROVE_TOOLS_COUNTER_FILTER_H_

#include <mutex>
#include <ostream>
#include <streambuf>
#include <string>

namespace refgrove {

class CounterFilter : public std::streambuf {
 public:
  explicit CounterFilter(std::ostream& target) : target_(target) {}

  // From now on, `from` is written as `to`.
  void write_path_as(std::string from, std::string to);

 protected:
  int_type overflow(int_type c) override;
  std::streamsize xsputn(const char* s, std::streamsize n) override;
  int sync() override;

 private:
  void put(char ch);   // with mutex_ held
  void pass(char ch);  // past the counters, with mutex_ held

  std::ostream& target_;
  std::mutex mutex_;
  bool in_counter_ = false;  // after a "\r", up to the first byte that is not a digit
  std::string from_, to_;
  std::string pending_;  // the last bytes, while they may start `from_`
};

}  // namespace refgrove

#endif  // REFGROVE_TOOLS_COUNTER_FILTER_H_
