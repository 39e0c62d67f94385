// The graph dump parsed in parts, against the sequential graph pass.
#include "preproc/concurrent_graph_parse.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "graph/raw_graph.h"
#include "testing/graph_run.h"

namespace refgrove {

namespace {

// How the graph pass runs: one record after the other, or in parts of a
// given size and number while the caller interns other words.
struct Pass {
  bool concurrent = false;
  int parts = 1;
  std::uintmax_t min_part_bytes = 1;
};

// Runs the graph pass after the interning of `meanwhile` in `words`, or
// concurrently with it.
GraphRun Preprocess(const std::string& dump, StringTable* words, Pass pass, const std::vector<std::string>& meanwhile) {
  return run_graph_pass(dump, [&](const std::string& in, const std::string& out) {
    if (!pass.concurrent) {
      for (const std::string& w : meanwhile) words->String2ID(w);
      preprocGraph(in, out, words);
      return;
    }
    ConcurrentGraphParse parse(in, PreprocOptions{}, pass.parts, pass.min_part_bytes);
    for (const std::string& w : meanwhile) words->String2ID(w);
    parse.write_file(words, out);
    parse.finish(words, out);
  });
}

TEST(ConcurrentGraphParseTest, GivesWhatTheSequentialPassGives) {
  // Title words already in the table, new ones in an order unlike their
  // order of first use, words and authors repeated across the parts;
  // progress; records that run over a line end; "xxxx" early and late; parse
  // errors early and late.
  std::string many;
  for (int did = 1; did <= 1200; ++did) {
    many += std::to_string(did) + " - - GIDs: DIDs: Title: w" + std::to_string(did % 13) + " Authors: A" +
            std::to_string(did % 5) + " and B\n";
  }
  const std::string over_line_ends =
      "1 \n 1999 GIDs: DIDs: Title: key was a line end Authors: X\n"
      "2 - - GIDs: DIDs: Title: a\nline end Authors: Y\n";
  const std::string dumps[] = {
      "1 - - GIDs: DIDs: Title: zeta known alpha Authors: X\n"
      "2 - - GIDs: 4 DIDs: 9 Title: alpha beta meanwhile zeta Authors: Y and X\n",
      many,
      many + over_line_ends + many,
      over_line_ends + over_line_ends + over_line_ends,
      many + "xxxx\n" + many,
      "xxxx\n" + many,
      many + "xxxx\n5 - - GIDs: 7 DIDs: Title: t Authors:\n",
      many + "5 - - GIDs: 7 DIDs: Title: t Authors:\n" + many,
      "5 - - GIDs: 7 DIDs: Title: t Authors:\n" + many,
      many + "5 - - GIDs: DIDs: Title: t Authors: no line end",
      "\n\n\n" + many + "   \n",
      "",
  };
  const Pass passes[] = {{true, 1, 1}, {true, 2, 1}, {true, 3, 1000}, {true, 7, 1}, {true, 2, 1 << 20}};
  for (const std::string& dump : dumps) {
    StringTable sequential_words;
    sequential_words.String2ID("known");
    const std::vector<std::string> meanwhile = {"meanwhile", "w3"};
    const GraphRun sequential = Preprocess(dump, &sequential_words, Pass{}, meanwhile);
    for (const Pass& pass : passes) {
      StringTable concurrent_words;
      concurrent_words.String2ID("known");
      const GraphRun concurrent = Preprocess(dump, &concurrent_words, pass, meanwhile);
      const std::string where = "parts " + std::to_string(pass.parts) + " of " + std::to_string(pass.min_part_bytes) +
                                " bytes, dump " + dump.substr(0, 60);
      EXPECT_EQ(concurrent.out, sequential.out) << where;
      EXPECT_EQ(concurrent.err, sequential.err) << where;
      EXPECT_EQ(hex(concurrent.graph_file), hex(sequential.graph_file)) << where;
      // After a parse error the table is dropped unwritten, so only a whole
      // parse must leave it as the sequential one does.
      if (!sequential.graph_file.empty()) {
        EXPECT_EQ(concurrent_words.by_id, sequential_words.by_id) << where;
      }
    }
  }
}

}  // namespace

}  // namespace refgrove
