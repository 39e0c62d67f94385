// preprocess() as the tools call it: messages on the caller's streams,
// inputs and writes checked, a summary and a progress count.
#include "preproc/preprocess.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>

#include "graph/graph_dump.h"
#include "graph/graph_file.h"
#include "preproc/output_file.h"
#include "refgrove/preprocess.h"
#include "testing/test_files.h"
#include "tokenizer/parser_error.h"
#include "words/word_files.h"

namespace refgrove {

namespace {

const char* const kWordDumps[] = {"word-data1-mar-2002.txt", "word-data2-mar-2002.txt", "word-data3-mar-2002.txt"};

// Writes the graph dump and the three word dumps into `dir`.
void write_dumps(const std::string& dir, const std::string& graph, const std::string& words1,
                 const std::string& words2 = "", const std::string& words3 = "") {
  write_file(dir + kGraphDumpFile, graph);
  const std::string words[] = {words1, words2, words3};
  for (int i = 0; i < 3; ++i) write_file(dir + kWordDumps[i], words[i]);
}

// The message of the PreprocError that a checked run throws, or "".
std::string checked_error(const std::string& in, const std::string& out) {
  std::ostringstream quiet;
  PreprocOptions options;
  options.out = options.err = &quiet;
  options.checked = true;
  try {
    preprocess(in, out, options);
  } catch (const PreprocError& e) {
    return e.what();
  }
  return "";
}

TEST(PreprocessTest, MessagesGoToTheGivenStreamsExactlyAsTheModuleWritesThem) {
  TempDir in, a, b;
  write_dumps(in.path(), "1 k 1999 GIDs: 7 DIDs: 2 Title: t Authors: A\n2 - - GIDs: DIDs: Title: u Authors:\nxxxx\n",
              "1 k one two\nnodid x\n", "2 - three\n");
  std::string module_out, module_err;
  {
    StreamCapture capture;
    refgrove_preproc_1(in.path().c_str(), a.path().c_str());
    module_out = capture.out();
    module_err = capture.err();
  }
  std::ostringstream out, err;
  PreprocOptions options;
  options.out = &out;
  options.err = &err;
  PreprocProgress progress;
  options.progress = &progress;
  PreprocSummary summary;
  {
    StreamCapture nothing_else;
    summary = preprocess(in.path(), b.path(), options);
    EXPECT_EQ(nothing_else.out() + nothing_else.err(), "");
  }
  // The directory's name is part of the messages.
  const auto in_b = [&](std::string text) {
    for (std::size_t at; (at = text.find(a.path())) != std::string::npos;) text.replace(at, a.path().size(), b.path());
    return text;
  };
  EXPECT_EQ(out.str(), in_b(module_out));
  EXPECT_EQ(err.str(), in_b(module_err));
  for (const char* name : {kWordTableFile, kWordIdxFile, kWordDataFile, kGraphFile}) {
    EXPECT_EQ(hex(read_file(b.path() + name)), hex(read_file(a.path() + name))) << name;
  }
  EXPECT_EQ(summary.documents, 2);
  EXPECT_EQ(summary.abstract_words, 3);
  EXPECT_EQ(summary.words, 5);  // one, two, three, t, u
  EXPECT_EQ(summary.records, 2);
  EXPECT_EQ(summary.authors, 1);
  EXPECT_EQ(summary.citations, 1);
  EXPECT_EQ(summary.lines_without_did, 1);
  EXPECT_EQ(summary.values_out_of_range, 0);
  EXPECT_GT(progress.total_bytes, 0u);
  EXPECT_EQ(progress.bytes_read.load(), progress.total_bytes);
}

TEST(PreprocessTest, CountsIntegersBeyondTheInt32Range) {
  TempDir in, out;
  write_dumps(in.path(), "99999999999 - -99999999999 GIDs: 4294967296 DIDs: 5 Title: t Authors:\n", "3000000000 - w\n",
              "", "7 - x\n");
  std::ostringstream quiet;
  PreprocOptions options;
  options.out = options.err = &quiet;
  EXPECT_EQ(preprocess(in.path(), out.path(), options).values_out_of_range, 4);
}

TEST(PreprocessTest, CheckedRunsNameTheInputOrOutputThatFails) {
  TempDir in, dir_dump, out, full, empty;
  write_dumps(in.path(), "", "1 - a b c\n");
  write_dumps(dir_dump.path(), "", "");
  std::filesystem::remove(dir_dump.path() + kWordDumps[1]);
  std::filesystem::create_directory(dir_dump.path() + kWordDumps[1]);
  const std::string a_file = empty.path() + "plain";
  write_file(a_file, "x");
  // Writes to /dev/full fail as on a full disk.
  std::filesystem::create_symlink("/dev/full", full.path() + kWordDataFile);

  const struct {
    std::string in, out, expected;
  } cases[] = {
      {dir_dump.path(), out.path(), dir_dump.path() + kWordDumps[1] + ": is a directory, not a dump"},
      {a_file + "/", out.path(), a_file + ": is not a directory"},
      {empty.path(), out.path(), empty.path() + kGraphDumpFile + ": No such file or directory"},
      {in.path(), out.path() + "missing/", out.path() + "missing/" + kWordDataFile + ": No such file or directory"},
      {in.path(), full.path(), full.path() + kWordDataFile + ": No space left on device"},
  };
  for (const auto& c : cases) EXPECT_EQ(checked_error(c.in, c.out), c.expected) << c.in << " -> " << c.out;
}

// Sizes around the buffer's, written in small pieces; the file closed by
// finish() or only by going out of scope (as when a run throws).
TEST(OutputFileTest, EveryByteWrittenReachesTheFile) {
  TempDir dir;
  const std::size_t block = OutputFile::kBufferBytes;
  for (const std::size_t size : {std::size_t{0}, std::size_t{5}, block - 1, block, block + 1, 3 * block + 7}) {
    for (const bool finished : {true, false}) {
      std::string bytes(size, '\0');
      for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
      const std::string path = dir.path() + "f";
      {
        OutputFile out(path, true);
        for (std::size_t at = 0; at < size; at += 300) {
          out.write(&bytes[at], static_cast<std::streamsize>(std::min<std::size_t>(300, size - at)));
        }
        if (finished) out.finish();
      }
      EXPECT_EQ(read_file(path), bytes) << size << " bytes, finished " << finished;
    }
  }
}

TEST(PreprocessTest, AMalformedDumpThrowsInsteadOfEndingTheProcess) {
  TempDir in, out;
  write_dumps(in.path(), "1 - - GIDs: DIDs: Title: t Authors: A", "");
  std::ostringstream quiet;
  PreprocOptions options;
  options.out = options.err = &quiet;
  options.checked = true;
  try {
    preprocess(in.path(), out.path(), options);
    ADD_FAILURE() << "no error";
  } catch (const DumpParseError& e) {
    EXPECT_EQ(e.dump, in.path() + kGraphDumpFile);
    EXPECT_EQ(e.message, "unexpected end of file");
  }
  write_dumps(in.path(), "", "", "1 - a\n$ b");
  try {
    preprocess(in.path(), out.path(), options);
    ADD_FAILURE() << "no error";
  } catch (const DumpParseError& e) {
    EXPECT_EQ(e.dump, in.path() + kWordDumps[1]);
  }
}

}  // namespace

}  // namespace refgrove
