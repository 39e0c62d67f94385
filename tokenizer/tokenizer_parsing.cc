// The parsing interface of Tokenizer: reading, pushing back, testing and
// insisting on tokens, numbers, and building ParserError objects.
#include <cerrno>
#include <climits>
#include <cstdlib>

#include "tokenizer/string_helpers.h"
#include "tokenizer/tokenizer.h"

namespace refgrove {

namespace {

// strtol in base 10 with the result clamped to the int range, as a 32-bit
// strtol gives it on every build; *whole tells whether the conversion used
// the entire token (a NUL byte inside the token ends the conversion early).
int to_int(const std::string& s, bool* whole) {
  // Most integers in the dumps are plain runs of up to nine digits, which
  // cannot overflow and need none of strtoll's generality.
  const std::size_t n = s.size();
  if (n != 0 && n <= 9) {
    int v = 0;
    std::size_t i = 0;
    for (; i < n && s[i] >= '0' && s[i] <= '9'; ++i) v = 10 * v + (s[i] - '0');
    if (i == n) {
      *whole = true;
      return v;
    }
  }
  const char* begin = s.c_str();
  char* end = nullptr;
  const int saved_errno = errno;
  const long long v = std::strtoll(begin, &end, 10);
  errno = saved_errno;
  *whole = end == begin + s.size() && end != begin;
  if (v > INT_MAX) return INT_MAX;
  if (v < INT_MIN) return INT_MIN;
  return static_cast<int>(v);
}

}  // namespace

std::string& Tokenizer::try_next_token() {
  get_token();
  return token;
}

void Tokenizer::next_token_and_pos(TokenAndPos& out) {
  get_check_token();
  out.token = token;
  out.pos = token_pos;
  out.space_before = space_before;
}

void Tokenizer::peek_token(std::string* out) {
  get_check_token();
  pushback_token();
  *out = token;
}

bool Tokenizer::has_more_tokens_general() {
  if (at_eof) return false;
  if (plain_hooks_ && char_pushback_count == 0) {
    // The usual case, straight on the direct characters: blanks and then a
    // character that starts a token, each moving the column by one. Tab,
    // newline, comments and the end of the run go the general way below,
    // from where this stopped.
    const TokenizerLanguage& lang = *language;
    const char* p = direct_next_;
    for (; p != direct_end_; ++p) {
      const char ch = *p;
      if (ch == '\t' || ch == '\n') break;
      if (lang.space_chars.contains(ch)) {
        last_space_char = ch;
        space_before = true;
      } else if (ch == ' ') {
        space_before = true;
      } else if (ch == '/' || lang.comment_chars.contains(ch)) {
        break;
      } else {
        pos.column += static_cast<int>(p + 1 - direct_next_);
        direct_next_ = p + 1;
        push_char(ch);
        return true;
      }
    }
    pos.column += static_cast<int>(p - direct_next_);
    direct_next_ = p;
  }
  const int c = sig_char();
  if (at_eof) return false;
  push_char(c);
  return true;
}

TokenAndPos& Tokenizer::push_slot() {
  // Entries past pushback_count are dead slots whose strings are reused.
  const std::size_t i = static_cast<std::size_t>(pushback_count);
  if (pushback.size() <= i) pushback.resize(i + 1);
  ++pushback_count;
  return pushback[i];
}

void Tokenizer::pushback_token() {
  TokenAndPos& slot = push_slot();
  slot.space_before = space_before;
  slot.token = token;
  slot.pos = token_pos;
}

void Tokenizer::pushback_token(const TokenAndPos& t) { push_slot() = t; }

void Tokenizer::pushback_token(const std::string& text, const TokenizerPos& at) {
  TokenAndPos& slot = push_slot();
  slot.space_before = false;
  slot.token = text;
  slot.pos = at;
}

void Tokenizer::pushback_token(const std::string& text) { pushback_token(text, token_pos); }

void Tokenizer::pushback_token(const char* text) { pushback_token(std::string(text), token_pos); }

bool Tokenizer::is_next_token_uc(const char* s) {
  get_check_token();
  if (str_i_equals(token, s)) return true;
  pushback_token();
  return false;
}

int Tokenizer::is_next_token_in(const char* chars) {
  get_check_token();
  if (token.size() == 1 && strcontains(chars, token[0])) return token[0];
  pushback_token();
  return -1;
}

void Tokenizer::ensure_next_token(const char* s) {
  get_check_token();
  if (!token_is(s)) throw error("expected '" + std::string(s) + "', found '" + token + "'");
}

int Tokenizer::ensure_next_token_in(const char* chars) {
  get_check_token();
  if (token.size() == 1 && strcontains(chars, token[0])) return token[0];
  throw error("expected one of '" + std::string(chars) + "', found '" + token + "'");
}

void Tokenizer::ensure_next_token_list(const char* chars) {
  // Reported at the token before the list, not at the wrong token.
  const TokenizerPos start = token_pos;
  for (const char* c = chars; *c != '\0'; ++c) {
    get_check_token();
    if (token.size() != 1 || token[0] != *c) throw error(start, "expected " + std::string(chars));
  }
}

int Tokenizer::next_integer() {
  get_check_token();
  return token_integer();
}

int Tokenizer::token_integer() const {
  bool whole = false;
  const int v = to_int(token, &whole);
  if (!whole) throw error("expected integer, not '" + token + "'");
  return v;
}

bool Tokenizer::try_next_integer(int* value) {
  get_check_token();
  bool whole = false;
  *value = to_int(token, &whole);
  return whole;
}

double Tokenizer::next_double() {
  get_check_token();
  return std::strtod(token.c_str(), nullptr);
}

ParserError Tokenizer::error(const std::string& message) const { return ParserError(message, token_pos, file_name); }

ParserError Tokenizer::error(const TokenizerPos& at, const std::string& message) const {
  return ParserError(message, at, file_name);
}

}  // namespace refgrove
