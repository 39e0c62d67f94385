// The subcommands around data directories, run in-process: preprocess, then
// stats, printdoc, author and query on the result; and the dump generator.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/data_set.h"
#include "generate/dump_generator.h"
#include "testing/data_dir_builder.h"
#include "tools/tool_test_util.h"

namespace refgrove {

namespace {

ToolRun RunCommand(std::vector<std::string> args) { return run_tool(std::move(args)); }

// A small input directory IN preprocessed into the data directory DATA, both
// named without their trailing "/" as a user would type them; then every
// command on them (or on a fresh OUT): exit status, and standard output and
// error where given. Without an expected error text, the error stream must be
// empty exactly on success.
TEST(DataCommandsTest, Commands) {
  TempDir in, out;
  write_file(in.path() + "word-data1-mar-2002.txt", "1 lee98 We sort graphs .\n2 - Graphs , again\n");
  write_file(in.path() + "word-data2-mar-2002.txt", "3 ray01 Trees\n");
  write_file(in.path() + "word-data3-mar-2002.txt", "");
  write_file(in.path() + "graph-data-aug-2002.txt",
             "1 lee98 1998 GIDs: DIDs: Title: Sorting graphs Authors: A. Lee\n"
             "2 - - GIDs: 40 DIDs: 1 Title: Graphs again Authors: A. Lee and B. Ray\n"
             "3 ray01 2001 GIDs: 40 41 DIDs: 1 2 Title: Trees Authors: B. Ray\n"
             "xxxx\n");
  const std::string in_dir = in.path().substr(0, in.path().size() - 1), data_dir = out.path() + "data";
  const ToolRun preprocessed = RunCommand({"preprocess", in_dir, data_dir});
  ASSERT_EQ(preprocessed.status, 0) << preprocessed.err;

  struct Case {
    std::vector<std::string> args;
    int status;
    const char* out = nullptr;
    const char* err = nullptr;
  };
  const Case cases[] = {
      // The stats of the whole directory cover each of its four files.
      // The stats of the whole directory cover each of its four files; the
      // module's document count is that of the word-idx headers.
      {{"stats", "DATA"},
       0,
       "graph records        3\ndocuments with words 3 (word-idx headers but the end sentinel)\n"
       "word-idx headers     4 (the end sentinel included: query stats counts these)\n"
       "distinct words       9\nauthors              2\n"
       "citations            3\ntitle words          5\nabstract words       8\nlargest DID          3\n"},
      {{"query", "DATA", "stats"}, 0, "word-idx headers 4 (the end sentinel included), distinct words 9, authors 2\n"},
      {{"query", "DATA", "key", "1"}, 0, "lee98\n"},
      {{"query", "DATA", "key", "2"}, 0, "\n"},
      {{"query", "DATA", "key", "9"}, 1, ""},
      {{"query", "DATA", "year", "2"}, 0, "-1\n"},
      {{"query", "DATA", "cite", "3", "1"}, 0, "2 41\n"},
      {{"query", "DATA", "cite", "3", "2"}, 1, ""},
      {{"query", "DATA", "title_word", "1", "1"}, 0, "graphs\n"},
      {{"query", "DATA", "authors", "2"}, 0, "0 1\n"},
      {{"query", "DATA", "author", "2", "1"}, 0, "B. Ray\n"},
      {{"query", "DATA", "word", "1", "3"}, 0, ".\n"},
      {{"query", "DATA", "has_word_info", "4"}, 0, "0\n"},
      {{"query", "DATA", "id2author", "0"}, 0, "A. Lee\n"},
      {{"query", "DATA", "nb_authors"}, 0, "2\n"},
      {{"query", "DATA", "last_did"}, 0, "4\n"},
      {{"query", "DATA", "author_distance", "0", "1"}, 0, "0\n"},
      {{"query", "DATA", "author_distance", "0"}, 2},
      {{"query", "DATA", "authors", "2", "0"}, 2},
      // The word count is the distance of two byte offsets read as a count of
      // word ids: 12 for 4 words, of which the 8 in the file are printed.
      {{"printdoc", "DATA", "1"},
       0,
       "Document 0 - DID=1 - # words=12\n# Authors = 1\nA. Lee\ntitle: abstract:\n"
       "We sort graphs . Graphs , again Trees \n",
       "Sorting graphs \n"},
      // show: the document's own abstract (printdoc reads the offset of
      // word-idx as a count, so for DID 2 it would print other words), and
      // the documents on both sides of its citations with their titles.
      {{"show", "DATA", "2", "7", "3"},
       1,
       "DID      2\nkey      (none)\nyear     (none)\ntitle    Graphs again\nauthors  A. Lee; B. Ray\n"
       "abstract Graphs , again\ncites 1\n  1 lee98: Sorting graphs\ncited by 1\n  3 ray01: Trees\n\n"
       "DID      3\nkey      ray01\nyear     2001\ntitle    Trees\nauthors  B. Ray\nabstract Trees\n"
       "cites 2\n  1 lee98: Sorting graphs\n  2: Graphs again\ncited by 0\n",
       "refgrove show: no document 7\n"},
      // A DID in neither half is named, and nothing is printed for it.
      {{"printdoc", "DATA", "7"}, 1, "", "refgrove printdoc: no document 7\n"},
      {{"printdoc", "DATA", "-5"}, 1, "", "refgrove printdoc: no document -5\n"},
      {{"author", "DATA", "1", "0", "5"}, 1, "B. Ray\nA. Lee\n", "refgrove author: no author 5\n"},
      {{"author", "DATA", "--name", "a. LEE", "1", "--name", "*"}, 0, "B. Ray\n0\tA. Lee\n0\tA. Lee\n1\tB. Ray\n"},
      {{"author", "DATA", "--name", "nobody"}, 1, "", "refgrove author: no author named nobody\n"},
      {{"author", "DATA"}, 2},
      // The reverse lookups; with several arguments each line names its own.
      {{"cited-by", "DATA", "1"}, 0, "2\n3\n"},
      {{"cited-by", "DATA", "2", "3", "1"}, 1, "2\t3\n1\t2\n1\t3\n", "refgrove cited-by: no document cites 3\n"},
      {{"author-docs", "DATA", "1"}, 0, "2\n3\n"},
      {{"author-docs", "DATA", "7"}, 1, "", "refgrove author-docs: no document by author 7\n"},
      // Authors by name, ignoring case, or by the start of their name; one
      // name per --name, wherever it stands.
      {{"author-docs", "DATA", "--name", "b. RAY"}, 0, "2\n3\n"},
      {{"author-docs", "--name", "B*", "DATA"}, 0, "2\n3\n"},
      {{"author-docs", "--name", "b. ray", "DATA", "1"}, 0, "1\t2\n1\t3\n1\t2\n1\t3\n"},
      {{"author-docs", "DATA", "--name", "nobody"}, 1, "", "refgrove author-docs: no author named nobody\n"},
      {{"author-docs", "DATA"}, 2},
      {{"key-docs", "DATA", "ray01", "lee98"}, 0, "ray01\t3\nlee98\t1\n"},
      {{"key-docs", "DATA", "-"}, 1, "", "refgrove key-docs: no document with key -\n"},
      {{"--version"}, 0, "refgrove " REFGROVE_VERSION "\n"},
      // Usage errors, and directories that cannot be read (IN is not a data directory).
      {{}, 2},
      {{"bogus"}, 2},
      {{"cited-by", "DATA", "x"}, 2},
      {{"key-docs", "DATA"}, 2},
      {{"query"}, 2},
      {{"query", "DATA"}, 2},
      {{"query", "DATA", "nonsense"}, 2},
      {{"query", "DATA", "cite", "1"}, 2},
      {{"query", "DATA", "year", "x1"}, 2},
      {{"query", "--bogus", "DATA", "last_did"}, 2},
      {{"query", "IN", "last_did"}, 1},
      {{"printdoc", "DATA"}, 2},
      {{"author", "DATA", "1.5"}, 2},
      {{"stats"}, 2},
      {{"stats", "DATA", "extra"}, 2},
      {{"preprocess", "IN"}, 2},
      {{"preprocess", "/nonexistent/refgrove", "OUT"}, 1},
      {{"generate", "OUT"}, 2},
      {{"generate", "--docs", "-3", "OUT"}, 2},
      {{"generate", "--docs", "x", "OUT"}, 2},
      {{"query", "--help"}, 0},
      {{"generate", "--help"}, 0},
  };
  for (const Case& c : cases) {
    std::vector<std::string> args;
    std::string line;
    for (const std::string& a : c.args) {
      args.push_back(a == "DATA" ? data_dir : a == "IN" ? in_dir : a == "OUT" ? out.path() + "g" : a);
      line += a + " ";
    }
    const ToolRun r = RunCommand(args);
    EXPECT_EQ(r.status, c.status) << line << "\n" << r.err;
    if (c.out != nullptr) {
      EXPECT_EQ(r.out, c.out) << line;
    }
    if (c.err != nullptr) {
      EXPECT_EQ(r.err, c.err) << line;
    } else {
      EXPECT_EQ(r.status != 0, !r.err.empty()) << line << "\n" << r.err;
    }
  }
  // Loading messages only with -v, which may also follow a query's operation.
  for (const std::vector<std::string>& args : {std::vector<std::string>{"stats", "-v", data_dir},
                                               std::vector<std::string>{"query", data_dir, "key", "1", "-v"}}) {
    const ToolRun r = RunCommand(args);
    EXPECT_EQ(r.status, 0) << args[0];
    EXPECT_NE(r.err.find("Reading Graph Data...\n"), std::string::npos) << args[0];
  }
}

TEST(DumpGeneratorTest, DeterministicDumpsThatPreprocessCleanly) {
  // The same seed gives the same dumps, another seed others.
  const std::uint64_t seeds[] = {7, 7, 8};
  TempDir dumps[3], data;
  DumpGeneratorResult result[3];
  std::string error;
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(generate_dumps(dumps[i].path(), {3000, seeds[i]}, &result[i], &error)) << error;
  }
  const std::string& a = dumps[0].path();
  for (const char* name : {"graph-data-aug-2002.txt", "word-data1-mar-2002.txt", "word-data3-mar-2002.txt"}) {
    EXPECT_EQ(read_file(a + name), read_file(dumps[1].path() + name)) << name;
    EXPECT_NE(read_file(a + name), read_file(dumps[2].path() + name)) << name;
  }
  const std::string graph = read_file(a + "graph-data-aug-2002.txt");
  EXPECT_EQ(graph.substr(graph.size() - 6), "\nxxxx\n");

  // Clean input: no skipped lines, every document in the graph, DIDs
  // ascending, and the shape the benchmarks rely on.
  const ToolRun r = RunCommand({"preprocess", a, data.path()});
  ASSERT_EQ(r.status, 0);
  EXPECT_EQ(r.err.find("no did"), std::string::npos);
  EXPECT_EQ(r.err.find("failed"), std::string::npos);
  {
    StreamCapture quiet;
    refgrove_load_1(data.path().c_str());
  }
  const RefgroveGraph& g = *refgrove_data->graph;
  ASSERT_EQ(g.docs.size(), 3000u);
  EXPECT_EQ(g.docs.back()->did, result[0].last_did);
  double cites = 0, title = 0, authors = 0;
  for (std::size_t i = 1; i < g.docs.size(); ++i) EXPECT_LT(g.docs[i - 1]->did, g.docs[i]->did);
  for (const RefgroveGraphData* d : g.docs) {
    cites += d->citations.size();
    title += d->title.size();
    authors += d->nb_authors;
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

}  // namespace refgrove
