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

namespace refgrove {

namespace tokenizer_test {
namespace {

// A fresh directory per test for the files named below, removed with them.
class TempDir : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(mkdtemp(&dir_[0]), nullptr); }
  void TearDown() override {
    for (const char* f : {"in.txt", "out.txt", "my.txt"}) std::remove(Path(f).c_str());
    rmdir(dir_.c_str());
  }
  std::string Path(const char* name) const { return dir_ + "/" + name; }
  static std::string Read(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream os;
    os << in.rdbuf();
    return os.str();
  }

  std::string dir_ = "/tmp/tokenizer_test.XXXXXX";
};

using StreamTokenizerTest = TempDir;

TEST_F(StreamTokenizerTest, OpensFilesByName) {
  const std::string path = Path("in.txt");
  std::ofstream(path) << "Title: x\n";
  std::unique_ptr<TokenizerLanguage> lang = MakeLanguage(Lang::kElements);
  StreamTokenizer t(lang.get());
  t.open_tokens(path.c_str());
  t.select_language(0);
  EXPECT_EQ(Tokens(t), "_Title:@1:0 | _x@1:7");
  EXPECT_EQ(t.file_name, path.c_str());  // the name is kept, not copied
  t.close_tokens();
  EXPECT_EQ(t.stream, nullptr);

  // A missing file: the system error on stderr, then an error naming the file.
  const std::string missing = Path("missing.txt");
  StreamTokenizer u;
  testing::internal::CaptureStderr();
  EXPECT_EQ(ErrorOf([&] { u.open_tokens(missing.c_str()); }),
            "can't open: '" + missing + "' at 0:-1, while reading '" + missing + "'");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "StreamTokenizer::open_tokens: No such file or directory\n");
}

TEST(StreamSourceTest, StreamStateFollowsTheTokensRead) {
  // The stream ends only when a read goes past its last character, and is left just after what was tokenized.
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
  EXPECT_FALSE(StreamTokenizer(&failed).has_more_tokens());
  EXPECT_EQ(StreamTokenizer().try_next_token(), "");  // no stream at all
}

// "w<i>", appended rather than added to the literal: GCC 12 warns
// (-Wrestrict) about `"w" + std::to_string(i)` at -O3.
std::string NumberedWord(int i) { return std::string("w").append(std::to_string(i)); }

TEST(StreamSourceTest, LongInputCrossesChunks) {
  std::string input;
  for (int i = 0; i < 40000; ++i) input.append(NumberedWord(i)).append(i % 10 == 9 ? "\n" : " ");
  std::istringstream in(input);
  std::unique_ptr<TokenizerLanguage> lang = MakeLanguage(Lang::kDefault);
  StreamTokenizer t(&in, lang.get());
  for (int i = 0; i < 40000; ++i) {
    ASSERT_EQ(t.next_token(), NumberedWord(i));
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
  EXPECT_EQ(t.read_line(), "");  // past the end stays past the end
  // A restart drops the pushed-back tokens, and the stack works on after it.
  t.pushback_token("p");
  t.pushback_token("q");
  t.set_string("c d");
  EXPECT_EQ(t.next_token(), "c");
  t.pushback_token("r");
  EXPECT_EQ(Tokens(t), "r@1:0 | _d@1:2");
  EXPECT_EQ(StringTokenizer().try_next_token(), "");
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
  const std::pair<std::string, const char*> cases[] = {
      {"a  b\n", "a  b\n"},
      {"  f(x, y) ;\n\tz", "  f(x, y) ;\n\tz"},
      {"a % comment\nb", "a  \nb"},  // comment text is dropped, its white space kept
      {"x 1.5\n", "x 1.5\n"},
      {std::string("a\0b", 3), "a"},
      {"keep old keep\n", "keep new keep\n"},
  };
  const std::string out = Path("out.txt");
  std::unique_ptr<TokenizerLanguage> lang = MakeLanguage(Lang::kComments);
  for (const auto& [input, output] : cases) {
    std::istringstream in(input);
    {
      StreamEOFCopyTokenizer t(&in, lang.get());
      t.open_output(out.c_str());
      while (t.has_more_tokens()) {
        if (t.is_next_token("old")) {  // a filter writes its own text, then the white space that ended the token
          *t.output << "new";
          t.output_term_space();
        } else {
          t.next_token_output();
        }
      }
    }
    EXPECT_EQ(Read(out), output) << "input: \"" << Escape(input) << '"';
  }
}

TEST_F(CopyTokenizerTest, OutputFailures) {
  std::istringstream in("a b");
  StreamEOFCopyTokenizer t(&in);
  EXPECT_EQ(t.next_token_output(), "a");  // ignored before open_output
  const std::string bad = dir_ + "/no/such/dir/out.txt";
  EXPECT_EQ(ErrorOf([&] { t.open_output(bad.c_str()); }),
            "can't open: " + bad + " at ?:?, while reading '" + bad + "'");
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

}  // namespace refgrove
