#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "core/data_view.h"
#include "network/ranking.h"
#include "search/word_search.h"
#include "testing/data_files.h"
#include "tools/tool_test_util.h"

namespace refgrove {

namespace {

class SearchCommandTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    dir_ = new TempDir;
    preprocess_sample(dir_->path());
  }
  static void TearDownTestSuite() { delete dir_; }
  static TempDir* dir_;
};
TempDir* SearchCommandTest::dir_ = nullptr;

TEST_F(SearchCommandTest, TsvAndJsonLinesListTheSearchHitsInOrder) {
  std::ostream nowhere(nullptr);
  const refgrove::DataSetPtr d = refgrove::load_data_set(dir_->path(), nowhere);
  for (const std::vector<std::string>& query : std::vector<std::vector<std::string>>{
           {"graph"}, {"the", "of"}, {"--any", "the", "graph*"}, {"--limit", "0", "--any", "a*"}}) {
    const bool any = query[0] == "--any" || query.back() == "a*";
    const std::size_t limit = query[0] == "--limit" ? 0 : 10;
    std::string text;
    for (const std::string& t : query) text += t.starts_with("--") || t == "0" ? "" : t + " ";
    const auto hits =
        refgrove::search(*d, text, {any ? refgrove::SearchMode::kOr : refgrove::SearchMode::kAnd, false, limit}).hits;
    ASSERT_FALSE(hits.empty()) << text;

    std::vector<std::string> args = {"search", "--format", "tsv", dir_->path()};
    args.insert(args.end(), query.begin(), query.end());
    const ToolRun tsv = run_tool(args);
    args[2] = "jsonl";
    const ToolRun jsonl = run_tool(args);
    ASSERT_EQ(tsv.status, 0) << text << tsv.err;
    ASSERT_EQ(jsonl.status, 0) << text << jsonl.err;
    std::istringstream tsv_lines(tsv.out), json_lines(jsonl.out);
    std::string line, json;
    for (const refgrove::SearchHit& hit : hits) {
      ASSERT_TRUE(std::getline(tsv_lines, line)) << text;
      ASSERT_TRUE(std::getline(json_lines, json)) << text;
      int did = 0;
      double score = 0;
      ASSERT_EQ(std::sscanf(line.c_str(), "%d\t%lf\t", &did, &score), 2) << line;
      EXPECT_EQ(did, hit.did) << text;
      EXPECT_NEAR(score, hit.score, 1e-6 * hit.score) << text;
      const nlohmann::json j = nlohmann::json::parse(json);
      EXPECT_EQ(j["did"], hit.did) << json;
      EXPECT_EQ(line.substr(line.rfind('\t') + 1), j["title"].get<std::string>()) << json;
    }
    EXPECT_FALSE(std::getline(tsv_lines, line)) << text << ": more lines than hits";
  }
}

TEST_F(SearchCommandTest, ExitStatusTellsNoHitFromUsageErrors) {
  struct Case {
    std::vector<std::string> args;
    int status;
  };
  const Case cases[] = {
      {{"graph"}, 0},
      {{"nosuchword"}, 1},
      {{"graph", "nosuchword"}, 1},
      {{"--any", "graph", "nosuchword"}, 0},
      {{""}, 2},
      {{"*"}, 2},
      {{"graph", "*"}, 2},
      {{"--limit", "-1", "graph"}, 2},
      {{"--format", "xml", "graph"}, 2},
      {{"--sort", "rank", "graph"}, 2},
      {{"\"graph"}, 2},
      {{"\"graph", "drawing\""}, 0},
      {{"--exact", "graphs", "drawing"}, 1},
      {{"graphs", "drawing"}, 0},
      {{}, 2},
  };
  for (const Case& c : cases) {
    std::vector<std::string> args = {"search", dir_->path()};
    args.insert(args.end(), c.args.begin(), c.args.end());
    const ToolRun run = run_tool(args);
    std::string shown;
    for (const std::string& a : c.args) shown += "'" + a + "' ";
    EXPECT_EQ(run.status, c.status) << shown << run.err;
    EXPECT_EQ(run.status == 0, run.err.empty()) << shown << run.err;
  }
  EXPECT_EQ(run_tool({"search", dir_->path() + "missing/", "graph"}).status, 1);
}

