// scripts/demo refuses a directory that holds anything, and leaves it as it
// was (it stops before building anything).
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdio>
#include <string>

#include "testing/test_files.h"

namespace {

TEST(DemoScriptTest, LeavesAnOccupiedDirectoryAlone) {
  TempDir dir;
  write_file(dir.path() + "notes.txt", "mine");
  const std::string file = dir.path() + "notes.txt";
  for (const std::string& target : {dir.path(), file}) {
    const std::string command = std::string(REFGROVE_SOURCE_DIR) + "scripts/demo '" + target + "' 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    std::string output;
    char buf[256];
    while (std::fgets(buf, sizeof buf, pipe) != nullptr) output += buf;
    const int status = pclose(pipe);
    EXPECT_EQ(WEXITSTATUS(status), 1) << target << "\n" << output;
    EXPECT_EQ(output, "scripts/demo: " + target + " is not empty; give a new or empty directory\n");
    EXPECT_EQ(read_file(file), "mine");
  }
}

}  // namespace
