#include "tokenizer/string_helpers.h"

#include <cctype>

namespace refgrove {

namespace {

bool is_digit(char c) { return c >= '0' && c <= '9'; }

int upper(char c) { return std::toupper(static_cast<unsigned char>(c)); }

}  // namespace

bool strcontains(const char* s, char c) { return strposition(s, c) >= 0; }

int strposition(const char* s, char c) {
  for (int i = 0; s[i] != '\0'; ++i) {
    if (s[i] == c) return i;
  }
  return -1;
}

bool is_float(const std::string& s) {
  if (s.empty()) return false;
  for (char c : s) {
    if (!is_digit(c) && !strcontains(".+-eE", c)) return false;
  }
  return true;
}

bool is_integer(const std::string& s) {
  if (s.empty()) return false;
  for (std::size_t i = 0; i < s.size(); ++i) {
    if (is_digit(s[i])) continue;
    if (i == 0 && (s[i] == '+' || s[i] == '-')) continue;
    return false;
  }
  return true;
}

void str_to_uppercase(std::string& s) {
  for (char& c : s) c = static_cast<char>(upper(c));
}

void strip_string_markers(std::string& s) {
  if (s.size() >= 2 && (s[0] == '"' || s[0] == '\'')) s = s.substr(1, s.size() - 2);
}

bool str_i_equals(const std::string& s, const char* t) {
  for (std::size_t i = 0; i < s.size(); ++i) {
    // t may be shorter than s: its NUL then differs from s[i] unless s holds
    // a NUL there too, and the comparison stops at the first difference
    // before reading past t's end.
    if (upper(s[i]) != upper(t[i])) return false;
    if (t[i] == '\0') return false;
  }
  return true;
}

std::ostream& mtab(std::ostream& os, int n) {
  for (int i = 0; i < n; ++i) os << '\t';
  return os;
}

}  // namespace refgrove
