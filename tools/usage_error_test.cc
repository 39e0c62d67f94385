// Usage errors of the refgrove tool: numeric arguments read as decimal only,
// and messages that name the command, the argument and what was expected.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "testing/test_files.h"
#include "tools/tool_support.h"
#include "tools/tool_test_util.h"
#include "tools/usage_error.h"

namespace refgrove {

namespace {

TEST(UsageErrorTest, NumbersAreDecimalInt32) {
  struct Case {
    const char* text;
    std::int64_t value;  // when accepted
    const char* reason;  // when not
  };
  const Case cases[] = {
      {"0101", 101, ""},  // not octal
      {"-5", -5, ""},
      {"0", 0, ""},
      {"-2147483648", INT_MIN, ""},
      {"2147483647", INT_MAX, ""},
      {"0x41", 0, "expected a decimal number, not '0x41'"},
      {"", 0, "expected a decimal number, not ''"},
      {"-", 0, "expected a decimal number, not '-'"},
      {"+5", 0, "expected a decimal number, not '+5'"},
      {" 5", 0, "expected a decimal number, not ' 5'"},
      {"1e3", 0, "expected a decimal number, not '1e3'"},
      {"2147483648", 0, "2147483648 is beyond the int32 range, -2147483648 to 2147483647"},
      {"99999999999999999999", 0, "99999999999999999999 is beyond the int32 range, -2147483648 to 2147483647"},
  };
  for (const Case& c : cases) {
    std::int64_t value = 0;
    EXPECT_EQ(parse_decimal(c.text, INT_MIN, INT_MAX, &value), c.reason) << c.text;
    EXPECT_EQ(value, c.value) << c.text;
  }
  std::int64_t value = 0;
  EXPECT_EQ(parse_decimal("11", 0, 10, &value), "11 is beyond the range 0 to 10");
}

TEST(UsageErrorTest, NearestName) {
  const std::vector<std::string> names = {"cite", "cite_count", "title_word", "stats", "key"};
  const std::pair<const char*, const char*> cases[] = {
      {"titel_word", "title_word"},
      {"stat", "stats"},
      {"cite", "cite"},
      {"citecount", "cite_count"},
      {"ky", "key"},
      {"xyz", ""},
      {"words", ""},
      {"ctie", "cite"},
      {"sttas", "stats"},
  };
  for (const auto& [word, nearest] : cases) EXPECT_EQ(nearest_name(word, names), nearest) << word;
}

// The first line of standard error and the exit status of command lines
// that are wrong. They fail before any directory is read, but for those
// that name a directory that is not there or not one.
TEST(UsageErrorTest, Messages) {
  TempDir dir;
  const std::string file = dir.path() + "file", missing = dir.path() + "none";
  write_file(file, "");
  struct Case {
    std::vector<std::string> args;
    int status;
    std::string first_line;
  };
  const Case cases[] = {
      {{"query", missing, "key", "0x41"}, 2, "refgrove query key: DID: expected a decimal number, not '0x41'"},
      {{"printdoc", "107", missing}, 2, "refgrove printdoc: DID: expected a decimal number, not '" + missing + "'"},
      {{"cited-by", missing, "99999999999"},
       2,
       "refgrove cited-by: DID: 99999999999 is beyond the int32 range, -2147483648 to 2147483647"},
      {{"author", missing, "1.5"}, 2, "refgrove author: ID: expected a decimal number, not '1.5'"},
      {{"author-docs", missing, "0b1"}, 2, "refgrove author-docs: ID: expected a decimal number, not '0b1'"},
      {{"show", missing, "1", "x"}, 2, "refgrove show: DID: expected a decimal number, not 'x'"},
      {{"generate", "--docs", "0x10", missing}, 2, "refgrove generate: --docs: expected a decimal number, not '0x10'"},
      {{"generate", "--docs", "200000000", missing},
       2,
       "refgrove generate: --docs: 200000000 is beyond the range 0 to 100000000"},
      {{"query", missing, "titel_word", "1", "1"},
       2,
       "refgrove query: no operation 'titel_word'; the nearest is 'title_word'"},
      {{"query", missing}, 2, "refgrove query: no operation given"},
      {{"stat", missing}, 2, "refgrove: no command 'stat'; the nearest is 'stats'"},
      {{"rnak", missing}, 2, "refgrove: no command 'rnak'; the nearest is 'rank'"},
      {{"rank", missing, "--limt", "3"}, 2, "refgrove rank: no option '--limt'; did you mean --limit?"},
      {{"rank", missing, "--limt=3"}, 2, "refgrove rank: no option '--limt'; did you mean --limit?"},
      {{"neighbourhood", missing, "1", "--hop", "2"},
       2,
       "refgrove neighbourhood: no option '--hop'; did you mean --hops?"},
      {{"components", missing, "--al"}, 2, "refgrove components: no option '--al'; did you mean --all?"},
      {{"rank", missing, "--colour"}, 2, "refgrove rank: no option '--colour'"},
      {{"query", missing, "cite", "1"}, 2, "refgrove query cite: I is required"},
      {{"query", missing, "last_did"}, 1, "refgrove query: " + missing + ": no such directory"},
      {{"show", file, "1"}, 1, "refgrove show: " + file + ": not a directory"},
      {{"check", missing}, 1, "refgrove check: " + missing + ": no such directory"},
  };
  for (const Case& c : cases) {
    std::string line;
    for (const std::string& a : c.args) line += a + " ";
    const ToolRun r = run_tool(c.args);
    EXPECT_EQ(r.status, c.status) << line;
    EXPECT_EQ(r.err.substr(0, r.err.find('\n')), c.first_line) << line;
  }
  // A usage error shows the command's usage, an operation's after DIR.
  EXPECT_EQ(run_tool({"printdoc", "107", missing}).err,
            "refgrove printdoc: DID: expected a decimal number, not '" + missing +
                "'\nUsage: refgrove printdoc [OPTIONS] DIR DID...\nRun 'refgrove printdoc --help' for more.\n");
  EXPECT_NE(run_tool({"query", missing, "cite", "1"}).err.find("\nUsage: refgrove query [OPTIONS] DIR cite DID I\n"),
            std::string::npos);
}

}  // namespace

}  // namespace refgrove
