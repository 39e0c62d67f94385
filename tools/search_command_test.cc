#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "core/data_view.h"
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
    const auto hits = refgrove::search(*d, text, any ? refgrove::SearchMode::kOr : refgrove::SearchMode::kAnd, limit);
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

}  // namespace

}  // namespace refgrove
