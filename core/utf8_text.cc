#include "core/utf8_text.h"

namespace refgrove {

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

std::string as_utf8(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size());
  while (!bytes.empty()) {
    std::size_t length = 1;
    append_utf8(out, decode_character(bytes, &length));
    bytes.remove_prefix(length);
  }
  return out;
}

}  // namespace refgrove
