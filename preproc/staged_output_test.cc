// The staging mechanism on its own: the lock between threads, the leftovers
// of killed runs, and the move into place with the file named last.
#include "preproc/staged_output.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "testing/test_files.h"

namespace refgrove {

namespace {

namespace fs = std::filesystem;

TargetPaths target_in(const TempDir& dir) {
  TargetPaths paths;
  std::string error;
  EXPECT_TRUE(resolve_target(dir.path() + "out", &paths, &error)) << error;
  return paths;
}

// Two threads of one process each open the lock file anew: flock(2) locks
// belong to the open file, so the second waits for the first.
TEST(StagedOutputTest, TheLockExcludesAnotherThread) {
  const TempDir dir;
  const TargetPaths paths = target_in(dir);
  std::string error;
  auto first = TargetLock::acquire(
      paths, [] { ADD_FAILURE() << "nobody holds the lock yet"; }, &error);
  ASSERT_NE(first, nullptr) << error;
  std::atomic<int> waits{0};
  std::atomic<bool> second_holds{false};
  std::thread second([&] {
    std::string second_error;
    const auto lock = TargetLock::acquire(
        paths, [&] { ++waits; }, &second_error);
    second_holds = lock != nullptr;
  });
  for (int i = 0; i < 500 && waits == 0; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(2));
  EXPECT_EQ(waits, 1);
  EXPECT_FALSE(second_holds);
  first.reset();
  second.join();
  EXPECT_TRUE(second_holds);
  EXPECT_EQ(waits, 1);
  EXPECT_FALSE(fs::exists(paths.lock_file()));
}

TEST(StagedOutputTest, OnlyStagingDirectoriesOfTheTargetAreLeftovers) {
  const TempDir dir;
  const TargetPaths paths = target_in(dir);
  const struct {
    std::string name;
    bool leftover;
  } cases[] = {
      {".out.refgrove-tmp.123", true},  {".out.refgrove-tmp.", false}, {".out.refgrove-tmp.12x", false},
      {".other.refgrove-tmp.5", false}, {".out.refgrove-lock", false}, {"out", false},
  };
  for (const auto& c : cases) fs::create_directory(dir.path() + c.name);
  write_file(dir.path() + ".out.refgrove-tmp.123/word-data", "half written");
  const std::vector<std::string> removed = remove_leftovers(paths);
  EXPECT_EQ(removed, std::vector<std::string>{dir.path() + ".out.refgrove-tmp.123"});
  for (const auto& c : cases) EXPECT_EQ(fs::exists(dir.path() + c.name), !c.leftover) << c.name;
}

// The staging directory of this run, holding `names` with their own names
// as contents.
void stage(const StagingDir& staging, const std::vector<std::string>& names) {
  std::string error;
  ASSERT_TRUE(staging.make(&error)) << error;
  for (const std::string& name : names) write_file(staging.prefix() + name, name);
}

TEST(StagedOutputTest, MoveIntoPlace) {
  const struct {
    const char* what;
    bool target_exists;
    std::vector<std::string> names;  // to move, in this order
    bool moved;
  } cases[] = {
      {"no target: the whole directory", false, {"a", "last"}, true},
      {"a target: file by file", true, {"a", "last"}, true},
      {"a file not written: nothing moves", true, {"a", "missing", "last"}, false},
  };
  for (const auto& c : cases) {
    const TempDir dir;
    const TargetPaths paths = target_in(dir);
    if (c.target_exists) {
      fs::create_directory(paths.target);
      write_file(paths.target + "/notes", "mine");
    }
    {
      const StagingDir staging(paths.staging_dir(getpid()));
      stage(staging, {"a", "last"});
      std::string error;
      EXPECT_EQ(move_into_place(staging.path(), paths, c.names, &error), c.moved) << c.what;
      EXPECT_EQ(error, c.moved ? "" : staging.prefix() + "missing: No such file or directory") << c.what;
    }
    EXPECT_EQ(fs::exists(paths.target + "/a"), c.moved) << c.what;
    if (c.moved) {
      EXPECT_EQ(read_file(paths.target + "/a"), "a") << c.what;
    }
    EXPECT_EQ(fs::exists(paths.target + "/last"), c.moved) << c.what;
    EXPECT_EQ(fs::exists(paths.target + "/notes"), c.target_exists) << c.what;
    EXPECT_FALSE(fs::exists(paths.staging_dir(getpid()))) << c.what;
  }
}

TEST(StagedOutputTest, AStagingDirectoryIsNeverReused) {
  const TempDir dir;
  const std::string path = dir.path() + ".out.refgrove-tmp.1";
  fs::create_directory(path);
  const StagingDir staging(path);
  std::string error;
  EXPECT_FALSE(staging.make(&error));
  EXPECT_EQ(error, "cannot make " + path + ": File exists");
}

}  // namespace

}  // namespace refgrove
