// `refgrove search DIR [--any] [--limit N] [--format text|tsv|jsonl] TERM...`:
// the documents of a data directory that hold the terms, best first.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "core/document_text.h"
#include "core/utf8_text.h"
#include "search/word_search.h"
#include "tools/commands.h"
#include "tools/tool_support.h"

namespace refgrove {

namespace {

constexpr int kTextAuthors = 3;  // authors named in the text format, before "et al."

struct SearchArgs {
  DataDirArgs dir;
  bool any = false;
  std::int64_t limit = 10;
  std::string format = "text";
  std::vector<std::string> terms;
};

// What a hit shows of its document, as UTF-8.
struct ShownDocument {
  std::string title;  // words joined by blanks
  int year = -1;      // -1 when unknown
  std::vector<std::string> authors;
};

ShownDocument shown(const RefgroveData& d, int did) {
  ShownDocument doc;
  doc.title = refgrove::title_text(d, did);
  if (!refgrove::get_year(d, did, &doc.year)) doc.year = -1;
  int n = 0;
  refgrove::author_count(d, did, &n);
  const char* name = nullptr;
  for (int i = 0; i < n; ++i) {
    if (refgrove::get_author(d, did, i, &name)) doc.authors.push_back(refgrove::as_utf8(name));
  }
  return doc;
}

std::string format_number(const char* format, double value) {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

void write_text(std::size_t rank, const refgrove::SearchHit& hit, const ShownDocument& doc, std::ostream& out) {
  out << rank << ". " << (doc.title.empty() ? "(no title)" : doc.title) << "\n   ";
  if (doc.year != -1) out << doc.year << ", ";
  for (std::size_t i = 0; i < doc.authors.size() && i < kTextAuthors; ++i) out << doc.authors[i] << ", ";
  if (doc.authors.size() > kTextAuthors) out << "et al., ";
  out << "DID " << hit.did << ", score " << format_number("%.3f", hit.score) << "\n";
}

void write_tsv(const refgrove::SearchHit& hit, const ShownDocument& doc, std::ostream& out) {
  out << hit.did << '\t' << format_number("%.9g", hit.score) << '\t' << doc.title << '\n';
}

void write_json_line(std::size_t rank, const refgrove::SearchHit& hit, const ShownDocument& doc, std::ostream& out) {
  nlohmann::ordered_json j = {{"rank", rank},         {"did", hit.did},          {"score", hit.score},
                              {"year", nullptr},      {"title", doc.title},      {"authors", doc.authors}};
  if (doc.year != -1) j["year"] = doc.year;
  out << j.dump() << "\n";
}

int run_search(const SearchArgs& args, CommandContext& ctx) {
  std::string query;
  for (const std::string& term : args.terms) query += term + " ";
  std::vector<refgrove::QueryTerm> terms;
  try {
    terms = refgrove::parse_query(query);
  } catch (const refgrove::SearchUsageError& e) {
    ctx.err << "refgrove search: " << e.what() << "\n";
    return 2;
  }
  const refgrove::DataSetPtr data = load_data_dir("search", args.dir, ctx.err);
  if (data == nullptr) return 1;
  const auto mode = args.any ? refgrove::SearchMode::kOr : refgrove::SearchMode::kAnd;
  const std::vector<refgrove::SearchHit> hits =
      refgrove::search(refgrove::word_index(*data), terms, mode, static_cast<std::size_t>(args.limit));
  if (hits.empty()) {
    ctx.err << "refgrove search: no document matches\n";
    return 1;
  }
  for (std::size_t k = 0; k < hits.size(); ++k) {
    const ShownDocument doc = shown(*data, hits[k].did);
    if (args.format == "tsv") {
      write_tsv(hits[k], doc, ctx.out);
    } else if (args.format == "jsonl") {
      write_json_line(k + 1, hits[k], doc, ctx.out);
    } else {
      write_text(k + 1, hits[k], doc, ctx.out);
    }
  }
  return 0;
}

const char kHelp[] =
    "Prints the documents of the data directory DIR whose title or abstract\n"
    "holds every TERM (with --any: at least one), best first by BM25.\n"
    "A term matches a word equal to it ignoring case and accents (Unicode\n"
    "case folding, composed and decomposed forms alike); a term ending in\n"
    "\"*\" matches every word starting with the rest. Quote such terms for\n"
    "the shell.\n"
    "\n"
    "text: for people: rank, title, year, first authors, DID and score.\n"
    "tsv: did<TAB>score<TAB>title per line.\n"
    "jsonl: one JSON object per hit: rank, did, score, year (null when\n"
    "unknown), title and authors.\n"
    "\n"
    "Exit status 1 when no document matches, 2 for a usage error.";

}  // namespace

void add_search_command(CLI::App& app, CommandContext& ctx) {
  CLI::App* cmd = app.add_subcommand("search", "find the documents of a data directory by their words");
  cmd->footer(kHelp);
  auto args = std::make_shared<SearchArgs>();
  add_data_dir_args(cmd, &args->dir);
  cmd->add_flag("--any", args->any, "a document needs one term only, not all");
  add_limit_option(cmd, "--limit", &args->limit, "the number of hits to print");
  cmd->add_option("--format", args->format, "output format")
      ->check(CLI::IsMember({"text", "tsv", "jsonl"}))
      ->capture_default_str();
  cmd->add_option("TERM", args->terms, "the search terms")->required();
  cmd->callback([&ctx, args] { ctx.status = run_search(*args, ctx); });
}

}  // namespace refgrove
