// The subcommands around data directories, run in-process: preprocess, then
// stats, printdoc, author and query on the result; and the dump generator.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "core/data_set.h"
#include "testing/data_dir_builder.h"
#include "tools/commands.h"
#include "tools/dump_generator.h"

namespace {

struct Result {
  int status;
  std::string out, err;
};

Result RunCommand(int (*command)(int, char**), std::vector<std::string> args) {
  std::vector<char*> argv;
  for (std::string& a : args) argv.push_back(&a[0]);
  argv.push_back(nullptr);
  StreamCapture capture;
  const int status = command(static_cast<int>(args.size()), argv.data());
  return {status, capture.out(), capture.err()};
}

// A small input directory preprocessed into a data directory, named without
// its trailing "/" as a user would type it.
class DataCommandsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    write_file(in_.path() + "word-data1-mar-2002.txt",
               "1 lee98 We sort graphs .\n"
               "2 - Graphs , again\n");
    write_file(in_.path() + "word-data2-mar-2002.txt", "3 ray01 Trees\n");
    write_file(in_.path() + "word-data3-mar-2002.txt", "");
    write_file(in_.path() + "graph-data-aug-2002.txt",
               "1 lee98 1998 GIDs: DIDs: Title: Sorting graphs Authors: A. Lee\n"
               "2 - - GIDs: 40 DIDs: 1 Title: Graphs again Authors: A. Lee and B. Ray\n"
               "3 ray01 2001 GIDs: 40 41 DIDs: 1 2 Title: Trees Authors: B. Ray\n"
               "xxxx\n");
    in_dir_ = in_.path().substr(0, in_.path().size() - 1);
    data_dir_ = out_.path() + "data";
    const Result r = RunCommand(preprocess_command, {"preprocess", in_dir_, data_dir_});
    ASSERT_EQ(r.status, 0) << r.err;
  }

  TempDir in_, out_;
  std::string in_dir_, data_dir_;
};

TEST_F(DataCommandsTest, PreprocessWritesTheDataDirectory) {
  for (const char* name : {"word-table", "word-idx", "word-data", "graph_data"}) {
    EXPECT_FALSE(read_file(data_dir_ + "/" + name).empty()) << name;
  }
  const Result r = RunCommand(stats_command, {"stats", data_dir_});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.err, "");  // loading messages only with -v
  EXPECT_EQ(r.out,
            "graph records        3\n"
            "documents with words 3\n"
            "distinct words       9\n"
            "authors              2\n"
            "citations            3\n"
            "title words          5\n"
            "abstract words       8\n"
            "largest DID          3\n");
  EXPECT_NE(RunCommand(stats_command, {"stats", "-v", data_dir_}).err.find("Reading Graph Data...\n"), std::string::npos);
}

TEST_F(DataCommandsTest, Queries) {
  struct Case {
    std::vector<std::string> args;
    int status;
    const char* out;
  };
  const Case cases[] = {
      {{"key", "1"}, 0, "lee98\n"},
      {{"key", "2"}, 0, "\n"},
      {{"key", "9"}, 1, ""},
      {{"year", "2"}, 0, "-1\n"},
      {{"cite", "3", "1"}, 0, "2 41\n"},
      {{"cite", "3", "2"}, 1, ""},
      {{"title_word", "1", "1"}, 0, "graphs\n"},
      {{"author", "2", "1"}, 0, "B. Ray\n"},
      {{"authors", "2"}, 0, "0 1\n"},
      {{"word", "1", "3"}, 0, ".\n"},
      {{"has_word_info", "4"}, 0, "0\n"},
      {{"id2author", "0"}, 0, "A. Lee\n"},
      {{"nb_authors"}, 0, "2\n"},
      {{"last_did"}, 0, "4\n"},
  };
  for (const Case& c : cases) {
    std::vector<std::string> args = {"query", data_dir_};
    args.insert(args.end(), c.args.begin(), c.args.end());
    const Result r = RunCommand(query_command, args);
    EXPECT_EQ(r.status, c.status) << "query " << c.args[0] << "\n" << r.err;
    EXPECT_EQ(r.out, c.out) << "query " << c.args[0];
  }
}

TEST_F(DataCommandsTest, PrintingDocumentsAndAuthors) {
  Result r = RunCommand(printdoc_command, {"printdoc", data_dir_, "1"});
  EXPECT_EQ(r.status, 0);
  // The word count is the distance of two byte offsets, read as a count of
  // word ids: 12 for 4 words, of which the 8 in the file are printed.
  EXPECT_EQ(r.out,
            "Document 0 - DID=1 - # words=12\n# Authors = 1\nA. Lee\ntitle: abstract:\n"
            "We sort graphs . Graphs , again Trees \n");
  EXPECT_EQ(r.err, "Sorting graphs \n");
  EXPECT_EQ(RunCommand(printdoc_command, {"printdoc", data_dir_, "7"}).status, 1);

  r = RunCommand(author_command, {"author", data_dir_, "1", "0", "5"});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, "B. Ray\nA. Lee\n");
  EXPECT_EQ(r.err, "refgrove author: no author 5\n");
}

