// The character layer's slow paths, the scanner and element merging.
#include "tokenizer/tokenizer.h"

#include <cstring>

#include "tokenizer/string_helpers.h"

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#define REFGROVE_VECTOR_SCAN 1
#endif

namespace {

bool is_digit(int c) { return c >= '0' && c <= '9'; }

#ifdef REFGROVE_VECTOR_SCAN
// a == b && c == d, for the check that runs once per word.
bool same_sets(const TokenizerCharSet& a, const TokenizerCharSet& b, const TokenizerCharSet& c,
               const TokenizerCharSet& d) {
  const auto load = [](const TokenizerCharSet& s, int i) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(s.words) + i);
  };
  const __m128i diff =
      _mm_or_si128(_mm_or_si128(_mm_xor_si128(load(a, 0), load(b, 0)), _mm_xor_si128(load(a, 1), load(b, 1))),
                   _mm_or_si128(_mm_xor_si128(load(c, 0), load(d, 0)), _mm_xor_si128(load(c, 1), load(d, 1))));
  return _mm_movemask_epi8(_mm_cmpeq_epi8(diff, _mm_setzero_si128())) == 0xFFFF;
}
#else
bool same_sets(const TokenizerCharSet& a, const TokenizerCharSet& b, const TokenizerCharSet& c,
               const TokenizerCharSet& d) {
  return std::memcmp(a.words, b.words, sizeof a.words) == 0 && std::memcmp(c.words, d.words, sizeof c.words) == 0;
}
#endif

#ifdef REFGROVE_VECTOR_SCAN
// Set membership of 16 bytes at once: the low nibble of each byte picks a
// row of eight bits from a table (one table for high nibbles 0-7, one for
// 8-15), the high nibble picks the bit. Returns the first member in
// [p, end) or the point where fewer than 16 bytes are left.
__attribute__((target("ssse3"), always_inline)) inline const char* scan_16(const char* p, const char* end,
                                                     const unsigned char* low_hi0,
                                                     const unsigned char* low_hi1) {
  const __m128i nibble = _mm_set1_epi8(0x0F);
  const __m128i zero = _mm_setzero_si128();
  const __m128i rows0 = _mm_load_si128(reinterpret_cast<const __m128i*>(low_hi0));
  const __m128i rows1 = _mm_load_si128(reinterpret_cast<const __m128i*>(low_hi1));
  const __m128i bits = _mm_setr_epi8(1, 2, 4, 8, 16, 32, 64, -128, 1, 2, 4, 8, 16, 32, 64, -128);
  while (end - p >= 16) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i lo = _mm_and_si128(v, nibble);
    const __m128i hi = _mm_and_si128(_mm_srli_epi16(v, 4), nibble);
    const __m128i upper = _mm_cmplt_epi8(v, zero);  // high nibble 8-15
    const __m128i row = _mm_or_si128(_mm_andnot_si128(upper, _mm_shuffle_epi8(rows0, lo)),
                                     _mm_and_si128(upper, _mm_shuffle_epi8(rows1, lo)));
    const __m128i outside = _mm_cmpeq_epi8(_mm_and_si128(row, _mm_shuffle_epi8(bits, hi)), zero);
    const unsigned members = ~static_cast<unsigned>(_mm_movemask_epi8(outside)) & 0xFFFFu;
    if (members != 0) return p + __builtin_ctz(members);
    p += 16;
  }
  return p;
}

// The whole scan of Tokenizer::scan_word with the nibble tables.
__attribute__((target("ssse3"))) const char* scan_word_ssse3(const char* p, const char* end,
                                                             const unsigned char* low_hi0,
                                                             const unsigned char* low_hi1,
                                                             const TokenizerCharSet& set) {
  p = scan_16(p, end, low_hi0, low_hi1);
  while (p != end && !set.contains(*p)) ++p;
  return p;
}

bool have_ssse3() {
  static const bool yes = __builtin_cpu_supports("ssse3");
  return yes;
}
#endif

}  // namespace

const Tokenizer::WordStop& Tokenizer::word_stop() {
  const TokenizerLanguage& lang = *language;
  if (!word_stop_.built || word_stop_.number_char != lang.number_char ||
      !same_sets(word_stop_.single_char_tokens, lang.single_char_tokens, word_stop_.space_chars, lang.space_chars)) {
    build_word_stop();
  }
  return word_stop_;
}

