// Every JSON answer of the tool and of the explorer, on the sample, names
// its fields from one table only.
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "core/data_view.h"
#include "core/json_fields.h"
#include "testing/data_files.h"
#include "tools/tool_test_util.h"
#include "web/author_impact_api.h"
#include "web/cluster_api.h"
#include "web/network_api.h"
#include "web/overview_api.h"
#include "web/paper_api.h"
#include "web/search_api.h"

namespace refgrove {
namespace {

// The names of `j` and of every object within it that are not in the
// table, each with where it was met.
void unknown_fields(const nlohmann::ordered_json& j, const std::string& where, std::set<std::string>& out) {
  if (j.is_array()) {
    for (const auto& item : j) unknown_fields(item, where, out);
  } else if (j.is_object()) {
    for (const auto& [name, value] : j.items()) {
      if (std::ranges::find(kJsonFieldNames, name) == std::end(kJsonFieldNames)) out.insert(where + ": " + name);
      unknown_fields(value, where + "." + name, out);
    }
  }
}

class JsonFieldsTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    dir_ = new TempDir;
    preprocess_sample(dir_->path());
    std::ostringstream log;
    data_ = new DataSetPtr(load_data_set(dir_->path(), log));
  }
  static void TearDownTestSuite() {
    delete data_;
    delete dir_;
  }
  static const RefgroveData& data() { return **data_; }
  static TempDir* dir_;
  static DataSetPtr* data_;
};
TempDir* JsonFieldsTest::dir_ = nullptr;
DataSetPtr* JsonFieldsTest::data_ = nullptr;

TEST_F(JsonFieldsTest, TheToolsJsonNamesOnlyFieldsOfTheTable) {
  const std::vector<std::vector<std::string>> runs = {
      {"search", "--format", "json", "graph*"},
      {"search", "--format", "jsonl", "--sort", "citations", "the"},
      {"export"},
      {"neighbourhood", "--format", "json", "--hops", "2", "110"},
      {"clusters", "--format", "json"},
      {"clusters", "--format", "json", "--members"},
      {"clusters", "--format", "json", "--graph", "coauthor", "--members"},
  };
  for (std::vector<std::string> args : runs) {
    std::string shown;
    for (const std::string& a : args) shown += a + " ";
    args.insert(args.begin() + 1, dir_->path());
    const ToolRun run = run_tool(args);
    ASSERT_EQ(run.status, 0) << shown << run.err;
    std::istringstream lines(run.out);
    std::set<std::string> unknown;
    int answers = 0;
    for (std::string line; std::getline(lines, line); ++answers)
      unknown_fields(nlohmann::ordered_json::parse(line), shown, unknown);
    EXPECT_GT(answers, 0) << shown;
    EXPECT_EQ(unknown, std::set<std::string>()) << shown;
  }
}

TEST_F(JsonFieldsTest, TheExplorersAnswersNameOnlyFieldsOfTheTable) {
  const RefgroveData& d = data();
  std::vector<std::pair<std::string, web::Json>> answers = {
      {"stats", web::stats_json(d)},
      {"search", web::search_json(d, "graph", {SearchMode::kOr, false, 5})},
      {"search by key", web::search_json(d, "chen95", {})},
      {"path", web::path_json(d, 3, 7)},
      {"rank", web::rank_json(d, RankBy::citations, 5, YearRange{1990, 1999})},
      {"rank", web::rank_json(d, RankBy::pagerank, 5, std::nullopt)},
      {"neighbourhood", web::neighbourhood_json(d, 110, {2, Direction::both, 5, true})},
      {"overview", web::overview_json(d, 3)},
      {"clusters", web::clusters_json(d, 50)},
      {"cluster", web::cluster_json(d, 0, 200)},
      {"author impact", web::author_impact_json(d, 3)},
  };
  int last = 0;
  last_did(d, &last);
  for (int did = 0; did < last; ++did) {
    if (has_graph_info(d, did) || has_word_info(d, did))
      answers.emplace_back("paper " + std::to_string(did), web::paper_json(d, did));
  }
  for (int id = 0; id < get_nb_authors(d); ++id)
    answers.emplace_back("author " + std::to_string(id), web::author_json(d, id));
  std::set<std::string> unknown;
  for (const auto& [where, answer] : answers) unknown_fields(answer, where, unknown);
  EXPECT_EQ(unknown, std::set<std::string>());
}

}  // namespace
}  // namespace refgrove
