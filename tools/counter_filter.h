// CounterFilter: a stream buffer that passes text on to another stream
// without the running counters of preprocessing ("\r" and a count, written
// every thousand documents or records so that on a terminal each overwrites
// the last). In a log they would run together as "10002000300040005000";
// the line end that closes a run of them goes with them.
#ifndef REFGROVE_TOOLS_COUNTER_FILTER_H_
#define REFGROVE_TOOLS_COUNTER_FILTER_H_

#include <ostream>
#include <streambuf>

class CounterFilter : public std::streambuf {
 public:
  explicit CounterFilter(std::ostream& target) : target_(target) {}

 protected:
  int_type overflow(int_type c) override;
  int sync() override;

 private:
  std::ostream& target_;
  bool in_counter_ = false;  // after a "\r", up to the first byte that is not a digit
};

#endif  // REFGROVE_TOOLS_COUNTER_FILTER_H_
