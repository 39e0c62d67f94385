// The character layer's slow paths, the scanner and element merging.
#include "tokenizer/tokenizer.h"

#include <cstddef>
#include <cstring>

#include "tokenizer/string_helpers.h"

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#define REFGROVE_VECTOR_SCAN 1
#endif

namespace refgrove {

namespace {

bool is_digit(int c) { return c >= '0' && c <= '9'; }

// Whether the character classes are those the tables were made from.
#ifdef REFGROVE_VECTOR_SCAN
inline __attribute__((always_inline)) bool same_classes(const TokenizerCharSet* a, const TokenizerCharSet* b) {
  const __m128i* x = reinterpret_cast<const __m128i*>(a);
  const __m128i* y = reinterpret_cast<const __m128i*>(b);
  const __m128i diff =
      _mm_or_si128(_mm_or_si128(_mm_xor_si128(_mm_loadu_si128(x), _mm_loadu_si128(y)),
                                _mm_xor_si128(_mm_loadu_si128(x + 1), _mm_loadu_si128(y + 1))),
                   _mm_or_si128(_mm_or_si128(_mm_xor_si128(_mm_loadu_si128(x + 2), _mm_loadu_si128(y + 2)),
                                             _mm_xor_si128(_mm_loadu_si128(x + 3), _mm_loadu_si128(y + 3))),
                                _mm_or_si128(_mm_xor_si128(_mm_loadu_si128(x + 4), _mm_loadu_si128(y + 4)),
                                             _mm_xor_si128(_mm_loadu_si128(x + 5), _mm_loadu_si128(y + 5)))));
  return _mm_movemask_epi8(_mm_cmpeq_epi8(diff, _mm_setzero_si128())) == 0xFFFF;
}
#else
bool same_classes(const TokenizerCharSet* a, const TokenizerCharSet* b) {
  return std::memcmp(a, b, 3 * sizeof *a) == 0;
}
#endif

#ifdef REFGROVE_VECTOR_SCAN
// The first member of `stop` in [p, end), or end; 16 bytes at a time while
// that many are left. The low nibble of each byte picks a row of eight bits
// from a table (low_hi0 for bytes below 0x80, low_hi1 for the others; the
// shuffle gives 0 for an index with its top bit set, which keeps the two
// apart), the high nibble picks the bit.
__attribute__((target("ssse3"), always_inline)) inline const char* find_stop(const char* p, const char* end,
                                                                             const unsigned char* low_hi0,
                                                                             const unsigned char* low_hi1,
                                                                             const TokenizerCharSet& stop) {
  const __m128i nibble = _mm_set1_epi8(0x0F);
  const __m128i top = _mm_set1_epi8(-128);
  const __m128i rows0 = _mm_load_si128(reinterpret_cast<const __m128i*>(low_hi0));
  const __m128i rows1 = _mm_load_si128(reinterpret_cast<const __m128i*>(low_hi1));
  const __m128i bits = _mm_setr_epi8(1, 2, 4, 8, 16, 32, 64, -128, 1, 2, 4, 8, 16, 32, 64, -128);
  for (; end - p >= 16; p += 16) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i row = _mm_or_si128(_mm_shuffle_epi8(rows0, v), _mm_shuffle_epi8(rows1, _mm_xor_si128(v, top)));
    const __m128i bit = _mm_shuffle_epi8(bits, _mm_and_si128(_mm_srli_epi16(v, 4), nibble));
    const unsigned outside =
        static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_and_si128(row, bit), _mm_setzero_si128())));
    if (outside != 0xFFFFu) return p + __builtin_ctz(~outside);
  }
  while (p != end && !stop.contains(*p)) ++p;
  return p;
}

// find_stop for the general scanner, which is not compiled for SSSE3.
__attribute__((target("ssse3"))) const char* find_stop_ssse3(const char* p, const char* end,
                                                             const unsigned char* low_hi0, const unsigned char* low_hi1,
                                                             const TokenizerCharSet& stop) {
  return find_stop(p, end, low_hi0, low_hi1, stop);
}

