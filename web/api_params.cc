#include "web/api_params.h"

#include <charconv>

namespace refgrove::web {

ApiError bad_parameter(std::string_view name, std::string_view expected) {
  return ApiError(400, std::string(name) + " must be " + std::string(expected));
}

int parse_int(std::string_view text, std::string_view name, int lo, int hi) {
  int value = 0;
  const char* end = text.data() + text.size();
  const auto [ptr, ec] = std::from_chars(text.data(), end, value);
  if (ec != std::errc() || ptr != end || value < lo || value > hi) {
    throw bad_parameter(name, "an integer from " + std::to_string(lo) + " to " + std::to_string(hi));
  }
  return value;
}

std::size_t parse_choice(std::string_view text, std::string_view name,
                         std::initializer_list<std::string_view> choices) {
  std::size_t i = 0;
  std::string listed;
  for (const std::string_view choice : choices) {
    if (text == choice) return i;
    listed += (i++ == 0 ? "" : " or ") + std::string(choice);
  }
  throw bad_parameter(name, listed);
}

YearRange parse_years(std::string_view text) {
  const std::size_t dash = text.find('-');
  if (dash == std::string_view::npos || dash == 0) throw bad_parameter("years", "FROM-TO (years from 0 to 9999)");
  const int from = parse_int(text.substr(0, dash), "years", 0, 9999);
  return YearRange{from, parse_int(text.substr(dash + 1), "years", from, 9999)};
}

}  // namespace refgrove::web
