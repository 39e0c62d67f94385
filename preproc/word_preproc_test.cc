// Word preprocessing: the word dumps' language, whole runs with their files
// and messages byte for byte, the error paths, and preprocessing followed by
// loading and querying.
#include "preproc/word_preproc.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "core/data_set.h"
#include "core/data_view.h"
#include "graph/graph_dump.h"
#include "graph/graph_file.h"
#include "refgrove/preprocess.h"
#include "refgrove/query.h"
#include "testing/child_process.h"
#include "testing/data_dir_builder.h"

namespace refgrove {

namespace {

std::string Visible(const std::string& s) {
  std::string out;
  for (char c : s) out += c == '\n' ? std::string("\\n") : c == '\r' ? std::string("\\r") : std::string(1, c);
  return out;
}

void ReplaceAll(std::string* s, const std::string& from, const std::string& to) {
  for (std::string::size_type at = s->find(from); at != std::string::npos; at = s->find(from, at + to.size())) {
    s->replace(at, from.size(), to);
  }
}

const char* const kDumps[] = {"word-data1-mar-2002.txt", "word-data2-mar-2002.txt", "word-data3-mar-2002.txt"};

// An input directory, an output directory, and one preprocessing run
// between them with the messages captured. Paths in messages read IN/ and
// OUT/.
struct Preprocessing {
  TempDir in, out;
  std::string stdout_text, stderr_text;

  // Writes the dumps that are given (null: the file is missing).
  Preprocessing(const char* word1, const char* word2, const char* word3, const char* graph) {
    const char* words[] = {word1, word2, word3};
    for (int i = 0; i < 3; ++i) {
      if (words[i] != nullptr) write_file(in.path() + kDumps[i], words[i]);
    }
    if (graph != nullptr) write_file(in.path() + kGraphDumpFile, graph);
  }

  void Run() {
    StreamCapture capture;
    WordPreproc().preproc(in.path(), out.path());
    stdout_text = capture.out();
    stderr_text = capture.err();
    for (std::string* s : {&stdout_text, &stderr_text}) {
      ReplaceAll(s, in.path(), "IN/");
      ReplaceAll(s, out.path(), "OUT/");
    }
  }