// same_classes, 32 bytes at a time.
__attribute__((target("avx2"), always_inline)) inline bool same_classes_avx2(const TokenizerCharSet* a,
                                                                             const TokenizerCharSet* b) {
  const __m256i* x = reinterpret_cast<const __m256i*>(a);
  const __m256i* y = reinterpret_cast<const __m256i*>(b);
  const __m256i diff =
      _mm256_or_si256(_mm256_or_si256(_mm256_xor_si256(_mm256_loadu_si256(x), _mm256_loadu_si256(y)),
                                      _mm256_xor_si256(_mm256_loadu_si256(x + 1), _mm256_loadu_si256(y + 1))),
                      _mm256_xor_si256(_mm256_loadu_si256(x + 2), _mm256_loadu_si256(y + 2)));
  return _mm256_testz_si256(diff, diff) != 0;
}

bool cpu_supports(bool avx2) {
  __builtin_cpu_init();  // this may run before the constructors that would call it
  return avx2 ? __builtin_cpu_supports("avx2") : __builtin_cpu_supports("ssse3");
}
const bool g_have_ssse3 = cpu_supports(false);

bool have_ssse3() { return g_have_ssse3; }
#endif

}  // namespace

#ifdef REFGROVE_VECTOR_SCAN
Tokenizer::FastPath Tokenizer::fast_path_ = !have_ssse3()        ? FastPath::kNone
                                            : cpu_supports(true) ? FastPath::kAvx2
                                                                 : FastPath::kBase;
#else
Tokenizer::FastPath Tokenizer::fast_path_ = FastPath::kBase;
#endif

inline __attribute__((always_inline)) bool Tokenizer::scan_flags_current() const {
  const TokenizerLanguage& lang = *language;
  return scan_.built && scan_.number_char == lang.number_char && scan_.strings == lang.strings;
}

inline __attribute__((always_inline)) bool Tokenizer::scan_tables_current() const {
  // The three classes lie side by side in both structures.
  static_assert(offsetof(TokenizerLanguage, comment_chars) ==
                    offsetof(TokenizerLanguage, single_char_tokens) + 2 * sizeof(TokenizerCharSet),
                "character classes of the language are not contiguous");
  static_assert(
      offsetof(ScanTables, comment_chars) == offsetof(ScanTables, single_char_tokens) + 2 * sizeof(TokenizerCharSet),
      "character classes of the tables are not contiguous");
  return scan_flags_current() && same_classes(&scan_.single_char_tokens, &language->single_char_tokens);
}

const Tokenizer::ScanTables& Tokenizer::scan_tables() {
  if (!scan_tables_current()) build_scan_tables();
  return scan_;
}

unsigned char Tokenizer::start_class(const TokenizerLanguage& lang, int c) {
  if (c == '\t' || c == '\n') return kStartGeneral;  // they move the position differently
  if (lang.space_chars.contains(c)) return kStartBlank | kStartSpaceChar;
  if (c == ' ') return kStartBlank;
  if (c == '/' || lang.comment_chars.contains(c)) return kStartGeneral;
  if (lang.strings && (c == '\'' || c == '"')) return kStartGeneral;
  return lang.single_char_tokens.contains(c) ? kStartSingle : kStartWord;
}

void Tokenizer::build_scan_tables() {
  const TokenizerLanguage& lang = *language;
  ScanTables& t = scan_;
  t.single_char_tokens = lang.single_char_tokens;
  t.space_chars = lang.space_chars;
  t.comment_chars = lang.comment_chars;
  t.number_char = lang.number_char;
  t.strings = lang.strings;
  t.stop = lang.single_char_tokens;
  t.stop.merge(lang.space_chars);
  t.stop.add(' ');
  t.stop.add('\t');
  t.stop.add('\n');
  if (lang.number_char != 0) t.stop.add(lang.number_char);
  std::memset(t.low_hi0, 0, sizeof t.low_hi0);
  std::memset(t.low_hi1, 0, sizeof t.low_hi1);
  for (int c = 0; c < 256; ++c) {
    t.start[c] = start_class(lang, static_cast<signed char>(c));
    // As the general word loop takes the character after token_read_char.
    const bool space = lang.space_chars.contains(c);
    const int as_read = space ? ' ' : static_cast<signed char>(c);
    unsigned char end = 0;
    if (lang.number_char != 0 && as_read == lang.number_char) {
      end = 0;
    } else if (lang.single_char_tokens.contains(as_read)) {
      end = kEndSingle;
    } else if (as_read == ' ') {
      end = kEndBlank;
    }
    t.ends[c] = static_cast<unsigned char>(end | (space ? kEndSpace : 0));
    if (!t.stop.contains(c)) continue;
    const int hi = c >> 4;
    if (hi < 8) {
      t.low_hi0[c & 15] |= static_cast<unsigned char>(1u << hi);
    } else {
      t.low_hi1[c & 15] |= static_cast<unsigned char>(1u << (hi - 8));
    }
  }
#ifdef REFGROVE_VECTOR_SCAN
  t.vector = have_ssse3();
#endif
  t.built = true;
}

