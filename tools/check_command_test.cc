// `refgrove check`: exit status and report lines for a clean and a damaged
// directory, and usage errors.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "testing/data_dir_builder.h"
#include "testing/data_files.h"
#include "tools/commands.h"

namespace {

struct CheckRun {
  int status;
  std::string out, err;
};

CheckRun check(std::vector<std::string> args) {
  args.insert(args.begin(), "check");
  std::vector<char*> argv;
  for (std::string& a : args) argv.push_back(&a[0]);
  std::ostringstream out, err;
  const int status = check_main(static_cast<int>(argv.size()), argv.data(), out, err);
  return CheckRun{status, out.str(), err.str()};
}

void write_one_document(const std::string& dir) {
  TestDocument d;
  d.did = 7;
  d.title = {"graphs"};
  d.authors = {"A. Lee"};
  d.words = {"one", "two"};
  DataDirBuilder().add(d).write(dir);
}

TEST(CheckCommandTest, CleanDirectoryExitsZero) {
  TempDir dir;
  write_one_document(dir.path());
  std::string path = dir.path();
  path.pop_back();  // the trailing "/" is added by the command
  const CheckRun r = check({path});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, dir.path() + ": no problems found.\n");
  EXPECT_EQ(r.err, "");
}

TEST(CheckCommandTest, DamagedDirectoryListsFindingsAndExitsOne) {
  TempDir dir;
  write_one_document(dir.path());
  DataFiles files = read_data_files(dir.path());
  files["word-idx"].resize(12);  // the sentinel and half of it gone
  files.erase("graph_data");
  write_data_files(dir.path(), files);
  const CheckRun r = check({dir.path()});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out,
            dir.path() + "word-idx at offset 8: the size 12 is not a multiple of 8: the last 4 bytes are not a whole "
                         "document header.\n" +
                dir.path() + "word-idx at offset 0: the last header has DID 7, not the end sentinel's -1: the "
                             "sentinel is missing or the file is cut short.\n" +
                dir.path() + "graph_data: the file is missing or cannot be read.\n" + "3 problems found in " +
                dir.path() + ".\n");
}

TEST(CheckCommandTest, UsageErrorsExitTwo) {
  for (const std::vector<std::string>& args :
       std::vector<std::vector<std::string>>{{}, {"a", "b"}, {""}}) {
    const CheckRun r = check(args);
    EXPECT_EQ(r.status, 2) << args.size() << " arguments";
    EXPECT_EQ(r.err, "usage: refgrove check DIR (see refgrove check --help)\n");
  }
  const CheckRun help = check({"--help"});
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("usage: refgrove check DIR"), std::string::npos);
}

}  // namespace