void Tokenizer::build_word_stop() {
  const TokenizerLanguage& lang = *language;
  WordStop& w = word_stop_;
  w.single_char_tokens = lang.single_char_tokens;
  w.space_chars = lang.space_chars;
  w.number_char = lang.number_char;
  w.set = lang.single_char_tokens;
  w.set.merge(lang.space_chars);
  w.set.add(' ');
  w.set.add('\t');
  w.set.add('\n');
  if (lang.number_char != 0) w.set.add(lang.number_char);
  std::memset(w.low_hi0, 0, sizeof w.low_hi0);
  std::memset(w.low_hi1, 0, sizeof w.low_hi1);
  for (int c = 0; c < 256; ++c) {
    if (!w.set.contains(c)) continue;
    const int hi = c >> 4;
    if (hi < 8) {
      w.low_hi0[c & 15] |= static_cast<unsigned char>(1u << hi);
    } else {
      w.low_hi1[c & 15] |= static_cast<unsigned char>(1u << (hi - 8));
    }
  }
#ifdef REFGROVE_VECTOR_SCAN
  w.vector = have_ssse3();
#endif
  w.built = true;
}

const char* Tokenizer::scan_word(const char* p, const char* end, const WordStop& stop) {
#ifdef REFGROVE_VECTOR_SCAN
  if (stop.vector) return scan_word_ssse3(p, end, stop.low_hi0, stop.low_hi1, stop.set);
#endif
  while (p != end && !stop.set.contains(*p)) ++p;
  return p;
}

Tokenizer::Tokenizer(TokenizerLanguage* language_)
    : file_name(nullptr),
      at_eof(0),
      pushback_count(0),
      char_pushback_count(0),
      space_before(false),
      last_space_char(' '),
      char_pushback{0, 0},
      language(language_) {
  init();
}

Tokenizer::Tokenizer() : Tokenizer(nullptr) {
  // Owned here only so that it is freed with the tokenizer; nothing else can
  // reach it.
  own_language_.reset(new TokenizerLanguage());
  language = own_language_.get();
}

Tokenizer::~Tokenizer() = default;

void Tokenizer::init() {
  file_name = nullptr;
  sub_language.release();
  reset_all();
}

void Tokenizer::reset_all() {
  at_eof = 0;
  pushback_count = 0;
  char_pushback_count = 0;
  pending_space_ = false;
  reset_position();
}

void Tokenizer::reset_position() {
  pos.set(1, 0);
  token_pos.set(0, 0);
}

void Tokenizer::select_language(int sub) {
  if (sub == -1) {
    sub_language.release();
  } else {
    sub_language = language->sub_languages[static_cast<std::size_t>(sub)];
  }
}

int Tokenizer::token_read_sig_char() { return read_sig_char(); }

bool Tokenizer::sig_char_slash_or_comment(int c, int* out) {
  if (language->comment_chars.contains(c)) {
    space_before = true;
    token_skip_to_end();
    return false;
  }
  const int d = token_read_char();
  if (d == '/' && language->line_comments) {
    space_before = true;
    token_skip_to_end();
    return false;
  }
  if (d == '*' && language->block_comments) {
    space_before = true;
    read_till_close_comment();
    return false;
  }
  push_char(d);
  *out = '/';
  return true;
}

void Tokenizer::token_skip_to_end() {
  int c;
  for (;;) {
    if (!raw_get(&c)) {
      at_eof = 1;
      return;
    }
    ++pos.column;
    if (c == '\n') break;
  }
  pos.incRow();
  if (!language->space_chars.contains('\n')) push_char('\n');
}

std::string& Tokenizer::read_line() {
  token.clear();
  while (pushback_count > 0) token += pushback[static_cast<std::size_t>(--pushback_count)].token;
  while (char_pushback_count > 0) token += char_pushback[--char_pushback_count];
  int c;
  while (raw_get(&c) && c != '\n') token += static_cast<char>(c);
  return token;
}

void Tokenizer::read_till_close_comment() {
  TokenizerPos start = pos;
  int prev = 0;
  for (;;) {
    const int c = token_read_char();
    if (at_eof) {
      --start.column;
      throw error(start, "comment block '/*' not terminated");
    }
    if (prev == '*' && c == '/') return;
    prev = c;
  }
}