  std::string File(const char* name) const { return read_file(out.path() + name); }
};

TEST(WordLanguageTest, CutsWordDumpLines) {
  struct Case {
    std::string input;
    std::vector<std::string> tokens;
  };
  const Case cases[] = {
      {"12 k Hello, world.\n", {"12", "k", "Hello", ",", "world", ".", "\n"}},
      // 127, 128 and 255 are blanks like the control characters; other
      // bytes above 127 stay inside words.
      {"a\x7f"
       "b\x80"
       "c\xff"
       "d\x01"
       "e\tf\rg",
       {"a", "b", "c", "d", "e", "f", "g"}},
      {"na\xc3\xafve \xe2\x80\x94", {"na\xc3\xafve", "\xe2", "\x94"}},
      // Quotes are tokens of their own, not strings; no numbers.
      {"'q' \"r s\" 3.14 x=1", {"'", "q", "'", "\"", "r", "s", "\"", "3", ".", "14", "x", "=", "1"}},
      // No comments either.
      {"a/*b*/%c", {"a", "/", "*", "b", "*", "/", "%", "c"}},
      {"don't e-mail_x", {"don", "'", "t", "e", "-", "mail_x"}},
      {std::string("A\0B C", 5), {std::string("A\0B", 3), "C"}},
  };
  for (const Case& c : cases) {
    std::istringstream in(c.input);
    WordPreproc::WordTokenizer t(&in);
    std::vector<std::string> got;
    while (t.has_more_tokens()) got.push_back(t.next_token());
    EXPECT_EQ(got, c.tokens) << "input: " << Visible(c.input);
  }
}

TEST(WordPreprocTest, WholeRunByteForByte) {
  Preprocessing p("0 k0 Graphs are trees.\n1000 k1 graphs\n", "999 - \xc3\xa9t\xc3\xa9 caf\xc3\xa9 Graphs\n", "",
                  "0 k0 2001 GIDs: 5 DIDs: 1000 Title: Graphs Authors: Ann Lee\n"
                  "1000 - - GIDs: DIDs: Title: new trees Authors:\n"
                  "xxxx\n");
  p.Run();
  EXPECT_EQ(p.stdout_text,
            "Preproc word data ... \n"
            "1. Reading words ... \n"
            "  - Reading IN/word-data1-mar-2002.txt\n\r0\r1000\n"
            "  - Reading IN/word-data2-mar-2002.txt\n\n"
            "  - Reading IN/word-data3-mar-2002.txt\n\n"
            "2. Finalizing word-idx\n"
            "3. Preproc author\n"
            "preprocGraph() ...\n"
            "4. Writing word-table\n"
            "Done Preproc Word.\n");
  EXPECT_EQ(p.stderr_text, "\nwriting graph file OUT/graph_data...\n");

  // Ids: Graphs 0, are 1, trees 2, "." 3, graphs 4, [foreign] 5, then the
  // title word new 6.
  EXPECT_EQ(hex(p.File("word-data")), compact_hex("000000 010000 020000 030000  040000  050000 050000 000000"));
  // Offsets are byte positions in word-data; the sentinel closes the list.
  EXPECT_EQ(hex(p.File("word-idx")),
            compact_hex("00000000 00000000  e8030000 0c000000  e7030000 0f000000  ffffffff 18000000"));
  EXPECT_EQ(hex(p.File("word-table")),
            compact_hex("07000000"
                        "00000000 00000000 01000000 07000000 02000000 0b000000 03000000 11000000"
                        "04000000 13000000 05000000 1a000000 06000000 24000000"
                        "28000000") +
                hex(std::string("Graphs\0are\0trees\0.\0graphs\0[foreign]\0new\0", 40)));
  EXPECT_EQ(hex(p.File("graph_data")),
            compact_hex("01000000 00000000 00000000 08000000") + hex(std::string("Ann Lee\0", 8)) +
                compact_hex("02000000"
                            "00000000 02000000 6b30 d1070000 01000000 05000000 e8030000 01000000 000000 0100 00000000"
                            "e8030000 00000000 ffffffff 00000000 02000000 060000 020000 0000"));
}

TEST(WordPreprocTest, DocumentLines) {
  struct Case {
    const char* dump;
    std::vector<std::pair<int, std::vector<std::string>>> docs;  // DID, words
    const char* err;                                             // before the graph pass's
  };
  const Case cases[] = {
      // No words: the next document starts at the same offset.
      {"5 x\n6 y w\n", {{5, {}}, {6, {"w"}}}, ""},
      // The line end is the skipped field: the next line joins this one.
      {"5\n6 y w\n", {{5, {"6", "y", "w"}}}, ""},
      // An empty line is reported and swallows the next line, echoed.
      {"\n7 k a b\n8 k c\n", {{8, {"c"}}}, "no did at line 2\n7kab\n ------------------------- \n"},
      {"12a k w x\n13 k v\n", {{13, {"v"}}}, "no did at line 1\nkwx\n ------------------------- \n"},
      {"1 k a\n- k w\n2 k b\n", {{1, {"a"}}, {2, {"b"}}}, "no did at line 2\nkw\n ------------------------- \n"},
      // Case and punctuation make words of their own; repeated DIDs and
      // descending DIDs are kept as they come.
      {"9 k Word word , ; Word\n3 k x\n9 k y\n", {{9, {"Word", "word", ",", ";", "Word"}}, {3, {"x"}}, {9, {"y"}}}, ""},
      {"4 k \xc3\xa9 \xc3\xa0 e\n", {{4, {"[foreign]", "[foreign]", "e"}}}, ""},
      // Only the word's own bytes count: 128 and 255 end a word as blanks.
      // A byte above 127 at the end of words of 8, 9, 16 and 17 bytes.
      {"4 k abc\x80"
       "def\xff"
       "ghijklmnop\x80q\n",
       {{4, {"abc", "def", "ghijklmnop", "q"}}},
       ""},
      {"4 k abcdefg\xe9 abcdefgh\xe9 abcdefghijklmno\xe9 abcdefghijklmnop\xe9 abcdefghijklmnop\n",
       {{4, {"[foreign]", "[foreign]", "[foreign]", "[foreign]", "abcdefghijklmnop"}}},
       ""},
      // "-" is a token of its own, so no DID is negative.
      {"-4 k\n", {}, "no did at line 1\n4k\n ------------------------- \n"},
      {"", {}, ""},
  };
  // Every dump but the first is read in a thread of its own and merged
  // afterwards; either place must give the same.
  for (const Case& c : cases) {
    for (const bool last : {false, true}) {
      Preprocessing p(last ? "" : c.dump, "", last ? c.dump : "", "");
      p.Run();
      EXPECT_EQ(Visible(p.stderr_text), Visible(std::string(c.err) + "\nwriting graph file OUT/graph_data...\n"))
          << "dump: " << Visible(c.dump);

      // Back from the files: headers, then each document's words by text.
      const std::string idx = p.File("word-idx"), data = p.File("word-data");
      std::vector<std::string> table;
      {
        std::istringstream in(p.File("word-table"));
        const CompactedStringTable t(in);
        for (int i = 0; i < t.count; ++i) table.push_back(t.lookup(i));
      }
      ASSERT_EQ(idx.size(), 8 * (c.docs.size() + 1)) << "dump: " << Visible(c.dump);
      const auto* headers = reinterpret_cast<const unsigned char*>(idx.data());
      std::vector<std::pair<int, std::vector<std::string>>> got;
      for (std::size_t i = 0; i < c.docs.size(); ++i) {
        const DocumentWordInfo h = read_document_word_info(headers + 8 * i);
        const DocumentWordInfo next = read_document_word_info(headers + 8 * (i + 1));
        std::vector<std::string> words;
        for (int at = h.offset; at < next.offset; at += 3) {
          words.push_back(table.at(read_word_id(reinterpret_cast<const unsigned char*>(data.data()) + at).id()));
        }
        got.emplace_back(h.did, words);
      }
      EXPECT_EQ(got, c.docs) << "dump: " << Visible(c.dump);
      EXPECT_EQ(read_document_word_info(headers + 8 * c.docs.size()).did, -1);
      EXPECT_EQ(read_document_word_info(headers + 8 * c.docs.size()).offset, static_cast<int>(data.size()));
    }
  }
}

TEST(WordPreprocTest, DumpsReadAsideGetTheIdsOfOneRunAfterTheOther) {
  // Words of later dumps already met, new ones in an order unlike their
  // ids' order, a reported line, then the same files made one dump after
  // the other on one table.
  Preprocessing p("1 k common alpha\n", "2 k beta common\n", "3 k zeta beta eta\n?? k x\n4 k eta common zeta theta\n",
                  "");
  p.Run();
  StringTable table;
  std::ostringstream data, idx, out, err;
  for (const char* dump : kDumps) {
    WordPreproc().preprocFile(&table, data, idx, (p.in.path() + dump).c_str(), out, err);
  }
  write_document_word_info(idx, DocumentWordInfo{-1, static_cast<std::int32_t>(data.tellp())});
  EXPECT_EQ(hex(p.File("word-data")), hex(data.str()));
  EXPECT_EQ(hex(p.File("word-idx")), hex(idx.str()));
  EXPECT_EQ(p.stderr_text, err.str() + "\nwriting graph file OUT/graph_data...\n");
}

TEST(WordPreprocTest, MissingInputFiles) {
  Preprocessing p(nullptr, nullptr, nullptr, nullptr);
  p.Run();
  EXPECT_EQ(p.stderr_text,
            "failed to open file ! \nfailed to open file ! \nfailed to open file ! \n"
            "\nwriting graph file OUT/graph_data...\n");
  EXPECT_EQ(hex(p.File("word-idx")), "ffffffff00000000");
  EXPECT_EQ(p.File("word-data"), "");
  EXPECT_EQ(p.File("word-table"), std::string(8, '\0'));
  EXPECT_EQ(p.File("graph_data"), std::string(12, '\0'));
}

TEST(WordPreprocTest, ParseErrorsEndTheProcessWithStatus3) {
  struct Case {
    const char* word1;
    const char* graph;
    int status;
    const char* err;  // all of standard error
    const char* word2 = "";
    const char* word3 = "";
  };
  const Case cases[] = {
      // The last line of a word dump lacks its line end.
      {"1 k a\n2 k b c", "", 3, "unexpected end of file at 2:6"},
      // Two GIDs, one DID. The element "Title:" stands where the token after
      // it does.
      {"1 k a\n", "1 - - GIDs: 4 5 DIDs: 6 Title: t Authors: A\n", 3, "expected integer, not 'Title:' at 1:31"},
      {"1 k a\n", "1 - - GIDs: DIDs: Title: t Authors: A", 3, "unexpected end of file at 1:36"},
      {"1 k a\n", "1 - - GIDs: DIDs: Title: t Authors: A\n", 0, "\nwriting graph file OUT/graph_data...\n"},
      // The second dump ends early: what the first reported comes out, the
      // third is never read, whatever it holds.
      {"x k a\n", "", 3, "no did at line 1\nka\n ------------------------- \nunexpected end of file at 1:4", "1 k b",
       "y k c\n"},
  };
  for (const Case& c : cases) {
    Preprocessing p(c.word1, c.word2, c.word3, c.graph);
    const std::string in = p.in.path(), out = p.out.path();
    ChildResult r = run_in_child([&] { refgrove_preproc_1(in.c_str(), out.c_str()); });
    ReplaceAll(&r.err, out, "OUT/");
    const std::string dumps =
        Visible(c.word1) + " / " + Visible(c.word2) + " / " + Visible(c.word3) + " / " + Visible(c.graph);
    EXPECT_EQ(r.status, c.status) << "dumps: " << dumps;
    EXPECT_EQ(Visible(r.err), Visible(c.err)) << "dumps: " << dumps;
    // The word table is written last; the graph file only after its dump
    // has parsed.
    for (const char* name : {"word-table", "graph_data"}) {
      EXPECT_EQ(std::ifstream(out + name).is_open(), c.status == 0) << name << ", dumps: " << dumps;
    }
  }
}

// The summary counts the documents that loading leaves out of the DID
// index: DIDs of either dump below 0 or past the limit (2^21 for data this
// small), the word dump's -1 left out as loading leaves it out.
TEST(WordPreprocTest, SummaryCountsTheDocumentsThatLoadingLeavesUnindexed) {
  const struct {
    const char* words;
    const char* graph;
    std::int64_t unindexed;
  } cases[] = {
      {"1 - a\n", "1 - - GIDs: DIDs: Title: t Authors: A\n", 0},
      {"2097151 - a\n2097152 - b\n-1 - d\n", "-3 - - GIDs: DIDs: Title: t Authors: A\n", 2},
      {"99999999999 - a\n", "7 - - GIDs: DIDs: Title: t Authors: A\n2097153 - - GIDs: DIDs: Title: u Authors: B\n", 2},
  };
  for (const auto& c : cases) {
    Preprocessing p(c.words, "", "", c.graph);
    std::ostream quiet(nullptr);
    PreprocSummary summary;
    {
      StreamCapture capture;
      summary = WordPreproc().preproc(p.in.path(), p.out.path());
    }
    EXPECT_EQ(summary.unindexed, c.unindexed) << c.words << c.graph;
    EXPECT_EQ(summary.unindexed, static_cast<std::int64_t>(refgrove::load_data_set(p.out.path(), quiet)->unindexed()))
        << c.words << c.graph;
  }
}

TEST(WordPreprocTest, PreprocessThenLoadAndQuery) {
  Preprocessing p("10 smith02 Sorting graphs in linear time .\n11 - Trees\n", "", "",
                  "10 smith02 2002 GIDs: 7 DIDs: 11 Title: Sorting graphs Authors: J. Smith and A. Jones\n"
                  "11 - - GIDs: DIDs: Title: Trees Authors: A. Jones\n"
                  "xxxx\n");
  {
    StreamCapture quiet;
    refgrove_preproc_1(p.in.path().c_str(), p.out.path().c_str());
    refgrove_load_1(p.out.path().c_str());
  }
  ASSERT_NE(refgrove_data, nullptr);
  const char* text = nullptr;
  int value = 0, gid = 0;
  ASSERT_EQ(refgrove_get_key_1(10, &text), 1);
  EXPECT_STREQ(text, "smith02");
  ASSERT_EQ(refgrove_get_key_1(11, &text), 1);
  EXPECT_STREQ(text, "");
  ASSERT_EQ(refgrove_get_year_1(10, &value), 1);
  EXPECT_EQ(value, 2002);
  ASSERT_EQ(refgrove_get_cite_1(10, 0, &value, &gid), 1);
  EXPECT_EQ(value, 11);
  EXPECT_EQ(gid, 7);
  ASSERT_EQ(refgrove_get_title_word_1(10, 1, &text), 1);
  EXPECT_STREQ(text, "graphs");
  ASSERT_EQ(refgrove_get_author_1(11, 0, &text), 1);
  EXPECT_STREQ(text, "A. Jones");
  ASSERT_EQ(refgrove_get_author_id_1(10, 1, &value), 1);
  EXPECT_EQ(value, 1);
  // The first document's run starts at 0, where the byte offsets written and
  // the word counts read agree.
  const char* abstract[] = {"Sorting", "graphs", "in", "linear", "time", "."};
  for (int i = 0; i < 6; ++i) {
    ASSERT_EQ(refgrove_get_word_1(10, i, &text), 1) << i;
    EXPECT_STREQ(text, abstract[i]) << i;
  }
  int docs = 0, words = 0, authors = 0;
  refgrove_stats_1(&docs, &words, &authors);
  EXPECT_EQ(docs, 3);  // two documents and the sentinel
  EXPECT_EQ(words, 7);
  EXPECT_EQ(authors, 2);
  delete refgrove_data;
  refgrove_data = nullptr;
}

}  // namespace

}  // namespace refgrove
