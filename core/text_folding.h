// One folding of text for matching, shared by the word search, authors by
// name and the explorer, so that a word or a name typed in any face, in any
// case, with or without its accents, composed or decomposed, finds the same
// words and names.
//
// The bytes are first decoded as every text refgrove hands out
// (utf8_text.h: valid UTF-8 as it is, every other byte as Latin-1). The
// text is then brought to Unicode's compatibility composed form (NFKC: the
// ligature "ﬁ" becomes "fi"), case-folded ("ERDŐS" and "Straße" become
// "erdős" and "strasse") and stripped of its combining marks ("erdos"), by
// utf8proc. The result is UTF-8.
#ifndef REFGROVE_CORE_TEXT_FOLDING_H_
#define REFGROVE_CORE_TEXT_FOLDING_H_

#include <string>
#include <string_view>
#include <vector>

namespace refgrove {

// The folded UTF-8 form of the bytes `text`.
std::string fold_text(std::string_view text);

// The pieces of `text` between runs of ASCII white space (space, tab,
// newline, carriage return, vertical tab, form feed).
std::vector<std::string_view> split_terms(std::string_view text);

}  // namespace refgrove

#endif  // REFGROVE_CORE_TEXT_FOLDING_H_
