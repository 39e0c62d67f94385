// Tokenizer: the abstract scanner and parsing interface of the toolkit.
//
// Design. A tokenizer turns the characters of a source into tokens in three
// layers:
//
//   1. The character layer reads one character at a time from the source
//      (the two pure virtual operations stream_get/stream_ok), keeps the
//      row/column position, turns every space character into a blank and
//      lets the scanner push back up to two characters.
//   2. The scanner (get_token_2) skips white space and comments and cuts one
//      raw token: a word, a single-character token, a quoted string or a
//      number. get_token then merges raw tokens written directly after each
//      other into the multi-token elements of the selected sub-language.
//   3. The parsing interface (next_token, is_next_token, ensure_next_token,
//      next_integer, ...) sits on a token pushback stack and reports bad
//      input by throwing ParserError at the offending token's position.
//
// The per-character work is what costs: a preprocessing run reads hundreds
// of megabytes through layer 1. Every class test is one bit test, the token
// is built in place in one string whose capacity is reused, and a source may
// hand the character layer a run of characters it has already fetched (see
// "direct characters" below) so that plain word characters are taken in bulk
// instead of through two virtual calls each. The usual token (a word or a
// single-character token after a blank, in the direct characters) is taken
// in one go by take_plain_token, with the same effects on the position and
// the flags as the layers above; the randomized test in tokenizer_test.cc
// holds the two ways to each other.
//
// A word ends only at a single-character token, a blank (any space
// character, or the end of the input) or the number character; other
// punctuation, quotes and "/" inside a word belong to it. The blank that ends
// a word or number is consumed, yet the token after it still counts as
// preceded by white space, so it never merges with the word into an element.
#ifndef REFGROVE_TOKENIZER_TOKENIZER_H_
#define REFGROVE_TOKENIZER_TOKENIZER_H_

#include <cassert>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "tokenizer/parser_error.h"
#include "tokenizer/tokenizer_language.h"
#include "tokenizer/tokenizer_pos.h"

namespace refgrove {

// A token with its position and whether white space preceded it; the unit of
// the pushback stack.
struct TokenAndPos {
  bool space_before = false;
  std::string token;
  TokenizerPos pos;
};

class Tokenizer {
 public:
  const char* file_name;              // for error messages; not owned; null if none
  std::string token;                  // current token; empty: no token left
  int at_eof;                         // 1 once the source reported its end
  int pushback_count;                 // live entries of `pushback`
  int char_pushback_count;            // 0 to 2
  bool space_before;                  // white space or a comment before `token`
  char last_space_char;               // raw form of the last space character read
  char char_pushback[2];              // pushed-back characters, last in first out
  std::vector<TokenAndPos> pushback;  // token stack; entries past the count are dead
  TokenizerPos token_pos;             // position of `token`
  TokenizerPos pos;                   // reading position
  TokenizerLangHashPtr sub_language;  // selected root, or null: no merging
  TokenizerLanguage* language;        // not owned

  // The language is only stored here, not read: a subclass may pass the
  // address of a member language that is constructed after this base.
  explicit Tokenizer(TokenizerLanguage* language_);
  // Uses a private language of its own with the language defaults (empty
  // character sets, strings on).
  Tokenizer();
  Tokenizer(const Tokenizer&) = delete;
  Tokenizer& operator=(const Tokenizer&) = delete;

  virtual ~Tokenizer();
  // Skips white space and comments and returns the first significant
  // character, or a blank at the end of the input (at_eof is then 1).
  virtual int token_read_sig_char();
  // Called when a word or number has been ended by white space;
  // last_space_char holds that character.
  virtual void on_trailing_space() {}
  // Non-zero while the last stream_get() delivered a real character.
  virtual int stream_ok() = 0;
  // The next raw character of the source.
  virtual int stream_get() = 0;

  // ---- state -------------------------------------------------------------

  // Forgets the file name and the selected sub-language, then reset_all().
  void init();
  // Clears the end flag and both pushbacks (the stack's storage is kept but
  // its tokens are dropped), back to row 1, column 0.
  void reset_all();
  void reset_position();

  TokenizerLanguage* get_language() { return language; }
  int token_line() const { return token_pos.row; }
  int token_column() const { return token_pos.column; }  // raw counter

  // -1 selects no sub-language (merging off). No bounds check.
  void select_language(int sub);

  // ---- character layer and scanner ---------------------------------------

  // The next character (pushed-back ones first), with position tracking; a
  // space character comes out as a blank and so does the end of the input.
  int token_read_char();
  // Skips the rest of the line. The newline is given back when the language
  // does not treat it as white space, so a newline token survives a comment.
  void token_skip_to_end();
  // The rest of the current line, pushed-back tokens and characters first;
  // the newline is consumed but not returned. Also left in `token`.
  std::string& read_line();
  // Skips a block comment up to and including the closing "*/".
  void read_till_close_comment();
  // Continues the integer in `token` into a number after the number
  // character `c`.
  void read_number_term(char c);

