// Positions, parser errors and the string helpers.
#include <sstream>

#include <gtest/gtest.h>

#include "tokenizer/parser_error.h"
#include "tokenizer/string_helpers.h"
#include "tokenizer/tokenizer_pos.h"

namespace {

std::string Printed(const TokenizerPos& p) {
  std::ostringstream os;
  p.write(os);
  return os.str();
}

std::string Printed(const ParserError& e) {
  std::ostringstream os;
  e.write(os);
  return os.str();
}

TokenizerPos At(int row, int column) {
  TokenizerPos p;
  p.set(row, column);
  return p;
}

TEST(TokenizerPosTest, WriteAndGetString) {
  struct Case {
    TokenizerPos pos;
    int row_width, column_width;
    const char* written;
    const char* padded;
  };
  const Case cases[] = {
      {TokenizerPos(), 2, 2, "?:?", " ?:? "},
      {At(3, 5), 4, 3, "3:4", "   3:4  "},
      {At(123, 1), 1, 1, "123:0", "123:0"},     // widths too small: no padding
      {At(1, 0), 0, 0, "1:-1", "1:-1"},         // start of a line
      {At(-10, 4), 3, 1, "-10:3", "  ?:3"},     // one unknown field prints numerically
      {At(7, -1), 1, 2, "7:-2", "7:? "},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Printed(c.pos), c.written) << c.written;
    EXPECT_EQ(c.pos.getString(c.row_width, c.column_width), c.padded) << c.written;
  }
}

TEST(ParserErrorTest, WriteAndEquals) {
  const ParserError anonymous("unexpected end of file", At(12, 8), nullptr);
  const ParserError named("unexpected end of file", At(12, 8), "graph.txt");
  EXPECT_EQ(Printed(anonymous), "unexpected end of file at 12:7");
  EXPECT_EQ(Printed(named), "unexpected end of file at 12:7, while reading 'graph.txt'");
  EXPECT_EQ(Printed(ParserError("x", TokenizerPos(), "")), "x at ?:?");

  EXPECT_TRUE(named.equals(&named));
  EXPECT_FALSE(named.equals(&anonymous));
  const ParserError moved("unexpected end of file", At(12, 9), "graph.txt");
  EXPECT_FALSE(named.equals(&moved));
  const ParserError other_text("unexpected end of filE", At(12, 8), "graph.txt");
  EXPECT_FALSE(named.equals(&other_text));
}

TEST(StringHelpersTest, IntegerAndFloatTests) {
  struct Case {
    const char* s;
    bool integer, floating;
  };
  const Case cases[] = {
      {"", false, false},     {"0", true, true},      {"-", true, true},
      {"+", true, true},      {"1-", false, true},    {"-12", true, true},
      {"+-1", false, true},   {"E", false, true},     {"1.5x", false, false},
      {"1e2e3", false, true}, {"..", false, true},    {" 1", false, false},
      {"12a", false, false},  {"1.5", false, true},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(is_integer(c.s), c.integer) << '"' << c.s << '"';
    EXPECT_EQ(is_float(c.s), c.floating) << '"' << c.s << '"';
  }
}

TEST(StringHelpersTest, Edits) {
  struct Case {
    const char* in;
    const char* stripped;
  };
  const Case cases[] = {
      {"'ab\"", "ab"}, {"x'", "x'"}, {"\"", "\""}, {"''", ""}, {"\"abc\"", "abc"}, {"", ""},
  };
  for (const Case& c : cases) {
    std::string s = c.in;
    strip_string_markers(s);
    EXPECT_EQ(s, c.stripped) << c.in;
  }
}

TEST(StringHelpersTest, CaseInsensitivePrefix) {
  struct Case {
    const char* s;
    const char* t;
    bool equal;
  };
  const Case cases[] = {
      {"abc", "ABCDEF", true}, {"abc", "AB", false}, {"to", "TOKEN", true},
      {"", "anything", true},  {"ti", "Title", true}, {"tx", "Title", false},
      {"a", "", false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(str_i_equals(c.s, c.t), c.equal) << c.s << " / " << c.t;
  }
  // A NUL inside s where t ends must not read past t.
  EXPECT_FALSE(str_i_equals(std::string("a\0b", 3), "a"));
}

}  // namespace
