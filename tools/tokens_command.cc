// `refgrove tokens`: prints every token of a file with its position, for
// people debugging input files and tokenizer languages.
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "graph/graph_dump.h"
#include "preproc/word_preproc.h"
#include "tokenizer/stream_tokenizer.h"
#include "tools/commands.h"

namespace {

const char kHelp[] =
    "usage: refgrove tokens [options] [FILE]\n"
    "\n"
    "Prints the tokens of FILE (or of standard input when FILE is \"-\" or\n"
    "missing), one per line:\n"
    "\n"
    "  ROW:COLUMN  SPACE  \"TOKEN\"\n"
    "\n"
    "ROW counts from 1, COLUMN from 0 (the column of a token pushed back by the\n"
    "scanner is the one after it); SPACE is \"ws\" when white space or a comment\n"
    "came before the token and \"-\" when it did not. The token is quoted, with\n"
    "C escapes for newline (\\n), tab (\\t), carriage return (\\r), backslash,\n"
    "double quote and other control or non-ASCII bytes (\\xHH).\n"
    "\n"
    "Language (without --single and --space: the default sets, single\n"
    "characters ,.:;[]{}()+-*/=#<>|^@ and space characters blank, tab,\n"
    "newline, carriage return):\n"
    "  --single CHARS      single-character tokens (replaces the default set)\n"
    "  --space CHARS       space characters (replaces the default set)\n"
    "  --comment CHARS     characters that start a comment to the end of line\n"
    "  --number-char C     character that continues an integer into a number\n"
    "  --no-strings        quotes are ordinary characters (default: strings on)\n"
    "  --line-comments     \"//\" starts a comment to the end of the line\n"
    "  --block-comments    \"/*\" starts a comment up to \"*/\"\n"
    "  --element TEXT      merge the tokens of TEXT into one token when they are\n"
    "                      written without white space between them, e.g.\n"
    "                      --element 'Title:' (repeatable)\n"
    "  --language NAME     the language of a text dump instead of the options\n"
    "                      above: graph (the graph dump) or words (the word\n"
    "                      dumps), with its sub-language selected\n"
    "CHARS and C take the escapes \\n \\t \\r \\s (blank) \\\\ and \\xHH.\n"
    "\n"
    "Exit status: 0 when the whole file was read, 1 on a tokenizing error (its\n"
    "text is written to standard error), 2 on a usage error.\n";

// Decodes the escapes of a character-set argument; false on a bad escape or
// a NUL byte.
bool decode(const char* arg, std::string* out) {
  out->clear();
  for (const char* p = arg; *p != '\0'; ++p) {
    if (*p != '\\') {
      *out += *p;
      continue;
    }
    switch (*++p) {
      case 'n': *out += '\n'; break;
      case 't': *out += '\t'; break;
      case 'r': *out += '\r'; break;
      case 's': *out += ' '; break;
      case '\\': *out += '\\'; break;
      case 'x': {
        int value = 0;
        int digits = 0;
        for (; digits < 2 && std::isxdigit(static_cast<unsigned char>(p[1])); ++digits, ++p) {
          const char h = p[1];
          value = value * 16 + (h <= '9' ? h - '0' : (h | 0x20) - 'a' + 10);
        }
        if (digits == 0 || value == 0) return false;
        *out += static_cast<char>(value);
        break;
      }
      default:
        return false;
    }
  }
  return true;
}

void write_escaped(std::ostream& out, const std::string& token) {
  out << '"';
  for (unsigned char c : token) {
    switch (c) {
      case '\n': out << "\\n"; break;
      case '\t': out << "\\t"; break;
      case '\r': out << "\\r"; break;
      case '\\': out << "\\\\"; break;
      case '"': out << "\\\""; break;
      default:
        if (c < 32 || c >= 127) {
          char buf[8];
          std::snprintf(buf, sizeof buf, "\\x%02x", c);
          out << buf;
        } else {
          out << static_cast<char>(c);
        }
    }
  }
  out << '"';
}

struct Options {
  const char* file = nullptr;
  bool single_given = false, space_given = false;
  std::string single, space, comment;
  char number_char = 0;
  bool strings = true, line_comments = false, block_comments = false;
  std::vector<std::string> elements;
  std::string language;  // "graph", "words", or empty
};

// Fills `o` from the arguments; returns -1 to go on, or an exit status.
int parse_options(int argc, char** argv, Options* o, std::ostream& out, std::ostream& err) {
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    auto value = [&](const char** v) {
      if (i + 1 >= argc) {
        err << "refgrove tokens: " << a << " needs a value\n";
        return false;
      }
      *v = argv[++i];
      return true;
    };
    auto chars = [&](std::string* set) {
      const char* v;
      if (!value(&v)) return false;
      if (!decode(v, set)) {
        err << "refgrove tokens: bad escape in " << a << " '" << v << "'\n";
        return false;
      }
      return true;
    };
    if (a == "-h" || a == "--help") {
      out << kHelp;
      return 0;
    } else if (a == "--single") {
      if (!chars(&o->single)) return 2;
      o->single_given = true;
    } else if (a == "--space") {
      if (!chars(&o->space)) return 2;
      o->space_given = true;
    } else if (a == "--comment") {
      if (!chars(&o->comment)) return 2;
    } else if (a == "--number-char") {
      std::string c;
      if (!chars(&c)) return 2;
      if (c.size() != 1) {
        err << "refgrove tokens: --number-char takes one character\n";
        return 2;
      }
      o->number_char = c[0];
    } else if (a == "--no-strings") {
      o->strings = false;
    } else if (a == "--strings") {
      o->strings = true;
    } else if (a == "--line-comments") {
      o->line_comments = true;
    } else if (a == "--block-comments") {
      o->block_comments = true;
    } else if (a == "--language") {
      const char* v;
      if (!value(&v)) return 2;
      if (std::strcmp(v, "graph") != 0 && std::strcmp(v, "words") != 0) {
        err << "refgrove tokens: unknown language '" << v << "' (graph or words)\n";
        return 2;
      }
      o->language = v;
    } else if (a == "--element") {
      const char* v;
      if (!value(&v)) return 2;
      o->elements.push_back(v);
    } else if (a.size() > 1 && a[0] == '-') {
      err << "refgrove tokens: unknown option '" << a << "' (see refgrove tokens --help)\n";
      return 2;
    } else if (o->file != nullptr) {
      err << "refgrove tokens: more than one file given\n";
      return 2;
    } else {
      o->file = argv[i];
    }
  }
  if (!o->language.empty() &&
      (o->single_given || o->space_given || !o->comment.empty() || o->number_char != 0 || !o->strings ||
       o->line_comments || o->block_comments || !o->elements.empty())) {
    err << "refgrove tokens: --language does not combine with other language options\n";
    return 2;
  }
  return -1;
}

}  // namespace

