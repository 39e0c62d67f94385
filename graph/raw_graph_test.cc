// Reading a whole graph dump and writing the graph file.
#include "graph/raw_graph.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "graph/graph_dump.h"
#include "graph/graph_file.h"
#include "testing/graph_run.h"
#include "tokenizer/parser_error.h"

namespace refgrove {

namespace {

// Runs the graph pass after the interning of `meanwhile` in `words`.
GraphRun Preprocess(const std::string& dump, StringTable* words, const std::vector<std::string>& meanwhile = {}) {
  return run_graph_pass(dump, [&](const std::string& in, const std::string& out) {
    for (const std::string& w : meanwhile) words->String2ID(w);
    preprocGraph(in, out, words);
  });
}

TEST(RawGraphTest, WritesTheGraphFileByteForByte) {
  StringTable words;
  words.String2ID("a");  // already known from the word dumps: keeps id 0
  const GraphRun r = Preprocess(
      "17 - - GIDs: DIDs: Title: graphs Authors:\n"
      "5 k5 1999 GIDs: 3 8 DIDs: 40 41 Title: a graphs Authors: X Y and Z\n"
      "xxxx\n"
      "this is not a record\n",
      &words);
  EXPECT_EQ(r.out, "preprocGraph() ...\n");
  EXPECT_EQ(r.err, "\nwriting graph file OUT/graph_data...\n");
  EXPECT_EQ(words.by_id, (std::vector<std::string>{"a", "graphs"}));
  const char* expected =
      // author table: 2 names, entries (0, 0) and (1, 4), 6 bytes "X Y\0Z\0"
      "02000000 00000000 00000000 01000000 04000000 06000000 58205900 5a00"
      // 2 records
      "02000000"
      // did 17, key "", year -1, no citations, title [1], no authors
      "11000000 00000000 ffffffff 00000000 01000000 010000 0000"
      // did 5, key "k5", year 1999, citations (3,40) (8,41), title [0 1],
      // authors [0 1]
      "05000000 02000000 6b35 cf070000 02000000 03000000 28000000 08000000 29000000"
      "02000000 000000 010000 0200 00000000 01000000";
  EXPECT_EQ(hex(r.graph_file), compact_hex(expected));
}

TEST(RawGraphTest, EmptyAndMissingDumps) {
  // An empty author table, then N = 0.
  const std::string empty_file(12, '\0');
  for (const char* dump : {"", "  ", "xxxx\n1 - - GIDs: DIDs: Title: t Authors:\n"}) {
    StringTable words;
    const GraphRun r = Preprocess(dump, &words);
    EXPECT_EQ(hex(r.graph_file), hex(empty_file)) << "dump: " << dump;
    EXPECT_EQ(words.size(), 0) << "dump: " << dump;
  }

  TempDir in, out;
  StringTable words;
  StreamCapture capture;
  preprocGraph(in.path(), out.path(), &words);
  EXPECT_EQ(read_file(out.path() + kGraphFile), empty_file);
  EXPECT_EQ(capture.err(), "\nwriting graph file " + out.path() + "graph_data...\n");
}

TEST(RawGraphTest, ProgressEveryThousandRecordsAndSharedAuthors) {
  std::string dump;
  for (int did = 1; did <= 2500; ++did) {
    dump += std::to_string(did) + " - 2000 GIDs: DIDs: Title: t" + std::to_string(did % 7) + " Authors: Author " +
            std::to_string(did % 3) + "\n";
  }
  StringTable words;
  const GraphRun r = Preprocess(dump, &words);
  EXPECT_EQ(r.err, "\r1000\r2000\nwriting graph file OUT/graph_data...\n");
  EXPECT_EQ(words.size(), 7);

  std::istringstream file(r.graph_file);
  StreamCapture quiet;
  const RefgroveGraph graph(file);
  ASSERT_EQ(graph.docs.size(), 2500u);
  EXPECT_EQ(graph.author_table->count, 3);
  EXPECT_EQ(graph.docs[2499]->did, 2500);
  EXPECT_EQ(graph.findDid(1234), 1233);
}

TEST(RawGraphTest, DirectoriesArePlainPrefixes) {
  TempDir dir;
  write_file(dir.path() + "in" + kGraphDumpFile, "1 - - GIDs: DIDs: Title: t Authors:\n");
  StringTable words;
  StreamCapture quiet;
  preprocGraph(dir.path() + "in", dir.path() + "out", &words);
  EXPECT_EQ(read_file(dir.path() + "outgraph_data").size(), 12u + 22u + 3u);
}

TEST(RawGraphTest, AMalformedLineThrowsBeforeAnythingIsWritten) {
  TempDir in, out;
  write_file(in.path() + kGraphDumpFile,
             "1 - - GIDs: DIDs: Title: t Authors:\n"
             "2 - - GIDs: 7 DIDs: Title: t Authors:\n");
  StringTable words;
  StreamCapture quiet;
  std::string message;
  try {
    preprocGraph(in.path(), out.path(), &words);
  } catch (const ParserError& e) {
    std::ostringstream os;
    e.write(os);
    message = os.str();
  }
  EXPECT_EQ(message.substr(0, 30), "expected integer, not 'Title:'");
  std::ifstream graph_file(out.path() + kGraphFile);
  EXPECT_FALSE(graph_file.is_open());
}

}  // namespace

}  // namespace refgrove
