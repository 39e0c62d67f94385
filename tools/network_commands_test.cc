// The network commands on a small data directory: what each prints, and
// the status and message of each kind of bad argument.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "testing/data_dir_builder.h"
#include "tools/tool_test_util.h"

namespace refgrove {

namespace {

TestDocument paper(int did, int year, std::vector<int> cited, std::vector<std::string> authors, std::string title) {
  TestDocument t;
  t.did = did;
  t.year = year;
  for (const int c : cited) t.citations.push_back(CitationInfo{0, c});
  t.authors = std::move(authors);
  t.title = {std::move(title)};
  return t;
}

class NetworkCommandsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    DataDirBuilder b;
    b.add(paper(1, 1990, {}, {"Ann Lee"}, "Roots"));
    b.add(paper(2, 1991, {1, 1, 77}, {"Ann Lee", "Bo Chen"}, "Branches"));
    b.add(paper(3, 1992, {1, 2}, {"Bo Chen", "Cy Diaz"}, "Leaves"));
    b.add(paper(4, 1993, {1, 2}, {"Dee Ell"}, "Fruit"));
    b.write(dir_.path());
  }
  ToolRun run(std::vector<std::string> args) {
    args.insert(args.begin() + 1, dir_.path());
    return run_tool(args);
  }
  TempDir dir_;
};

TEST_F(NetworkCommandsTest, Output) {
  const struct {
    std::vector<std::string> args;
    std::string out;
  } cases[] = {
      {{"rank"}, "1\t3\tRoots\n2\t2\tBranches\n3\t0\tLeaves\n4\t0\tFruit\n"},
      {{"rank", "--limit", "1", "--years", "1991-1993"}, "2\t2\tBranches\n"},
      {{"similar", "1"}, "2\t2\tBranches\n"},
      {{"similar", "3", "--by", "coupling", "--limit", "5"}, "4\t2\tFruit\n2\t1\tBranches\n"},
      // 3 and 4 cite 1 and 2; 2 cites 1 alone.
      {{"similar", "3", "--by", "coupling", "--measure", "cosine"}, "4\t1\tFruit\n2\t0.707107\tBranches\n"},
      {{"similar", "3", "--by", "coupling", "--measure", "jaccard"}, "4\t1\tFruit\n2\t0.5\tBranches\n"},
      {{"neighbourhood", "2", "--direction", "in"},
       "2\t0\t2\tBranches\n3\t1\t0\tLeaves\n4\t1\t0\tFruit\n"
       "3\tcites\t2\n4\tcites\t2\n"},
      {{"neighbourhood", "4", "--hops", "1000000000", "--limit", "2", "--direction", "out"},
       "4\t0\t0\tFruit\n1\t1\t3\tRoots\n4\tcites\t1\n"},
      {{"distance", "0", "2"},
       "distance\t2\nauthor\t0\tAnn Lee\ndocument\t2\tBranches\nauthor\t1\tBo Chen\n"
       "document\t3\tLeaves\nauthor\t2\tCy Diaz\n"},
      {{"distance", "--names", "ann lee", "Ann Lee"}, "distance\t0\nauthor\t0\tAnn Lee\n"},
      {{"components"},
       "citation\tcomponents\t1\ncitation\tlargest\t4\n"
       "co-author\tcomponents\t2\nco-author\tlargest\t3\t1\n"},
      {{"export", "--format", "edges"}, "2\t1\n3\t1\n3\t2\n4\t1\n4\t2\n"},
  };
  for (const auto& c : cases) {
    std::string line;
    for (const std::string& a : c.args) line += a + " ";
    const ToolRun r = run(c.args);
    EXPECT_EQ(r.status, 0) << line << r.err;
    EXPECT_EQ(r.out, c.out) << line;
  }
}

TEST_F(NetworkCommandsTest, DrawingFormats) {
  const ToolRun json = run({"neighbourhood", "2", "--format", "json"});
  ASSERT_EQ(json.status, 0) << json.err;
  const nlohmann::json j = nlohmann::json::parse(json.out);
  EXPECT_EQ(j["nodes"].size(), 4u);
  EXPECT_EQ(j["nodes"][0]["did"], 2);
  EXPECT_EQ(j["nodes"][0]["title"], "Branches");
  EXPECT_EQ(j["edges"].size(), 5u);
  const ToolRun dot = run({"neighbourhood", "1", "--format", "dot", "--hops", "0"});
  EXPECT_EQ(dot.out, "digraph citations {\n  1 [label=\"1\\n1990\", style=bold];\n}\n");
  const ToolRun graphml = run({"neighbourhood", "1", "--format", "graphml", "--limit", "2"});
  EXPECT_NE(graphml.out.find("<node id=\"1\"><data key=\"year\">1990</data><data key=\"citations\">3</data>"
                             "<data key=\"hops\">0</data></node>"),
            std::string::npos)
      << graphml.out;
  EXPECT_NE(graphml.out.find("<edge source=\"2\" target=\"1\"/>"), std::string::npos) << graphml.out;
}

TEST_F(NetworkCommandsTest, BadArguments) {
  const struct {
    std::vector<std::string> args;
    int status;
    std::string err;  // a part of the message
  } cases[] = {
      {{"neighbourhood", "77"}, 1, "no graph record for DID 77"},
      {{"similar", "-1"}, 1, "no graph record for DID -1"},
      {{"similar", "1", "--measure", "dice"}, 2, "dice"},
      {{"distance", "0", "9"}, 1, "no author with id 9"},
      {{"distance", "0", "3"}, 1, "authors 0 and 3 are not connected"},
      {{"distance", "--names", "Nobody", "Ann Lee"}, 1, "no author named \"Nobody\""},
      {{"distance", "Ann", "0"}, 2, "AUTHOR: expected a decimal number, not 'Ann' (use --names for names)"},
      {{"similar", "0x1"}, 2, "DID: expected a decimal number, not '0x1'"},
      {{"rank", "--years", "1993-1990"}, 1, "reversed year range 1993-1990"},
      {{"rank", "--years", "1990"}, 1, "--years takes FROM-TO"},
      {{"rank", "--by", "fame"}, 2, "fame"},
      {{"neighbourhood", "1", "--limit", "-1"}, 2, "--limit"},
      {{"neighbourhood", "1", "--direction", "up"}, 2, "up"},
      {{"distance", "0"}, 2, "AUTHOR"},
  };
  for (const auto& c : cases) {
    std::string line;
    for (const std::string& a : c.args) line += a + " ";
    const ToolRun r = run(c.args);
    EXPECT_EQ(r.status, c.status) << line << r.err;
    EXPECT_NE(r.err.find(c.err), std::string::npos) << line << r.err;
  }
  const ToolRun missing = run_tool({"rank", dir_.path() + "nothing/"});
  EXPECT_EQ(missing.status, 1);
}

}  // namespace

}  // namespace refgrove