int tokens_main(int argc, char** argv, std::istream& in, std::ostream& out, std::ostream& err) {
  Options o;
  const int status = parse_options(argc, argv, &o, out, err);
  if (status >= 0) return status;

  TokenizerLanguage lang;
  if (!o.single_given && !o.space_given) lang.initDefault();
  lang.single_char_tokens.add_all(o.single.c_str());
  lang.space_chars.add_all(o.space.c_str());
  lang.comment_chars.add_all(o.comment.c_str());
  lang.number_char = o.number_char;
  lang.strings = o.strings ? 1 : 0;
  lang.line_comments = o.line_comments ? 1 : 0;
  lang.block_comments = o.block_comments ? 1 : 0;

  // The dump languages, built as preprocessing builds them.
  RefgroveGraphLanguage graph_lang;
  WordPreproc::WordLanguage word_lang;
  TokenizerLanguage* chosen = o.language == "graph" ? &graph_lang : o.language == "words" ? &word_lang : &lang;
  StreamTokenizer t(chosen);
  if (!o.language.empty()) t.select_language(0);
  try {
    if (!o.elements.empty()) {
      lang.addSubLanguages(1);
      for (const std::string& e : o.elements) lang.addLanguageElem(0, e.c_str());
      t.select_language(0);
    }
    if (o.file == nullptr || std::strcmp(o.file, "-") == 0) {
      t.open_tokens(&in, nullptr);
    } else {
      t.open_tokens(o.file);
    }
    while (!t.try_next_token().empty()) {
      t.token_pos.write(out) << ' ' << (t.space_before ? "ws" : "-") << ' ';
      write_escaped(out, t.token);
      out << '\n';
    }
  } catch (const ParserError& e) {
    out.flush();
    e.write(err) << '\n';
    return 1;
  }
  return 0;
}

int tokens_command(int argc, char** argv) {
  return tokens_main(argc, argv, std::cin, std::cout, std::cerr);
}
