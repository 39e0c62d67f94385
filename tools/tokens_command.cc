// `refgrove tokens`: prints every token of a file with its position, for
// people debugging input files and tokenizer languages.
#include <CLI/CLI.hpp>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "graph/graph_dump.h"
#include "preproc/word_preproc.h"
#include "tokenizer/stream_tokenizer.h"
#include "tools/commands.h"

namespace refgrove {

namespace {

const char kHelp[] =
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
    "Without --single and --space the default sets are used: single characters\n"
    ",.:;[]{}()+-*/=#<>|^@ and space characters blank, tab, newline, carriage\n"
    "return. CHARS and C take the escapes \\n \\t \\r \\s (blank) \\\\ and \\xHH.\n"
    "--language replaces all the language options by the language of a text\n"
    "dump: graph (the graph dump) or words (the word dumps), with its\n"
    "sub-language selected.\n"
    "\n"
    "Exit status: 0 when the whole file was read, 1 when the file cannot be\n"
    "opened or on a tokenizing error (its text is written to standard error),\n"
    "2 on a usage error.";

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
      case 'n':
        *out += '\n';
        break;
      case 't':
        *out += '\t';
        break;
      case 'r':
        *out += '\r';
        break;
      case 's':
        *out += ' ';
        break;
      case '\\':
        *out += '\\';
        break;
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
      case '\n':
        out << "\\n";
        break;
      case '\t':
        out << "\\t";
        break;
      case '\r':
        out << "\\r";
        break;
      case '\\':
        out << "\\\\";
        break;
      case '"':
        out << "\\\"";
        break;
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
  std::string file = "-";
  std::string single, space, comment, number_char;
  bool strings = true, line_comments = false, block_comments = false;
  std::vector<std::string> elements;
  std::string language;      // "graph", "words", or empty
  bool default_sets = true;  // neither --single nor --space given
};

// Replaces a character-set argument by the characters its escapes stand for.
const CLI::Validator kEscapes(
    [](std::string& arg) {
      std::string decoded;
      if (!decode(arg.c_str(), &decoded)) return "bad escape in '" + arg + "'";
      arg = decoded;
      return std::string();
    },
    "");

// Opens the file to read, or names it with the system's error; "-" is `in`.
std::istream* open_input(const std::string& file, std::istream& in, std::ifstream* opened, std::ostream& err) {
  if (file == "-") return &in;
  int error = EISDIR;
  std::error_code ec;
  if (!std::filesystem::is_directory(file, ec)) {
    errno = 0;
    opened->open(file, std::ios::binary);
    if (opened->is_open()) return opened;
    error = errno != 0 ? errno : EIO;
  }
  err << "refgrove tokens: " << file << ": " << std::strerror(error) << "\n";
  return nullptr;
}

int list_tokens(const Options& o, std::istream& in, std::ostream& out, std::ostream& err) {
  TokenizerLanguage lang;
  if (o.default_sets) lang.initDefault();
  lang.single_char_tokens.add_all(o.single.c_str());
  lang.space_chars.add_all(o.space.c_str());
  lang.comment_chars.add_all(o.comment.c_str());
  lang.number_char = o.number_char.empty() ? 0 : o.number_char[0];
  lang.strings = o.strings ? 1 : 0;
  lang.line_comments = o.line_comments ? 1 : 0;
  lang.block_comments = o.block_comments ? 1 : 0;

  // The dump languages, built as preprocessing builds them.
  RefgroveGraphLanguage graph_lang;
  WordPreproc::WordLanguage word_lang;
  TokenizerLanguage* chosen = o.language == "graph" ? &graph_lang : o.language == "words" ? &word_lang : &lang;
  std::ifstream file;
  std::istream* input = open_input(o.file, in, &file, err);
  if (input == nullptr) return 1;
  StreamTokenizer t(chosen);
  if (!o.language.empty()) t.select_language(0);
  try {
    if (!o.elements.empty()) {
      lang.addSubLanguages(1);
      for (const std::string& e : o.elements) lang.addLanguageElem(0, e.c_str());
      t.select_language(0);
    }
    t.open_tokens(input, input == &in ? nullptr : o.file.c_str());
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

}  // namespace

void add_tokens_command(CLI::App& app, CommandContext& ctx) {
  CLI::App* cmd =
      app.add_subcommand("tokens", "list the tokens of a file, with positions, under a chosen tokenizer language");
  cmd->footer(kHelp);
  auto o = std::make_shared<Options>();
  CLI::Option* language_options[] = {
      cmd->add_option("--single", o->single, "single-character tokens (replaces the default set)")
          ->transform(kEscapes)
          ->type_name("CHARS"),
      cmd->add_option("--space", o->space, "space characters (replaces the default set)")
          ->transform(kEscapes)
          ->type_name("CHARS"),
      cmd->add_option("--comment", o->comment, "characters that start a comment to the end of line")
          ->transform(kEscapes)
          ->type_name("CHARS"),
      cmd->add_option("--number-char", o->number_char, "character that continues an integer into a number")
          ->transform(kEscapes)
          ->check(CLI::Validator(
              [](const std::string& c) { return c.size() == 1 ? std::string() : std::string("takes one character"); },
              ""))
          ->type_name("C"),
      cmd->add_flag("--strings,!--no-strings", o->strings, "quotes start strings (default) or are ordinary characters"),
      cmd->add_flag("--line-comments", o->line_comments, "\"//\" starts a comment to the end of the line"),
      cmd->add_flag("--block-comments", o->block_comments, "\"/*\" starts a comment up to \"*/\""),
      cmd->add_option("--element", o->elements,
                      "merge the tokens of TEXT into one token when they are written without white space "
                      "between them, e.g. --element 'Title:' (repeatable)")
          ->type_name("TEXT"),
  };
  CLI::Option* language = cmd->add_option("--language", o->language, "the language of a text dump: graph or words")
                              ->check(CLI::IsMember({"graph", "words"}))
                              ->type_name("NAME");
  for (CLI::Option* option : language_options) language->excludes(option);
  cmd->add_option("FILE", o->file, "the file to read (\"-\" or none: standard input)");
  cmd->callback([&ctx, o, cmd] {
    o->default_sets = cmd->count("--single") == 0 && cmd->count("--space") == 0;
    ctx.status = list_tokens(*o, ctx.in, ctx.out, ctx.err);
  });
}

}  // namespace refgrove
