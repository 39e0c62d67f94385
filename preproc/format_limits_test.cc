// Dumps beyond the limits of the data files: a checked run stops with one
// sentence naming the limit, wherever in the run the limit is passed.
#include "preproc/format_limits.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "graph/graph_dump.h"
#include "preproc/preprocess.h"
#include "testing/test_files.h"

namespace refgrove {

namespace {

TEST(FormatLimitsTest, TheSentenceNamesTheLimitAndTheDocumentsThatFit) {
  const FormatLimits limits;
  // 6.5 million generated documents pass 2^31 - 1 bytes of word-data after
  // about 5.96 million.
  EXPECT_EQ(format_limit_message(limits, RunSize{2147483650, 4000000, 5960000}),
            std::string("the dumps hold more abstract words than a data directory can: word-data can have at most "
                        "2147483647 bytes (715827882 words), as far as the 32-bit offsets of word-idx reach, which is "
                        "about 6,000,000 documents like those read so far"));
  EXPECT_EQ(format_limit_message(limits, RunSize{900000000, 16777217, 2500000}),
            std::string("the dumps hold more distinct words than a data directory can: word ids have 24 bits, so the "
                        "abstracts and titles together can have at most 16777216 distinct words, which is about "
                        "2,500,000 documents like those read so far"));
  // Few documents, down to one that alone holds too many words.
  const auto documents_that_fit = [&](std::int64_t words, std::int64_t documents) {
    const std::string message = format_limit_message(limits, RunSize{3000, words, documents});
    return message.substr(message.find("which is"));
  };
  EXPECT_EQ(documents_that_fit(16777217, 2), "which is about 2 documents like those read so far");
  EXPECT_EQ(documents_that_fit(16778217, 1), "which is about 1 document like those read so far");
  EXPECT_EQ(documents_that_fit(40000000, 1), "which is less than one document like those read so far");
  EXPECT_TRUE(within(limits, RunSize{2147483647, 16777216, 1}));
  EXPECT_FALSE(within(limits, RunSize{2147483648, 1, 1}));
  EXPECT_FALSE(within(limits, RunSize{3, 16777217, 1}));
}

// Small limits stand in for the real ones. Every word dump after the first
// is read in a thread of its own and the titles come last, so the limit is
// passed in a different place of the run in each case.
TEST(FormatLimitsTest, ACheckedRunStopsWhereTheDumpsPassALimit) {
  const char* const kWordDumps[] = {"word-data1-mar-2002.txt", "word-data2-mar-2002.txt", "word-data3-mar-2002.txt"};
  const std::string kWordData = "the dumps hold more abstract words", kWords = "the dumps hold more distinct words";
  struct Case {
    const char* what;
    const char* words[3];
    const char* title;
    FormatLimits limits;
    std::string error;  // the start of the message; empty: none
    const char* file;   // the file that cannot hold the dumps
  };
  const Case cases[] = {
      {"word-data within a dump", {"1 - a b c d\n", "", ""}, "t", {10, 100}, kWordData, "word-data"},
      {"word-data exactly at its limit", {"1 - a b c d\n", "", ""}, "t", {12, 100}, "", ""},
      {"word-data across two dumps", {"1 - a b\n", "2 - c d\n", ""}, "t", {10, 100}, kWordData, "word-data"},
      {"words within a dump", {"1 - a b c d\n", "", ""}, "a", {100, 3}, kWords, "word-table"},
      {"words across two dumps", {"1 - a b\n", "", "3 - c d\n"}, "a", {100, 3}, kWords, "word-table"},
      {"words with the titles", {"1 - a b\n", "", ""}, "t", {100, 2}, kWords, "word-table"},
      {"words exactly at their limit", {"1 - a b\n", "", ""}, "a", {100, 2}, "", ""},
  };
  for (const Case& c : cases) {
    TempDir in, out;
    write_file(in.path() + kGraphDumpFile,
               std::string("1 k 1999 GIDs: DIDs: Title: ") + c.title + " Authors: A\nxxxx\n");
    for (int i = 0; i < 3; ++i) write_file(in.path() + kWordDumps[i], c.words[i]);
    std::ostringstream quiet;
    PreprocOptions options;
    options.out = options.err = &quiet;
    options.limits = c.limits;
    // Unchecked, as the module runs, the limits are not looked at.
    EXPECT_NO_THROW(preprocess(in.path(), out.path(), options)) << c.what;
    options.checked = true;
    std::string error, file;
    try {
      preprocess(in.path(), out.path(), options);
    } catch (const FormatLimitError& e) {
      error = e.reason;
      file = e.path.substr(out.path().size());
    }
    EXPECT_EQ(file, c.file) << c.what;
    EXPECT_EQ(error.substr(0, c.error.size()), c.error) << c.what << ": " << error;
    EXPECT_EQ(error.empty(), c.error.empty()) << c.what << ": " << error;
  }
}

}  // namespace

}  // namespace refgrove
