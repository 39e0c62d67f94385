// The sources: streams and files, strings, NUL-terminated and copying
// streams, and the output file holder.
#include "tokenizer/stream_tokenizer.h"

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "tokenizer/my_output_file.h"
#include "tokenizer/string_tokenizer.h"
#include "tokenizer/tokenizer_test_util.h"

namespace tokenizer_test {
namespace {

class TempDir : public ::testing::Test {
 protected:
  void SetUp() override {
    char tmpl[] = "/tmp/tokenizer_test.XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    dir_ = tmpl;
  }
  void TearDown() override {
    for (const std::string& f : files_) std::remove(f.c_str());
    rmdir(dir_.c_str());
  }
  std::string Path(const char* name) {
    files_.push_back(dir_ + "/" + name);
    return files_.back();
  }
  static std::string Read(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream os;
    os << in.rdbuf();
    return os.str();
  }
  static void Write(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
  }

  std::string dir_;
  std::vector<std::string> files_;
};

using StreamTokenizerTest = TempDir;

TEST_F(StreamTokenizerTest, OpensFilesByName) {
  const std::string path = Path("in.txt");
  Write(path, "Title: x\n");
  std::unique_ptr<TokenizerLanguage> lang = MakeLanguage(Lang::kElements);
  StreamTokenizer t(lang.get());
  t.open_tokens(path.c_str());
  t.select_language(0);
  EXPECT_EQ(Tokens(t), "_Title:@1:0 | _x@1:7");
  EXPECT_EQ(t.file_name, path.c_str());
  t.close_tokens();
  EXPECT_EQ(t.stream, nullptr);
}

TEST_F(StreamTokenizerTest, MissingFile) {
  const std::string path = Path("missing.txt");
  StreamTokenizer t;
  testing::internal::CaptureStderr();
  try {
    t.open_tokens(path.c_str());
    ADD_FAILURE() << "opened " << path;
  } catch (const ParserError& e) {
    EXPECT_EQ(e.message, "can't open: '" + path + "'");
    EXPECT_EQ(e.file_name, path);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "StreamTokenizer::open_tokens: No such file or directory\n");
}

TEST(StreamSourceTest, StreamStateFollowsTheTokensRead) {
  // The stream reports its end only when the tokenizer reads past the last
  // character, and it is left just after what was tokenized.
  std::istringstream in("alpha beta");
  {
    StreamTokenizer t(&in);
    EXPECT_TRUE(t.stream_ok());
    EXPECT_EQ(t.next_token(), "alpha");
    EXPECT_TRUE(in.good());
  }
  std::string rest;
  std::getline(in, rest);
  EXPECT_EQ(rest, "beta");

  std::istringstream in2("x");
  StreamTokenizer t2(&in2);
  EXPECT_EQ(t2.next_token(), "x");
  EXPECT_TRUE(in2.eof() && in2.fail());
  EXPECT_FALSE(t2.stream_ok());

  std::istringstream failed("never read");
  failed.setstate(std::ios::failbit);
  StreamTokenizer t3(&failed);
  EXPECT_FALSE(t3.has_more_tokens());

  StreamTokenizer no_stream;
  EXPECT_EQ(no_stream.try_next_token(), "");
}

TEST(StreamSourceTest, LongInputCrossesChunks) {
  std::string input;
  for (int i = 0; i < 40000; ++i) input += "w" + std::to_string(i) + (i % 10 == 9 ? "\n" : " ");
  std::istringstream in(input);
  TokenizerLanguage lang;
  lang.initDefault();
  StreamTokenizer t(&in, &lang);
  for (int i = 0; i < 40000; ++i) {
    ASSERT_EQ(t.next_token(), "w" + std::to_string(i));
    ASSERT_EQ(t.token_line(), i / 10 + 1);
  }
  EXPECT_FALSE(t.has_more_tokens());
}

TEST(StringSourceTest, StringsAndRestart) {
  TokenizerLanguage lang;
  StringTokenizer empty("", &lang);
  EXPECT_EQ(Tokens(empty), "");
  StringTokenizer t("a\nb", &lang);
  EXPECT_EQ(Tokens(t), "a\\nb@1:0");
  t.set_string("c");
  EXPECT_EQ(Tokens(t), "c@1:0");
  EXPECT_EQ(t.read_line(), "");  // past the end stays past the end
  StringTokenizer none;
  EXPECT_EQ(none.try_next_token(), "");
}

TEST(StreamEOFSourceTest, InputEndsAtTheFirstNulByte) {
  std::istringstream in(std::string("a b\0c d", 7));
  {
    StreamEOFTokenizer t(&in);
    EXPECT_EQ(Tokens(t), "a@1:0 | _b@1:2");
    EXPECT_FALSE(t.has_more_tokens());
    EXPECT_EQ(t.eof_seen, 1);
  }
  std::string rest;
  std::getline(in, rest);
  EXPECT_EQ(rest, "c d");  // never read
}

using CopyTokenizerTest = TempDir;

TEST_F(CopyTokenizerTest, CopiesTheLayout) {
  struct Case {
    const char* input;
    const char* output;
  };
  const Case cases[] = {
      {"a  b\n", "a  b\n"},
      {"  f(x, y) ;\n\tz", "  f(x, y) ;\n\tz"},
      {"a % comment\nb", "a  \nb"},  // comment text is dropped, its white space kept
      {"x 1.5\n", "x 1.5\n"},
      {"a\0b", "a"},
  };
  for (const Case& c : cases) {
    const std::string out = Path("out.txt");
    std::istringstream in(std::string(c.input, c.input[0] == 'a' && c.input[1] == '\0' ? 3 : std::strlen(c.input)));
    TokenizerLanguage lang;
    lang.initDefault();
    lang.number_char = '.';
    lang.comment_chars.add('%');
    {
      StreamEOFCopyTokenizer t(&in, &lang);
      t.open_output(out.c_str());
      while (t.has_more_tokens()) t.next_token_output();
    }
    EXPECT_EQ(Read(out), c.output) << "input: \"" << Escape(c.input) << '"';
  }
}

TEST_F(CopyTokenizerTest, ReplacingTokens) {
  const std::string out = Path("out.txt");
  std::istringstream in("keep old keep\n");
  StreamEOFCopyTokenizer t(&in);
  t.open_output(out.c_str());
  while (!t.try_next_token().empty()) {
    if (t.token == "old") {
      *t.output << "new";
      t.output_term_space();
    } else {
      t.output_token_and_space();
    }
  }
  t.close_output();
  EXPECT_EQ(Read(out), "keep new keep\n");
}

TEST_F(CopyTokenizerTest, OutputFailures) {
  std::istringstream in("a b");
  StreamEOFCopyTokenizer t(&in);
  EXPECT_EQ(t.next_token_output(), "a");  // ignored before open_output
  const std::string bad = dir_ + "/no/such/dir/out.txt";
  try {
    t.open_output(bad.c_str());
    ADD_FAILURE() << "opened " << bad;
  } catch (const ParserError& e) {
    std::ostringstream os;
    e.write(os);
    EXPECT_EQ(os.str(), "can't open: " + bad + " at ?:?, while reading '" + bad + "'");
  }
  EXPECT_EQ(t.next_token_output(), "b");
}

TEST_F(CopyTokenizerTest, MyOutputFile) {
  const std::string path = Path("my.txt");
  MyOutputFile f;
  f.open(path);
  *f.stream << "one";
  f.open(path.c_str());  // reopening truncates
  *f.stream << "two";
  f.close();
  EXPECT_EQ(f.stream, nullptr);
  EXPECT_EQ(Read(path), "two");
  f.open(dir_ + "/no/such/dir/x");
  *f.stream << "lost";  // silently
  f.close();
}

}  // namespace
}  // namespace tokenizer_test
