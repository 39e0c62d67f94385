#include "core/text_folding.h"

#include <utf8proc.h>

#include <cstddef>
#include <cstdlib>
#include <new>

#include "core/utf8_text.h"

namespace refgrove {
namespace {

bool is_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// Most words of the dumps are plain ASCII, where the folding is lowering:
// the word index folds its whole vocabulary when a set is first searched.
bool is_ascii(std::string_view text) {
  for (const char c : text) {
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  }
  return true;
}

}  // namespace

std::string fold_text(std::string_view text) {
  if (is_ascii(text)) {
    std::string lowered(text);
    for (char& c : lowered) {
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return lowered;
  }
  // Valid UTF-8 without surrogates, which utf8proc accepts whole.
  const std::string utf8 = as_utf8(text);
  utf8proc_uint8_t* folded = nullptr;
  const utf8proc_ssize_t n = utf8proc_map(
      reinterpret_cast<const utf8proc_uint8_t*>(utf8.data()), static_cast<utf8proc_ssize_t>(utf8.size()), &folded,
      static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPAT | UTF8PROC_COMPOSE | UTF8PROC_CASEFOLD |
                                     UTF8PROC_STRIPMARK));
  if (n < 0) throw std::bad_alloc();  // the only error left for valid UTF-8
  std::string out(reinterpret_cast<const char*>(folded), static_cast<std::size_t>(n));
  std::free(folded);
  return out;
}

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
