// The tokenizer under the languages of the two text dumps. The first byte
// picks the language (even: graph dump, odd: word dumps); the rest is the
// text. Every token is checked against the language's way of cutting.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "fuzz/fuzz_support.h"
#include "graph/graph_dump.h"
#include "preproc/word_preproc.h"

namespace refgrove {

namespace {

// A token is one single-character token, or a run of characters none of
// which is a single-character token or a space character.
void check_token(const std::string& token, const TokenizerLanguage& lang) {
  FUZZ_CHECK(!token.empty());
  if (token.size() == 1) return;
  for (const char c : token) {
    FUZZ_CHECK(!lang.single_char_tokens.contains(c));
    FUZZ_CHECK(!lang.space_chars.contains(c));
    FUZZ_CHECK(c != ' ');
  }
}

// Reads to the end. has_more_tokens() is not the loop's test: it does not
// count tokens that an element lookup pushed back at the end of the input.
void read_all(Tokenizer& t) {
  for (;;) {
    const std::string& token = t.try_next_token();
    if (token.empty()) break;
    check_token(token, *t.language);
  }
}

}  // namespace

int fuzz_one_input(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  std::istringstream in(std::string(reinterpret_cast<const char*>(data) + 1, size - 1),
                        std::ios::in | std::ios::binary);
  try {
    if (data[0] % 2 == 0) {
      const auto t = create_refgrovegraph_tokenizer(in);
      read_all(*t);
    } else {
      WordPreproc::WordTokenizer t(&in);
      read_all(t);
    }
  } catch (const ParserError&) {
    // Neither language has strings, numbers or block comments: nothing in
    // the scanner can fail.
    FUZZ_CHECK(false);
  }
  return 0;
}

}  // namespace refgrove

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return refgrove::fuzz_one_input(data, size);
}
