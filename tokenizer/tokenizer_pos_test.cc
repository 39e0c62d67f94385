// Positions, parser errors and the string helpers.
#include <sstream>

#include <gtest/gtest.h>

#include "tokenizer/parser_error.h"
#include "tokenizer/string_helpers.h"
#include "tokenizer/tokenizer_pos.h"

namespace refgrove {

namespace {

template <class T>
std::string Printed(const T& x) {
  std::ostringstream os;
  x.write(os);
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
      // getString right-aligns the row and left-aligns the column, without padding when too narrow; write prints
      // "?:?" only when both fields are unknown. The column counter runs one ahead: 0 is the start of a line.
      {TokenizerPos(), 2, 2, "?:?", " ?:? "}, {At(3, 5), 4, 3, "3:4", "   3:4  "},
      {At(123, 1), 1, 1, "123:0", "123:0"},   {At(1, 0), 0, 0, "1:-1", "1:-1"},
      {At(-10, 4), 3, 1, "-10:3", "  ?:3"},   {At(7, -1), 1, 2, "7:-2", "7:? "},
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

  // Equal only in message, file and position alike.
  EXPECT_TRUE(named.equals(&named));
  for (const ParserError& other : {anonymous, ParserError("unexpected end of file", At(12, 9), "graph.txt"),
                                   ParserError("unexpected end of filE", At(12, 8), "graph.txt")}) {
    EXPECT_FALSE(named.equals(&other)) << Printed(other);
  }
}

TEST(StringHelpersTest, TestsAndEdits) {
  // The number tests are loose on purpose: a lone sign is an integer start, and floats only check the alphabet.
  const struct {
    const char* s;
    bool integer, floating;
  } numbers[] = {
      {"", false, false},  {"0", true, true},    {"-", true, true},     {"+", true, true},      {"1-", false, true},
      {"-12", true, true}, {"+-1", false, true}, {"E", false, true},    {"1.5x", false, false}, {"1e2e3", false, true},
      {"..", false, true}, {" 1", false, false}, {"12a", false, false}, {"1.5", false, true},
  };
  for (const auto& c : numbers) {
    EXPECT_EQ(is_integer(c.s), c.integer) << '"' << c.s << '"';
    EXPECT_EQ(is_float(c.s), c.floating) << '"' << c.s << '"';
  }

  const std::pair<const char*, const char*> stripped[] = {
      {"'ab\"", "ab"}, {"x'", "x'"}, {"\"", "\""}, {"''", ""}, {"\"abc\"", "abc"}, {"", ""},
  };
  for (const auto& [in, out] : stripped) {
    std::string s = in;
    strip_string_markers(s);
    EXPECT_EQ(s, out) << in;
  }

  // str_i_equals is a case-insensitive "t starts with s".
  const struct {
    const char* s;
    const char* t;
    bool equal;
  } prefixes[] = {
      {"abc", "ABCDEF", true}, {"abc", "AB", false},   {"to", "TOKEN", true}, {"", "anything", true},
      {"ti", "Title", true},   {"tx", "Title", false}, {"a", "", false},
  };
  for (const auto& c : prefixes) EXPECT_EQ(str_i_equals(c.s, c.t), c.equal) << c.s << " / " << c.t;
  // A NUL inside s where t ends must not read past t.
  EXPECT_FALSE(str_i_equals(std::string("a\0b", 3), "a"));
}

}  // namespace

}  // namespace refgrove
