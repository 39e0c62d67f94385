// The scanner: raw tokens, positions, strings, numbers, comments and element
// merging, through every kind of source.
#include "tokenizer/tokenizer.h"

#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "tokenizer/stream_tokenizer.h"
#include "tokenizer/string_tokenizer.h"
#include "tokenizer/tokenizer_test_util.h"

namespace refgrove {

namespace tokenizer_test {
namespace {

// A source that goes through stream_get/stream_ok for every character, the
// reference against which the buffered StreamTokenizer is checked.
class CharByCharTokenizer : public Tokenizer {
 public:
  CharByCharTokenizer(std::string text, TokenizerLanguage* l) : Tokenizer(l), text_(std::move(text)) {}
  int stream_get() override { return (ok_ = i_ < text_.size()) ? static_cast<unsigned char>(text_[i_++]) : -1; }
  int stream_ok() override { return ok_; }

 private:
  std::string text_;
  std::size_t i_ = 0;
  bool ok_ = true;
};

enum class Source { kStream, kCharByChar, kString };

// The tokens of `input`, with sub-language 0 selected when there is one.
std::string Scan(const std::string& input, Lang kind, Source source) {
  std::unique_ptr<TokenizerLanguage> lang = MakeLanguage(kind);
  std::istringstream in(input);
  std::unique_ptr<Tokenizer> t;
  if (source == Source::kStream) t.reset(new StreamTokenizer(&in, lang.get()));
  if (source == Source::kString) t.reset(new StringTokenizer(input.c_str(), lang.get()));
  if (source == Source::kCharByChar) t.reset(new CharByCharTokenizer(input, lang.get()));
  if (!lang->sub_languages.empty()) t->select_language(0);
  return Tokens(*t);
}

struct ScanCase {
  std::string input;
  Lang lang;
  const char* expected;  // see Tokens(): "_" marks white space before, "!" an error
};

// A character pushed back by the scanner keeps the reading position, so the token it starts reports the position
// after the character read beyond it (".@1:2" in "3.x", "*@1:1" in "/*").
const ScanCase kScanCases[] = {
    // Words, single-character tokens and white space; in a stream NUL is a word character.
    {"", Lang::kDefault, ""},
    {"  \n\t ", Lang::kDefault, ""},
    {"a  b\n c", Lang::kDefault, "a@1:0 | _b@1:3 | _c@2:1"},
    {"f(x,y);", Lang::kDefault, "f@1:0 | (@1:1 | x@1:2 | ,@1:3 | y@1:4 | )@1:5 | ;@1:6"},
    {"a'b\"c!d$", Lang::kDefault, "a'b\"c!d$@1:0"},
    {"a\r\nb", Lang::kDefault, "a@1:0 | _b@2:0"},
    {"caf\xc3\xa9 x", Lang::kDefault, "caf\\xc3\\xa9@1:0 | _x@1:6"},
    {std::string("a\0b c", 5), Lang::kDefault, "a\\x00b@1:0 | _c@1:4"},
    // Tabs move to the next multiple of 8, also from the column just before one.
    {"abc\tx", Lang::kDefault, "abc@1:0 | _x@1:8"},
    {"abcdefg\tx", Lang::kDefault, "abcdefg@1:0 | _x@1:8"},
    {"abcdefgh\tx", Lang::kDefault, "abcdefgh@1:0 | _x@1:16"},
    // Without space characters only the blank separates; tab and newline are word characters that move the position.
    {"a,b", Lang::kBare, "a,b@1:0"},
    {"a\tb c", Lang::kBare, "a\\tb@1:0 | _c@1:10"},
    {"a\nb c", Lang::kBare, "a\\nb@1:0 | _c@2:2"},
    // Newline as a token.
    {"a\nb", Lang::kLines, "a@1:0 | \\n@2:-1 | b@2:0"},
    {"a % x\nb", Lang::kLines, "a@1:0 | _\\n@2:-1 | b@2:0"},
    // Numbers.
    {"x=12.5e-3;", Lang::kNumbers, "x@1:0 | =@1:1 | 12.5e-3@1:2 | ;@1:9"},
    {"3.x", Lang::kNumbers, "3@1:0 | .@1:2 | x@1:2"},
    {"a.b", Lang::kNumbers, "a@1:0 | .@1:1 | b@1:2"},
    {"1.2.3", Lang::kNumbers, "1.2@1:0 | .@1:3 | 3@1:4"},
    {"1.", Lang::kNumbers, "1@1:0"},
    {"1. 2", Lang::kNumbers, "1@1:0 | .@1:2 | _2@1:3"},
    {"1.5e+-3 x", Lang::kNumbers, "1.5e+-3@1:0 | _x@1:8"},
    {"1.5e", Lang::kNumbers, "1.5e@1:0"},
    {"12.5E-3)", Lang::kNumbers, "12.5E-3@1:0 | )@1:7"},
    {"-1.5", Lang::kNumbers, "-@1:0 | 1.5@1:1"},
    {"1.5", Lang::kDefault, "1@1:0 | .@1:1 | 5@1:2"},
    // Strings keep their quotes and escapes.
    {"'it''s'", Lang::kDefault, "'it''s'@1:0"},
    {"\"it\"\"s\"", Lang::kDefault, "\"it\"@1:0 | \"s\"@1:4"},
    {"'a\\\\' b", Lang::kDefault, "'a\\\\'@1:0 | _b@1:6"},
    {"'a\\'b' c", Lang::kDefault, "'a\\'b'@1:0 | _c@1:7"},
    {"x'a b'", Lang::kDefault, "x'a@1:0 | _b'@1:4"},
    {"'a b',", Lang::kDefault, "'a b'@1:0 | ,@1:5"},
    {"\"a\\\"b\" c", Lang::kDefault, "\"a\\\"b\"@1:0 | _c@1:7"},
    // Comments; with them off, "/" and "*" are tokens.
    {"a // c\nb", Lang::kComments, "a@1:0 | _b@2:0"},
    {"a // c", Lang::kComments, "a@1:0"},
    {"a/*x*/b", Lang::kComments, "a@1:0 | _b@1:6"},
    {"/*/ x */y", Lang::kComments, "_y@1:8"},
    {"/**/x", Lang::kComments, "_x@1:4"},
    {"a%c\nb", Lang::kComments, "a%c@1:0 | _b@2:0"},
    {"x=1 % rest\ny", Lang::kComments, "x@1:0 | =@1:1 | 1@1:2 | _y@2:0"},
    {"/* no end", Lang::kDefault, "/@1:1 | *@1:1 | _no@1:3 | _end@1:6"},
    {"a // c", Lang::kDefault, "a@1:0 | _/@1:3 | /@1:4 | _c@1:5"},
    // Elements. Merging never restores space_before, so a token that failed to merge carries the look-ahead's flag.
    {"Title:", Lang::kElements, "Title:@1:0"},
    {"Title :", Lang::kElements, "_Title@1:0 | _:@1:6"},
    {"Title  :", Lang::kElements, "_Title@1:0 | _:@1:7"},
    {"Title", Lang::kElements, "Title@1:0"},
    {"Title:x", Lang::kElements, "Title:@1:0 | x@1:6"},
    {"x foo", Lang::kElements, "_x@1:2 | _foo@1:2"},
    {"a:b:c", Lang::kElements, "a:b:c@1:0"},
    {"a:b:x", Lang::kElements, "a@1:0 | :@1:1 | b@1:2 | :@1:3 | x@1:4"},
    {"<=", Lang::kElements, "<=@1:0"},
    {"< =", Lang::kElements, "_<@1:0 | _=@1:2"},
    {"Authors: Title:", Lang::kElements, "_Authors:@1:0 | Title:@1:9"},
    {"Authors:/*c*/x", Lang::kElements, "Authors:@1:0 | /@1:9 | *@1:9 | c@1:10 | *@1:11 | /@1:13 | x@1:13"},
    // Errors end the listing.
    {"12.5q", Lang::kNumbers, "!illegal token_character 'q' while reading number at 1:0"},
    {"x 1.5ee", Lang::kNumbers, "x@1:0 | !illegal token_character 'e' while reading number at 1:2"},
    {"7.5'", Lang::kNumbers, "!illegal token_character ''' while reading number at 1:0"},
    {"'abc", Lang::kDefault, "!unterminated string constant at 1:0"},
    {"ab \"cd", Lang::kBare, "ab@1:0 | !unterminated string constant at 1:3"},
    {"\"a\\\\\" b", Lang::kDefault, "!unterminated string constant at 1:0"},
    {"'it''", Lang::kDefault, "!unterminated string constant at 1:0"},
    {"/* no end", Lang::kComments, "!comment block '/*' not terminated at 1:0"},
    {"x\n  /* /", Lang::kComments, "x@1:0 | !comment block '/*' not terminated at 2:2"},
};

TEST(ScannerTest, TokensPositionsAndErrors) {
  for (const ScanCase& c : kScanCases) {
    EXPECT_EQ(Scan(c.input, c.lang, Source::kStream), c.expected) << "input: \"" << Escape(c.input) << '"';
    // The buffered stream must agree with a source read one call at a time.
    EXPECT_EQ(Scan(c.input, c.lang, Source::kCharByChar), c.expected) << "input: \"" << Escape(c.input) << '"';
  }
}

TEST(ScannerTest, HighBytesInCharacterClasses) {
  // Bytes above 127 index the sets by their unsigned value.
  TokenizerLanguage lang;
  lang.space_chars.add(0xFF);
  lang.single_char_tokens.add(0x80);
  std::istringstream in(
      "a\xff"
      "b\x80"
      "c");
  StreamTokenizer t(&in, &lang);
  EXPECT_EQ(Tokens(t), "a@1:0 | _b@1:2 | \\x80@1:3 | c@1:4");
  EXPECT_EQ(static_cast<unsigned char>(t.last_space_char), 0xFF);
}

TEST(ScannerTest, StreamAndStringSourcesAgreeOnRandomInput) {
  // Random text over the characters that matter to some language: the three sources must agree (and not hang).
  const std::string alphabet = "ab1 2\t\n\r.:;/*'\"\\%eE+-<=xT\xff\x80";
  std::mt19937 rng(42);
  for (int round = 0; round < 3000; ++round) {
    std::string input;
    const int n = static_cast<int>(rng() % 80);
    for (int i = 0; i < n; ++i) input += alphabet[rng() % alphabet.size()];
    for (Lang kind : {Lang::kBare, Lang::kDefault, Lang::kNumbers, Lang::kComments, Lang::kLines, Lang::kElements}) {
      const std::string expected = Scan(input, kind, Source::kCharByChar);
      ASSERT_EQ(Scan(input, kind, Source::kStream), expected) << "input: \"" << Escape(input) << '"';
      ASSERT_EQ(Scan(input, kind, Source::kString), expected) << "input: \"" << Escape(input) << '"';
    }
  }
}

// A random language over `alphabet`: each character a single-character token, space, comment character, none or
// two of these, with random flags.
std::unique_ptr<TokenizerLanguage> RandomLanguage(std::mt19937& rng, const std::string& alphabet) {
  std::unique_ptr<TokenizerLanguage> l(new TokenizerLanguage());
  for (const char c : alphabet) {
    const unsigned r = rng() % 16;
    if (r < 4) l->single_char_tokens.add(c);
    if (r >= 3 && r < 8) l->space_chars.add(c);
    if (r == 8) l->comment_chars.add(c);
  }
  const char number_chars[] = {0, 0, '.', ' ', 'e', '\n'};
  l->number_char = number_chars[rng() % sizeof number_chars];
  l->strings = static_cast<int>(rng() % 2);
  l->line_comments = static_cast<int>(rng() % 2);
  l->block_comments = static_cast<int>(rng() % 2);
  return l;
}

// Runs a random mix of reads, tests and pushbacks on `t`, writing down all a caller can see after each step.
std::string Drive(Tokenizer& t, unsigned seed, const std::string& alphabet) {
  std::mt19937 ops(seed);
  std::ostringstream out;
  try {
    for (int step = 0; step < 100000; ++step) {
      const unsigned op = ops() % 13;
      if (op == 12) {  // the language may change between any two reads
        TokenizerLanguage& lang = *t.get_language();
        TokenizerCharSet* sets[] = {&lang.single_char_tokens, &lang.space_chars, &lang.comment_chars};
        TokenizerCharSet& set = *sets[ops() % 3];
        const char c = alphabet[ops() % alphabet.size()];
        set.contains(c) ? set.remove(c) : set.add(c);
        if (ops() % 4 == 0) lang.strings = !lang.strings;
        out << "l";
      } else if (op >= 10) {
        const char last = alphabet[ops() % alphabet.size()];
        out << "u";
        while (!t.next_tokens_until(last, [&](const Tokenizer::PlainToken* tokens, std::size_t n) {
          for (std::size_t i = 0; i < n; ++i) {
            EXPECT_GE(tokens[i].readable, tokens[i].size);
            out << std::string(tokens[i].text, tokens[i].size) << '/';
          }
        })) {
          if (t.try_next_token().empty()) break;
          if (t.token.size() == 1 && t.token[0] == last) break;
          out << t.token << '/';
        }
        out << Render(t);
      } else if (op < 3) {
        out << "h" << t.has_more_tokens();
      } else if (op < 8) {
        if (t.try_next_token().empty()) break;
        out << Render(t);
      } else if (op == 8) {
        out << "i" << t.is_next_token("a");
      } else {
        t.pushback_token();
        out << "p";
      }
      out << ' ' << t.pos.row << ':' << t.pos.column << ' ' << static_cast<int>(t.last_space_char) << ' ' << t.at_eof
          << t.char_pushback_count << t.stream_ok() << '\n';
    }
  } catch (const ParserError& e) {
    out << "!" << e.message << '@' << PosText(e.pos);
  }
  return out.str();
}

// The buffered stream and a source read one character at a time, driven alike.
void CompareWithCharByChar(const std::string& alphabet) {
  std::mt19937 rng(7);
  for (int round = 0; round < 1500; ++round) {
    // Each side gets a language of its own, as Drive changes it.
    std::mt19937 same_rng = rng;
    std::unique_ptr<TokenizerLanguage> lang = RandomLanguage(rng, alphabet);
    std::unique_ptr<TokenizerLanguage> same_lang = RandomLanguage(same_rng, alphabet);
    const std::size_t n = round % 100 == 99 ? 70000 + rng() % 1000 : rng() % 300;
    std::string input;
    for (std::size_t i = 0; i < n; ++i) {
      // Runs of letters make words of every length, as in real text.
      input += rng() % 3 == 0 ? alphabet[rng() % alphabet.size()] : static_cast<char>('a' + rng() % 3);
    }
    const unsigned seed = rng();
    CharByCharTokenizer slow(input, same_lang.get());
    std::istringstream in(input);
    StreamTokenizer fast(&in, lang.get());
    ASSERT_EQ(Drive(fast, seed, alphabet), Drive(slow, seed, alphabet))
        << "round " << round << ", input: \"" << Escape(input) << '"';
  }
}

TEST(ScannerTest, BufferedStreamAgreesWithCharByCharInRandomLanguages) {
  // The buffered stream's fast paths and next_tokens_until against a source read one call at a time: random
  // languages, inputs and operations must leave both in the same visible state at every step, on every fast path
  // the processor has. Some inputs are long enough to cross the stream's chunks.
  const std::string alphabet = "ab1 2\t\n\r.:;/*'\"\\%eE+-<=xT\x01\xff\x80";
  const Tokenizer::FastPath detected = Tokenizer::fast_path();
  for (const Tokenizer::FastPath path : {Tokenizer::FastPath::kBase, Tokenizer::FastPath::kAvx2}) {
    if (path > detected) continue;
    Tokenizer::set_fast_path(path);
    CompareWithCharByChar(alphabet);
  }
  Tokenizer::set_fast_path(detected);
}

TEST(ScannerTest, ReadLine) {
  std::unique_ptr<TokenizerLanguage> lang = MakeLanguage(Lang::kNumbers);
  std::istringstream in("x 3.y rest of line\nnext");
  StreamTokenizer t(&in, lang.get());
  EXPECT_EQ(t.next_token(), "x");
  EXPECT_EQ(t.next_token(), "3");  // "." and "y" are now pushed back
  t.pushback_token("P");
  t.pushback_token("Q");
  EXPECT_EQ(t.read_line(), "QP.y rest of line");
  EXPECT_EQ(t.next_token(), "next");
  EXPECT_EQ(t.read_line(), "");
  EXPECT_FALSE(t.has_more_tokens());
}

TEST(ScannerTest, TryFindLangElemInAnotherSubLanguage) {
  std::unique_ptr<TokenizerLanguage> lang = MakeLanguage(Lang::kDefault);
  lang->addSubLanguages(2);
  lang->addLanguageElem(1, "Title:");
  std::istringstream in("Title: Title : end");
  StreamTokenizer t(&in, lang.get());
  t.select_language(0);
  TokenizerLangElem* e = t.try_find_lang_elem(1);
  ASSERT_NE(e, nullptr);
  EXPECT_EQ(e->name, "Title:");
  EXPECT_EQ(t.try_find_lang_elem(1), nullptr);
  EXPECT_EQ(t.next_token(), "Title");  // pushed back by the miss
  EXPECT_EQ(t.next_token(), ":");
  EXPECT_EQ(t.try_find_lang_elem(1), nullptr);
  EXPECT_EQ(t.next_token(), "end");
  EXPECT_EQ(t.try_find_lang_elem(1), nullptr);  // end of input
}

TEST(ScannerTest, SelectedRootOutlivesLanguage) {
  std::unique_ptr<TokenizerLanguage> lang = MakeLanguage(Lang::kElements);
  std::unique_ptr<TokenizerLanguage> other = MakeLanguage(Lang::kDefault);
  std::istringstream in("Title: x");
  StreamTokenizer t(&in, other.get());
  t.language = lang.get();
  t.select_language(0);
  t.language = other.get();
  lang.reset();  // the tokenizer still holds the root of sub-language 0
  EXPECT_EQ(Tokens(t), "_Title:@1:0 | x@1:7");
}

}  // namespace
}  // namespace tokenizer_test

}  // namespace refgrove
