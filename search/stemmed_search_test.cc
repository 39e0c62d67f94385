// Search by stems and phrases (SearchRequest) and the English stemmer under
// it, on a small directory whose words differ by their endings and order.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <future>
#include <set>
#include <string>
#include <vector>

#include "core/data_view.h"
#include "search/english_stemmer.h"
#include "search/word_search.h"
#include "testing/data_dir_builder.h"
#include "testing/test_files.h"

namespace refgrove {
namespace {

TEST(EnglishStemmerTest, StemsEndingsAndLeavesStemsAlone) {
  const struct {
    const char* word;
    const char* stem;
  } kCases[] = {
      {"holes", "hole"},
      {"strings", "string"},
      {"branes", "brane"},  // plurals
      {"running", "run"},
      {"breaking", "break"},
      {"scattering", "scatter"},  // -ing
      {"studied", "studi"},
      {"compactified", "compactifi"},
      {"walked", "walk"},  // -ed
      {"hole", "hole"},
      {"string", "string"},
      {"qcd", "qcd"},  // left alone
      {"the", "the"},
      {"d-brane", "d-brane"},
      {"\xC3\xA9"
       "cole",
       "\xC3\xA9"
       "cole"},
  };
  EnglishStemmer stemmer;
  for (const auto& c : kCases) EXPECT_EQ(stemmer.stem(c.word), c.stem) << c.word;
}

// DID 2: "Black Holes" in the title, "hole black" in the abstract.
// DID 4: "black" ends the title and "holes" starts the abstract.
// DID 6: "Hole black" in the title; "black black holes" and "black hole"
// in the abstract. DID 9: forms of "run" and "string".
DataDirBuilder ordered_words() {
  DataDirBuilder b;
  b.add({2, "", 1994, {}, {"Black", "Holes"}, {"A"}, {"we", "study", "hole", "black"}, true, true});
  b.add({4, "", 1995, {}, {"black"}, {"B"}, {"holes", "in", "strings"}, true, true});
  b.add({6, "", 1996, {}, {"Hole", "black"}, {"C"}, {"black", "black", "holes", "and", "black", "hole"}, true, true});
  b.add({9, "", 1993, {}, {"running", "strings"}, {"D"}, {"strings", "run"}, true, true});
  return b;
}

class StemmedSearchTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ordered_words().write(dir_.path());
    std::ostream nowhere(nullptr);
    data_ = load_data_set(dir_.path(), nowhere);
    ASSERT_NE(data_, nullptr);
  }

  TempDir dir_;
  std::shared_ptr<RefgroveData> data_;
};

std::set<int> dids_of(const SearchAnswer& answer) {
  std::set<int> dids;
  for (const SearchHit& hit : answer.hits) dids.insert(hit.did);
  return dids;
}

TEST_F(StemmedSearchTest, StemsPhrasesAndTotals) {
  const struct {
    const char* query;
    bool exact;
    SearchMode mode;
    std::set<int> dids;
  } kCases[] = {
      {"hole", false, SearchMode::kAnd, {2, 4, 6}},
      {"hole", true, SearchMode::kAnd, {2, 6}},
      {"HOLES", true, SearchMode::kAnd, {2, 4, 6}},
      {"runs", false, SearchMode::kAnd, {9}},
      {"runs", true, SearchMode::kAnd, {}},
      {"str*", false, SearchMode::kAnd, {4, 9}},  // prefixes match words, stemmed or not
      {"hol*", false, SearchMode::kAnd, {2, 4, 6}},
      {"\"black hole\"", false, SearchMode::kAnd, {2, 6}},  // not 4: title and abstract
      {"\"black hole\"", true, SearchMode::kAnd, {6}},
      {"\"hole black\"", false, SearchMode::kAnd, {2, 6}},  // reversed
      {"\"black black\"", false, SearchMode::kAnd, {6}},    // a repeated word
      {"\"black black black\"", false, SearchMode::kAnd, {}},
      {"\"black\"", false, SearchMode::kAnd, {2, 4, 6}},  // one word: the word
      {"\"black hole\" strings", false, SearchMode::kAnd, {}},
      {"\"black hole\" strings", false, SearchMode::kOr, {2, 4, 6, 9}},
      {"\"running strings\" \"strings run\"", false, SearchMode::kAnd, {9}},
      {"\"black absent\" hole", false, SearchMode::kOr, {2, 4, 6}},
      {"\"black  hole\"study", false, SearchMode::kAnd, {2}},  // quotes end words too
  };
  for (const auto& c : kCases) {
    const std::string what = std::string(c.query) + (c.exact ? " exact " : " ") + to_text(c.mode);
    const SearchAnswer all = search(*data_, c.query, SearchRequest{c.mode, c.exact, 0});
    EXPECT_EQ(dids_of(all), c.dids) << what;
    EXPECT_EQ(all.total, c.dids.size()) << what;
    const SearchAnswer first = search(*data_, c.query, SearchRequest{c.mode, c.exact, 1});
    EXPECT_EQ(first.hits.size(), std::min<std::size_t>(1, c.dids.size())) << what;
    EXPECT_EQ(first.total, c.dids.size()) << what;
    if (!first.hits.empty()) {
      EXPECT_EQ(first.hits[0].did, all.hits[0].did) << what;
    }
  }
}

TEST_F(StemmedSearchTest, PhraseOccurrencesCountAsTermFrequency) {
  // DID 6 holds "black hole" twice in its abstract, DID 2 once in its title.
  const SearchAnswer answer = search(*data_, "\"black hole\"", SearchRequest{});
  const WordIndex& index = stem_index(*data_);
  const double idf = std::log(1.0 + (4 - 2 + 0.5) / (2 + 0.5));
  for (const SearchHit& hit : answer.hits) {
    const double tf = hit.did == 6 ? 2 : 1;
    const double norm = kBm25K1 * (1 - kBm25B + kBm25B * index.length(hit.did) / index.average_length());
    EXPECT_NEAR(hit.score, idf * tf * (kBm25K1 + 1) / (tf + norm), 1e-12) << hit.did;
  }
}

TEST_F(StemmedSearchTest, BadPhrasesAreUsageErrorsAndPlainQueriesKeepQuotes) {
  for (const char* query : {"\"black hole", "black \"", "\"black hol*\"", "\"\"", "\"  \""}) {
    EXPECT_THROW(search(*data_, query, SearchRequest{}), SearchUsageError) << query;
  }
  // Without phrases a quote is a character of a word like any other.
  EXPECT_TRUE(search(*data_, "\"black", SearchMode::kAnd, 0).empty());
  EXPECT_EQ(parse_query("\"black hole\"").size(), 2u);
}

TEST_F(StemmedSearchTest, ConcurrentSearchesEachStemAlike) {
  std::vector<std::future<std::set<int>>> runs;
  for (int k = 0; k < 4; ++k) {
    runs.push_back(std::async(std::launch::async, [this] {
      std::set<int> all;
      for (int i = 0; i < 50; ++i) all = dids_of(search(*data_, "holes \"black hole\"", SearchRequest{}));
      return all;
    }));
  }
  for (auto& run : runs) EXPECT_EQ(run.get(), (std::set<int>{2, 6}));
}

}  // namespace
}  // namespace refgrove
