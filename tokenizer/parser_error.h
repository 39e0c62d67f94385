// The one exception type of the tokenizer toolkit.
#ifndef REFGROVE_TOKENIZER_PARSER_ERROR_H_
#define REFGROVE_TOKENIZER_PARSER_ERROR_H_

#include <ostream>
#include <string>

#include "tokenizer/tokenizer_pos.h"

namespace refgrove {

// Bad input found while tokenizing or parsing. Thrown by value, caught by
// reference. It deliberately stands outside the std::exception hierarchy:
// parsers catch it around a whole parse and print it with write(), while
// every other exception passes through them untouched.
//
// The toolkit builds these through Tokenizer::error(), which fills in the
// position of the offending token and the name of the file being read.
class ParserError {
 public:
  std::string message;    // e.g. "unexpected end of file"
  std::string file_name;  // empty when unknown
  TokenizerPos pos;       // normally the position of the offending token

  // A null file_name gives an empty file_name.
  ParserError(const std::string& message_, const TokenizerPos& pos_, const char* file_name_);

  // Same message, file name and position.
  bool equals(const ParserError* other) const;

  // "<message> at <row:column>", followed by ", while reading '<file>'"
  // when the file name is known. No line end.
  std::ostream& write(std::ostream& os) const;
};

}  // namespace refgrove

#endif  // REFGROVE_TOKENIZER_PARSER_ERROR_H_
