// Shared helpers of the tokenizer tests: a few languages and a compact
// rendering of a token stream.
#ifndef REFGROVE_TOKENIZER_TOKENIZER_TEST_UTIL_H_
#define REFGROVE_TOKENIZER_TOKENIZER_TEST_UTIL_H_

#include <cstdio>
#include <memory>
#include <sstream>
#include <string>

#include "tokenizer/stream_tokenizer.h"
#include "tokenizer/string_tokenizer.h"
#include "tokenizer/tokenizer.h"

namespace tokenizer_test {

enum class Lang {
  kBare,      // constructor defaults: no classes, strings on
  kDefault,   // initDefault
  kNumbers,   // initDefault, "." continues integers into numbers
  kComments,  // initDefault, "//", "/* */" and "%" comments, numbers
  kLines,     // default single-character tokens plus newline; blank and tab are
              // space; "%" comments
  kElements,  // initDefault, sub-language 0 selected with Title:, Authors:, <=, a b c, x
};

inline std::unique_ptr<TokenizerLanguage> MakeLanguage(Lang kind) {
  std::unique_ptr<TokenizerLanguage> l(new TokenizerLanguage());
  if (kind == Lang::kBare) return l;
  l->initDefault();
  switch (kind) {
    case Lang::kNumbers:
      l->number_char = '.';
      break;
    case Lang::kComments:
      l->number_char = '.';
      l->line_comments = 1;
      l->block_comments = 1;
      l->comment_chars.add('%');
      break;
    case Lang::kLines:
      l->space_chars.clear();
      l->space_chars.add_all(" \t");
      l->single_char_tokens.add('\n');
      l->comment_chars.add('%');
      break;
    case Lang::kElements:
      l->addSubLanguages(1);
      for (const char* e : {"Title:", "Authors:", "< =", "a:b:c", "x"}) l->addLanguageElem(0, e);
      break;
    default:
      break;
  }
  return l;
}

// C-style escapes for the characters that would hide in a listing.
inline std::string Escape(const std::string& s) {
  std::string out;
  for (unsigned char c : s) {
    if (c == '\n') {
      out += "\\n";
    } else if (c == '\t') {
      out += "\\t";
    } else if (c < 32 || c >= 127) {
      char buf[8];
      std::snprintf(buf, sizeof buf, "\\x%02x", c);
      out += buf;
    } else {
      out += static_cast<char>(c);
    }
  }
  return out;
}

// "token@row:column", with a leading "_" when white space preceded it.
inline std::string Render(const Tokenizer& t) {
  std::ostringstream os;
  if (t.space_before) os << '_';
  os << Escape(t.token) << '@';
  t.token_pos.write(os);
  return os.str();
}

// Every token up to the end, joined by " | "; a ParserError ends the list
// with "!<message>@<position>".
inline std::string Tokens(Tokenizer& t) {
  std::string out;
  try {
    while (!t.try_next_token().empty()) {
      if (!out.empty()) out += " | ";
      out += Render(t);
    }
  } catch (const ParserError& e) {
    std::ostringstream os;
    os << (out.empty() ? "!" : " | !") << e.message << '@';
    e.pos.write(os);
    out += os.str();
  }
  return out;
}

}  // namespace tokenizer_test

#endif  // REFGROVE_TOKENIZER_TOKENIZER_TEST_UTIL_H_
