// The network commands on a small data directory: what each prints, and
// the status and message of each kind of bad argument.
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <tuple>
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

// A list that a limit cut says so on standard error, and how much it kept;
// 0 is no limit at all.
TEST_F(NetworkCommandsTest, CutListsSaySo) {
  const struct {
    std::vector<std::string> args;
    std::size_t lines;  // of standard output
    std::string err;
  } cases[] = {
      {{"rank"}, 4, ""},
      {{"rank", "--limit", "1"}, 1, "refgrove rank: showing 1 of 4 documents; raise --limit\n"},
      {{"rank", "--limit", "0"}, 4, ""},
      {{"rank", "--years", "1991-1992", "--limit", "1"}, 1, "refgrove rank: showing 1 of 2 documents; raise --limit\n"},
      {{"rank", "--years", "1992"}, 1, ""},
      {{"similar", "3", "--by", "coupling", "--limit", "1"},
       1,
       "refgrove similar: showing 1 of 2 documents; raise --limit\n"},
      {{"similar", "3", "--by", "coupling", "--limit", "0"}, 2, ""},
      {{"neighbourhood", "2", "--limit", "2"}, 3, "refgrove neighbourhood: showing 2 of 4 documents; raise --limit\n"},
      {{"neighbourhood", "2", "--limit", "0"}, 9, ""},
      {{"neighbourhood", "2", "--limit", "4"}, 9, ""},
      {{"authors", "--limit", "1"}, 1, "refgrove authors: showing 1 of 4 authors; raise --limit\n"},
      {{"authors", "--limit", "0"}, 4, ""},
      {{"components", "--largest", "1"},
       4,
       "refgrove components: showing 1 of 2 co-author component sizes; raise --largest or use --all\n"},
      {{"components", "--largest", "0"}, 4, ""},
      {{"components", "--all"}, 4, ""},
  };
  for (const auto& c : cases) {
    std::string line;
    for (const std::string& a : c.args) line += a + " ";
    const ToolRun r = run(c.args);
    EXPECT_EQ(r.status, 0) << line << r.err;
    EXPECT_EQ(static_cast<std::size_t>(std::count(r.out.begin(), r.out.end(), '\n')), c.lines) << line << r.out;
    EXPECT_EQ(r.err, c.err) << line;
  }
  for (const auto& [limit, total, truncated] : {std::tuple{"2", 4, true}, {"0", 4, false}, {"4", 4, false}}) {
    const ToolRun r = run({"neighbourhood", "2", "--format", "json", "--limit", limit});
    const nlohmann::json j = nlohmann::json::parse(r.out);
    EXPECT_EQ(j["total"], total) << limit;
    EXPECT_EQ(j["truncated"], truncated) << limit;
  }
}

// Every count option takes 0 to 1,000,000,000 and says so for anything else.
TEST_F(NetworkCommandsTest, LimitValues) {
  const std::vector<std::vector<std::string>> commands = {
      {"rank", "--limit"},    {"similar", "1", "--limit"}, {"neighbourhood", "1", "--limit"},
      {"authors", "--limit"}, {"components", "--largest"},
  };
  for (const std::vector<std::string>& command : commands) {
    for (const std::string value : {"-1", "1000000001", "999999999999", "99999999999999999999999"}) {
      std::vector<std::string> args = command;
      args.push_back(value);
      const ToolRun r = run(args);
      EXPECT_EQ(r.status, 2) << command[0] << " " << value;
      EXPECT_NE(r.err.find(value + ": must be 0 or more (0: all), and 1,000,000,000 at most"), std::string::npos)
          << command[0] << " " << value << r.err;
    }
    std::vector<std::string> args = command;
    args.push_back("1000000000");
    EXPECT_EQ(run(args).status, 0) << command[0];
  }
}

TEST_F(NetworkCommandsTest, ComponentOfEachNode) {
  const ToolRun r = run({"components", "--nodes"});
  EXPECT_EQ(r.out,
            "citation\t1\t0\ncitation\t2\t0\ncitation\t3\t0\ncitation\t4\t0\n"
            "co-author\t0\t0\nco-author\t1\t0\nco-author\t2\t0\nco-author\t3\t1\n");
  EXPECT_EQ(run({"components", "--nodes", "--all"}).status, 2);
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
      {{"rank", "--years", "19x0"}, 1, "--years takes YEAR or FROM-TO, as 1995 or 1990-1999, not \"19x0\""},
      {{"rank", "--years", "1991-"}, 1, "--years takes YEAR or FROM-TO"},
      {{"rank", "--years", "95-96"}, 1, "no documents in 95-96; the years run 1990-1993"},
      {{"rank", "--years", "2000"}, 1, "no documents in 2000; the years run 1990-1993"},
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
