// The parsing interface: pushback, tests, insisting operations and numbers.
#include <climits>
#include <functional>
#include <random>

#include <gtest/gtest.h>

#include "tokenizer/string_tokenizer.h"
#include "tokenizer/tokenizer_test_util.h"

namespace refgrove {

namespace tokenizer_test {
namespace {

TEST(ParsingTest, PeekAndPushback) {
  std::unique_ptr<TokenizerLanguage> lang = MakeLanguage(Lang::kDefault);
  StringTokenizer t("a  b c", lang.get());
  std::string peeked;
  t.peek_token(&peeked);
  EXPECT_EQ(peeked, "a");
  t.next_token();
  EXPECT_EQ(Render(t), "a@1:0");

  // A token that does not match comes back with its position and spacing.
  EXPECT_FALSE(t.is_next_token("x"));
  TokenAndPos b;
  t.next_token_and_pos(b);  // b is checked as it comes back below
  EXPECT_EQ(Render(t), "_b@1:3");

  // Text pushed back stands at the last token's position, or the one given, without spacing; last in, first out.
  t.pushback_token("x");
  t.next_token();
  EXPECT_EQ(Render(t), "x@1:3");
  TokenizerPos p;
  p.set(9, 3);
  t.pushback_token(std::string("y"), p);
  t.pushback_token(b);
  EXPECT_EQ(Tokens(t), "_b@1:3 | y@9:2 | _c@1:5");
}

TEST(ParsingTest, TestsAndInsistingOperations) {
  std::unique_ptr<TokenizerLanguage> lang = MakeLanguage(Lang::kComments);
  StringTokenizer t("; ab TITLE ti , : : x /* c */ // y\n % z", lang.get());
  EXPECT_TRUE(t.has_more_tokens());
  EXPECT_TRUE(t.has_more_tokens());  // asking twice changes nothing
  EXPECT_EQ(t.ensure_next_token_in(",;"), ';');
  EXPECT_TRUE(t.has_more_tokens());
  EXPECT_EQ(t.is_next_token_in("ab"), -1);  // "ab" is two characters
  EXPECT_TRUE(t.is_next_token("ab"));
  EXPECT_TRUE(t.is_next_token_uc("title"));
  EXPECT_TRUE(t.is_next_token_uc("Title"));  // "ti" is a prefix of it
  EXPECT_EQ(t.is_next_token_in(".,"), ',');
  t.ensure_next_token_list("::");
  t.ensure_next_token("x");
  // Only comments are left; has_more_tokens does not look at the pushback stack.
  EXPECT_FALSE(t.has_more_tokens());
  t.pushback_token();
  EXPECT_FALSE(t.has_more_tokens());
  EXPECT_EQ(t.next_token(), "x");
}

TEST(ParsingTest, Errors) {
  struct Case {
    const char* input;
    std::function<void(Tokenizer&)> op;
    const char* error;
  };
  const Case cases[] = {
      {"Authors", [](Tokenizer& t) { t.ensure_next_token("Title"); }, "expected 'Title', found 'Authors' at 1:0"},
      {"x ab",
       [](Tokenizer& t) {
         t.next_token();
         t.ensure_next_token_in(",;");
       },
       "expected one of ',;', found 'ab' at 1:2"},
      // Reported at the token before the list.
      {"x\n: ;",
       [](Tokenizer& t) {
         t.next_token();
         t.ensure_next_token_list("::");
       },
       "expected :: at 1:0"},
      {"x :",
       [](Tokenizer& t) {
         t.next_token();
         t.ensure_next_token_list("::");
       },
       "unexpected end of file at 1:2"},
      {"12abc", [](Tokenizer& t) { t.next_integer(); }, "expected integer, not '12abc' at 1:0"},
      {"a -",
       [](Tokenizer& t) {
         t.next_token();
         t.next_integer();
       },
       "expected integer, not '-' at 1:2"},
      // Errors name the file being read.
      {"",
       [](Tokenizer& t) {
         t.file_name = "in.txt";
         t.next_token();
       },
       "unexpected end of file at 0:-1, while reading 'in.txt'"},
      {"a",
       [](Tokenizer& t) {
         t.next_token();
         t.is_next_token("a");
       },
       "unexpected end of file at 1:0"},
      {"a",
       [](Tokenizer& t) {
         t.next_token();
         t.peek_token(&t.token);
       },
       "unexpected end of file at 1:0"},
      {"a",
       [](Tokenizer& t) {
         t.next_token();
         t.next_double();
       },
       "unexpected end of file at 1:0"},
  };
  for (const Case& c : cases) {
    std::unique_ptr<TokenizerLanguage> lang = MakeLanguage(Lang::kBare);
    lang->single_char_tokens.add_all(":;,");
    StringTokenizer t(c.input, lang.get());
    EXPECT_EQ(ErrorOf([&] { c.op(t); }), c.error) << "input: \"" << Escape(c.input) << '"';
  }
}

TEST(ParsingTest, Integers) {
  struct Case {
    const char* token;
    bool whole;
    int value;
  };
  const Case cases[] = {
      // Whole numbers, clamped out of range as a 32-bit strtol does; then the others, with their leading digits.
      {"42", true, 42},
      {"+7", true, 7},
      {"-0012", true, -12},
      {"2147483647", true, INT_MAX},
      {"2147483648", true, INT_MAX},
      {"-2147483649", true, INT_MIN},
      {"99999999999999999999999", true, INT_MAX},
      {"12abc", false, 12},
      {"x", false, 0},
      {"-", false, 0},
      {"1.5", false, 1},
  };
  TokenizerLanguage lang;  // no single-character tokens: "+7" is one token
  lang.strings = 0;
  for (const Case& c : cases) {
    StringTokenizer t(c.token, &lang);
    int v = -1;
    EXPECT_EQ(t.try_next_integer(&v), c.whole) << c.token;
    EXPECT_EQ(v, c.value) << c.token;
    EXPECT_EQ(t.try_next_token(), "") << c.token << ": the token is consumed either way";

    t.set_string(c.token);
    if (c.whole) {
      EXPECT_EQ(t.next_integer(), c.value) << c.token;
    } else {
      EXPECT_THROW(t.next_integer(), ParserError) << c.token;
    }
  }
}

TEST(ParsingTest, RandomOperationSequencesStaySafe) {
  // Any mix of operations on any input either works or throws ParserError;
  // under the sanitizers this also checks the pushback buffers.
  const std::string alphabet = "a1 .:'\"/*%\n\t<=Title";
  std::mt19937 rng(7);
  for (int round = 0; round < 2000; ++round) {
    std::string input;
    const int n = static_cast<int>(rng() % 30);
    for (int i = 0; i < n; ++i) input += alphabet[rng() % alphabet.size()];
    const Lang kind = static_cast<Lang>(rng() % 6);
    std::unique_ptr<TokenizerLanguage> lang = MakeLanguage(kind);
    StringTokenizer t(input.c_str(), lang.get());
    if (!lang->sub_languages.empty()) t.select_language(0);
    int v = 0;
    std::string s;
    for (int step = 0; step < 40; ++step) {
      try {
        switch (rng() % 9) {
          case 0:
            t.has_more_tokens();
            break;
          case 1:
            t.try_next_token();
            break;
          case 2:
            t.pushback_token();
            break;
          case 3:
            if (t.has_more_tokens()) t.peek_token(&s);
            break;
          case 4:
            t.try_next_integer(&v);
            break;
          case 5:
            t.is_next_token("a");
            break;
          case 6:
            t.read_line();
            break;
          case 7:
            if (!lang->sub_languages.empty()) t.try_find_lang_elem(0);
            break;
          default:
            t.is_next_token_in(".:");
            break;
        }
      } catch (const ParserError&) {
      }
    }
  }
}

}  // namespace
}  // namespace tokenizer_test

}  // namespace refgrove
