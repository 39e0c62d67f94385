// refgrove preprocess as users meet it: what a failed, interrupted or
// concurrent run leaves of the target, errors that name the file, the
// summary, and the output on a terminal.
#include "tools/safe_preprocess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <thread>

#include "core/validate.h"
#include "generate/dump_generator.h"
#include "preproc/manifest.h"
#include "testing/child_process.h"
#include "testing/data_files.h"
#include "testing/test_files.h"

namespace refgrove {

namespace {

namespace fs = std::filesystem;

struct ToolRun {
  int status;
  std::string out, err;
};

ToolRun preprocess(const std::string& in, const std::string& out_dir, bool terminal = false, bool verbose = false,
                   FormatLimits limits = {}) {
  std::ostringstream out, err;
  const int status = safe_preprocess(PreprocessRequest{in, out_dir, verbose, terminal, limits}, out, err);
  return ToolRun{status, out.str(), err.str()};
}

// The same on the standard streams, for child processes.
int preprocess_in_child(const std::string& in, const std::string& out_dir) {
  return safe_preprocess(PreprocessRequest{in, out_dir, false, false, {}}, std::cout, std::cerr);
}

// Everything beside the target whose name starts with ".out.": the lock
// file and staging directories.
std::vector<std::string> run_files_beside(const std::string& parent) {
  std::vector<std::string> found;
  for (const fs::directory_entry& e : fs::directory_iterator(parent)) {
    const std::string name = e.path().filename().string();
    if (name.rfind(".out.", 0) == 0) found.push_back(name);
  }
  return found;
}

// Starts fn() in a child process with its standard error in `err_file`
// (standard output discarded);
// returns the child's pid. The child exits with fn()'s result.
pid_t start_child(const std::string& err_file, const std::function<int()>& fn) {
  std::fflush(nullptr);
  const pid_t pid = fork();
  if (pid == 0) {
    const int fd = open(err_file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const int null = open("/dev/null", O_WRONLY);
    if (fd < 0 || null < 0 || dup2(fd, 2) < 0 || dup2(null, 1) < 0) _exit(126);
    _exit(fn());
  }
  return pid;
}

int wait_for(pid_t pid) {
  int status = 0;
  if (waitpid(pid, &status, 0) != pid) return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// Polls `done` for up to ten seconds.
bool eventually(const std::function<bool()>& done) {
  for (int i = 0; i < 10000; ++i) {
    if (done()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return false;
}

class SafePreprocessTest : public ::testing::Test {
 protected:
  void SetUp() override {
    in_ = dir_.path() + "in/";
    target_ = dir_.path() + "out";
    fs::copy(REFGROVE_SAMPLE_DIR, in_);
  }

  // A target holding an earlier run's data and a file of the user's.
  DataFiles make_earlier_target() {
    const ToolRun r = preprocess(in_, target_);
    EXPECT_EQ(r.status, 0) << r.err;
    write_file(target_ + "/notes.txt", "mine");
    return read_data_files(target_ + "/");
  }

  void expect_target_unchanged(const DataFiles& before, const std::string& what) {
    EXPECT_EQ(read_data_files(target_ + "/"), before) << what;
    EXPECT_EQ(read_file(target_ + "/notes.txt"), "mine") << what;
    EXPECT_TRUE(run_files_beside(dir_.path()).empty()) << what;
    EXPECT_TRUE(manifest_mismatches(target_ + "/").empty()) << what;
  }

  TempDir dir_;
  std::string in_, target_;
};

TEST_F(SafePreprocessTest, AFailedRunLeavesTheTargetAsItWas) {
  const std::string graph = in_ + "graph-data-aug-2002.txt";
  const std::string left = "refgrove preprocess: " + target_ + " is left as it was\n";
  const struct {
    const char* what;
    std::function<void()> damage;
    std::string in;
    int status;
    std::string error;  // standard error
    FormatLimits limits = {};
  } cases[] = {
      // The module's message as it writes it, then where and what.
      {"graph dump does not parse", [&] { write_file(graph, "101 k 1999 GIDs: x\n"); }, in_, 3,
       "expected integer, not 'x' at 1:17\nrefgrove preprocess: " + graph +
           ", line 1: a number is missing where the record needs one\n"},
      {"graph record without GIDs",
       [&] { write_file(graph, "101 k 1999 GIDs: DIDs: Title: a Authors: b\n102 k 1999 DIDs: Title: a Authors: b\n"); },
       in_, 3, "expected 'GIDs:', found 'DIDs:' at 2:11\nrefgrove preprocess: " + graph + ", line 2: no GIDs:\n"},
      {"graph record with a misspelt Title:",
       [&] { write_file(graph, "101 k 1999 GIDs: DIDs: Titel: a Authors: b\n"); }, in_, 3,
       "expected 'Title:', found 'Titel:' at 1:23\nrefgrove preprocess: " + graph + ", line 1: no Title:\n"},
      {"a data directory given for the dumps", [] {}, target_, 1,
       "refgrove preprocess: " + target_ +
           ": a data directory, made by preprocessing, not the text dumps it is made of; the other commands read it "
           "as it is\n"},
      {"word dump is a directory",
       [&] {
         fs::remove(in_ + "word-data2-mar-2002.txt");
         fs::create_directory(in_ + "word-data2-mar-2002.txt");
       },
       in_, 1, "refgrove preprocess: " + in_ + "word-data2-mar-2002.txt: is a directory, not a dump\n" + left},
      {"graph dump missing", [&] { fs::remove(graph); }, in_, 1,
       "refgrove preprocess: " + graph + ": No such file or directory\n" + left},
      {"input directory missing", [] {}, dir_.path() + "nothing", 1,
       "refgrove preprocess: " + dir_.path() + "nothing: no such directory\n"},
      {"input is a file", [] {}, graph, 1, "refgrove preprocess: " + graph + ": not a directory\n"},
      {"more words than the data files hold", [] {}, in_, 1,
       "refgrove preprocess: the dumps hold more distinct words than a data directory can: word ids have 24 bits, "
       "so the abstracts and titles together can have at most 100 distinct words, which is about 5 documents like "
       "those read so far\n" +
           left,
       FormatLimits{std::numeric_limits<std::int32_t>::max(), 100}},
  };
  const DataFiles before = make_earlier_target();
  for (const auto& c : cases) {
    fs::remove_all(in_);
    fs::copy(REFGROVE_SAMPLE_DIR, in_);
    c.damage();
    const ToolRun r = preprocess(c.in, target_, false, false, c.limits);
    EXPECT_EQ(r.status, c.status) << c.what;
    EXPECT_EQ(r.err, c.error) << c.what;
    expect_target_unchanged(before, c.what);
  }
}

// Writes that fail: the output cannot be made at all, or a file grows past
// what the process may write (as on a full disk).
TEST_F(SafePreprocessTest, AFailedWriteIsNamedWithTheSystemsError) {
  const ToolRun r = preprocess(in_, "/proc/refgrove-out");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err,
            "refgrove preprocess: cannot make the lock file /proc/.refgrove-out.refgrove-lock: No such file or "
            "directory\n");

  const DataFiles before = make_earlier_target();
  const ChildResult child = run_in_child([&] {
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{3000, 3000};  // below the size of word-table
    setrlimit(RLIMIT_FSIZE, &limit);
    std::exit(preprocess_in_child(in_, target_));
  });
  EXPECT_EQ(child.status, 1) << child.err;
  EXPECT_NE(child.err.find("/word-table: File too large"), std::string::npos) << child.err;
  EXPECT_NE(child.err.find(target_ + " is left as it was"), std::string::npos) << child.err;
  expect_target_unchanged(before, "file size limit");
}

TEST_F(SafePreprocessTest, AnInterruptedRunRemovesWhatItWrote) {
  std::string error;
  DumpGeneratorResult generated;
  ASSERT_TRUE(generate_dumps(in_, DocumentGeneratorOptions{20000, 1}, &generated, &error)) << error;
  for (const auto& [signal, status] : {std::pair{SIGINT, 130}, std::pair{SIGTERM, 143}}) {
    const DataFiles before = make_earlier_target();
    const pid_t pid = start_child(dir_.path() + "err", [&] { return preprocess_in_child(in_, target_); });
    // Interrupted while it writes into its staging directory.
    const std::string staging = dir_.path() + ".out.refgrove-tmp." + std::to_string(pid) + "/";
    ASSERT_TRUE(eventually([&] { return fs::exists(staging + "word-idx"); }));
    kill(pid, signal);
    EXPECT_EQ(wait_for(pid), status) << read_file(dir_.path() + "err");
    expect_target_unchanged(before, strsignal(signal));
  }
}

// A run killed outright leaves its staging directory and the lock file; the
// next run removes them and says so.
TEST_F(SafePreprocessTest, TheNextRunRemovesWhatAKilledRunLeft) {
  const std::string leftover = dir_.path() + ".out.refgrove-tmp.999999999";
  fs::create_directory(leftover);
  write_file(leftover + "/word-idx", "half");
  write_file(dir_.path() + ".out.refgrove-lock", "");
  const ToolRun r = preprocess(in_, target_);
  EXPECT_EQ(r.status, 0);
  EXPECT_NE(r.err.find("removed " + leftover + ", left behind by a run that was interrupted"), std::string::npos);
  EXPECT_TRUE(run_files_beside(dir_.path()).empty());
  EXPECT_TRUE(validate_data_dir(target_ + "/").empty());
}

TEST_F(SafePreprocessTest, ASecondRunWaitsForTheFirst) {
  const std::string lock_file = dir_.path() + ".out.refgrove-lock";
  const int held = open(lock_file.c_str(), O_RDWR | O_CREAT, 0666);
  ASSERT_EQ(flock(held, LOCK_EX), 0);
  const std::string err_file = dir_.path() + "err";
  const pid_t pid = start_child(err_file, [&] {
    close(held);  // the child's copy shares the lock
    return preprocess_in_child(in_, target_);
  });
  ASSERT_TRUE(eventually([&] { return read_file(err_file).find("waiting") != std::string::npos; }));
  EXPECT_EQ(read_file(err_file), "refgrove preprocess: another run is writing " + target_ + " (lock " + lock_file +
                                     "); waiting for it to finish\n");
  EXPECT_FALSE(fs::exists(target_));
  close(held);
  EXPECT_EQ(wait_for(pid), 0);
  EXPECT_TRUE(validate_data_dir(target_ + "/").empty());
  EXPECT_TRUE(run_files_beside(dir_.path()).empty());
}

TEST_F(SafePreprocessTest, TheSummarySaysWhatWasSkippedOrChanged) {
  write_file(in_ + "word-data3-mar-2002.txt", "nodid here\n99999999999 - w\n1000000000 - w\n");
  const ToolRun r = preprocess(in_, target_);
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out.substr(r.out.find("Made ")), "Made " + target_ +
                                                   ":\n"
                                                   "  24 documents with abstracts, 657 abstract words\n"
                                                   "  32 graph records, 55 citations, 21 authors\n"
                                                   "  430 distinct words (abstracts and titles)\n"
                                                   "Skipped or changed:\n"
                                                   "  1 word dump lines without a DID (skipped)\n"
                                                   "  1 numbers beyond the int32 range (stored as the nearest int32)\n"
                                                   "  2 documents whose DID cannot be indexed (negative or out of "
                                                   "range: not found by DID)\n");
}

// In a log the module's messages come without their running counters and
// name the target where they named the staging directory, which -v keeps ("\r" and the DID or record count, every
// thousand).
TEST_F(SafePreprocessTest, InALogTheRunningCountersNeedVerbose) {
  DumpGeneratorResult generated;
  std::string error;
  ASSERT_TRUE(generate_dumps(in_, {2000, 1}, &generated, &error)) << error;
  for (const bool verbose : {false, true}) {
    const ToolRun r = preprocess(in_, target_, false, verbose);
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out.find("Preproc word data ... \n1. Reading words ... \n  - Reading "), 0u) << r.out;
    EXPECT_NE(r.err.find("writing graph file"), std::string::npos) << r.err;
    if (!verbose) {  // a log names the target, not the staging directory the run wrote into
      EXPECT_NE(r.err.find("writing graph file " + target_ + "/graph_data..."), std::string::npos) << r.err;
      EXPECT_EQ(r.err.find("refgrove-tmp"), std::string::npos) << r.err;
    }
    for (const std::string* text : {&r.out, &r.err}) {
      EXPECT_EQ(text->find("\r1000") != std::string::npos, verbose) << verbose << ": " << *text;
    }
  }
}

// On a terminal a progress line replaces the module's messages, unless -v.
TEST_F(SafePreprocessTest, OnATerminalTheModulesMessagesNeedVerbose) {
  write_file(in_ + "word-data3-mar-2002.txt", "nodid here\n");
  for (const bool verbose : {false, true}) {
    const ToolRun r = preprocess(in_, target_, true, verbose);
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out.find("Preproc word data"), verbose ? 0 : std::string::npos) << verbose;
    EXPECT_EQ(r.err.find("no did at line 1") != std::string::npos, verbose) << r.err;
    EXPECT_EQ(r.err.find("\r\033[K") != std::string::npos, !verbose) << r.err;
  }
}

}  // namespace

}  // namespace refgrove
