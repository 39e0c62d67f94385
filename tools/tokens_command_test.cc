// The `tokens` command, run in-process on standard input or on files.
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tools/tool_test_util.h"

namespace refgrove {

namespace {

// The exit status, then standard output, then standard error after "stderr: " when there is any.
std::string RunTokens(std::vector<std::string> args, const std::string& input) {
  args.insert(args.begin(), "tokens");
  const ToolRun r = run_tool(std::move(args), input);
  return std::to_string(r.status) + "\n" + r.out + (r.err.empty() ? "" : "stderr: " + r.err);
}

TEST(TokensCommandTest, ListingsAndFailures) {
  struct Case {
    std::vector<std::string> args;
    const char* input;
    const char* expected;
  };
  const Case cases[] = {
      {{}, "f(x, y)\n", "0\n1:0 - \"f\"\n1:1 - \"(\"\n1:2 - \"x\"\n1:3 - \",\"\n1:5 ws \"y\"\n1:6 - \")\"\n"},
      {{"-"}, "", "0\n"},
      // Explicit sets replace the defaults; newline as a visible token.
      {{"--single", ":\\n", "--space", "\\s\\t"},
       "a:b\n\tc",
       "0\n1:0 - \"a\"\n1:1 - \":\"\n1:2 - \"b\"\n2:-1 - \"\\n\"\n2:8 ws \"c\"\n"},
      {{"--number-char", ".", "--comment", "%"}, "1.5 % x\n2", "0\n1:0 - \"1.5\"\n2:0 ws \"2\"\n"},
      {{"--no-strings"}, "'a'", "0\n1:0 - \"'a'\"\n"},
      {{}, "'a b' \"q\\\"\"", "0\n1:0 - \"'a b'\"\n1:6 ws \"\\\"q\\\\\\\"\\\"\"\n"},
      {{"--line-comments", "--block-comments"}, "a//x\n/*y*/b", "0\n1:0 - \"a\"\n2:5 ws \"b\"\n"},
      {{"--element", "Title:", "--element", "< ="}, "Title: <=", "0\n1:0 ws \"Title:\"\n1:7 - \"<=\"\n"},
      {{"--space", "\\x01"},
       "a\x01"
       "b c\xc3",
       "0\n1:0 - \"a\"\n1:2 ws \"b\"\n1:4 ws \"c\\xc3\"\n"},
      // The dump languages: punctuation splits words in the word dumps only;
      // the element "Title:" stands where the token after it does.
      {{"--language", "words"},
       "7 k Don't,\x01x\n",
       "0\n1:0 - \"7\"\n1:2 ws \"k\"\n1:4 ws \"Don\"\n1:7 - \"'\"\n1:8 - \"t\"\n1:9 - \",\"\n1:11 ws \"x\"\n"
       "2:-1 - \"\\n\"\n"},
      {{"--language", "graph"},
       "5 \"q\" Title: a,b\n",
       "0\n1:0 - \"5\"\n1:2 ws \"\\\"q\\\"\"\n1:13 ws \"Title:\"\n1:13 ws \"a,b\"\n2:-1 - \"\\n\"\n"},
      // Tokenizing errors exit with 1 after the tokens before them, usage errors with 2.
      {{}, "ok 'open", "1\n1:0 - \"ok\"\nstderr: unterminated string constant at 1:3\n"},
      {{"--element", "'x"}, "", "1\nstderr: unterminated string constant at 1:0\n"},
  };
  for (const Case& c : cases) {
    std::string args;
    for (const std::string& a : c.args) args += a + " ";
    EXPECT_EQ(RunTokens(c.args, c.input), c.expected) << "args: " << args << "input: " << c.input;
  }
  // Usage errors exit with 2 and CLI11's message naming the option at fault.
  const std::vector<std::string> usage_errors[] = {{"--bogus"},
                                                   {"--single"},
                                                   {"--space", "\\q"},
                                                   {"--number-char", ".."},
                                                   {"a", "b"},
                                                   {"--language", "xml"},
                                                   {"--language", "words", "--no-strings"}};
  for (const std::vector<std::string>& args : usage_errors) {
    const std::string r = RunTokens(args, "");
    EXPECT_EQ(r.rfind("2\nstderr: ", 0), 0u) << args[0] << " " << r;
    EXPECT_NE(r.find(args[0] == "a" ? "b" : args[0]), std::string::npos) << r;
  }
}

TEST(TokensCommandTest, FilesAndHelp) {
  char tmpl[] = "/tmp/tokens_command_test.XXXXXX";
  ASSERT_NE(mkdtemp(tmpl), nullptr);
  const std::string path = std::string(tmpl) + "/in.txt", missing = std::string(tmpl) + "/none.txt";
  std::ofstream(path) << "x\n 'y";
  // A file that cannot be read is named once, with the system's error.
  testing::internal::CaptureStderr();
  EXPECT_EQ(RunTokens({missing}, ""), "1\nstderr: refgrove tokens: " + missing + ": No such file or directory\n");
  EXPECT_EQ(RunTokens({tmpl}, ""), "1\nstderr: refgrove tokens: " + std::string(tmpl) + ": Is a directory\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(RunTokens({path}, ""),
            "1\n1:0 - \"x\"\nstderr: unterminated string constant at 2:1, while reading '" + path + "'\n");
  // A repeatable option takes one value per occurrence: FILE after it is
  // still the file to read, not a second element.
  for (const std::vector<std::string>& args : {std::vector<std::string>{"--element", "Title:", path},
                                               std::vector<std::string>{path, "--element", "a", "--element", "b"}}) {
    EXPECT_EQ(RunTokens(args, "stdin"), RunTokens({path}, "")) << args[0];
  }
  std::remove(path.c_str());
  std::remove(tmpl);
  EXPECT_NE(RunTokens({"--help"}, "").find("Usage: refgrove tokens [OPTIONS] [FILE]"), std::string::npos);
}

}  // namespace

}  // namespace refgrove