// Every order keeps the hits of the search and cuts them to --limit after
// sorting; the JSON says how many matched and whether the list was cut, and
// standard error says it for every format.
TEST_F(SearchCommandTest, SortOrdersAndTotals) {
  std::ostream nowhere(nullptr);
  const refgrove::DataSetPtr d = refgrove::load_data_set(dir_->path(), nowhere);
  const std::vector<SearchHit> all = refgrove::search(*d, "graph", SearchRequest{}).hits;
  ASSERT_GT(all.size(), 3u);
  const auto key = [&](const std::string& sort, int did) -> double {
    int year = -1;
    if (sort == "year") return get_year(*d, did, &year) ? year : -1;
    if (sort == "citations") return citation_count(*d, did);
    return 0;  // relevance: the search's own order, checked below
  };
  for (const std::string sort : {"relevance", "citations", "year"}) {
    for (const std::size_t limit : {std::size_t{0}, std::size_t{2}, all.size()}) {
      const std::string what = sort + " limit " + std::to_string(limit);
      const ToolRun run = run_tool(
          {"search", "--format", "json", "--sort", sort, "--limit", std::to_string(limit), dir_->path(), "graph"});
      ASSERT_EQ(run.status, 0) << what << run.err;
      const nlohmann::json j = nlohmann::json::parse(run.out);
      const bool cut = limit != 0 && limit < all.size();
      EXPECT_EQ(j["total"], all.size()) << what;
      EXPECT_EQ(j["truncated"], cut) << what;
      EXPECT_EQ(run.err.empty(), !cut) << what << run.err;
      if (cut) {
        EXPECT_EQ(run.err, "refgrove search: showing 2 of " + std::to_string(all.size()) +
                               " documents; raise --limit (0: all)\n");
      }
      const nlohmann::json& hits = j["hits"];
      ASSERT_EQ(hits.size(), cut ? limit : all.size()) << what;
      for (std::size_t k = 0; k < hits.size(); ++k) {
        if (sort == "relevance") {
          EXPECT_EQ(hits[k]["did"], all[k].did) << what;
        } else if (k > 0) {
          const double before = key(sort, hits[k - 1]["did"]), now = key(sort, hits[k]["did"]);
          EXPECT_TRUE(before > now || (before == now && hits[k - 1]["score"] >= hits[k]["score"]))
              << what << " at " << k;
        }
      }
    }
  }
}

// The text for people shows each hit's citation count when the hits are in
// that order, and only then.
TEST_F(SearchCommandTest, TextShowsCitationCountsWhenSortedByThem) {
  std::ostream nowhere(nullptr);
  const refgrove::DataSetPtr d = refgrove::load_data_set(dir_->path(), nowhere);
  for (const std::string sort : {"relevance", "citations", "year"}) {
    const ToolRun run = run_tool({"search", "--sort", sort, "--limit", "0", dir_->path(), "graph"});
    ASSERT_EQ(run.status, 0) << sort << run.err;
    std::istringstream lines(run.out);
    int hits = 0;
    for (std::string line; std::getline(lines, line);) {
      const std::size_t at = line.find("DID ");
      if (at == std::string::npos) continue;
      ++hits;
      int did = 0;
      ASSERT_EQ(std::sscanf(line.c_str() + at, "DID %d, ", &did), 1) << line;
      const int count = citation_count(*d, did);
      const std::string shown = std::to_string(count) + (count == 1 ? " citation, " : " citations, ");
      EXPECT_EQ(line.find(", " + shown + "score ") != std::string::npos, sort == "citations") << sort << ": " << line;
    }
    EXPECT_GT(hits, 3) << sort;
  }
}

}  // namespace

}  // namespace refgrove
