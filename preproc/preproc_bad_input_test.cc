// Preprocessing input that is damaged or extreme: a missing input
// directory, an output directory that is missing or cannot be written, NUL
// bytes, CRLF line ends, lines of 10 MB and author lists too long for the
// 16-bit author count. Each run happens in a child process, so that a crash
// shows as a signal rather than ending the test program.
#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "core/data_set.h"
#include "core/validate.h"
#include "graph/graph_dump.h"
#include "refgrove/preprocess.h"
#include "refgrove/query.h"
#include "testing/child_process.h"
#include "testing/data_dir_builder.h"

namespace refgrove {

namespace {

const char kWordDump1[] = "word-data1-mar-2002.txt";

ChildResult preprocess(const std::string& in, const std::string& out) {
  return run_in_child([&] { refgrove_preproc_1(in.c_str(), out.c_str()); });
}

std::string findings_text(const std::string& dir) {
  std::string out;
  for (const Finding& f : validate_data_dir(dir)) out += f.text() + "\n";
  return out;
}

void load(const std::string& dir) {
  StreamCapture quiet;
  refgrove_load_1(dir.c_str());
}

std::string word_of(int did, int i) {
  const char* text = nullptr;
  return refgrove_get_word_1(did, i, &text) ? std::string(text) : std::string("<none>");
}

std::string title_word_of(int did, int i) {
  const char* text = nullptr;
  return refgrove_get_title_word_1(did, i, &text) ? std::string(text) : std::string("<none>");
}

std::string author_of(int did, int i) {
  const char* text = nullptr;
  return refgrove_get_author_1(did, i, &text) ? std::string(text) : std::string("<none>");
}

class PreprocBadInputTest : public ::testing::Test {
 protected:
  void TearDown() override {
    delete refgrove_data;
    refgrove_data = nullptr;
  }
  TempDir in, out;
};

TEST_F(PreprocBadInputTest, MissingInputDirectoryGivesAnEmptyDataDirectory) {
  const ChildResult r = preprocess(in.path() + "absent/", out.path());
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.err.substr(0, 3 * std::strlen("failed to open file ! \n")),
            "failed to open file ! \nfailed to open file ! \nfailed to open file ! \n");
  EXPECT_EQ(findings_text(out.path()), "");
  load(out.path());
  int docs = -1, words = -1, authors = -1;
  refgrove_stats_1(&docs, &words, &authors);
  EXPECT_EQ(docs, 1);  // the count of headers takes in the end sentinel
  EXPECT_EQ(words, 0);
  EXPECT_EQ(authors, 0);
  int last = -1;
  refgrove_last_did_1(&last);
  EXPECT_EQ(last, 0);
}

// Output that cannot be written is not detected: the run completes with its
// usual messages and no data directory comes of it.
TEST_F(PreprocBadInputTest, OutputDirectoryMissingOrNotADirectory) {
  write_file(in.path() + kWordDump1, "1 k a b\n");
  write_file(in.path() + kGraphDumpFile, "1 - - GIDs: DIDs: Title: t Authors: A\n");
  write_file(out.path() + "plain-file", "x");
  for (const std::string& target : {out.path() + "absent/", out.path() + "plain-file/"}) {
    const ChildResult r = preprocess(in.path(), target);
    EXPECT_EQ(r.status, 0) << target;
    EXPECT_NE(r.out.find("Done Preproc Word.\n"), std::string::npos) << target;
    EXPECT_NE(findings_text(target).find("word-table: the file is missing"), std::string::npos) << target;
  }
}

// NUL bytes are word characters: a word or key holding one is stored up to
// the NUL. CR before LF is white space.
TEST_F(PreprocBadInputTest, NulBytesAndCrlfLineEnds) {
  using namespace std::string_literals;
  write_file(in.path() + kWordDump1, "1 k ab\0cd ef\r\n2 k\tgh\r\r\n"s);
  write_file(in.path() + kGraphDumpFile,
             "1 key\0x 1999 GIDs: DIDs: Title: t\0u v\r Authors: A\0B and C\r\n"
             "2 - - GIDs: DIDs: Title: w Authors: D\r\n"s);
  const ChildResult r = preprocess(in.path(), out.path());
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(findings_text(out.path()), "");
  load(out.path());
  EXPECT_EQ(word_of(1, 0), "ab");
  EXPECT_EQ(word_of(1, 1), "ef");
  EXPECT_EQ(read_file(out.path() + "word-data").size(), 3u * 3);  // ab, ef, gh
  const char* key = nullptr;
  ASSERT_TRUE(refgrove_get_key_1(1, &key));
  EXPECT_STREQ(key, "key");
  EXPECT_EQ(title_word_of(1, 0), "t");
  EXPECT_EQ(title_word_of(1, 1), "v");
  EXPECT_EQ(author_of(1, 0), "A");
  EXPECT_EQ(author_of(1, 1), "C");
  EXPECT_EQ(author_of(2, 0), "D");
}

TEST_F(PreprocBadInputTest, LinesOfTenMegabytes) {
  const std::size_t kTen = 10u << 20;
  std::string words = "1 k " + std::string(kTen, 'a') + "\n2 k ";
  for (std::size_t i = 0; i < kTen / 2; ++i) words += "w ";
  words += "\n";
  write_file(in.path() + kWordDump1, words);
  std::string graph = "1 - - GIDs: DIDs: Title: " + std::string(kTen, 't') + " Authors: ";
  for (std::size_t i = 0; i < kTen / 4; ++i) graph += "b c ";
  graph += "\n";
  write_file(in.path() + kGraphDumpFile, graph);
  const ChildResult r = preprocess(in.path(), out.path());
  ASSERT_EQ(r.status, 0) << r.err.substr(0, 200);
  EXPECT_EQ(findings_text(out.path()), "");
  EXPECT_EQ(read_file(out.path() + "word-data").size(), 3 * (1 + kTen / 2));
  load(out.path());
  EXPECT_EQ(word_of(1, 0).size(), kTen);
  EXPECT_EQ(title_word_of(1, 0).size(), kTen);
  EXPECT_EQ(author_of(1, 0).size(), kTen - 1);  // the name's parts joined by blanks
}

// The author count is kept in 16 bits: 32768 names and more give a count
// that is negative or too small, and the names beyond it are lost.
TEST_F(PreprocBadInputTest, AuthorListsBeyondTheSixteenBitCount) {
  struct Case {
    int names;
    int count;
  };
  const Case cases[] = {{32767, 32767}, {32768, -32768}, {32769, -32767}, {65536, 0}, {65537, 1}};
  std::string graph;
  for (std::size_t c = 0; c < std::size(cases); ++c) {
    graph += std::to_string(c + 1) + " - - GIDs: DIDs: Title: t Authors: N0";
    for (int i = 1; i < cases[c].names; ++i) graph += " and N" + std::to_string(i);
    graph += "\n";
  }
  write_file(in.path() + kWordDump1, "1 k a\n");
  write_file(in.path() + kGraphDumpFile, graph);
  const ChildResult r = preprocess(in.path(), out.path());
  ASSERT_EQ(r.status, 0) << r.err.substr(0, 200);
  const std::string findings = findings_text(out.path());
  load(out.path());
  EXPECT_EQ(refgrove_get_nb_authors_1(), 65537);
  for (std::size_t c = 0; c < std::size(cases); ++c) {
    const int did = static_cast<int>(c) + 1;
    int count = 0;
    ASSERT_TRUE(refgrove_author_count_1(did, &count));
    EXPECT_EQ(count, cases[c].count) << cases[c].names << " names";
    EXPECT_EQ(author_of(did, 0), cases[c].count > 0 ? "N0" : "<none>") << cases[c].names << " names";
    const bool reported = findings.find("record " + std::to_string(c) + " (DID " + std::to_string(did) +
                                        ") has a negative author count") != std::string::npos;
    EXPECT_EQ(reported, cases[c].count < 0) << cases[c].names << " names:\n" << findings;
  }
}

}  // namespace

}  // namespace refgrove
