#include "search/text_folding.h"

#include <cstddef>

namespace refgrove {
namespace {

// Decodes the character at the start of `s` (non-empty): a valid UTF-8
// sequence, or else its first byte as Latin-1. Sets `length` to the bytes
// read.
char32_t decode_character(std::string_view s, std::size_t* length) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(s[i]); };
  const unsigned char lead = byte(0);
  *length = 1;
  std::size_t n = 0;
  char32_t code = 0, minimum = 0;
  if (lead < 0x80) return lead;
  if (lead >= 0xC2 && lead <= 0xDF) {
    n = 2, code = lead & 0x1F, minimum = 0x80;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    n = 3, code = lead & 0x0F, minimum = 0x800;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    n = 4, code = lead & 0x07, minimum = 0x10000;
  } else {
    return lead;
  }
  if (s.size() < n) return lead;
  for (std::size_t i = 1; i < n; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return lead;
    code = (code << 6) | (byte(i) & 0x3F);
  }
  if (code < minimum || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return lead;
  *length = n;
  return code;
}

void append_utf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | (c >> 12));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (c >> 18));
    out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

bool is_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// `text` decoded, each character mapped by `map`, encoded as UTF-8.
template <class Map>
std::string recode(std::string_view text, Map map) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    std::size_t length = 1;
    append_utf8(out, map(decode_character(text, &length)));
    text.remove_prefix(length);
  }
  return out;
}

}  // namespace

char32_t fold_code_point(char32_t c) {
  const bool even = c % 2 == 0;
  if (c >= 'A' && c <= 'Z') return c + 0x20;
  if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return c + 0x20;
  if (c == 0x130) return 'i';
  if (c == 0x178) return 0xFF;
  if (((c >= 0x100 && c <= 0x137) || (c >= 0x14A && c <= 0x177)) && even) return c + 1;
  if (((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E)) && !even) return c + 1;
  return c;
}

std::string as_utf8(std::string_view text) {
  return recode(text, [](char32_t c) { return c; });
}

std::string fold_word(std::string_view word) { return recode(word, fold_code_point); }

std::vector<std::string_view> split_terms(std::string_view text) {
  std::vector<std::string_view> terms;
  std::size_t i = 0;
  while (i < text.size()) {
    while (i < text.size() && is_space(text[i])) ++i;
    const std::size_t start = i;
    while (i < text.size() && !is_space(text[i])) ++i;
    if (i > start) terms.push_back(text.substr(start, i - start));
  }
  return terms;
}

}  // namespace refgrove
