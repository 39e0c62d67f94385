// Goals and terms in Prolog syntax, for the toplevel over the simulated
// host: parsing a goal into calls whose arguments are built on the heap,
// cutting input text into goals, and writing terms and answers back.
//
// Supported: integers, floats (digits, '.', digits, optional exponent),
// plain atoms (lower-case start), quoted atoms ('...', with \\ \' \n \t and
// '' escapes), [] , variables (upper-case or '_' start; '_' alone is always
// fresh), lists ([a, b | T]) and conjunctions of calls with ','.
#ifndef REFGROVE_HOST_TERM_TEXT_H_
#define REFGROVE_HOST_TERM_TEXT_H_

#include <istream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "module/host_machine.h"

namespace refgrove {

namespace toplevel {

struct SyntaxError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Call {
  std::string name;
  std::vector<term> args;
};

struct Query {
  std::vector<Call> calls;
  // Named variables in order of first appearance ('_'-prefixed ones included).
  std::vector<std::pair<std::string, term>> variables;
};

// Parses one goal; a final '.' is optional. Throws SyntaxError, or
// lumox_sim::HostLimitError when its terms do not fit in the heap or its
// lists are nested too deeply.
Query parse_query(LumoxMachine* m, const std::string& text);

// Writes a term as writeq would: atoms quoted where needed, floats always
// with a fraction, lists with ", " between items, unbound variables as _G<n>.
std::string format_term(term t);

// "X = 1,\nY = foo." for the bound named variables (those not starting with
// '_'), or "true." when there are none.
std::string format_answer(const Query& query);

// Cuts text into goals: a goal ends at a '.' that is followed by white space
// or the end of the text, outside quotes. '%' starts a comment up to the line
// end. Text after the last '.' that is not blank is a goal as well.
class GoalReader {
 public:
  explicit GoalReader(std::istream& in) : in_(in) {}
  // The next goal without its '.', trimmed; false at the end of the input.
  bool next(std::string* goal);

 private:
  std::istream& in_;
};

}  // namespace toplevel

}  // namespace refgrove

#endif  // REFGROVE_HOST_TERM_TEXT_H_
