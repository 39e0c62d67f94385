// `refgrove check`: exit status and report lines for a clean and a damaged
// directory, and usage errors.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "preproc/manifest.h"
#include "testing/data_dir_builder.h"
#include "testing/data_files.h"
#include "tools/tool_test_util.h"

namespace refgrove {

namespace {

ToolRun check(std::vector<std::string> args) {
  args.insert(args.begin(), "check");
  return run_tool(std::move(args));
}

TEST(CheckCommandTest, CleanThenDamagedDirectory) {
  TempDir dir;
  const std::string& d = dir.path();
  DataDirBuilder().add({7, "", -1, {}, {"graphs"}, {"A. Lee"}, {"one", "two"}, true, true}).write(d);
  ToolRun r = check({d.substr(0, d.size() - 1)});  // the trailing "/" is added by the command
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, d + ": no problems found.\n");
  EXPECT_EQ(r.err, "");

  DataFiles files = read_data_files(d);
  files["word-idx"].resize(12);  // the sentinel and half of it gone
  files.erase("graph_data");
  write_data_files(d, files);
  r = check({d});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, d +
                       "word-idx at offset 8: the size 12 is not a multiple of 8: the last 4 bytes are not a whole "
                       "document header.\n" +
                       d +
                       "word-idx at offset 0: the last header has DID 7, not the end sentinel's -1: the sentinel "
                       "is missing or the file is cut short.\n" +
                       d + "graph_data: the file is missing or cannot be read.\n3 problems found in " + d + ".\n");
}

// Files that fit together but are not the ones the manifest lists.
TEST(CheckCommandTest, FilesFromAnotherRunAreFound) {
  TempDir dir, other;
  DataDirBuilder().add({7, "", -1, {}, {"graphs"}, {"A. Lee"}, {"one", "two"}, true, true}).write(dir.path());
  DataDirBuilder().add({7, "", -1, {}, {"graphs"}, {"B. Lee"}, {"one", "two"}, true, true}).write(other.path());
  std::string error;
  ASSERT_TRUE(write_manifest(dir.path(), dir.path() + kManifestFile, "test", &error)) << error;
  write_file(dir.path() + "graph_data", read_file(other.path() + "graph_data"));
  const ToolRun r = check({dir.path()});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, dir.path() +
                       "graph_data: the file is not the one refgrove-manifest.json lists (size 56, listed "
                       "56; the checksum differs): the files come from different runs, or this one was "
                       "changed since.\n1 problem found in " +
                       dir.path() + ".\n");
}

TEST(CheckCommandTest, UsageErrorsExitTwo) {
  for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{{}, {"a", "b"}, {""}}) {
    const ToolRun r = check(args);
    EXPECT_EQ(r.status, 2) << args.size() << " arguments";
    EXPECT_NE(r.err.find("Run 'refgrove check --help'"), std::string::npos) << r.err;
    EXPECT_EQ(r.out, "");
  }
  const ToolRun help = check({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("Usage: refgrove check [OPTIONS] DIR"), std::string::npos);
}

}  // namespace

}  // namespace refgrove
