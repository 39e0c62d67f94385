#include "host/term_text.h"

#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "host/host_engine.h"

namespace refgrove {

namespace toplevel {
namespace {

constexpr long kSmallIntMin = -(1L << 27), kSmallIntMax = (1L << 27) - 1;

// Lists are read (and later unified and written) recursively, one level per
// nesting; deeper than this and a goal could overrun the program's stack.
constexpr int kMaxListDepth = 10000;

bool is_alnum(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

class Parser {
 public:
  Parser(LumoxMachine* m, const std::string& text, Query* query) : m_(m), text_(text), query_(query) {}

  void parse() {
    do query_->calls.push_back(call());
    while (accept(','));
    accept('.');
    skip_blanks();
    if (pos_ != text_.size()) fail("operator expected");
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw SyntaxError(what + " at column " + std::to_string(pos_ + 1));
  }

  void skip_blanks() {
    while (pos_ < text_.size()) {
      if (std::isspace(static_cast<unsigned char>(text_[pos_]))) {
        ++pos_;
      } else if (text_[pos_] == '%') {
        while (pos_ < text_.size() && text_[pos_] != '\n') ++pos_;
      } else {
        break;
      }
    }
  }
  char peek() {
    skip_blanks();
    return pos_ < text_.size() ? text_[pos_] : '\0';
  }
  bool accept(char c) {
    if (peek() != c) return false;
    ++pos_;
    return true;
  }
  void expect(char c) {
    if (!accept(c)) fail(std::string("'") + c + "' expected");
  }

  Call call() {
    Call c;
    const char first = peek();
    if (first == '\'') {
      c.name = quoted();
    } else if (std::islower(static_cast<unsigned char>(first))) {
      c.name = word();
    } else {
      fail("goal expected");
    }
    if (pos_ < text_.size() && text_[pos_] == '(') {
      ++pos_;
      do c.args.push_back(term_arg());
      while (accept(','));
      expect(')');
    }
    return c;
  }

  term term_arg() {
    const char c = peek();
    if (c == '\0') fail("term expected");
    if (c == '[') return list();
    if (c == '\'') return lumox_sim::make_atom(quoted());
    if (std::isdigit(static_cast<unsigned char>(c))) return number(false);
    if (c == '-' && pos_ + 1 < text_.size() && std::isdigit(static_cast<unsigned char>(text_[pos_ + 1]))) {
      ++pos_;
      return number(true);
    }
    if (std::islower(static_cast<unsigned char>(c))) {
      const std::string name = word();
      if (peek() == '(') fail("compound terms are not supported");
      return lumox_sim::make_atom(name);
    }
    if (std::isupper(static_cast<unsigned char>(c)) || c == '_') return variable(word());
    fail("term expected");
  }

  std::string word() {
    const std::size_t start = pos_;
    while (pos_ < text_.size() && is_alnum(text_[pos_])) ++pos_;
    return text_.substr(start, pos_ - start);
  }

  std::string quoted() {
    ++pos_;  // the opening quote
    std::string out;
    for (;;) {
      if (pos_ >= text_.size()) fail("unterminated quoted atom");
      const char c = text_[pos_++];
      if (c == '\'') {
        if (pos_ < text_.size() && text_[pos_] == '\'') {
          out += '\'';
          ++pos_;
          continue;
        }
        return out;
      }
      if (c != '\\') {
        out += c;
        continue;
      }
      if (pos_ >= text_.size()) fail("unterminated quoted atom");
      const char e = text_[pos_++];
      switch (e) {
        case 'n':
          out += '\n';
          break;
        case 't':
          out += '\t';
          break;
        case '\\':
        case '\'':
        case '"':
          out += e;
          break;
        default:
          fail(std::string("unknown escape \\") + e);
      }
    }
  }

  term number(bool negative) {
    const std::size_t start = pos_;
    while (pos_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[pos_]))) ++pos_;
    bool is_float = false;
    if (pos_ + 1 < text_.size() && text_[pos_] == '.' && std::isdigit(static_cast<unsigned char>(text_[pos_ + 1]))) {
      is_float = true;
      ++pos_;
      while (pos_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[pos_]))) ++pos_;
      if (pos_ < text_.size() && (text_[pos_] == 'e' || text_[pos_] == 'E')) {
        std::size_t p = pos_ + 1;
        if (p < text_.size() && (text_[p] == '+' || text_[p] == '-')) ++p;
        if (p < text_.size() && std::isdigit(static_cast<unsigned char>(text_[p]))) {
          pos_ = p;
          while (pos_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[pos_]))) ++pos_;
        }
      }
    }
    if (pos_ < text_.size() && is_alnum(text_[pos_])) fail("malformed number");
    const std::string digits = (negative ? "-" : "") + text_.substr(start, pos_ - start);
    if (is_float) return lumox_sim::make_float(m_, std::strtod(digits.c_str(), nullptr));
    errno = 0;
    const long value = std::strtol(digits.c_str(), nullptr, 10);
    if (errno != 0 || value < kSmallIntMin || value > kSmallIntMax) {
      fail("integer " + digits + " does not fit in a small integer");
    }
    return int_term(static_cast<std::int32_t>(value));
  }

  term variable(const std::string& name) {
    if (name != "_") {
      for (const auto& v : query_->variables) {
        if (v.first == name) return v.second;
      }
    }
    const term var = lumox_sim::new_var(m_);
    if (name != "_") query_->variables.emplace_back(name, var);
    return var;
  }

  term list() {
    expect('[');
    if (++depth_ > kMaxListDepth) {
      throw lumox_sim::HostLimitError("lists nested deeper than " + std::to_string(kMaxListDepth) +
                                      " levels at column " + std::to_string(pos_));
    }
    std::vector<term> items;
    term tail = lumox_sim::nil();
    if (!accept(']')) {
      do items.push_back(term_arg());
      while (accept(','));
      if (accept('|')) tail = term_arg();
      expect(']');
    }
    --depth_;
    return lumox_sim::make_list(m_, items, tail);
  }

  LumoxMachine* m_;
  const std::string& text_;
  Query* query_;
  std::size_t pos_ = 0;
  int depth_ = 0;  // lists open around the current position
};

