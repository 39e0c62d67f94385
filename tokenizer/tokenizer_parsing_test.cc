// The parsing interface: pushback, tests, insisting operations and numbers.
#include <climits>
#include <functional>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "tokenizer/string_tokenizer.h"
#include "tokenizer/tokenizer_test_util.h"

namespace tokenizer_test {
namespace {

std::string Where(const Tokenizer& t) {
  std::ostringstream os;
  t.token_pos.write(os);
  return os.str();
}

TEST(ParsingTest, PeekAndPushback) {
  std::unique_ptr<TokenizerLanguage> lang = MakeLanguage(Lang::kDefault);
  StringTokenizer t("a  b c", lang.get());
  std::string peeked;
  t.peek_token(&peeked);
  EXPECT_EQ(peeked, "a");
  EXPECT_EQ(t.next_token(), "a");
  EXPECT_EQ(Where(t), "1:0");

  // A token that does not match comes back with its position and spacing.
  EXPECT_FALSE(t.is_next_token("x"));
  TokenAndPos b;
  t.next_token_and_pos(b);
  EXPECT_EQ(b.token, "b");
  EXPECT_TRUE(b.space_before);
  EXPECT_EQ(Where(t), "1:3");

  // Text pushed back stands at the last token's position, without spacing.
  t.pushback_token("x");
  EXPECT_EQ(t.next_token(), "x");
  EXPECT_EQ(Where(t), "1:3");
  EXPECT_FALSE(t.space_before);

  TokenizerPos p;
  p.set(9, 3);
  t.pushback_token(std::string("y"), p);
  t.pushback_token(b);
  EXPECT_EQ(t.next_token(), "b");  // last in, first out
  EXPECT_EQ(t.next_token(), "y");
  EXPECT_EQ(Where(t), "9:2");
  EXPECT_EQ(t.next_token(), "c");
  EXPECT_EQ(t.try_next_token(), "");
}

TEST(ParsingTest, HasMoreTokensIgnoresThePushbackStack) {
  std::unique_ptr<TokenizerLanguage> lang = MakeLanguage(Lang::kDefault);
  StringTokenizer t("a b", lang.get());
  EXPECT_TRUE(t.has_more_tokens());
  EXPECT_TRUE(t.has_more_tokens());  // asking twice changes nothing
  EXPECT_EQ(t.next_token(), "a");
  EXPECT_TRUE(t.has_more_tokens());
  EXPECT_EQ(t.next_token(), "b");
  t.pushback_token();
  EXPECT_FALSE(t.has_more_tokens());
  EXPECT_EQ(t.next_token(), "b");

  // Only comments left is no more tokens.
  std::unique_ptr<TokenizerLanguage> c = MakeLanguage(Lang::kComments);
  StringTokenizer u("a /* x */ // y\n % z", c.get());
  EXPECT_EQ(u.next_token(), "a");
  EXPECT_FALSE(u.has_more_tokens());
}

TEST(ParsingTest, TestsAndInsistingOperations) {
  std::unique_ptr<TokenizerLanguage> lang = MakeLanguage(Lang::kDefault);
  StringTokenizer t("; ab TITLE ti , : : x", lang.get());
  EXPECT_EQ(t.ensure_next_token_in(",;"), ';');
  EXPECT_EQ(t.is_next_token_in("ab"), -1);  // "ab" is two characters
  EXPECT_TRUE(t.is_next_token("ab"));
  EXPECT_TRUE(t.is_next_token_uc("title"));
  EXPECT_TRUE(t.is_next_token_uc("Title"));  // "ti" is a prefix of it
  EXPECT_EQ(t.is_next_token_in(".,"), ',');
  t.ensure_next_token_list("::");
  t.ensure_next_token("x");
  EXPECT_FALSE(t.has_more_tokens());
}

struct ErrorCase {
  const char* input;
  std::function<void(Tokenizer&)> op;
  const char* message;
  const char* at;
};

TEST(ParsingTest, Errors) {
  const ErrorCase cases[] = {
      {"Authors", [](Tokenizer& t) { t.ensure_next_token("Title"); },
       "expected 'Title', found 'Authors'", "1:0"},
      {"x ab", [](Tokenizer& t) { t.next_token(); t.ensure_next_token_in(",;"); },
       "expected one of ',;', found 'ab'", "1:2"},
      // Reported at the token before the list.
      {"x\n: ;", [](Tokenizer& t) { t.next_token(); t.ensure_next_token_list("::"); },
       "expected ::", "1:0"},
      {"x :", [](Tokenizer& t) { t.next_token(); t.ensure_next_token_list("::"); },
       "unexpected end of file", "1:2"},
      {"12abc", [](Tokenizer& t) { t.next_integer(); }, "expected integer, not '12abc'", "1:0"},
      {"a -", [](Tokenizer& t) { t.next_token(); t.next_integer(); },
       "expected integer, not '-'", "1:2"},
      {"", [](Tokenizer& t) { t.next_token(); }, "unexpected end of file", "0:-1"},
      {"a", [](Tokenizer& t) { t.next_token(); t.is_next_token("a"); },
       "unexpected end of file", "1:0"},
      {"a", [](Tokenizer& t) { t.next_token(); t.peek_token(&t.token); },
       "unexpected end of file", "1:0"},
      {"a", [](Tokenizer& t) { t.next_token(); t.next_double(); }, "unexpected end of file", "1:0"},
  };
  for (const ErrorCase& c : cases) {
    std::unique_ptr<TokenizerLanguage> lang = MakeLanguage(Lang::kBare);
    lang->single_char_tokens.add_all(":;,");
    StringTokenizer t(c.input, lang.get());
    try {
      c.op(t);
      ADD_FAILURE() << "no error for \"" << Escape(c.input) << "\", expected " << c.message;
    } catch (const ParserError& e) {
      std::ostringstream at;
      e.pos.write(at);
      EXPECT_EQ(e.message, c.message) << "input: \"" << Escape(c.input) << '"';
      EXPECT_EQ(at.str(), c.at) << "input: \"" << Escape(c.input) << '"';
    }
  }
}

TEST(ParsingTest, Integers) {
  struct Case {
    const char* token;
    bool whole;
    int value;
  };
  const Case cases[] = {
      {"42", true, 42},
      {"+7", true, 7},
      {"-0012", true, -12},
      {"2147483647", true, INT_MAX},
      {"2147483648", true, INT_MAX},  // clamped, as a 32-bit strtol does
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

TEST(ParsingTest, ResetDropsPushedBackTokens) {
  TokenizerLanguage lang;
  StringTokenizer t("a b", &lang);
  t.pushback_token("p");
  t.pushback_token("q");
  t.set_string("c d");
  EXPECT_EQ(t.next_token(), "c");
  t.pushback_token("r");
  EXPECT_EQ(t.next_token(), "r");
  EXPECT_EQ(t.next_token(), "d");
  EXPECT_EQ(t.try_next_token(), "");
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
          case 0: t.has_more_tokens(); break;
          case 1: t.try_next_token(); break;
          case 2: t.pushback_token(); break;
          case 3: if (t.has_more_tokens()) t.peek_token(&s); break;
          case 4: t.try_next_integer(&v); break;
          case 5: t.is_next_token("a"); break;
          case 6: t.read_line(); break;
          case 7: if (!lang->sub_languages.empty()) t.try_find_lang_elem(0); break;
          default: t.is_next_token_in(".:"); break;
        }
      } catch (const ParserError&) {
      }
    }
  }
}

}  // namespace
}  // namespace tokenizer_test