TEST_F(DataCommandsTest, UsageAndDirectoryErrors) {
  struct Case {
    int (*command)(int, char**);
    std::vector<std::string> args;
    int status;
  };
  const Case cases[] = {
      {query_command, {"query"}, 2},
      {query_command, {"query", "DATA"}, 2},
      {query_command, {"query", "DATA", "nonsense"}, 2},
      {query_command, {"query", "DATA", "cite", "1"}, 2},
      {query_command, {"query", "DATA", "year", "x1"}, 2},
      {query_command, {"query", "--bogus", "DATA", "last_did"}, 2},
      {query_command, {"query", "IN", "last_did"}, 1},  // not a data directory
      {printdoc_command, {"printdoc", "DATA"}, 2},
      {author_command, {"author", "DATA", "1.5"}, 2},
      {stats_command, {"stats"}, 2},
      {stats_command, {"stats", "DATA", "extra"}, 2},
      {preprocess_command, {"preprocess", "IN"}, 2},
      {preprocess_command, {"preprocess", "/nonexistent/refgrove", "OUT"}, 1},
      {generate_command, {"generate", "OUT"}, 2},
      {generate_command, {"generate", "--docs", "-3", "OUT"}, 2},
      {query_command, {"query", "--help"}, 0},
      {generate_command, {"generate", "--help"}, 0},
  };
  for (const Case& c : cases) {
    std::vector<std::string> args;
    for (const std::string& a : c.args) args.push_back(a == "DATA" ? data_dir_ : a == "IN" ? in_dir_ : a == "OUT" ? out_.path() + "g" : a);
    const Result r = RunCommand(c.command, args);
    std::string line;
    for (const std::string& a : c.args) line += a + " ";
    EXPECT_EQ(r.status, c.status) << line << "\n" << r.err;
    // Every failure says why.
    EXPECT_EQ(r.status != 0, !r.err.empty()) << line;
  }
}

TEST(DumpGeneratorTest, DeterministicDumpsThatPreprocessCleanly) {
  TempDir a, b, c, data;
  DumpGeneratorResult ra, rb, rc;
  std::string error;
  ASSERT_TRUE(generate_dumps(a.path(), {3000, 7}, &ra, &error)) << error;
  ASSERT_TRUE(generate_dumps(b.path(), {3000, 7}, &rb, &error)) << error;
  ASSERT_TRUE(generate_dumps(c.path(), {3000, 8}, &rc, &error)) << error;
  for (const char* name : {"graph-data-aug-2002.txt", "word-data1-mar-2002.txt", "word-data3-mar-2002.txt"}) {
    EXPECT_EQ(read_file(a.path() + name), read_file(b.path() + name)) << name;
    EXPECT_NE(read_file(a.path() + name), read_file(c.path() + name)) << name;
  }
  const std::string graph = read_file(a.path() + "graph-data-aug-2002.txt");
  EXPECT_EQ(graph.substr(graph.size() - 6), "\nxxxx\n");

  // Clean input: no skipped lines, every document in the graph, DIDs
  // ascending, and the shape the benchmarks rely on.
  std::string in = a.path(), out = data.path();
  Result r = RunCommand(preprocess_command, {"preprocess", in, out});
  ASSERT_EQ(r.status, 0);
  EXPECT_EQ(r.err.find("no did"), std::string::npos);
  EXPECT_EQ(r.err.find("failed"), std::string::npos);
  {
    StreamCapture quiet;
    refgrove_load_1(out.c_str());
  }
  const RefgroveGraph& g = *refgrove_data->graph;
  ASSERT_EQ(g.docs.size(), 3000u);
  EXPECT_EQ(g.docs.back()->did, ra.last_did);
  double cites = 0, title = 0, authors = 0;
  for (std::size_t i = 0; i < g.docs.size(); ++i) {
    if (i > 0) {
      EXPECT_LT(g.docs[i - 1]->did, g.docs[i]->did);
    }
    cites += g.docs[i]->citations.size();
    title += g.docs[i]->title.size();
    authors += g.docs[i]->nb_authors;
  }
  EXPECT_NEAR(cites / 3000, 10, 0.5);
  EXPECT_NEAR(title / 3000, 9, 0.5);
  EXPECT_NEAR(authors / 3000, 2.5, 0.2);
  const double abstracts = static_cast<double>(refgrove_data->word_data->doc_info.size() - 2);
  EXPECT_NEAR(abstracts / 3000, 0.98, 0.02);
  EXPECT_NEAR(static_cast<double>(refgrove_data->word_data->mapped_word_count()) / abstracts, 120, 3);
  delete refgrove_data;
  refgrove_data = nullptr;
}

}  // namespace
