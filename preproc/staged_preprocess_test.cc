// The staged run shared by the faces: a target it writes is whole (its
// manifest matches its files) whoever wrote it before, a check that finds
// problems keeps the target as it was, and the hooks see the run's files.
#include "preproc/staged_preprocess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "preproc/manifest.h"
#include "testing/data_files.h"
#include "testing/test_files.h"

namespace refgrove {

namespace {

namespace fs = std::filesystem;

// Records what the run tells its hooks; `problems` is what check() finds.
class RecordingHooks : public StagedRunHooks {
 public:
  void run_files_made(const std::string& staging_dir, const std::string&) override {
    calls.push_back("made " + fs::path(staging_dir).parent_path().string());
  }
  void run_files_gone() override { calls.push_back("gone"); }
  std::vector<std::string> check(const std::string& dir) override {
    calls.push_back(fs::exists(dir + "word-idx") ? "check" : "check without files");
    return problems;
  }
  std::unique_lock<std::mutex> moving() override {
    calls.push_back("moving");
    return {};
  }

  std::vector<std::string> calls, problems;
};

StagedResult run(const std::string& in, const std::string& out, const std::string& made_by, StagedRunHooks& hooks) {
  std::ostream quiet(nullptr);
  StagedRequest request{in, out, {}, made_by, {}};
  request.options.out = request.options.err = &quiet;
  return staged_preprocess(request, hooks);
}

class StagedPreprocessTest : public ::testing::Test {
 protected:
  void SetUp() override {
    in_ = dir_.path() + "in";
    fs::copy(REFGROVE_SAMPLE_DIR, in_);
  }
  TempDir dir_;
  std::string in_;
};

// A target that one face wrote and another rewrites (or the same face
// with other dumps) holds one run's files and that run's manifest.
TEST_F(StagedPreprocessTest, ARewrittenTargetIsWhole) {
  const std::string target = dir_.path() + "new/parents/out";  // made, parents and all
  RecordingHooks hooks;
  EXPECT_EQ(run(in_ + "/", target, "first face", hooks).target, target);
  EXPECT_EQ(hooks.calls, (std::vector<std::string>{"made " + dir_.path() + "new/parents", "check", "moving", "gone"}));
  const DataFiles first = read_data_files(target + "/");

  write_file(in_ + "/word-data3-mar-2002.txt", "1 - other words\n");
  run(in_, target + "/", "second face", hooks);
  EXPECT_NE(read_data_files(target + "/"), first);
  EXPECT_TRUE(manifest_mismatches(target + "/").empty());
  EXPECT_NE(read_file(target + "/" + kManifestFile).find("\"second face\""), std::string::npos);
}

TEST_F(StagedPreprocessTest, ProblemsFoundKeepTheTargetAsItWas) {
  const std::string target = dir_.path() + "out";
  RecordingHooks hooks;
  run(in_, target, "face", hooks);
  const DataFiles before = read_data_files(target + "/");
  write_file(in_ + "/word-data3-mar-2002.txt", "1 - other words\n");
  hooks.problems = {"word-idx: bad", "graph_data: worse"};
  try {
    run(in_, target, "face", hooks);
    ADD_FAILURE() << "no error";
  } catch (const StagedRunError& e) {
    EXPECT_EQ(e.stage, StagedRunError::Stage::check);
    EXPECT_EQ(e.target, target);
    EXPECT_EQ(e.problems, hooks.problems);
  }
  EXPECT_EQ(read_data_files(target + "/"), before);
  EXPECT_TRUE(manifest_mismatches(target + "/").empty());
  // Nothing is left beside the target: no lock file, no staging directory.
  std::vector<std::string> beside;
  for (const fs::directory_entry& e : fs::directory_iterator(dir_.path())) beside.push_back(e.path().filename());
  std::sort(beside.begin(), beside.end());
  EXPECT_EQ(beside, (std::vector<std::string>{"in", "out"}));
}

// Errors before anything is written name the input or the target.
TEST_F(StagedPreprocessTest, BadArgumentsAreNamed) {
  write_file(dir_.path() + "file", "");
  const struct {
    std::string in, out, what;
  } cases[] = {
      {dir_.path() + "none", dir_.path() + "out", dir_.path() + "none: No such file or directory"},
      {dir_.path() + "file", dir_.path() + "out", dir_.path() + "file: is not a directory"},
      {in_, dir_.path() + "file", dir_.path() + "file: exists and is not a directory"},
  };
  for (const auto& c : cases) {
    RecordingHooks hooks;
    try {
      run(c.in, c.out, "face", hooks);
      ADD_FAILURE() << "no error: " << c.what;
    } catch (const StagedRunError& e) {
      EXPECT_EQ(e.stage, StagedRunError::Stage::setup) << c.what;
      EXPECT_EQ(std::string(e.what()), c.what);
    }
    EXPECT_TRUE(hooks.calls.empty()) << c.what;
  }
}

}  // namespace

}  // namespace refgrove
