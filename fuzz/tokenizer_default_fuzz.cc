// The tokenizer under the default character sets, with numbers, quoted
// strings, "//" and "/* */" comments and a comment character on.
//
// Input: a header line, then the text to tokenize. The header's bytes are
//   [0] the number character (NUL: ".")
//   [1] the seed of the sequence of parsing operations applied to the text
//   [2] bit 0: read the text through a StringTokenizer instead of a stream
//       bit 1: select sub-language 0 (element merging on)
//   [3..] element texts for sub-language 0, separated by \x01
// An input without a line end in its first 64 bytes is all text.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>

#include "fuzz/fuzz_support.h"
#include "tokenizer/stream_tokenizer.h"
#include "tokenizer/string_tokenizer.h"
#include "tokenizer/tokenizer.h"

namespace refgrove {

namespace {

constexpr std::size_t kMaxHeader = 64;

void build_language(const std::string& header, TokenizerLanguage* lang) {
  lang->initDefault();
  lang->number_char = header.size() > 0 && header[0] != '\0' ? header[0] : '.';
  lang->line_comments = 1;
  lang->block_comments = 1;
  lang->strings = 1;
  lang->comment_chars.add('%');
  lang->addSubLanguages(1);
  if (header.size() <= 3) return;
  std::size_t start = 3;
  while (start <= header.size()) {
    std::size_t end = header.find('\x01', start);
    if (end == std::string::npos) end = header.size();
    const std::string text = header.substr(start, end - start);
    // The element texts are cut with the language itself; a text that
    // does not tokenize (an open quote) is refused with ParserError.
    if (text.find('\0') == std::string::npos) {
      try {
        lang->addLanguageElem(0, text.c_str());
      } catch (const ParserError&) {
      }
    }
    start = end + 1;
  }
}

// Applies a sequence of parsing operations until the input is used up.
void drive(Tokenizer& t, fuzz::Choices& choices, std::size_t text_size) {
  const std::size_t max_steps = 4 * text_size + 64;
  int empty_in_a_row = 0;
  for (std::size_t step = 0; step < max_steps && empty_in_a_row < 4; ++step) {
    try {
      switch (choices.next(16)) {
        case 0:
        case 1:
        case 2:
        case 3: {
          const std::string& token = t.try_next_token();
          empty_in_a_row = token.empty() ? empty_in_a_row + 1 : 0;
          break;
        }
        case 4: {
          std::string peeked;
          t.peek_token(&peeked);
          break;
        }
        case 5:
          t.is_next_token("x");
          break;
        case 6: {
          int v = 0;
          t.try_next_integer(&v);
          break;
        }
        case 7:
          t.next_double();
          break;
        case 8:
          if (!t.token.empty()) t.pushback_token();
          break;
        case 9:
          t.read_line();
          break;
        case 10:
          t.try_find_lang_elem(0);
          break;
        case 11:
          t.is_next_token_in(",;");
          break;
        case 12:
          t.has_more_tokens();
          break;
        case 13: {
          TokenAndPos tp;
          t.next_token_and_pos(tp);
          break;
        }
        case 14:
          t.is_next_token_uc("ab");
          break;
        default:
          t.ensure_next_token("(");
          break;
      }
    } catch (const ParserError& e) {
      std::ostringstream text;
      e.write(text);
      ++empty_in_a_row;  // an error at the end of the input repeats
    }
  }
}

}  // namespace

int fuzz_one_input(const std::uint8_t* data, std::size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  std::string header, text = input;
  const std::size_t nl = input.find('\n');
  if (nl != std::string::npos && nl <= kMaxHeader) {
    header = input.substr(0, nl);
    text = input.substr(nl + 1);
  }
  TokenizerLanguage lang;
  build_language(header, &lang);
  const unsigned flags = header.size() > 2 ? static_cast<unsigned char>(header[2]) : 0;
  fuzz::Choices choices(header.size() > 1 ? static_cast<unsigned char>(header[1]) * 2654435761u : 1u);

  std::istringstream in(text, std::ios::in | std::ios::binary);
  std::unique_ptr<Tokenizer> t;
  if (flags & 1) {
    t = std::make_unique<StringTokenizer>(text.c_str(), &lang);  // up to the first NUL
  } else {
    t = std::make_unique<StreamTokenizer>(&in, &lang);
  }
  if (flags & 2) t->select_language(0);
  drive(*t, choices, text.size());
  return 0;
}

}  // namespace refgrove

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return refgrove::fuzz_one_input(data, size);
}
