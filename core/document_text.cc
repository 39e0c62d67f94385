#include "core/document_text.h"

#include "core/data_view.h"

namespace refgrove {
namespace {

// Length of the valid UTF-8 sequence at the start of `s` (shortest form, no
// surrogates, at most U+10FFFF), or 0.
std::size_t utf8_sequence_length(std::string_view s) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(s[i]); };
  const unsigned char b = byte(0);
  if (b < 0x80) return 1;
  std::size_t n = 0;
  unsigned char lo = 0x80, hi = 0xBF;  // the range of the second byte
  if (b >= 0xC2 && b <= 0xDF) {
    n = 2;
  } else if (b >= 0xE0 && b <= 0xEF) {
    n = 3;
    if (b == 0xE0) lo = 0xA0;
    if (b == 0xED) hi = 0x9F;
  } else if (b >= 0xF0 && b <= 0xF4) {
    n = 4;
    if (b == 0xF0) lo = 0x90;
    if (b == 0xF4) hi = 0x8F;
  } else {
    return 0;
  }
  if (s.size() < n || byte(1) < lo || byte(1) > hi) return 0;
  for (std::size_t i = 2; i < n; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
  }
  return n;
}

// Joins `count` words given by `get` with blanks.
template <typename Get>
std::string join_words(int count, Get get) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    const char* word = nullptr;
    if (!get(i, &word)) break;
    if (i > 0) text += ' ';
    text += word;
  }
  return as_utf8(text);
}

}  // namespace

std::string as_utf8(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const std::size_t n = utf8_sequence_length(bytes);
    if (n > 0) {
      text.append(bytes.substr(0, n));
      bytes.remove_prefix(n);
      continue;
    }
    const unsigned char latin1 = static_cast<unsigned char>(bytes[0]);
    text += static_cast<char>(0xC0 | (latin1 >> 6));
    text += static_cast<char>(0x80 | (latin1 & 0x3F));
    bytes.remove_prefix(1);
  }
  return text;
}

std::string key_text(const RefgroveData& d, int did) {
  const char* key = nullptr;
  return get_key(d, did, &key) ? as_utf8(key) : std::string();
}

std::string title_text(const RefgroveData& d, int did) {
  int n = 0;
  title_length(d, did, &n);
  return join_words(n, [&](int i, const char** w) { return get_title_word(d, did, i, w); });
}

std::string abstract_text(const RefgroveData& d, int did) {
  int n = 0;
  abstract_length(d, did, &n);
  return join_words(n, [&](int i, const char** w) { return get_abstract_word(d, did, i, w); });
}

std::string author_name_text(const RefgroveData& d, int author_id) {
  const char* name = nullptr;
  return id2author(d, author_id, &name) ? as_utf8(name) : std::string();
}

}  // namespace refgrove
