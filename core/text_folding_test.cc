#include "core/text_folding.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace {

TEST(FoldTextTest, CaseAccentsAndFormsFoldAlike) {
  struct Case {
    std::string_view text, folded;
  };
  const Case cases[] = {
      {"SuperSymmetry", "supersymmetry"},
      {"D-Branes,2", "d-branes,2"},
      {"\xC3\x89"
       "COLE",
       "ecole"},  // É composed
      {"E\xCC\x81"
       "cole",
       "ecole"},  // E + combining acute
      {"\xC9"
       "cole",
       "ecole"},  // É as a Latin-1 byte
      {"na\xEF"
       "ve",
       "naive"},                         // ï as a Latin-1 byte
      {"P. ERD\xC5\x90S", "p. erdos"},   // Ő composed
      {"P. Erdo\xCC\x8Bs", "p. erdos"},  // o + combining double acute
      {"Stra\xC3\x9F"
       "e",
       "strasse"},                      // ß
      {"\xC4\xB0stanbul", "istanbul"},  // İ
      {"\xEF\xAC\x81"
       "eld",
       "field"},                                                                                 // the ligature ﬁ
      {"\xCE\xA3\xCE\x9F\xCE\xA6\xCE\x8A\xCE\x91", "\xCF\x83\xCE\xBF\xCF\x86\xCE\xB9\xCE\xB1"},  // ΣΟΦΊΑ
      {"\xD0\x81\xD0\x96", "\xD0\xB5\xD0\xB6"},                                                  // Ё Ж -> е ж
      {"\xC3\x97", "\xC3\x97"},                                                                  // × is no letter
      {"\xC0\x80", "a\xC2\x80"},                   // overlong: two Latin-1 bytes
      {"A\xE2\x82", "aa\xC2\x82"},                 // truncated sequence: â, U+0082
      {"\xED\xA0\x80", "i \xC2\x80"},              // surrogate: í, no-break space (a space in NFKC), U+0080
      {"\xF0\x9F\x99\x82X", "\xF0\x9F\x99\x82x"},  // 4-byte sequence kept
      {"", ""},
  };
  for (const Case& c : cases) EXPECT_EQ(refgrove::fold_text(c.text), c.folded) << "text: " << c.text;
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
      {"a\xC2\xA0"
       "b",
       {"a\xC2\xA0"
        "b"}},  // no-break space is part of a term
  };
  for (const Case& c : cases) EXPECT_EQ(refgrove::split_terms(c.text), c.terms) << "text: " << c.text;
}

}  // namespace
