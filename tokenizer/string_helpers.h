// Small string tests and edits used by the tokenizer and its parsers.
//
// Several of these are looser than their names suggest, on purpose:
//   is_integer  accepts a lone "+" or "-": the number scanner asks whether a
//               token so far can still be the start of a number, and a sign
//               can;
//   is_float    only checks the alphabet "0-9 . + - e E", not the order;
//   str_i_equals compares over the length of its first argument only, so it
//               is a case-insensitive "t starts with s" test.
#ifndef REFGROVE_TOKENIZER_STRING_HELPERS_H_
#define REFGROVE_TOKENIZER_STRING_HELPERS_H_

#include <ostream>
#include <string>

namespace refgrove {

// True when `c` occurs in `s` before its terminating NUL (so never for NUL).
bool strcontains(const char* s, char c);

// Index of the first `c` in `s`, or -1.
int strposition(const char* s, char c);

// Non-empty and made only of digits and ".+-eE", in any order.
bool is_float(const std::string& s);

// Non-empty, all digits, except that the first character may be "+" or "-".
bool is_integer(const std::string& s);

// toupper() on every character, in place.
void str_to_uppercase(std::string& s);

// Drops the first and the last character when `s` has at least two and
// starts with a single or double quote. The last character is not checked.
void strip_string_markers(std::string& s);

// True when t begins with s, ignoring case (t's length is not checked; an
// empty s matches everything).
bool str_i_equals(const std::string& s, const char* t);

// Writes n tabs (none for n <= 0).
std::ostream& mtab(std::ostream& os, int n);

}  // namespace refgrove

#endif  // REFGROVE_TOKENIZER_STRING_HELPERS_H_