bool needs_quotes(const std::string& name) {
  if (name == "[]") return false;
  if (name.empty() || !std::islower(static_cast<unsigned char>(name[0]))) return true;
  for (const char c : name) {
    if (!is_alnum(c)) return true;
  }
  return false;
}

std::string quote(const std::string& name) {
  std::string out = "'";
  for (const char c : name) {
    switch (c) {
      case '\'':
        out += "\\'";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        out += c;
    }
  }
  return out + "'";
}

std::string format_float(double x) {
  if (std::isnan(x)) return "nan";
  if (std::isinf(x)) return x > 0 ? "inf" : "-inf";
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.15g", x);
  if (std::strtod(buf, nullptr) != x) std::snprintf(buf, sizeof buf, "%.17g", x);
  std::string s = buf;
  if (s.find_first_of(".e") == std::string::npos) s += ".0";
  return s;
}

}  // namespace

Query parse_query(LumoxMachine* m, const std::string& text) {
  Query query;
  Parser(m, text, &query).parse();
  return query;
}

std::string format_term(term t) {
  t = deref_keep_box(t);
  if (is_int(t)) return std::to_string(int_value(t));
  if (is_atom(t)) {
    const std::string name = lumox_sim::atom_text(t);
    return needs_quotes(name) ? quote(name) : name;
  }
  if (is_float_box(t)) return format_float(lumox_sim::float_value(t));
  if (is_unbound(t)) return "_G" + std::to_string(t);
  if (is_list(t)) {
    std::string out = "[";
    for (;;) {
      out += format_term(ref_cell(t)[0]);
      const term tail = deref_keep_box(ref_cell(t)[1]);
      if (is_list(tail)) {
        out += ", ";
        t = tail;
        continue;
      }
      if (!(is_atom(tail) && std::string(lumox_sim::atom_text(tail)) == "[]")) out += "|" + format_term(tail);
      return out + "]";
    }
  }
  return "<term " + std::to_string(t) + ">";
}

std::string format_answer(const Query& query) {
  std::string out;
  for (const auto& v : query.variables) {
    if (v.first[0] == '_' || is_unbound(deref_keep_box(v.second))) continue;
    if (!out.empty()) out += ",\n";
    out += v.first + " = " + format_term(v.second);
  }
  return (out.empty() ? "true" : out) + ".";
}

bool GoalReader::next(std::string* goal) {
  std::string text;
  bool in_quotes = false, in_comment = false;
  int c;
  while ((c = in_.get()) != EOF) {
    if (in_comment) {
      if (c == '\n') {
        in_comment = false;
        text += '\n';
      }
      continue;
    }
    if (in_quotes) {
      text += static_cast<char>(c);
      if (c == '\\') {
        const int e = in_.get();
        if (e != EOF) text += static_cast<char>(e);
      } else if (c == '\'') {
        in_quotes = false;  // a doubled quote closes and reopens
      }
      continue;
    }
    if (c == '\'') in_quotes = true;
    if (c == '%') {
      in_comment = true;
      continue;
    }
    if (c == '.') {
      const int after = in_.peek();
      if (after == EOF || std::isspace(after)) break;
    }
    text += static_cast<char>(c);
  }
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) {
    if (c == EOF) return false;
    return next(goal);  // a lone '.'
  }
  const std::size_t last = text.find_last_not_of(" \t\r\n");
  *goal = text.substr(first, last - first + 1);
  return true;
}

}  // namespace toplevel

}  // namespace refgrove
