// The queries over an explicit data set: loading with a log stream,
// printing to given streams, and DataSetSlot under concurrent use.
#include "core/data_view.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <future>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "testing/data_files.h"
#include "testing/test_documents.h"

namespace refgrove {

namespace {

using DataViewTest = LoadedDataTest;

// The mapping's address differs from one load to the next.
std::string without_address(std::string log) {
  const std::size_t at = log.find(" at 0x");
  return at == std::string::npos ? log : log.erase(at, log.find('\n', at) - at);
}

// A data set loaded with a log stream writes there what refgrove_load_1
// writes to standard error, and nothing to the standard streams; printing
// to given streams writes what the C operations write to the standard ones.
TEST_F(DataViewTest, LogAndPrintingStreamsMatchTheCOperations) {
  preprocess_sample(dir_.path());
  std::string load_err;
  {
    StreamCapture capture;
    refgrove_load_1(dir_.path().c_str());
    load_err = capture.err();
  }
  std::ostringstream log;
  refgrove::DataSetPtr d;
  {
    StreamCapture capture;
    d = refgrove::load_data_set(dir_.path(), log);
    EXPECT_EQ(capture.out() + capture.err(), "");
  }
  EXPECT_EQ(without_address(log.str()), without_address(load_err));
  int last = 0;
  refgrove_last_did_1(&last);
  for (int did = -1; did <= last; ++did) {
    std::ostringstream out, err;
    refgrove::printdoc(*d, did, out, err);
    refgrove::print_author(*d, did, out);
    StreamCapture capture;
    refgrove_printdoc_1(did);
    refgrove_print_author_1(did);
    EXPECT_EQ(out.str(), capture.out()) << "did " << did;
    EXPECT_EQ(err.str(), capture.err()) << "did " << did;
  }
}

refgrove::DataSetPtr load_silently(const std::string& dir) {
  std::ostream nowhere(nullptr);
  return refgrove::load_data_set(dir, nowhere);
}

// Whether `d` answers as sample_documents() (last DID 10) or two_documents()
// (last DID 6) must, reading its texts so that a freed set would show.
bool answers_as_written(const RefgroveData& d) {
  int last = 0, n = 0, citing = 0;
  const char* key = nullptr;
  const char* word = nullptr;
  refgrove::last_did(d, &last);
  const bool sample = last == 10;
  const int did = sample ? 2 : 3;
  const int cited = sample ? 9 : 5;
  return (sample || last == 6) && refgrove::get_key(d, did, &key) && std::strcmp(key, sample ? "smith94" : "a") == 0 &&
         refgrove::cited_by_count(d, cited, &n) && n == 1 && refgrove::get_cited_by(d, cited, 0, &citing) &&
         citing == did && refgrove::get_abstract_word(d, did, 1, &word) &&
         std::strcmp(word, sample ? "study" : "two") == 0;
}

// What keeps a path from being loaded, in the words the faces show.
TEST(DataDirProblemTest, NamesThePathAndTheMissingPiece) {
  TempDir dir;
  sample_documents().write(dir.path());
  const std::string plain = dir.path().substr(0, dir.path().size() - 1);  // without its "/"
  std::ofstream(dir.path() + "a-file") << "x";
  const struct {
    std::string path;
    std::string problem;
  } cases[] = {
      {dir.path(), ""},
      {plain, ""},
      {dir.path() + "missing", dir.path() + "missing: no such directory"},
      {dir.path() + "a-file", dir.path() + "a-file: not a directory"},
  };
  for (const auto& c : cases) EXPECT_EQ(refgrove::data_dir_problem(c.path), c.problem) << c.path;
  for (const char* name : {kWordTableFile, kWordIdxFile, kWordDataFile, kGraphFile}) {
    TempDir partial;
    sample_documents().write(partial.path());
    std::remove((partial.path() + name).c_str());
    EXPECT_EQ(refgrove::data_dir_problem(partial.path()),
              partial.path() + " is not a data directory: " + name + " is missing (make one with refgrove preprocess)");
  }
}

// Readers query while the set is replaced by fresh loads over and over:
// every answer comes from a whole set (under AddressSanitizer, a read of a
// freed set fails the run), and the indexes of each new set are built
// while several threads ask for them at once.
TEST(DataSetSlotTest, ReadersWhileTheSetIsReplaced) {
  TempDir a, b;
  sample_documents().write(a.path());
  two_documents().write(b.path());
  refgrove::DataSetSlot slot;
  slot.replace(load_silently(a.path()));
  std::atomic<bool> stop{false};
  std::atomic<int> wrong{0};
  std::atomic<long> reads{0};
  std::vector<std::thread> readers;
  for (int t = 0; t < 3; ++t) {
    readers.emplace_back([&] {
      while (!stop.load()) {
        if (!answers_as_written(*slot.current())) ++wrong;
        ++reads;
      }
    });
  }
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(200);
  int replaced = 0;
  for (; std::chrono::steady_clock::now() < end; ++replaced) {
    slot.replace(load_silently(replaced % 2 == 0 ? b.path() : a.path()));
  }
  stop = true;
  for (std::thread& t : readers) t.join();
  EXPECT_EQ(wrong.load(), 0);
  EXPECT_GT(reads.load(), replaced);
}

// A replaced set stays alive while a thread still holds it, and is freed
// once that thread calls current() again or ends.
TEST(DataSetSlotTest, ReplacedSetIsFreedWhenItsLastHolderMovesOn) {
  TempDir dir;
  two_documents().write(dir.path());
  refgrove::DataSetSlot slot;
  EXPECT_EQ(slot.current(), nullptr);
  for (const bool holder_ends : {false, true}) {
    refgrove::DataSetPtr first = load_silently(dir.path());
    const std::weak_ptr<const RefgroveData> watch = first;
    slot.replace(std::move(first));
    std::promise<void> holding, replaced;
    std::thread holder([&] {
      EXPECT_NE(slot.current(), nullptr);
      holding.set_value();
      replaced.get_future().wait();
      if (!holder_ends) {
        EXPECT_NE(slot.current(), watch.lock());
      }
    });
    holding.get_future().wait();
    slot.replace(load_silently(dir.path()));
    EXPECT_FALSE(watch.expired()) << "holder_ends " << holder_ends;
    replaced.set_value();
    holder.join();
    EXPECT_TRUE(watch.expired()) << "holder_ends " << holder_ends;
  }
}

}  // namespace

}  // namespace refgrove
