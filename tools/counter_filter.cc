#include "tools/counter_filter.h"

namespace refgrove {

CounterFilter::int_type CounterFilter::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  const std::lock_guard<std::mutex> lock(mutex_);
  put(traits_type::to_char_type(c));
  return c;
}

std::streamsize CounterFilter::xsputn(const char* s, std::streamsize n) {
  const std::lock_guard<std::mutex> lock(mutex_);
  for (std::streamsize i = 0; i < n; ++i) put(s[i]);
  return n;
}

void CounterFilter::write_path_as(std::string from, std::string to) {
  const std::lock_guard<std::mutex> lock(mutex_);
  from_ = std::move(from);
  to_ = std::move(to);
}

int CounterFilter::sync() {
  const std::lock_guard<std::mutex> lock(mutex_);
  target_ << pending_;
  pending_.clear();
  target_.flush();
  return target_ ? 0 : -1;
}

void CounterFilter::put(char ch) {
  if (ch == '\r') {
    in_counter_ = true;
    return;
  }
  if (in_counter_) {
    if (ch >= '0' && ch <= '9') return;
    in_counter_ = false;
    if (ch == '\n') return;
  }
  pass(ch);
}

void CounterFilter::pass(char ch) {
  if (from_.empty()) {
    target_.put(ch);
    return;
  }
  pending_ += ch;
  while (!pending_.empty() && !from_.starts_with(pending_)) {
    target_.put(pending_.front());
    pending_.erase(0, 1);
  }
  if (pending_ == from_) {
    target_ << to_;
    pending_.clear();
  }
}

}  // namespace refgrove
