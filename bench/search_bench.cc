// refgrove's word search against SQLite FTS5 over the same documents, side by
// side in one run, both matching by stems (refgrove's default, the Snowball
// English stemmer; FTS5's porter tokenizer): the time from a loaded data set
// to the first answer (refgrove builds its indexes on first use) against
// FTS5's index build, top-10 queries of several kinds against FTS5's
// `ORDER BY rank LIMIT 10`, and the indexes' memory against the size of
// "word-data". The AND queries' full hit sets are compared; all their terms
// are ASCII letters and digits, which both tokenize alike, but the two
// stemmers (Porter's first algorithm in FTS5, its English successor in
// refgrove) differ on some words, so a few sets may differ.
//
// Queries are drawn from the data (fixed seed): rare terms (in 3 to
// max(30, N / 5000) documents), the most common terms, two- and three-term
// AND, two-term OR, prefixes of four letters and two-word phrases taken
// from abstracts. Each query runs REPEATS times in each system, the two
// interleaved; its time is the median of its runs, and the medians and 99th
// percentiles are taken over the queries.
// Usage: search_bench DATA_DIR [REPEATS]
#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "core/data_view.h"
#include "core/document_text.h"
#include "search/word_search.h"

namespace refgrove {

namespace {

using Clock = std::chrono::steady_clock;

double ms_since(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

struct Query {
  std::string kind;
  std::vector<std::string> terms;  // folded; a prefix ends in "*"
  bool any = false;
  bool phrase = false;  // the terms are one phrase
};

// A document's title and abstract words as one text.
std::string body(const RefgroveData& d, int did) {
  const std::string title = refgrove::title_text(d, did), abstract = refgrove::abstract_text(d, did);
  return title.empty() || abstract.empty() ? title + abstract : title + " " + abstract;
}

std::string joined(const std::vector<std::string>& terms) {
  std::string text;
  for (const std::string& t : terms) text += t + " ";
  return text;
}

// The query as refgrove reads it: a phrase in quotes.
std::string query_text(const Query& q) { return q.phrase ? "\"" + joined(q.terms) + "\"" : joined(q.terms); }

class Fts5 {
 public:
  Fts5() {
    check(sqlite3_open(":memory:", &db_));
    exec("CREATE VIRTUAL TABLE docs USING fts5(body, tokenize = 'porter unicode61 remove_diacritics 0')");
  }
  ~Fts5() { sqlite3_close(db_); }

  void index(const std::vector<std::pair<int, std::string>>& bodies) {
    exec("BEGIN");
    sqlite3_stmt* insert = prepare("INSERT INTO docs(rowid, body) VALUES (?, ?)");
    for (const auto& [did, text] : bodies) {
      sqlite3_bind_int(insert, 1, did);
      sqlite3_bind_text(insert, 2, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
      if (sqlite3_step(insert) != SQLITE_DONE) fail();
      sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    exec("COMMIT");
  }

  // The DIDs of the query's hits: the best `limit` by rank, or all (0).
  std::vector<int> search(const Query& q, int limit) {
    std::string match;
    if (q.phrase) match = "\"" + joined(q.terms) + "\"";
    for (const std::string& t : q.phrase ? std::vector<std::string>{} : q.terms) {
      if (!match.empty()) match += q.any ? " OR " : " ";
      match += t.back() == '*' ? "\"" + t.substr(0, t.size() - 1) + "\"*" : "\"" + t + "\"";
    }
    const std::string sql =
        limit > 0 ? "SELECT rowid FROM docs WHERE docs MATCH ? ORDER BY rank LIMIT " + std::to_string(limit)
                  : "SELECT rowid FROM docs WHERE docs MATCH ?";
    sqlite3_stmt* s = prepare(sql.c_str());
    sqlite3_bind_text(s, 1, match.c_str(), -1, SQLITE_TRANSIENT);
    std::vector<int> dids;
    int rc = 0;
    while ((rc = sqlite3_step(s)) == SQLITE_ROW) dids.push_back(sqlite3_column_int(s, 0));
    if (rc != SQLITE_DONE) fail();
    sqlite3_finalize(s);
    return dids;
  }

 private:
  void check(int rc) {
    if (rc != SQLITE_OK) fail();
  }
  [[noreturn]] void fail() {
    std::fprintf(stderr, "search_bench: sqlite: %s\n", sqlite3_errmsg(db_));
    std::exit(1);
  }
  void exec(const char* sql) { check(sqlite3_exec(db_, sql, nullptr, nullptr, nullptr)); }
  sqlite3_stmt* prepare(const char* sql) {
    sqlite3_stmt* s = nullptr;
    check(sqlite3_prepare_v2(db_, sql, -1, &s, nullptr));
    return s;
  }

  sqlite3* db_ = nullptr;
};

bool is_plain(std::string_view text) {
  return !text.empty() &&
         std::all_of(text.begin(), text.end(), [](char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'); });
}

// Two adjacent plain words of the abstracts of `count` documents drawn at
// random.
void draw_phrases(const RefgroveData& d, const WordIndex& index, std::mt19937& rng, int count,
                  std::vector<Query>& queries) {
  std::vector<WordIndex::Term> terms;
  for (int tries = 0; count > 0 && tries < 100 * count; ++tries) {
    const auto did = static_cast<std::int32_t>(rng() % index.did_limit());
    const std::size_t title = index.document_terms(d, did, terms);
    if (terms.size() < title + 2) continue;
    const std::size_t at = title + rng() % (terms.size() - title - 1);
    const std::string_view first = index.term_text(terms[at]), second = index.term_text(terms[at + 1]);
    if (!is_plain(first) || !is_plain(second)) continue;
    queries.push_back({"phrase", {std::string(first), std::string(second)}, false, true});
    --count;
  }
}

std::vector<Query> draw_queries(const RefgroveData& d, const refgrove::WordIndex& index) {
  std::vector<std::pair<std::size_t, std::string>> terms;  // documents holding it, text
  for (refgrove::WordIndex::Term t = 0; t < index.term_count(); ++t) {
    if (is_plain(index.term_text(t))) terms.emplace_back(index.posting_count(t), index.term_text(t));
  }
  std::sort(terms.begin(), terms.end(), std::greater<>());
  const std::size_t n = index.document_count();
  std::vector<std::string> rare, common, mid;
  for (const auto& [count, text] : terms) {
    if (count >= 3 && count <= std::max<std::size_t>(30, n / 5000)) rare.push_back(text);
    if (count >= n / 1000 && count <= n / 20 && text.size() >= 4) mid.push_back(text);
  }
  for (std::size_t k = 0; k < 20 && k < terms.size(); ++k) common.push_back(terms[k].second);
  std::mt19937 rng(16);
  const auto pick = [&](const std::vector<std::string>& from) { return from[rng() % from.size()]; };
  std::vector<Query> queries;
  for (int i = 0; i < 40 && !rare.empty(); ++i) queries.push_back({"rare", {pick(rare)}});
  for (const std::string& t : common) queries.push_back({"common", {t}});
  for (int i = 0; i < 40 && !mid.empty(); ++i) queries.push_back({"and2", {pick(mid), pick(common)}});
  for (int i = 0; i < 30 && !mid.empty(); ++i) queries.push_back({"and3", {pick(mid), pick(common), pick(common)}});
  for (int i = 0; i < 30 && !mid.empty(); ++i) queries.push_back({"or2", {pick(mid), pick(mid)}, true});
  for (int i = 0; i < 30 && !mid.empty(); ++i) queries.push_back({"prefix", {pick(mid).substr(0, 4) + "*"}});
  draw_phrases(d, index, rng, 30, queries);
  return queries;
}

double percentile(std::vector<double> v, double p) {
  std::sort(v.begin(), v.end());
  return v[std::min(v.size() - 1, static_cast<std::size_t>(p * static_cast<double>(v.size())))];
}

}  // namespace

int run_program(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: search_bench DATA_DIR [REPEATS]\n");
    return 2;
  }
  const int repeats = argc > 2 ? std::max(1, std::atoi(argv[2])) : 3;
  std::ostream nowhere(nullptr);
  const refgrove::DataSetPtr d = refgrove::load_data_set(argv[1], nowhere);

  // Both indexes: of stems for whole words and phrases, of words for
  // prefixes.
  auto start = Clock::now();
  const refgrove::WordIndex& index = refgrove::word_index(*d);
  const refgrove::WordIndex& stems = refgrove::stem_index(*d);
  const std::vector<Query> queries = draw_queries(*d, index);
  search(*d, query_text(queries.front()), SearchRequest{SearchMode::kAnd, false, 10});
  const double first_answer = ms_since(start);

  std::vector<std::pair<int, std::string>> bodies;
  int last = 0;
  refgrove::last_did(*d, &last);
  for (int did = 0; did < last; ++did) {
    if (index.length(did) > 0) bodies.emplace_back(did, body(*d, did));
  }
  Fts5 fts;
  start = Clock::now();
  fts.index(bodies);
  const double fts_build = ms_since(start);
  bodies.clear();
  bodies.shrink_to_fit();

  std::printf("documents with words: %zu, mean words: %.1f\n", index.document_count(), index.average_length());
  std::printf("%-34s %12.1f ms\n", "refgrove: loaded set to 1st answer", first_answer);
  std::printf("%-34s %12.1f ms   ratio %.3f (target <= 0.1)\n", "FTS5: index build", fts_build,
              first_answer / fts_build);
  const double word_data = static_cast<double>(d->word_data->mapped_bytes());
  const double memory = static_cast<double>(index.memory_bytes() + stems.memory_bytes());
  std::printf("%-34s %12.1f MB   word-data %.1f MB, ratio %.3f (target <= 1)\n", "refgrove indexes' memory",
              memory / 1e6, word_data / 1e6, memory / word_data);

  int mismatches = 0, compared = 0;
  for (const Query& q : queries) {
    if (q.any) continue;
    std::vector<int> ours;
    for (const SearchHit& h : search(*d, query_text(q), SearchRequest{}).hits) {
      ours.push_back(h.did);
    }
    std::vector<int> theirs = fts.search(q, 0);
    std::sort(ours.begin(), ours.end());
    std::sort(theirs.begin(), theirs.end());
    ++compared;
    if (ours != theirs) {
      ++mismatches;
      std::printf("hit sets differ for %s: refgrove %zu, FTS5 %zu\n", query_text(q).c_str(), ours.size(),
                  theirs.size());
    }
  }
  std::printf("AND hit sets compared: %d, differing: %d\n\n", compared, mismatches);

  std::map<std::string, std::pair<std::vector<double>, std::vector<double>>> times;  // kind -> refgrove, FTS5
  std::pair<double, std::string> slowest;
  for (const Query& q : queries) {
    const std::string text = query_text(q);
    const SearchRequest request{q.any ? SearchMode::kOr : SearchMode::kAnd, false, 10};
    std::vector<double> ours, theirs;
    for (int r = 0; r < repeats; ++r) {
      start = Clock::now();
      search(*d, text, request);
      ours.push_back(ms_since(start));
      start = Clock::now();
      fts.search(q, 10);
      theirs.push_back(ms_since(start));
    }
    const double our_time = percentile(ours, 0.5), their_time = percentile(theirs, 0.5);
    slowest = std::max(slowest, {our_time, q.kind + " \"" + text + "\""});
    for (const std::string& kind : {q.kind, std::string("all")}) {
      times[kind].first.push_back(our_time);
      times[kind].second.push_back(their_time);
    }
  }
  std::printf(
      "top-10 queries, ms (median of %d runs)  refgrove median / p99    FTS5 median / p99     ratio median / p99\n",
      repeats);
  for (const auto& [kind, t] : times) {
    const double om = percentile(t.first, 0.5), op = percentile(t.first, 0.99);
    const double fm = percentile(t.second, 0.5), fp = percentile(t.second, 0.99);
    std::printf("  %-7s %4zu queries            %8.4f / %8.4f    %8.3f / %8.3f    %7.1f x / %7.1f x\n", kind.c_str(),
                t.first.size(), om, op, fm, fp, fm / om, fp / op);
  }
  std::printf("slowest refgrove query: %.3f ms, %s\n", slowest.first, slowest.second.c_str());
  return 0;
}

}  // namespace refgrove

int main(int argc, char** argv) { return refgrove::run_program(argc, argv); }