  // One raw token into `token` (pushed-back tokens first); empty at the end.
  void get_token_2();
  // get_token_2(), then merging into an element of the selected sub-language.
  void get_token();
  // get_token(), throwing "unexpected end of file" when no token is left.
  void get_check_token();

  // With the token that starts a match in `token` and `h` its node: the
  // element of the longest chain of adjacent tokens that ends at an element,
  // or null (then `token` and `token_pos` are as they were). Tokens read
  // beyond the match are back on the pushback stack.
  TokenizerLangElem* findLangElem(const TokenizerLangHash* h);
  // The same one level down, with the next raw token already in `token`.
  TokenizerLangElem* findLangElem2(const TokenizerLangHash* h);
  // Tests for an element of sub-language `sub` (selected or not) at the
  // next raw token; on a miss the token is pushed back and null returned.
  TokenizerLangElem* try_find_lang_elem(int sub);

  // ---- parsing interface -------------------------------------------------

  std::string& next_token();      // throws at the end of input
  std::string& try_next_token();  // empty at the end of input
  void next_token_and_pos(TokenAndPos& out);
  void peek_token(std::string* out);
  // True when a character other than white space or comment is left. Tokens
  // on the pushback stack are not considered.
  bool has_more_tokens();

  void pushback_token();  // the current token, with its position and spacing
  void pushback_token(const TokenAndPos& t);
  void pushback_token(const std::string& text, const TokenizerPos& at);
  void pushback_token(const std::string& text);  // at token_pos
  void pushback_token(const char* text);         // at token_pos

  // A token handed over by next_tokens_until: its text where the source
  // holds it, and `readable` >= size, the number of bytes at text that may
  // be read (the token and what follows it in the buffer).
  struct PlainToken {
    const char* text;
    std::size_t size;
    std::size_t readable;
  };
  static constexpr std::size_t kPlainTokenRun = 64;

  // For readers that only look at the text of tokens (the word
  // preprocessor): reads tokens like next_token up to and including the
  // first one that equals the one character `last`, and hands the tokens
  // before it, in order, to f(tokens, n) in runs of up to kPlainTokenRun.
  // The texts are not copied into `token`; they stay valid while f runs,
  // and f must neither use the tokenizer nor change its language. Returns
  // true when `last` has been read; it is then the current token. Returns
  // false when the next token needs the general way (say at the end of the
  // buffered input, or after a comment): it has not been read, `token` is
  // left as it was, and next_token() goes on from there. The position, the
  // flags and the pushed-back characters are always those that next_token
  // would have left after the same tokens.
  template <class F>
  bool next_tokens_until(char last, F&& f);

  // Whether the current token is s (NUL-terminated); inline, so that for a
  // literal the comparison is a length test and a few loads.
  bool token_is(const char* s) const;

  // These consume the token when it matches and push it back otherwise.
  bool is_next_token(const char* s);
  bool is_next_token_uc(const char* s);     // str_i_equals(token, s): a prefix test
  int is_next_token_in(const char* chars);  // the character, or -1

  // These consume the token and throw ParserError when it is wrong.
  void ensure_next_token(const char* s);
  int ensure_next_token_in(const char* chars);
  void ensure_next_token_list(const char* chars);

  // Base-10 conversion of the whole token, clamped to the int range.
  int next_integer();
  // The same for the current token, already read with next_token(): a
  // reader that has looked at a token need not push it back to convert it.
  int token_integer() const;
  bool try_next_integer(int* value);  // consumes the token either way
  double next_double();               // strtod, unchecked

  ParserError error(const std::string& message) const;
  ParserError error(const TokenizerPos& at, const std::string& message) const;

  // The scanner's fast path for the usual tokens: none, the one for
  // processors with SSSE3, or the one for AVX2. It is chosen at start-up as
  // the processor allows, and may only be lowered (tests do, to check each
  // path against the general one). Tokens come out the same either way.
  enum class FastPath : unsigned char { kNone, kBase, kAvx2 };
  static FastPath fast_path() { return fast_path_; }
  static void set_fast_path(FastPath path) { fast_path_ = path; }

 protected:
  // Direct characters: a source may hand over a run of characters it has
  // already fetched, [direct_next_, direct_end_). The character layer takes
  // them as if stream_get() had returned each and stream_ok() had then been
  // true, without calling either. Only a source whose stream_get() is the
  // final one may do this (StreamTokenizer's does, from stream_get itself);
  // a source that filters characters in its own stream_get must not call a
  // base stream_get that hands characters over.
  // Once set, direct_next_ also has the character delivered last before it
  // (the scanner finds the start of a word there).
  const char* direct_next_ = nullptr;
  const char* direct_end_ = nullptr;

