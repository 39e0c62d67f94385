#include "tools/counter_filter.h"

CounterFilter::int_type CounterFilter::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  const char ch = traits_type::to_char_type(c);
  if (ch == '\r') {
    in_counter_ = true;
    return c;
  }
  if (in_counter_) {
    if (ch >= '0' && ch <= '9') return c;
    in_counter_ = false;
    if (ch == '\n') return c;
  }
  target_.put(ch);
  return c;
}

int CounterFilter::sync() {
  target_.flush();
  return target_ ? 0 : -1;
}
