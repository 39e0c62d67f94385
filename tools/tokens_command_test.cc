// The `tokens` command, run in-process on standard input or on files.
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tools/commands.h"

namespace {

struct Result {
  int status;
  std::string out, err;
};

Result RunTokens(std::vector<std::string> args, const std::string& input) {
  args.insert(args.begin(), "tokens");
  std::vector<char*> argv;
  for (std::string& a : args) argv.push_back(&a[0]);
  argv.push_back(nullptr);
  std::istringstream in(input);
  std::ostringstream out, err;
  const int status = tokens_main(static_cast<int>(args.size()), argv.data(), in, out, err);
  return {status, out.str(), err.str()};
}

TEST(TokensCommandTest, Listings) {
  struct Case {
    std::vector<std::string> args;
    const char* input;
    const char* expected;
  };
  const Case cases[] = {
      {{}, "f(x, y)\n", "1:0 - \"f\"\n1:1 - \"(\"\n1:2 - \"x\"\n1:3 - \",\"\n1:5 ws \"y\"\n1:6 - \")\"\n"},
      {{"-"}, "", ""},
      // Explicit sets replace the defaults; newline as a visible token.
      {{"--single", ":\\n", "--space", "\\s\\t"}, "a:b\n\tc",
       "1:0 - \"a\"\n1:1 - \":\"\n1:2 - \"b\"\n2:-1 - \"\\n\"\n2:8 ws \"c\"\n"},
      {{"--number-char", ".", "--comment", "%"}, "1.5 % x\n2", "1:0 - \"1.5\"\n2:0 ws \"2\"\n"},
      {{"--no-strings"}, "'a'", "1:0 - \"'a'\"\n"},
      {{}, "'a b' \"q\\\"\"", "1:0 - \"'a b'\"\n1:6 ws \"\\\"q\\\\\\\"\\\"\"\n"},
      {{"--line-comments", "--block-comments"}, "a//x\n/*y*/b", "1:0 - \"a\"\n2:5 ws \"b\"\n"},
      {{"--element", "Title:", "--element", "< ="}, "Title: <=",
       "1:0 ws \"Title:\"\n1:7 - \"<=\"\n"},
      {{"--element", "Title:"}, "Title :", "1:0 ws \"Title\"\n1:6 ws \":\"\n"},
      {{"--space", "\\x01"}, "a\x01" "b c\xc3", "1:0 - \"a\"\n1:2 ws \"b\"\n1:4 ws \"c\\xc3\"\n"},
      // The dump languages: punctuation splits words in the word dumps only;
      // the element "Title:" stands where the token after it does.
      {{"--language", "words"}, "7 k Don't,\x01x\n",
       "1:0 - \"7\"\n1:2 ws \"k\"\n1:4 ws \"Don\"\n1:7 - \"'\"\n1:8 - \"t\"\n1:9 - \",\"\n1:11 ws \"x\"\n"
       "2:-1 - \"\\n\"\n"},
      {{"--language", "graph"}, "5 \"q\" Title: a,b\n",
       "1:0 - \"5\"\n1:2 ws \"\\\"q\\\"\"\n1:13 ws \"Title:\"\n1:13 ws \"a,b\"\n2:-1 - \"\\n\"\n"},
  };
  for (const Case& c : cases) {
    const Result r = RunTokens(c.args, c.input);
    EXPECT_EQ(r.status, 0) << "input: " << c.input << "\n" << r.err;
    EXPECT_EQ(r.out, c.expected) << "input: " << c.input;
  }
}

TEST(TokensCommandTest, Failures) {
  struct Case {
    std::vector<std::string> args;
    const char* input;
    int status;
    const char* err;
  };
  const Case cases[] = {
      {{}, "ok 'open", 1, "unterminated string constant at 1:3\n"},
      {{"--block-comments"}, "/* open", 1, "comment block '/*' not terminated at 1:0\n"},
      {{"--element", "'x"}, "", 1, "unterminated string constant at 1:0\n"},
      {{"--bogus"}, "", 2, "refgrove tokens: unknown option '--bogus' (see refgrove tokens --help)\n"},
      {{"--single"}, "", 2, "refgrove tokens: --single needs a value\n"},
      {{"--space", "\\q"}, "", 2, "refgrove tokens: bad escape in --space '\\q'\n"},
      {{"--number-char", ".."}, "", 2, "refgrove tokens: --number-char takes one character\n"},
      {{"a", "b"}, "", 2, "refgrove tokens: more than one file given\n"},
      {{"--language", "xml"}, "", 2, "refgrove tokens: unknown language 'xml' (graph or words)\n"},
      {{"--language", "words", "--no-strings"}, "", 2,
       "refgrove tokens: --language does not combine with other language options\n"},
  };
  for (const Case& c : cases) {
    const Result r = RunTokens(c.args, c.input);
    EXPECT_EQ(r.status, c.status) << "input: " << c.input;
    EXPECT_EQ(r.err, c.err) << "input: " << c.input;
  }
  // Tokens before the error are listed.
  EXPECT_EQ(RunTokens({}, "ok 'open").out, "1:0 - \"ok\"\n");
}

TEST(TokensCommandTest, FilesAndHelp) {
  char tmpl[] = "/tmp/tokens_command_test.XXXXXX";
  ASSERT_NE(mkdtemp(tmpl), nullptr);
  const std::string path = std::string(tmpl) + "/in.txt";
  std::ofstream(path) << "x\n 'y";
  testing::internal::CaptureStderr();  // the system error line of a missing file
  const Result missing = RunTokens({std::string(tmpl) + "/none.txt"}, "");
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(missing.status, 1);
  EXPECT_EQ(missing.err, "can't open: '" + std::string(tmpl) + "/none.txt' at 0:-1, while reading '" +
                             std::string(tmpl) + "/none.txt'\n");

  const Result named = RunTokens({path}, "");
  EXPECT_EQ(named.status, 1);
  EXPECT_EQ(named.out, "1:0 - \"x\"\n");
  EXPECT_EQ(named.err, "unterminated string constant at 2:1, while reading '" + path + "'\n");
  std::remove(path.c_str());
  std::remove(tmpl);

  const Result help = RunTokens({"--help"}, "");
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("usage: refgrove tokens"), std::string::npos);
}

}  // namespace
