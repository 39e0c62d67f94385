// `refgrove search DIR [--any] [--exact] [--sort relevance|citations|year]
// [--limit N] [--format text|tsv|jsonl|json] TERM...`: the documents of a
// data directory that hold the terms, best first.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "core/document_text.h"
#include "core/json_fields.h"
#include "network/citation_graph.h"
#include "search/word_search.h"
#include "tools/commands.h"
#include "tools/tool_support.h"

namespace refgrove {

namespace {

constexpr int kTextAuthors = 3;  // authors named in the text format, before "et al."

struct SearchArgs {
  DataDirArgs dir;
  bool any = false;
  bool exact = false;
  std::string sort = "relevance";
  std::int64_t limit = 10;
  std::string format = "text";
  std::vector<std::string> terms;
};

std::string format_number(const char* format, double value) {
  char text[64];
  std::snprintf(text, sizeof text, format, value);
  return text;
}

// The number of documents of `d` citing `did`; 0 for a document without a
// graph record.
std::int64_t citations_of(const RefgroveData& d, std::int32_t did) {
  const CitationGraph& g = CitationGraph::of(d);
  const std::int32_t node = g.node(did);
  return node < 0 ? 0 : g.citation_count(node);
}

// `citations`: the hit's citation count, shown when the list is in that
// order.
void write_text(std::size_t rank, const SearchHit& hit, const DocumentText& doc, std::optional<std::int64_t> citations,
                std::ostream& out) {
  out << rank << ". " << (doc.title.empty() ? "(no title)" : doc.title) << "\n   ";
  if (doc.year) out << *doc.year << ", ";
  for (std::size_t i = 0; i < doc.authors.size() && i < kTextAuthors; ++i) out << doc.authors[i] << ", ";
  if (doc.authors.size() > kTextAuthors) out << "et al., ";
  out << "DID " << hit.did << ", ";
  if (citations) out << *citations << (*citations == 1 ? " citation, " : " citations, ");
  out << "score " << format_number("%.3f", hit.score) << "\n";
}

void write_tsv(const SearchHit& hit, const DocumentText& doc, std::ostream& out) {
  out << hit.did << '\t' << format_number("%.9g", hit.score) << '\t' << doc.title << '\n';
}

nlohmann::ordered_json hit_json(std::size_t rank, const SearchHit& hit, const DocumentText& doc) {
  nlohmann::ordered_json j = {{field::rank, rank},    {field::did, hit.did},     {field::score, hit.score},
                              {field::year, nullptr}, {field::title, doc.title}, {field::authors, doc.authors}};
  if (doc.year) j[field::year] = *doc.year;
  return j;
}

// Puts the hits in the order asked for: by citation count or year (newest
// first), then by relevance; relevance alone is the search's own order. A
// document without a graph record counts no citations; one without a year
// comes last.
void sort_hits(const RefgroveData& d, const std::string& by, std::vector<SearchHit>& hits) {
  if (by == "relevance") return;
  const auto key = [&](std::int32_t did) -> std::int64_t {
    return by == "year" ? year_of(d, did).value_or(-1) : citations_of(d, did);
  };
  std::vector<std::pair<std::int64_t, SearchHit>> keyed;
  for (const SearchHit& hit : hits) keyed.emplace_back(key(hit.did), hit);
  std::stable_sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
  for (std::size_t k = 0; k < hits.size(); ++k) hits[k] = keyed[k].second;
}

int run_search(const SearchArgs& args, CommandContext& ctx) {
  std::string query;
  for (const std::string& term : args.terms) query += term + " ";
  try {
    parse_query_with_phrases(query);
  } catch (const SearchUsageError& e) {
    ctx.err << "refgrove search: " << e.what() << "\n";
    return 2;
  }
  const DataSetPtr data = load_data_dir("search", args.dir, ctx.err);
  if (data == nullptr) return 1;
  const std::size_t limit = static_cast<std::size_t>(args.limit);
  SearchRequest request{args.any ? SearchMode::kOr : SearchMode::kAnd, args.exact, limit};
  if (args.sort != "relevance") request.limit = 0;  // the order needs every hit
  SearchAnswer answer = search(*data, query, request);
  if (answer.hits.empty()) {
    ctx.err << "refgrove search: no document matches\n";
    return 1;
  }
  sort_hits(*data, args.sort, answer.hits);
  if (limit != 0 && answer.hits.size() > limit) answer.hits.resize(limit);
  const bool truncated = answer.hits.size() < answer.total;
  nlohmann::ordered_json json_hits = nlohmann::ordered_json::array();
  for (std::size_t k = 0; k < answer.hits.size(); ++k) {
    const SearchHit& hit = answer.hits[k];
    const DocumentText doc = document_heading(*data, hit.did);
    if (args.format == "tsv") {
      write_tsv(hit, doc, ctx.out);
    } else if (args.format == "jsonl") {
      ctx.out << hit_json(k + 1, hit, doc).dump() << "\n";
    } else if (args.format == "json") {
      json_hits.push_back(hit_json(k + 1, hit, doc));
    } else {
      const bool by_citations = args.sort == "citations";
      write_text(k + 1, hit, doc, by_citations ? std::optional(citations_of(*data, hit.did)) : std::nullopt, ctx.out);
    }
  }
  if (args.format == "json") {
    const nlohmann::ordered_json j = {
        {field::total, answer.total}, {field::truncated, truncated}, {field::hits, std::move(json_hits)}};
    ctx.out << j.dump() << "\n";
  }
  if (truncated) {
    ctx.err << "refgrove search: showing " << answer.hits.size() << " of " << answer.total
            << " documents; raise --limit (0: all)\n";
  }
  return 0;
}

const char kHelp[] =
    "Prints the documents of the data directory DIR whose title or abstract\n"
    "holds every TERM (with --any: at least one), best first by BM25.\n"
    "A term matches the words with the same English stem (\"holes\" finds\n"
    "hole and holes; with --exact only the words equal to it), ignoring case\n"
    "and accents (Unicode case folding, composed and decomposed forms alike).\n"
    "A term ending in \"*\" matches every word starting with the rest.\n"
    "Words in double quotes form a phrase: they must follow one another in\n"
    "that order, in the title or in the abstract. Quote such terms for the\n"
    "shell: 'black hole*' or '\"black hole\"'.\n"
    "\n"
    "--sort citations or year (newest first) orders all the hits so, equal\n"
    "ones by relevance, before --limit keeps the first. A list cut by\n"
    "--limit says so on standard error: \"showing 10 of 661 documents\".\n"
    "\n"
    "text: for people: rank, title, year, first authors, DID, the citation\n"
    "count when sorted by citations, and score.\n"
    "tsv: did<TAB>score<TAB>title per line.\n"
    "jsonl: one JSON object per hit: rank, did, score, year (null when\n"
    "unknown), title and authors.\n"
    "json: one JSON object: total (the documents matching), truncated\n"
    "(whether --limit cut the list) and hits, a list of jsonl's objects.\n"
    "\n"
    "Exit status 1 when no document matches, 2 for a usage error.";

}  // namespace

void add_search_command(CLI::App& app, CommandContext& ctx) {
  CLI::App* cmd = app.add_subcommand("search", "find the documents of a data directory by their words");
  cmd->footer(kHelp);
  auto args = std::make_shared<SearchArgs>();
  add_data_dir_args(cmd, &args->dir);
  cmd->add_flag("--any", args->any, "a document needs one term only, not all");
  cmd->add_flag("--exact", args->exact, "match words as they are, not by their stems");
  cmd->add_option("--sort", args->sort, "the order of the hits")
      ->check(CLI::IsMember({"relevance", "citations", "year"}))
      ->capture_default_str();
  add_limit_option(cmd, "--limit", &args->limit, "the number of hits to print");
  cmd->add_option("--format", args->format, "output format")
      ->check(CLI::IsMember({"text", "tsv", "jsonl", "json"}))
      ->capture_default_str();
  cmd->add_option("TERM", args->terms, "the search terms")->required();
  cmd->callback([&ctx, args] { ctx.status = run_search(*args, ctx); });
}

}  // namespace refgrove
