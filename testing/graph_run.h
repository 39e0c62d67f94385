// Test support: a graph pass run on a dump given as text, with what it
// wrote to the standard streams and the graph file it made.
#ifndef REFGROVE_TESTING_GRAPH_RUN_H_
#define REFGROVE_TESTING_GRAPH_RUN_H_

#include <iostream>
#include <string>

#include "graph/graph_dump.h"
#include "graph/graph_file.h"
#include "testing/test_files.h"
#include "tokenizer/parser_error.h"

namespace refgrove {

struct GraphRun {
  std::string out, err, graph_file;
};

// Writes `dump` as the graph dump of a fresh input directory and runs
// pass(in_dir, out_dir) with the standard streams captured; a parse error
// ends up in `err` as the preprocessor writes it. The output directory's
// name reads "OUT/" in the messages, so that runs compare.
template <class Pass>
GraphRun run_graph_pass(const std::string& dump, Pass pass) {
  TempDir in, out;
  write_file(in.path() + kGraphDumpFile, dump);
  GraphRun r;
  {
    StreamCapture capture;
    try {
      pass(in.path(), out.path());
    } catch (const ParserError& e) {
      e.write(std::cerr);
    }
    r.out = capture.out();
    r.err = capture.err();
  }
  r.graph_file = read_file(out.path() + kGraphFile);
  const std::string::size_type at = r.err.find(out.path());
  if (at != std::string::npos) r.err.replace(at, out.path().size(), "OUT/");
  return r;
}

}  // namespace refgrove

#endif  // REFGROVE_TESTING_GRAPH_RUN_H_
