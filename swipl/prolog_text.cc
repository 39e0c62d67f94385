#include "swipl/prolog_text.h"

#include <cstddef>
#include <cstdint>

namespace refgrove::swipl {
namespace {

// Length of the valid UTF-8 sequence starting at bytes[i], or 0.
std::size_t utf8_sequence_length(std::string_view bytes, std::size_t i) {
  const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(bytes[k]); };
  const unsigned char lead = byte(i);
  if (lead < 0x80) return 1;
  std::size_t length = 0;
  std::uint32_t code = 0, minimum = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2, code = lead & 0x1F, minimum = 0x80;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3, code = lead & 0x0F, minimum = 0x800;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4, code = lead & 0x07, minimum = 0x10000;
  } else {
    return 0;
  }
  if (bytes.size() - i < length) return 0;
  for (std::size_t k = 1; k < length; ++k) {
    if ((byte(i + k) & 0xC0) != 0x80) return 0;
    code = (code << 6) | (byte(i + k) & 0x3F);
  }
  if (code < minimum || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return 0;
  return length;
}

// The code point of the valid sequence of `length` bytes at bytes[i].
int decode(std::string_view bytes, std::size_t i, std::size_t length) {
  static constexpr unsigned char kLeadMask[] = {0, 0x7F, 0x1F, 0x0F, 0x07};  // by length
  int code = static_cast<unsigned char>(bytes[i]) & kLeadMask[length];
  for (std::size_t k = 1; k < length; ++k) code = (code << 6) | (static_cast<unsigned char>(bytes[i + k]) & 0x3F);
  return code;
}

// The characters of one word, decoded as its atom would be.
bool write_word(IOSTREAM* stream, std::string_view word) {
  const bool utf8 = is_valid_utf8(word);
  for (std::size_t i = 0; i < word.size();) {
    const std::size_t length = utf8 ? utf8_sequence_length(word, i) : 1;
    const int code = utf8 ? decode(word, i, length) : static_cast<unsigned char>(word[i]);
    if (Sputcode(code, stream) < 0) return false;
    i += length;
  }
  return true;
}

bool is_blank(char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; }

}  // namespace

bool is_valid_utf8(std::string_view bytes) {
  for (std::size_t i = 0; i < bytes.size();) {
    const std::size_t length = utf8_sequence_length(bytes, i);
    if (length == 0) return false;
    i += length;
  }
  return true;
}

bool unify_text(term_t t, std::string_view text, int type) {
  const int rep = is_valid_utf8(text) ? REP_UTF8 : REP_ISO_LATIN_1;
  return PL_unify_chars(t, type | rep, text.size(), text.data());
}

bool unify_text_atoms(term_t t, std::span<const std::string_view> texts) {
  const term_t tail = PL_copy_term_ref(t);
  const term_t head = PL_new_term_ref();
  for (const std::string_view text : texts) {
    if (!PL_unify_list(tail, head, tail) || !unify_text(head, text)) return false;
  }
  return PL_unify_nil(tail);
}

bool unify_int_list(term_t t, std::span<const int> values) {
  const term_t tail = PL_copy_term_ref(t);
  const term_t head = PL_new_term_ref();
  for (const int value : values) {
    if (!PL_unify_list(tail, head, tail) || !PL_unify_integer(head, value)) return false;
  }
  return PL_unify_nil(tail);
}

std::vector<std::string> stored_forms(term_t t) {
  std::vector<std::string> forms;
  char* chars = nullptr;
  std::size_t length = 0;
  if (!PL_get_nchars(t, &length, &chars, CVT_ATOM | CVT_STRING | REP_UTF8)) return forms;
  if (std::string_view(chars, length).find('\0') != std::string_view::npos) return forms;  // no stored text has one
  forms.emplace_back(chars, length);
  if (PL_get_nchars(t, &length, &chars, CVT_ATOM | CVT_STRING | REP_ISO_LATIN_1)) {
    std::string bytes(chars, length);
    if (!is_valid_utf8(bytes)) forms.push_back(std::move(bytes));
  }
  return forms;
}

bool write_text(IOSTREAM* stream, std::string_view text) {
  std::size_t i = 0;
  while (i < text.size()) {
    std::size_t end = i;
    while (end < text.size() && !is_blank(text[end])) ++end;
    if (!write_word(stream, text.substr(i, end - i))) return false;
    for (i = end; i < text.size() && is_blank(text[i]); ++i) {
      if (Sputcode(static_cast<unsigned char>(text[i]), stream) < 0) return false;
    }
  }
  return true;
}

}  // namespace refgrove::swipl