void Tokenizer::read_number_term(char c) {
  int ch = token_read_char();
  if (!is_digit(ch)) {
    push_char(ch);
    push_char(c);
    return;
  }
  token += c;
  bool sign_allowed = false;
  bool exponent_seen = false;
  for (;;) {
    token += static_cast<char>(ch);
    ch = token_read_char();
    if ((ch == '+' || ch == '-') && sign_allowed) continue;
    if ((ch == 'e' || ch == 'E') && !exponent_seen) {
      exponent_seen = true;
      sign_allowed = true;
      continue;
    }
    if (is_digit(ch)) {
      sign_allowed = false;
      continue;
    }
    break;
  }
  if (ch == ' ') {
    pending_space_ = at_eof == 0;
    if (!plain_hooks_) on_trailing_space();
  } else if (language->single_char_tokens.contains(ch)) {
    push_char(ch);
  } else {
    throw error("illegal token_character '" + std::string(1, static_cast<char>(ch)) +
                "' while reading number");
  }
}

void Tokenizer::read_single_quoted() {
  // `prev1` is the character before the one just read, `prev2` the one
  // before that: a quote is escaped by a backslash that is not itself
  // escaped. A doubled quote stands for one quote inside the string.
  int prev1 = 0;
  int prev2 = 0;
  for (;;) {
    const int ch = token_read_char();
    token += static_cast<char>(ch);
    if (ch == '\'' && !(prev1 == '\\' && prev2 != '\\')) {
      const int next = token_read_char();
      if (next != '\'') {
        push_char(next);
        return;
      }
      token += '\'';
    }
    prev2 = prev1;
    prev1 = ch;
    if (at_eof) throw error("unterminated string constant");
  }
}

void Tokenizer::read_double_quoted() {
  // A backslash right before a quote always protects it, and a doubled quote
  // ends the string (the second one opens the next string).
  int prev = '"';
  for (;;) {
    const int ch = token_read_char();
    token += static_cast<char>(ch);
    if (ch == '"' && prev != '\\') return;
    if (at_eof) throw error("unterminated string constant");
    prev = ch;
  }
}

void Tokenizer::get_token_2() {
  if (pushback_count > 0) {
    TokenAndPos& top = pushback[static_cast<std::size_t>(--pushback_count)];
    token.swap(top.token);  // the slot is dead now; keep its storage
    token_pos = top.pos;
    space_before = top.space_before;
    return;
  }
  space_before = pending_space_;
  pending_space_ = false;
  const int c = sig_char();
  if (at_eof) {
    token.clear();
    return;
  }
  token_pos = pos;
  const TokenizerLanguage& lang = *language;
  if (c == '\'' && lang.strings) {
    token.assign(1, '\'');
    read_single_quoted();
    return;
  }
  if (c == '"' && lang.strings) {
    token.assign(1, '"');
    read_double_quoted();
    return;
  }
  token.clear();
  if (lang.single_char_tokens.contains(c)) {
    token.push_back(static_cast<char>(c));
    return;
  }

  // A word. Characters that need no more than appending and counting one
  // column are taken in bulk from the source's direct characters; the rest
  // go through token_read_char. `stop` is everything else: the characters
  // that end a word, and tab and newline, which move the position
  // differently.
  const WordStop& stop = word_stop();
  const char number_char = lang.number_char;
  if (char_pushback_count == 0 && direct_next_ != direct_end_ && direct_next_[-1] == static_cast<char>(c)) {
    // The usual case: the word lies in the direct characters from its first
    // character on, and so does the character that ends it. Copy the word
    // in one go and take the end here when it is a plain blank or a
    // single-character token; anything else (tab, newline, the number
    // character, the end of the run) goes through the loop below.
    const char* start = direct_next_ - 1;
    const char* p = scan_word(direct_next_, direct_end_, stop);
    token.clear();  // clear and append are cheaper than assign
    token.append(start, static_cast<std::size_t>(p - start));
    pos.column += static_cast<int>(p - direct_next_);
    direct_next_ = p;
    if (p != direct_end_ && *p != '\t' && *p != '\n') {
      const int raw = static_cast<signed char>(*p);
      const bool space = lang.space_chars.contains(raw);
      const int ch = space ? ' ' : raw;  // what token_read_char would return
      if (number_char != 0 && ch == number_char) {
        // the loop below reads it
      } else if (lang.single_char_tokens.contains(ch)) {
        ++direct_next_;
        ++pos.column;
        if (space) last_space_char = static_cast<char>(raw);
        push_char(ch);
        return;
      } else if (ch == ' ') {
        ++direct_next_;
        ++pos.column;
        if (space) last_space_char = static_cast<char>(raw);
        pending_space_ = true;
        if (!plain_hooks_) on_trailing_space();
        return;
      }
    }
  } else {
    token.push_back(static_cast<char>(c));
  }
  for (;;) {
    if (char_pushback_count == 0 && direct_next_ != direct_end_) {
      const char* p = scan_word(direct_next_, direct_end_, stop);
      const std::ptrdiff_t n = p - direct_next_;
      if (n > 0) {
        token.append(direct_next_, static_cast<std::size_t>(n));
        pos.column += static_cast<int>(n);
        direct_next_ = p;
      }
    }
    const int ch = token_read_char();
    if (number_char != 0 && ch == number_char) {
      if (is_integer(token)) {
        read_number_term(static_cast<char>(ch));
      } else {
        push_char(ch);
      }
      return;
    }
    if (lang.single_char_tokens.contains(ch)) {
      push_char(ch);
      return;
    }
    if (ch == ' ') {
      pending_space_ = at_eof == 0;
      if (!plain_hooks_) on_trailing_space();
      return;
    }
    token += static_cast<char>(ch);
    if (at_eof) return;
  }
}

