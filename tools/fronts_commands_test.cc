// clusters, main-path, authors and timeline on a small data directory worked out by
// hand, and their bad arguments.
#include <gtest/gtest.h>

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

// Citations 2->1, 3->1, 3->2, 4->1, 4->2, 5<->6: path counts from the
// sources 3 and 4 make 2->1 the heaviest link (2), and 3 wins the tie with 4.
// The best modularity splits the two components (each 0.204); among the
// authors, Ann Lee, Bo Chen and Cy Diaz, linked in a chain, are one cluster
// and Dee Ell, alone, the other.
class FrontsCommandsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    DataDirBuilder b;
    b.add(paper(1, 1990, {}, {"Ann Lee"}, "Roots"));
    b.add(paper(2, 1991, {1}, {"Ann Lee", "Bo Chen"}, "Branches"));
    b.add(paper(3, 1992, {1, 2}, {"Bo Chen", "Cy Diaz"}, "Leaves"));
    b.add(paper(4, 1993, {1, 2}, {"Dee Ell"}, "Fruit"));
    b.add(paper(5, -1, {6}, {}, "Echo"));
    b.add(paper(6, 1993, {5}, {}, "Reply"));
    b.write(dir_.path());
  }
  ToolRun run(std::vector<std::string> args) {
    args.insert(args.begin() + 1, dir_.path());
    return run_tool(args);
  }
  TempDir dir_;
};

TEST_F(FrontsCommandsTest, Output) {
  const struct {
    std::vector<std::string> args;
    std::string out;
  } cases[] = {
      {{"main-path"}, "3\tLeaves\n2\tBranches\n1\tRoots\n"},
      {{"authors"}, "0\t2\tAnn Lee\n1\t1\tBo Chen\n2\t0\tCy Diaz\n3\t0\tDee Ell\n"},
      {{"authors", "--by", "citations", "--limit", "2"}, "0\t5\tAnn Lee\n1\t2\tBo Chen\n"},
      {{"authors", "--by", "documents", "--limit", "3"}, "0\t2\tAnn Lee\n1\t2\tBo Chen\n2\t1\tCy Diaz\n"},
      {{"timeline", "1"}, "1991\t1\n1992\t1\n1993\t1\n"},
      {{"timeline", "--author", "0"}, "1991\t1\n1992\t2\n1993\t2\n"},
      {{"timeline", "6"}, ""},  // its only citer has no year
      {{"timeline", "5"}, "1993\t1\n"},
      {{"clusters"}, "0\t4\tbranches fruit leaves\n1\t2\techo reply\n"},
      {{"clusters", "--members"}, "1\t0\n2\t0\n3\t0\n4\t0\n5\t1\n6\t1\n"},
      {{"clusters", "--graph", "coauthor", "--members"}, "0\t0\n1\t0\n2\t0\n3\t1\n"},
      // Above every weight, CPM leaves each document alone.
      {{"clusters", "--quality", "cpm", "--resolution", "2.5", "--seed", "9"},
       "0\t1\troots\n1\t1\tbranches\n2\t1\tleaves\n3\t1\tfruit\n4\t1\techo\n5\t1\treply\n"},
      {{"clusters", "--graph", "cocitation", "--min-citations", "2", "--members"}, "1\t0\n2\t0\n"},
      {{"clusters", "--iterations", "1", "--members"}, "1\t0\n2\t0\n3\t0\n4\t0\n5\t1\n6\t1\n"},
      {{"timeline", "--cluster", "0"}, "1991\t1\n1992\t2\n1993\t2\n"},
      {{"timeline", "--cluster", "1"}, "1993\t1\n"},
      {{"timeline", "--cluster", "0", "--documents"}, "1990\t1\n1991\t1\n1992\t1\n1993\t1\n"},
      {{"timeline", "--cluster", "0", "--graph", "coauthor"}, "1991\t1\n1992\t2\n1993\t2\n"},
  };
  for (const auto& c : cases) {
    std::string line;
    for (const std::string& a : c.args) line += a + " ";
    const ToolRun r = run(c.args);
    EXPECT_EQ(r.status, 0) << line << r.err;
    EXPECT_EQ(r.out, c.out) << line;
  }
}

TEST_F(FrontsCommandsTest, ClustersAsJson) {
  const ToolRun r = run({"clusters", "--format", "json"});
  EXPECT_EQ(r.status, 0) << r.err;
  for (const char* part :
       {"\"graph\":\"citation\",\"quality\":\"modularity\",\"resolution\":1.0,\"seed\":1,",
        "\"total\":2,\"clusters\":[{\"id\":0,\"size\":4,\"documents\":4,",
        "\"first_year\":1990,\"last_year\":1993,\"top\":[1,2,3,4],\"label\":[\"branches\",\"fruit\",\"leaves\"]}",
        "\"first_year\":1993,\"last_year\":1993,\"top\":[5,6]"})
    EXPECT_NE(r.out.find(part), std::string::npos) << part << "\n" << r.out;
  const ToolRun members = run({"clusters", "--format", "json", "--members", "--graph", "coauthor"});
  EXPECT_NE(members.out.find("\"members\":[{\"author\":0,\"cluster\":0},"), std::string::npos) << members.out;
}

TEST_F(FrontsCommandsTest, BadArguments) {
  const struct {
    std::vector<std::string> args;
    int status;
    std::string err;  // a part of the message
  } cases[] = {
      {{"timeline", "77"}, 1, "no graph record for DID 77"},
      {{"timeline", "--author", "9"}, 1, "no author with id 9"},
      {{"timeline"}, 2, "DID, --author or --cluster"},
      {{"timeline", "--cluster", "2"}, 1, "no cluster 2 (there are 2)"},
      {{"timeline", "--author", "0", "--cluster", "0"}, 2, "excludes"},
      {{"clusters", "--graph", "words"}, 2, "words"},
      {{"clusters", "--quality", "potts"}, 2, "potts"},
      {{"clusters", "--resolution", "-1"}, 2, "--resolution"},
      {{"clusters", "--min-weight", "0"}, 2, "--min-weight"},
      {{"clusters", "--format", "xml"}, 2, "xml"},
      {{"clusters", "--iterations", "-2"}, 2, "--iterations"},
      {{"timeline", "1", "--author", "0"}, 2, "excludes"},
      {{"authors", "--by", "fame"}, 2, "fame"},
      {{"authors", "--limit", "-1"}, 2, "--limit"},
  };
  for (const auto& c : cases) {
    std::string line;
    for (const std::string& a : c.args) line += a + " ";
    const ToolRun r = run(c.args);
    EXPECT_EQ(r.status, c.status) << line << r.err;
    EXPECT_NE(r.err.find(c.err), std::string::npos) << line << r.err;
  }
}

}  // namespace

}  // namespace refgrove