  // True while token_read_sig_char and on_trailing_space are Tokenizer's
  // own: the scanner then runs their code inline instead of calling them
  // through the virtual table once or twice per token. A subclass that
  // overrides either of them sets this to false in its constructor.
  bool plain_hooks_ = true;

  void push_char(int c) {
    assert(char_pushback_count < 2);
    if (char_pushback_count < 2) char_pushback[char_pushback_count++] = static_cast<char>(c);
  }

 private:
  // has_more_tokens but for its inline first case.
  bool has_more_tokens_general();

  // The element lookup of get_token, for a non-empty token with a
  // sub-language selected.
  void merge_token();
  [[noreturn]] void throw_end_of_file() const;

  // The usual token straight from the direct characters, when the hooks
  // are Tokenizer's own; false when the general way must take it.
  // fast_token_avx2 does the same on processors with AVX2, where checking
  // the language for changes takes a third of the instructions.
  bool fast_token();
  bool fast_token_avx2();
  static FastPath fast_path_;
  static bool fast_path_usable() { return fast_path_ != FastPath::kNone; }
  // fast_token but for the text, which is left where it lies: *text and
  // *size point at it. The tables must be current.
  bool take_plain_token(const char** text, std::size_t* size);
  // fast_token once the tables are current.
  bool take_plain_token_into_token();
  // The tokens of next_tokens_until: up to kPlainTokenRun of them into
  // `out`, stopping early at `last` (then *last_read is set) or where the
  // general way must go on. Returns how many are in `out`.
  std::size_t take_plain_tokens(char last, PlainToken* out, bool* last_read);
  // get_token_2 after the flags are set, when fast_token did not take the
  // token.
  void scan_token();
  // get_token_2 with tokens on the pushback stack.
  void pop_pushed_token();
  // A new top slot on the pushback stack, counted, for the caller to fill.
  TokenAndPos& push_slot();
  // token = the n characters at p, all of them before `end`.
  void set_token(const char* p, std::size_t n, const char* end);

  // Tokenizer's own token_read_sig_char, inline; sig_char() calls it or the
  // override, as plain_hooks_ says.
  int read_sig_char();
  int sig_char() { return plain_hooks_ ? read_sig_char() : token_read_sig_char(); }
  // The comment and "/" cases of read_sig_char, with `c` just read: true
  // with the character to return in *out, false when a comment was skipped.
  bool sig_char_slash_or_comment(int c, int* out);

  // stream_get()/stream_ok() for the raw readers (no pushback, no position):
  // false at the end of the source.
  bool raw_get(int* c);

  // Part of a string token after its opening quote.
  void read_single_quoted();
  void read_double_quoted();

  // Tables of the fast path, made from the language and kept with the
  // classes and flags they were made from, so that a change of the
  // language is noticed.
  //
  // start[c] says what a token-starting character c is: a blank to skip
  // (kStartBlank, plus kStartSpaceChar when it is a space character), a
  // single-character token, the first character of a word, or kStartGeneral
  // (tab, newline, "/", comment characters, quotes when strings are on),
  // which only the general way reads.
  //
  // `stop` is what ends a plain run of word characters: the single-character
  // tokens, the space characters, blank, tab and newline (these two move
  // the position differently) and the number character; with nibble tables
  // for scanning 16 characters at a time: bit h of low_hi0[l] says whether
  // the byte (h << 4 | l) is in the set, for h below 8; low_hi1 does the
  // same for h from 8 on (bit h - 8). ends[c] says what a character of
  // `stop` does when it ends a word: kEndBlank, kEndSingle (it is pushed
  // back) or neither (the general way must read it), plus kEndSpace when it
  // is a space character.
  struct ScanTables {
    TokenizerCharSet single_char_tokens;  // what the tables were made from
    TokenizerCharSet space_chars;
    TokenizerCharSet comment_chars;
    char number_char = 0;
    int strings = 0;
    bool built = false;
    bool vector = false;  // the nibble tables can be used
    TokenizerCharSet stop;
    alignas(16) unsigned char low_hi0[16];
    alignas(16) unsigned char low_hi1[16];
    unsigned char start[256];
    unsigned char ends[256];
  };
  static constexpr unsigned char kStartWord = 0, kStartSingle = 1, kStartBlank = 2, kStartSpaceChar = 4,
                                 kStartGeneral = 8;
  static constexpr unsigned char kEndBlank = 1, kEndSingle = 2, kEndSpace = 4;
  ScanTables scan_;

