#include "search/text_folding.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace refgrove {

namespace {

TEST(FoldWordTest, LowersAsciiAndLatinLettersDecodedAsExportDecodes) {
  struct Case {
    std::string_view word, folded;
  };
  const Case cases[] = {
      {"SuperSymmetry", "supersymmetry"},
      {"D-Branes,2", "d-branes,2"},
      {"\xC3\x89" "COLE", "\xC3\xA9" "cole"},                // É in UTF-8
      {"\xC9" "cole", "\xC3\xA9" "cole"},                    // É as a Latin-1 byte
      {"na\xEF" "ve", "na\xC3\xAF" "ve"},                    // ï as a Latin-1 byte
      {"\xC3\x97\xC3\x9F\xC3\xBF", "\xC3\x97\xC3\x9F\xC3\xBF"},  // × ß ÿ stay
      {"\xC3\x9E", "\xC3\xBE"},                              // Þ -> þ
      {"ERD\xC5\x90S", "erd\xC5\x91s"},                      // Ő -> ő
      {"\xC4\xB0", "i"},                                     // İ -> i
      {"\xC4\xB6\xC4\xB8", "\xC4\xB7\xC4\xB8"},              // Ķ -> ķ, ĸ stays
      {"\xC4\xB9\xC5\x87\xC5\x89", "\xC4\xBA\xC5\x88\xC5\x89"},  // Ĺ Ň -> ĺ ň, ŉ stays
      {"\xC5\x8A\xC5\xB6", "\xC5\x8B\xC5\xB7"},              // Ŋ Ŷ -> ŋ ŷ
      {"\xC5\xB8", "\xC3\xBF"},                              // Ÿ -> ÿ
      {"\xC5\xB9\xC5\xBD\xC5\xBF", "\xC5\xBA\xC5\xBE\xC5\xBF"},  // Ź Ž -> ź ž, ſ stays
      {"\xCE\xA3\xD0\x96", "\xCE\xA3\xD0\x96"},              // Greek, Cyrillic stay
      {"\xC0\x80", "\xC3\xA0\xC2\x80"},                      // overlong: two Latin-1 bytes, À lowered
      {"A\xE2\x82", "a\xC3\xA2\xC2\x82"},                    // truncated sequence
      {"\xED\xA0\x80", "\xC3\xAD\xC2\xA0\xC2\x80"},          // surrogate
      {"\xF0\x9F\x99\x82X", "\xF0\x9F\x99\x82x"},            // 4-byte sequence kept
      {"", ""},
  };
  for (const Case& c : cases) EXPECT_EQ(refgrove::fold_word(c.word), c.folded) << "word: " << c.word;
}

TEST(SplitTermsTest, SplitsOnAsciiWhiteSpaceOnly) {
  struct Case {
    std::string_view text;
    std::vector<std::string_view> terms;
  };
  const Case cases[] = {
      {"", {}},
      {" \t\n\r\v\f", {}},
      {"black holes", {"black", "holes"}},
      {"  d-brane\t\tsuper* \n", {"d-brane", "super*"}},
      {"a\xC2\xA0" "b", {"a\xC2\xA0" "b"}},  // no-break space is part of a term
  };
  for (const Case& c : cases) EXPECT_EQ(refgrove::split_terms(c.text), c.terms) << "text: " << c.text;
}

}  // namespace

}  // namespace refgrove
