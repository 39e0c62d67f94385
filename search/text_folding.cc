#include "search/text_folding.h"

#include <cstddef>

#include "core/utf8_text.h"

namespace refgrove {
namespace {

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