  // scan_, rebuilt first when the language has changed.
  const ScanTables& scan_tables();
  bool scan_tables_current() const;
  // scan_tables_current but for the character classes.
  bool scan_flags_current() const;
  void build_scan_tables();
  // start[c] of the tables for the language.
  static unsigned char start_class(const TokenizerLanguage& lang, int c);
  // The end of a plain run of word characters in [p, end): the first
  // character in the stop set, or end.
  static const char* scan_word(const char* p, const char* end, const ScanTables& tables);

  // The word ended at white space: the next raw token counts as preceded by
  // white space even though the blank is already consumed.
  bool pending_space_ = false;
  std::unique_ptr<TokenizerLanguage> own_language_;  // for Tokenizer()
};

// ---- inline: these run once per token or once per character --------------

inline void Tokenizer::get_token_2() {
  if (pushback_count > 0) {
    pop_pushed_token();
    return;
  }
  space_before = pending_space_;
  pending_space_ = false;
  if (plain_hooks_ && fast_path_usable() && (fast_path_ == FastPath::kAvx2 ? fast_token_avx2() : fast_token())) {
    return;
  }
  scan_token();
}

inline void Tokenizer::get_token() {
  get_token_2();
  // One hash probe per token when a sub-language with elements is selected.
  if (sub_language && !token.empty() && !sub_language->empty()) merge_token();
}

inline void Tokenizer::get_check_token() {
  get_token();
  if (token.empty()) throw_end_of_file();
}

inline std::string& Tokenizer::next_token() {
  get_check_token();
  return token;
}

inline bool Tokenizer::has_more_tokens() {
  // Inline for the usual case: the next character starts a token right
  // away and moves the column by one.
  if (plain_hooks_ && at_eof == 0 && char_pushback_count == 0 && direct_next_ != direct_end_) {
    const char c = *direct_next_;
    const TokenizerLanguage& lang = *language;
    if (c != ' ' && c != '\t' && c != '\n' && c != '/' && !lang.space_chars.contains(c) &&
        !lang.comment_chars.contains(c)) {
      ++direct_next_;
      ++pos.column;
      push_char(c);
      return true;
    }
  }
  return has_more_tokens_general();
}

// Inline, so that for a literal s the length is known and the comparison
// takes a few instructions.
inline bool Tokenizer::token_is(const char* s) const {
  const std::size_t n = std::strlen(s);
  return token.size() == n && std::memcmp(token.data(), s, n) == 0;
}

inline bool Tokenizer::is_next_token(const char* s) {
  get_check_token();
  if (token_is(s)) return true;
  pushback_token();
  return false;
}

template <class F>
bool Tokenizer::next_tokens_until(char last, F&& f) {
  // Only where get_token would take the token through fast_token and keep
  // it as it is: no pushed-back tokens, no elements to merge.
  if (!plain_hooks_ || !fast_path_usable() || pushback_count > 0 || (sub_language && !sub_language->empty())) {
    return false;
  }
  PlainToken run[kPlainTokenRun];
  for (;;) {
    bool last_read = false;
    const std::size_t n = take_plain_tokens(last, run, &last_read);
    if (n > 0) f(static_cast<const PlainToken*>(run), n);
    if (last_read) return true;
    if (n < kPlainTokenRun) return false;
  }
}

inline int Tokenizer::token_read_char() {
  if (char_pushback_count > 0) return char_pushback[--char_pushback_count];
  int c;
  if (direct_next_ != direct_end_) {
    c = static_cast<signed char>(*direct_next_++);
  } else {
    c = stream_get();
    if (!stream_ok()) {
      at_eof = 1;
      return ' ';
    }
    c = static_cast<signed char>(c);
  }
  if (c == '\t') {
    pos.column = pos.column / 8 * 8 + 8;
  } else {
    ++pos.column;
    if (c == '\n') pos.incRow();
  }
  if (language->space_chars.contains(c)) {
    last_space_char = static_cast<char>(c);
    return ' ';
  }
  return c;
}

inline int Tokenizer::read_sig_char() {
  for (;;) {
    const int c = token_read_char();
    if (at_eof) return ' ';
    if (c == ' ') {
      space_before = true;
      continue;
    }
    if (c == '/' || language->comment_chars.contains(c)) {
      int out;
      if (sig_char_slash_or_comment(c, &out)) return out;
      continue;
    }
    return c;
  }
}

inline bool Tokenizer::raw_get(int* c) {
  if (direct_next_ != direct_end_) {
    *c = static_cast<signed char>(*direct_next_++);
    return true;
  }
  *c = static_cast<signed char>(stream_get());
  return stream_ok() != 0;
}

}  // namespace refgrove

#endif  // REFGROVE_TOKENIZER_TOKENIZER_H_
