// The JSON API's parameters: reading them from the request's texts, and the
// error the API answers instead of a result.
#ifndef REFGROVE_WEB_API_PARAMS_H_
#define REFGROVE_WEB_API_PARAMS_H_

#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>

#include "network/ranking.h"

namespace refgrove::web {

// Answered as {"error": what()} with this HTTP status: 400 for a bad
// parameter, 404 for an unknown document or author.
class ApiError : public std::runtime_error {
 public:
  ApiError(int status, const std::string& message) : std::runtime_error(message), status_(status) {}
  int status() const { return status_; }

 private:
  int status_;
};

// The largest "limit" of any list: the most items an answer lists.
inline constexpr int kMaxLimit = 1000;

ApiError bad_parameter(std::string_view name, std::string_view expected);

// `text` as a decimal integer from lo to hi (digits only, an optional "-"),
// else a 400 naming the parameter `name`.
int parse_int(std::string_view text, std::string_view name, int lo, int hi);

// The position of `text` among `choices`, else a 400 naming `name`.
std::size_t parse_choice(std::string_view text, std::string_view name, std::initializer_list<std::string_view> choices);

// "FROM-TO", FROM <= TO, years from 0 to 9999.
YearRange parse_years(std::string_view text);

}  // namespace refgrove::web

#endif  // REFGROVE_WEB_API_PARAMS_H_
