// The search against a plain scan of every document's words (written here
// from the ranking's definition, through the public query operations), on
// built, sample, generated and damaged data directories.
#include "search/word_search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <future>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "core/data_view.h"
#include "core/text_folding.h"
#include "refgrove/search.h"
#include "testing/data_files.h"
#include "testing/test_documents.h"

namespace refgrove {

namespace {

using refgrove::SearchHit;
using refgrove::SearchMode;

// Every word of `did`: title words, then abstract words.
std::vector<std::string> words_of(const RefgroveData& d, int did) {
  std::vector<std::string> words;
  int n = 0;
  const char* w = nullptr;
  refgrove::title_length(d, did, &n);
  for (int i = 0; i < n; ++i) {
    if (refgrove::get_title_word(d, did, i, &w)) words.push_back(refgrove::fold_text(w));
  }
  refgrove::abstract_length(d, did, &n);
  for (int i = 0; i < n; ++i) {
    if (refgrove::get_abstract_word(d, did, i, &w)) words.push_back(refgrove::fold_text(w));
  }
  return words;
}

// BM25 over every document, one term after the other.
std::vector<SearchHit> scan(const RefgroveData& d, const std::string& query, SearchMode mode, std::size_t limit) {
  std::vector<std::string> terms;
  std::istringstream in(query);
  for (std::string t; in >> t;) {
    if (std::find(terms.begin(), terms.end(), t) == terms.end()) terms.push_back(t);
  }
  const auto matches = [](const std::string& term, const std::string& word) {
    const bool prefix = term.back() == '*';
    const std::string folded = refgrove::fold_text(prefix ? term.substr(0, term.size() - 1) : term);
    return prefix ? word.starts_with(folded) : word == folded;
  };
  int last = 0;
  refgrove::last_did(d, &last);
  std::map<int, std::vector<std::string>> docs;  // documents with words
  double total = 0;
  for (int did = 0; did < last; ++did) {
    std::vector<std::string> words = words_of(d, did);
    total += static_cast<double>(words.size());
    if (!words.empty()) docs[did] = std::move(words);
  }
  const double n = static_cast<double>(docs.size()), avglen = total / n;
  std::vector<double> idf;
  for (const std::string& t : terms) {
    double holding = 0;
    for (const auto& [did, words] : docs) {
      holding += std::any_of(words.begin(), words.end(), [&](const std::string& w) { return matches(t, w); });
    }
    idf.push_back(std::log(1.0 + (n - holding + 0.5) / (holding + 0.5)));
  }
  std::vector<SearchHit> hits;
  for (const auto& [did, words] : docs) {
    double score = 0;
    std::size_t found = 0;
    const double len = static_cast<double>(words.size());
    for (std::size_t k = 0; k < terms.size(); ++k) {
      const double tf = static_cast<double>(
          std::count_if(words.begin(), words.end(), [&](const std::string& w) { return matches(terms[k], w); }));
      if (tf == 0) continue;
      ++found;
      score += idf[k] * tf * (1.2 + 1) / (tf + 1.2 * (1 - 0.75 + 0.75 * len / avglen));
    }
    if (found == terms.size() || (mode == SearchMode::kOr && found > 0)) hits.push_back({did, score});
  }
  std::sort(hits.begin(), hits.end(), [](const SearchHit& a, const SearchHit& b) {
    return a.score > b.score || (a.score == b.score && a.did < b.did);
  });
  if (limit > 0 && hits.size() > limit) hits.resize(limit);
  return hits;
}

std::string describe(const std::vector<SearchHit>& hits) {
  std::ostringstream out;
  for (const SearchHit& h : hits) out << h.did << ":" << h.score << " ";
  return out.str();
}

// The search and the scan agree on every query, in both modes, in full and
// cut to 3 hits.
void expect_as_scanned(const RefgroveData& d, const std::vector<std::string>& queries) {
  for (const std::string& q : queries) {
    for (const SearchMode mode : {SearchMode::kAnd, SearchMode::kOr}) {
      for (const std::size_t limit : {std::size_t{0}, std::size_t{3}}) {
        const std::vector<SearchHit> expected = scan(d, q, mode, limit);
        const std::vector<SearchHit> got = refgrove::search(d, q, mode, limit);
        const std::string what = "query \"" + q + "\" " + (mode == SearchMode::kAnd ? "and" : "or") + " limit " +
                                 std::to_string(limit) + "\n expected " + describe(expected) + "\n got      " +
                                 describe(got);
        ASSERT_EQ(got.size(), expected.size()) << what;
        for (std::size_t i = 0; i < got.size(); ++i) {
          ASSERT_EQ(got[i].did, expected[i].did) << what;
          ASSERT_NEAR(got[i].score, expected[i].score, 1e-9 * std::abs(expected[i].score)) << what;
        }
      }
    }
  }
}

refgrove::DataSetPtr load_silently(const std::string& dir) {
  std::ostream nowhere(nullptr);
  return refgrove::load_data_set(dir, nowhere);
}

// Words met in titles only, abstracts only, in both, in several cases and
// encodings, and a word repeated more than 255 times; documents with a graph
// record only, words only, and DIDs on both sides of 65,536 and 131,072.
DataDirBuilder varied_documents() {
  DataDirBuilder b;
  b.add(
      {2, "k2", 1999, {}, {"Black", "Holes", "and", "D-Branes"}, {"A"}, {"we", "study", "black", "holes"}, true, true});
  b.add({4, "", -1, {}, {"Supersymmetry", "breaking"}, {}, {}, true, false});
  b.add({6,
         "",
         -1,
         {},
         {},
         {},
         {"supersymmetric", "D-branes", "in",
          "\xC9"
          "cole",
          "models"},
         false,
         true});
  b.add({9,
         "",
         2001,
         {},
         {"\xC3\x89"
          "COLE",
          "Normale"},
         {"B"},
         {"black", "black", "hole"},
         true,
         true});
  b.add({65535, "", -1, {}, {"holes"}, {}, {"ERD\xC5\x90S", "supersymmetry"}, true, true});
  b.add({65536, "", -1, {}, {"Black"}, {}, {"erd\xC5\x91s", "the", "holes"}, true, true});
  b.add({70000, "", -1, {}, {}, {}, {}, true, true});
  std::vector<std::string> many(300, "string");
  many.push_back("theory");
  b.add({131072, "", -1, {}, {"String", "theory"}, {}, many, true, true});
  b.add({131073,
         "",
         -1,
         {},
         {"na\xEF"
          "ve"},
         {},
         {"the", "the", "model"},
         true,
         true});
  return b;
}

const std::vector<std::string> kVariedQueries = {
    "black",
    "BLACK holes",
    "black holes black",
    "HoLeS",
    "supersymm*",
    "super*",
    "d-branes",
    "\xC3\xA9"
    "cole",
    "\xC3\x89"
    "cole",
    "\xC9"
    "COLE",
    "erd\xC5\x91s",
    "ERD\xC5\x90S",
    "string",
    "string theory",
    "the model",
    "absent",
    "black absent",
    "s*",
    "h* b*",
    "na\xC3\xAF"
    "ve",
    "normale black",
    "model*",
    "breaking holes",
    "st* string",
};

TEST(WordSearchTest, MatchesScanOnVariedDocuments) {
  TempDir dir;
  varied_documents().write(dir.path());
  const refgrove::DataSetPtr d = load_silently(dir.path());
  expect_as_scanned(*d, kVariedQueries);
}

TEST(WordSearchTest, MatchesScanOnTheSample) {
  TempDir dir;
  preprocess_sample(dir.path());
  const refgrove::DataSetPtr d = load_silently(dir.path());
  std::set<std::string> words;
  int last = 0;
  refgrove::last_did(*d, &last);
  for (int did = 0; did < last; ++did) {
    for (const std::string& w : words_of(*d, did)) words.insert(w);
  }
  ASSERT_GT(words.size(), 20u);
  std::vector<std::string> queries;
  for (const std::string& w : words) {
    queries.push_back(w);
    queries.push_back(w.substr(0, 2) + "*");
  }
  queries.push_back(*words.begin() + " " + *words.rbegin());
  expect_as_scanned(*d, queries);
}

// Random documents over a small vocabulary in mixed case, DIDs spread over
// four 65,536-DID chunks.
TEST(WordSearchTest, MatchesScanOnGeneratedDocuments) {
  const std::vector<std::string> vocabulary = {"alpha",    "Alpha", "beta",           "gamma",      "GAMMA", "delta",
                                               "alphabet", "be",    "\xC3\x84gypten", "\xE4gypten", "the",   "of"};
  std::mt19937 rng(16);
  DataDirBuilder b;
  std::set<int> dids;
  while (dids.size() < 400) dids.insert(static_cast<int>(rng() % 262144));
  for (const int did : dids) {
    TestDocument doc{did, "", -1, {}, {}, {}, {}, rng() % 5 != 0, rng() % 5 != 0};
    const std::size_t title = rng() % 5, words = rng() % 40;
    for (std::size_t k = 0; k < title; ++k)
      doc.title.push_back(vocabulary[rng() % (rng() % 2 ? 4 : vocabulary.size())]);
    for (std::size_t k = 0; k < words; ++k) doc.words.push_back(vocabulary[rng() % vocabulary.size()]);
    b.add(doc);
  }
  TempDir dir;
  b.write(dir.path());
  const refgrove::DataSetPtr d = load_silently(dir.path());
  expect_as_scanned(*d, {"alpha", "alpha beta", "GAMMA delta alpha", "alpha* be*", "be", "\xC3\xA4gypten", "the of",
                         "of alphabet", "a*", "missing alpha"});
}

// Damaged copies of the sample directory (cut files, overwritten bytes):
// whatever loads is searched as the scan reads it.
TEST(WordSearchTest, MatchesScanOnDamagedDirectories) {
  TempDir clean, dir;
  preprocess_sample(clean.path());
  const DataFiles files = read_data_files(clean.path());
  std::mt19937 rng(2002);
  for (const auto& [name, bytes] : files) {
    for (int variant = 0; variant < 40; ++variant) {
      DataFiles damaged = files;
      std::string& b = damaged[name];
      if (variant % 2 == 0) {
        b.resize(rng() % (b.size() + 1));
      } else if (!b.empty()) {
        b[rng() % b.size()] = static_cast<char>(rng());
      }
      write_data_files(dir.path(), damaged);
      const refgrove::DataSetPtr d = load_silently(dir.path());
      SCOPED_TRACE(name + " variant " + std::to_string(variant));
      expect_as_scanned(*d, {"the", "graph* walks", "a* b* c*"});
    }
  }
}

TEST(WordSearchTest, UnusableQueriesAreUsageErrors) {
  const RefgroveData& d = RefgroveData::empty();
  for (const char* query : {"", " \t\n", "*", "black *", "* *"}) {
    EXPECT_THROW(refgrove::search(d, query, SearchMode::kAnd, 10), refgrove::SearchUsageError) << '"' << query << '"';
  }
  EXPECT_TRUE(refgrove::search(d, "anything at* all", SearchMode::kOr, 0).empty());
}

TEST(WordSearchTest, ModesByName) {
  for (const SearchMode mode : {SearchMode::kAnd, SearchMode::kOr}) {
    EXPECT_EQ(refgrove::search_mode_from_text(refgrove::to_text(mode)), mode);
  }
  for (const char* text : {"", "AND", "any", "or "}) {
    EXPECT_THROW(refgrove::search_mode_from_text(text), refgrove::SearchUsageError) << '"' << text << '"';
  }
}

TEST(WordSearchTest, HugeAndMalformedQueriesEndWithAnAnswer) {
  TempDir dir;
  varied_documents().write(dir.path());
  const refgrove::DataSetPtr d = load_silently(dir.path());
  std::string many_terms;
  for (int i = 0; i < 100000; ++i) many_terms += "w" + std::to_string(i % 1023) + (i % 1023 % 3 ? " " : "* ");
  many_terms += "black";
  EXPECT_TRUE(refgrove::search(*d, many_terms, SearchMode::kAnd, 10).empty()) << "1023 distinct terms and black";
  EXPECT_EQ(refgrove::search(*d, many_terms, SearchMode::kOr, 0).size(), scan(*d, "black", SearchMode::kOr, 0).size());
  EXPECT_THROW(refgrove::search(*d, many_terms + " w1023", SearchMode::kOr, 0), refgrove::SearchUsageError);
  const std::string long_term(1 << 20, 'B');
  EXPECT_TRUE(refgrove::search(*d, long_term, SearchMode::kAnd, 10).empty());
  EXPECT_TRUE(refgrove::search(*d, long_term + "*", SearchMode::kOr, 10).empty());
  EXPECT_EQ(refgrove::search(*d, "\xFF\xFE\xC3 \x80*", SearchMode::kOr, 10).size(), 0u);
}

// Threads searching a set that none has searched yet all wait for the one
// build of its index and get the same hits.
TEST(WordSearchTest, ConcurrentFirstSearchesShareOneIndex) {
  TempDir dir;
  varied_documents().write(dir.path());
  const refgrove::DataSetPtr d = load_silently(dir.path());
  std::vector<std::future<std::vector<SearchHit>>> runs;
  for (int i = 0; i < 8; ++i) {
    runs.push_back(
        std::async(std::launch::async, [&] { return refgrove::search(*d, "black h*", SearchMode::kOr, 0); }));
  }
  const std::string expected = describe(scan(*d, "black h*", SearchMode::kOr, 0));
  for (auto& run : runs) EXPECT_EQ(describe(run.get()), expected);
}

using CSearchTest = LoadedDataTest;

// The C operation: the total of the search, and its best hits as far as
// the caller's capacity goes, nothing written beyond; -1 and nothing written
// for what cannot be answered.
TEST_F(CSearchTest, COperationAnswersAsTheSearch) {
  constexpr int kUnwritten = -7;
  int dids[4];
  double scores[4];
  const auto search_into = [&](const char* query, int any, int capacity) {
    std::fill(std::begin(dids), std::end(dids), kUnwritten);
    return refgrove_search_1(query, any, capacity, capacity == 0 ? nullptr : dids, scores);
  };
  EXPECT_EQ(search_into("black", 0, 4), 0) << "before any load";
  EXPECT_EQ(dids[0], kUnwritten);
  load(varied_documents());
  for (const char* query : {"black holes", "s*", "absent"}) {
    for (const int any : {0, 1}) {
      const std::vector<SearchHit> all =
          refgrove::search(*refgrove_data, query, any ? SearchMode::kOr : SearchMode::kAnd, 0);
      for (const int capacity : {0, 1, 4}) {
        const std::string what =
            std::string(query) + " any=" + std::to_string(any) + " capacity=" + std::to_string(capacity);
        ASSERT_EQ(search_into(query, any, capacity), static_cast<int>(all.size())) << what;
        const std::size_t written = std::min<std::size_t>(capacity, all.size());
        for (std::size_t i = 0; i < written; ++i) {
          EXPECT_EQ(dids[i], all[i].did) << what;
          EXPECT_EQ(scores[i], all[i].score) << what;
        }
        for (std::size_t i = written; i < 4; ++i) EXPECT_EQ(dids[i], kUnwritten) << what << " wrote item " << i;
      }
    }
  }
  const struct {
    const char* query;
    int capacity;
  } refused[] = {{nullptr, 4}, {"", 4}, {"*", 0}, {"black", -1}};
  for (const auto& r : refused) {
    EXPECT_EQ(search_into(r.query, 1, r.capacity), -1) << (r.query ? r.query : "(null)") << " " << r.capacity;
    EXPECT_EQ(dids[0], kUnwritten) << (r.query ? r.query : "(null)");
  }
}

}  // namespace

}  // namespace refgrove