void Tokenizer::merge_token() {
  // A root of a few keys is searched by comparing lengths first: most
  // tokens differ in length from every key, and hashing them costs more.
  auto it = sub_language->end();
  if (sub_language->size() <= 4) {
    for (auto k = sub_language->begin(); k != sub_language->end(); ++k) {
      if (k->first.size() == token.size() && k->first == token) {
        it = k;
        break;
      }
    }
  } else {
    it = sub_language->find(token);
  }
  if (it == sub_language->end()) return;
  // Hold the node: the lookup below may read ahead, but must not lose it.
  const TokenizerLangHashPtr node = it->second;
  if (TokenizerLangElem* e = findLangElem(node.get())) token = e->name;
}

void Tokenizer::throw_end_of_file() const { throw error("unexpected end of file"); }

TokenizerLangElem* Tokenizer::findLangElem(const TokenizerLangHash* h) {
  const std::string saved_token = token;
  const TokenizerPos saved_pos = token_pos;
  get_token_2();
  if (!token.empty()) {
    if (space_before) {
      pushback_token();
    } else if (TokenizerLangElem* e = findLangElem2(h)) {
      token_pos = saved_pos;  // the merged token stands where it began
      return e;
    }
  }
  // No longer match. When the first token is an element by itself, its
  // position and spacing are left as the look-ahead set them.
  if (h->elem == nullptr) {
    token = saved_token;
    token_pos = saved_pos;
  }
  return h->elem;
}

TokenizerLangElem* Tokenizer::findLangElem2(const TokenizerLangHash* h) {
  TokenAndPos remembered;
  remembered.space_before = space_before;
  remembered.token = token;
  remembered.pos = token_pos;
  auto it = h->find(token);
  if (it == h->end()) {
    pushback_token(remembered);
    return nullptr;
  }
  const TokenizerLangHash* child = it->second.get();
  get_token_2();
  if (!token.empty()) {
    if (space_before) {
      pushback_token();
    } else if (TokenizerLangElem* e = findLangElem2(child)) {
      return e;
    }
  }
  if (child->elem != nullptr) return child->elem;
  pushback_token(remembered);
  return nullptr;
}

TokenizerLangElem* Tokenizer::try_find_lang_elem(int sub) {
  get_token_2();
  if (token.empty()) return nullptr;
  const TokenizerLangHashPtr root = language->sub_languages[static_cast<std::size_t>(sub)];
  auto it = root->find(token);
  if (it != root->end()) {
    const TokenizerLangHashPtr node = it->second;
    if (TokenizerLangElem* e = findLangElem(node.get())) return e;
  }
  pushback_token();
  return nullptr;
}