const char* Tokenizer::scan_word(const char* p, const char* end, const ScanTables& tables) {
#ifdef REFGROVE_VECTOR_SCAN
  if (tables.vector) return find_stop_ssse3(p, end, tables.low_hi0, tables.low_hi1, tables.stop);
#endif
  while (p != end && !tables.stop.contains(*p)) ++p;
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
    throw error("illegal token_character '" + std::string(1, static_cast<char>(ch)) + "' while reading number");
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

inline __attribute__((always_inline)) void Tokenizer::set_token(const char* p, std::size_t n, const char* end) {
#if defined(REFGROVE_VECTOR_SCAN) && defined(__cpp_lib_string_resize_and_overwrite)
  // Most tokens are shorter than 16 characters. Copying such a token as 16
  // bytes at once, whatever its length, avoids memcpy and its branches on
  // the length, which mispredict on words of random lengths. The 16 bytes
  // read lie in [p, end).
  if (n < 16 && end - p >= 16) {
    token.resize_and_overwrite(16, [p, n](char* d, std::size_t) {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
      return n;
    });
    return;
  }
#endif
  static_cast<void>(end);
  token.assign(p, n);
}

// The fast path needs SSSE3 on x86-64; its callers test fast_path_usable().
#ifdef REFGROVE_VECTOR_SCAN
#define REFGROVE_FAST_PATH __attribute__((target("ssse3")))
#else
#define REFGROVE_FAST_PATH
#endif

inline REFGROVE_FAST_PATH __attribute__((always_inline)) bool Tokenizer::take_plain_token(const char** text,
                                                                                          std::size_t* size) {
  // Most tokens are a word or a single-character token after a blank or
  // two, with the character that ends the word a blank, a newline or a
  // single-character token, all in the direct characters. This takes such
  // a token in one go, with the effects that the general way has on the
  // position, the flags and the pushed-back characters. Anything else (a
  // tab or newline before the token, comments, strings, the number
  // character, the end of the direct characters) returns false before the
  // token's first character is taken, and the general way goes on from
  // there.
  const char* p = direct_next_;
  const char* const end = direct_end_;
  if (p == end || at_eof) return false;
  const ScanTables& t = scan_;
  const char* start;  // the token's first character
  int column;         // pos.column after it
  if (char_pushback_count == 0) {
    // Blanks other than tab and newline move the column by one each.
    const char* q = p;
    for (; q != end; ++q) {
      const unsigned char k = t.start[static_cast<unsigned char>(*q)];
      if ((k & kStartBlank) == 0) break;
      if (k & kStartSpaceChar) last_space_char = *q;
    }
    if (q != p) {
      space_before = true;
      pos.column += static_cast<int>(q - p);
      direct_next_ = p = q;
      if (p == end) return false;
    }
    start = p;
    column = pos.column + 1;
  } else if (char_pushback_count == 1 && p[-1] == char_pushback[0]) {
    // The first character was read and given back (by has_more_tokens):
    // it is the one before the direct characters, and already counted.
    start = p - 1;
    column = pos.column;
  } else {
    return false;
  }
  const unsigned char kind = t.start[static_cast<unsigned char>(*start)];

  // A single-character token.
  if (kind == kStartSingle) {
    *text = start;
    *size = 1;
    char_pushback_count = 0;
    // Field by field: copying pos whole right after storing its column
    // would read back a value still on its way to memory.
    token_pos.column = column;
    token_pos.row = pos.row;
    pos.column = column;
    direct_next_ = start + 1;
    return true;
  }
  if (kind != kStartWord) return false;

    // A word, and what ends it. What happens then is looked up rather than
    // decided by branches, which mispredict on text where a word is followed
    // now by a blank, now by punctuation.
#ifdef REFGROVE_VECTOR_SCAN
  const char* q = find_stop(start + 1, end, t.low_hi0, t.low_hi1, t.stop);
#else
  const char* q = scan_word(start + 1, end, t);
#endif
  if (q == end) return false;
  const char end_char = *q;
  const unsigned char ends = t.ends[static_cast<unsigned char>(end_char)];
  if ((ends & (kEndBlank | kEndSingle)) == 0) return false;

  *text = start;
  *size = static_cast<std::size_t>(q - start);
  token_pos.column = column;
  token_pos.row = pos.row;
  direct_next_ = q + 1;
  int after = column + static_cast<int>(q - start);  // the column after the end character
  if (end_char == '\t') {
    after = (after - 1) / 8 * 8 + 8;
  } else if (end_char == '\n') {
    after = 0;
    ++pos.row;
  }
  pos.column = after;
  const bool space = (ends & kEndSpace) != 0;
  const bool single = (ends & kEndSingle) != 0;
  last_space_char = space ? end_char : last_space_char;
  char_pushback[0] = single ? (space ? ' ' : end_char) : char_pushback[0];
  char_pushback_count = single ? 1 : 0;
  pending_space_ = !single;
  return true;
}

inline REFGROVE_FAST_PATH __attribute__((always_inline)) bool Tokenizer::take_plain_token_into_token() {
  const char* text;
  std::size_t size;
  if (!take_plain_token(&text, &size)) return false;
  set_token(text, size, direct_end_);
  return true;
}

REFGROVE_FAST_PATH bool Tokenizer::fast_token() {
  if (!scan_tables_current()) build_scan_tables();
  return take_plain_token_into_token();
}

#ifdef REFGROVE_VECTOR_SCAN
__attribute__((target("avx2"))) bool Tokenizer::fast_token_avx2() {
  if (!scan_flags_current() || !same_classes_avx2(&scan_.single_char_tokens, &language->single_char_tokens)) {
    build_scan_tables();
  }
  return take_plain_token_into_token();
}
#else
bool Tokenizer::fast_token_avx2() { return fast_token(); }
#endif

REFGROVE_FAST_PATH std::size_t Tokenizer::take_plain_tokens(char last, PlainToken* out, bool* last_read) {
  // The caller's code runs only between runs, so the language is looked at
  // once per run.
  if (!scan_tables_current()) build_scan_tables();
  std::size_t n = 0;
  while (n < kPlainTokenRun) {
    // What get_token_2 does before fast_token.
    space_before = pending_space_;
    pending_space_ = false;
    const char* text;
    std::size_t size;
    if (!take_plain_token(&text, &size)) {
      pending_space_ = space_before;  // for the get_token_2 that goes on
      break;
    }
    if (size == 1 && text[0] == last) {
      token.assign(1, last);
      *last_read = true;
      break;
    }
    out[n++] = PlainToken{text, size, static_cast<std::size_t>(direct_end_ - text)};
  }
  return n;
}

void Tokenizer::pop_pushed_token() {
  TokenAndPos& top = pushback[static_cast<std::size_t>(--pushback_count)];
  token.swap(top.token);  // the slot is dead now; keep its storage
  token_pos = top.pos;
  space_before = top.space_before;
}

void Tokenizer::scan_token() {
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
  const ScanTables& tables = scan_tables();
  const char number_char = lang.number_char;
  token.push_back(static_cast<char>(c));
  for (;;) {
    if (char_pushback_count == 0 && direct_next_ != direct_end_) {
      const char* p = scan_word(direct_next_, direct_end_, tables);
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
      if (k->first.size() == token.size() && k->first[0] == token[0] && k->first == token) {
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

}  // namespace refgrove
