// The dumps hold bytes, not text: keys, names and words may be UTF-8,
// Latin-1 or anything else. Wherever refgrove hands texts out as UTF-8 (the
// export, the explorer, the word search's folding), it decodes them one way:
// every valid UTF-8 sequence (shortest form, no surrogates, at most
// U+10FFFF) is the character it encodes, and every other byte is the
// Latin-1 character of that value. Nothing is lost, and the result is
// always valid UTF-8.
#ifndef REFGROVE_CORE_UTF8_TEXT_H_
#define REFGROVE_CORE_UTF8_TEXT_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace refgrove {

// Decodes the character at the start of `s` (non-empty), as above. Sets
// `length` to the bytes read.
char32_t decode_character(std::string_view s, std::size_t* length);

// Appends the UTF-8 encoding of `c` to `out`.
void append_utf8(std::string& out, char32_t c);

// `bytes` decoded as above, encoded as UTF-8.
std::string as_utf8(std::string_view bytes);

}  // namespace refgrove

#endif  // REFGROVE_CORE_UTF8_TEXT_H_
