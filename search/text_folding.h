// Case folding of the dumps' words and of query terms, shared by every face
// so that a term typed in Prolog, on the command line or in C finds the same
// words.
//
// A word is decoded as every text refgrove hands out (core/utf8_text.h:
// valid UTF-8 as it is, every other byte as Latin-1), and each character
// is then lowered:
//
//   A-Z                        -> a-z
//   U+00C0-U+00DE but U+00D7   -> +0x20 (À -> à ... Þ -> þ)
//   U+0100-U+0137 even         -> +1    (Ā -> ā ... Ķ -> ķ), but U+0130 İ -> i
//   U+0139-U+0148 odd          -> +1    (Ĺ -> ĺ ... Ň -> ň)
//   U+014A-U+0177 even         -> +1    (Ŋ -> ŋ ... Ŷ -> ŷ)
//   U+0178 Ÿ                   -> U+00FF ÿ
//   U+0179-U+017E odd          -> +1    (Ź -> ź ... Ž -> ž)
//
// Every other character stays as it is (ß, ĸ, ŉ, ſ, and all of Greek,
// Cyrillic and beyond). The folded word is written as UTF-8.
#ifndef REFGROVE_SEARCH_TEXT_FOLDING_H_
#define REFGROVE_SEARCH_TEXT_FOLDING_H_

#include <string>
#include <string_view>
#include <vector>

#include "core/utf8_text.h"

namespace refgrove {

// The lowered code point of `c` (see above).
char32_t fold_code_point(char32_t c);

// The folded UTF-8 form of the bytes `word`.
std::string fold_word(std::string_view word);

// The pieces of `text` between runs of ASCII white space (space, tab,
// newline, carriage return, vertical tab, form feed).
std::vector<std::string_view> split_terms(std::string_view text);

}  // namespace refgrove

#endif  // REFGROVE_SEARCH_TEXT_FOLDING_H_
