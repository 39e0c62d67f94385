// Shared helpers of the tokenizer tests: a few languages and a compact
// rendering of tokens, positions and errors.
#ifndef REFGROVE_TOKENIZER_TOKENIZER_TEST_UTIL_H_
#define REFGROVE_TOKENIZER_TOKENIZER_TEST_UTIL_H_

#include <functional>
#include <memory>
#include <sstream>
#include <string>

#include "tokenizer/stream_tokenizer.h"
#include "tokenizer/string_tokenizer.h"
#include "tokenizer/tokenizer.h"

namespace refgrove {

namespace tokenizer_test {

enum class Lang {
  kBare,      // constructor defaults: no classes, strings on
  kDefault,   // initDefault
  kNumbers,   // initDefault, "." continues integers into numbers
  kComments,  // kNumbers with "//", "/* */" and "%" comments
  kLines,     // initDefault single-character tokens and newline; blank and tab are space; "%" comments
  kElements,  // initDefault, sub-language 0 selected with Title:, Authors:, <=, a b c, x
};

inline std::unique_ptr<TokenizerLanguage> MakeLanguage(Lang kind) {
  std::unique_ptr<TokenizerLanguage> l(new TokenizerLanguage());
  if (kind == Lang::kBare) return l;
  l->initDefault();
  if (kind == Lang::kNumbers || kind == Lang::kComments) l->number_char = '.';
  if (kind == Lang::kComments) l->line_comments = l->block_comments = 1;
  if (kind == Lang::kComments || kind == Lang::kLines) l->comment_chars.add('%');
  if (kind == Lang::kLines) {
    l->space_chars.clear();
    l->space_chars.add_all(" \t");
    l->single_char_tokens.add('\n');
  }
  if (kind == Lang::kElements) {
    l->addSubLanguages(1);
    for (const char* e : {"Title:", "Authors:", "< =", "a:b:c", "x"}) l->addLanguageElem(0, e);
  }
  return l;
}

// C-style escapes for the characters that would hide in a listing.
inline std::string Escape(const std::string& s) {
  static const char kHex[] = "0123456789abcdef";
  std::string out;
  for (unsigned char c : s) {
    if (c == '\n' || c == '\t') {
      out += c == '\n' ? "\\n" : "\\t";
    } else if (c < 32 || c >= 127) {
      out += {'\\', 'x', kHex[c >> 4], kHex[c & 15]};
    } else {
      out += static_cast<char>(c);
    }
  }
  return out;
}

// "row:column" as a position prints itself.
inline std::string PosText(const TokenizerPos& p) {
  std::ostringstream os;
  p.write(os);
  return os.str();
}

// The ParserError thrown by f as it prints itself, or "no error".
inline std::string ErrorOf(const std::function<void()>& f) {
  try {
    f();
  } catch (const ParserError& e) {
    std::ostringstream os;
    e.write(os);
    return os.str();
  }
  return "no error";
}

// "token@row:column", with a leading "_" when white space preceded it.
inline std::string Render(const Tokenizer& t) {
  // Appended piece by piece: GCC 12 at -O3 warns (-Wrestrict) on a chain of
  // operator+ that starts from a string literal.
  std::string out = t.space_before ? "_" : "";
  out.append(Escape(t.token)).append("@").append(PosText(t.token_pos));
  return out;
}

// Every token up to the end, joined by " | "; a ParserError ends the list with "!<error>".
inline std::string Tokens(Tokenizer& t) {
  std::string out;
  const std::string error = ErrorOf([&] {
    while (!t.try_next_token().empty()) out += (out.empty() ? "" : " | ") + Render(t);
  });
  if (error != "no error") out += (out.empty() ? "!" : " | !") + error;
  return out;
}

}  // namespace tokenizer_test

}  // namespace refgrove

#endif  // REFGROVE_TOKENIZER_TOKENIZER_TEST_UTIL_H_
