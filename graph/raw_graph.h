// Graph preprocessing: the graph text dump of an input directory read into
// records, and written as the graph file of a data directory.
#ifndef REFGROVE_GRAPH_RAW_GRAPH_H_
#define REFGROVE_GRAPH_RAW_GRAPH_H_

#include <iostream>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "graph/arena.h"
#include "graph/graph_record.h"
#include "words/background_job.h"
#include "words/message_log.h"
#include "words/string_table.h"

// Every record of a graph dump, in dump order (never sorted: the graph file
// keeps that order, so the dump must list DIDs ascending for lookups by DID
// to work on the loaded graph).
class RawRefgroveGraph {
 public:
  // Reads in_dir + "graph-data-aug-2002.txt" (in_dir is a plain prefix) up
  // to a line starting with "xxxx" or the end of the file. Title words are
  // interned in `words`, author names in `author_table`. Writes
  // "preprocGraph() ..." to `out` and, every 1000 records, "\r" and the
  // count to `err`, then a line end. A missing dump reads as an empty one.
  // A malformed line throws ParserError.
  RawRefgroveGraph(const std::string& in_dir, StringTable* words, std::ostream& out = std::cout,
                   std::ostream& err = std::cerr);

  RawRefgroveGraph(const RawRefgroveGraph&) = delete;
  RawRefgroveGraph& operator=(const RawRefgroveGraph&) = delete;

  // Writes the graph file: the frozen author table, the record count, the
  // records.
  std::ostream& write(std::ostream& out) const;

  // Replaces every title word id i by ids[i].
  void renumberTitleWords(const std::vector<WordId>& ids);

  std::vector<RefgroveGraphData*> docs;
  StringTable author_table;

 private:
  Arena arena_;  // holds the records
};

// Reads the graph dump of in_dir and writes out_dir + "graph_data" (both
// plain prefixes), reporting "writing graph file <name>..." on standard
// error. `words` keeps every title word of the dump, with the ids the graph
// file uses. The output file is opened only once the whole dump has parsed.
void preprocGraph(const std::string& in_dir, const std::string& out_dir, StringTable* words);

// The second half of preprocGraph: writes `graph` as out_dir + "graph_data".
void writeGraph(const std::string& out_dir, const RawRefgroveGraph& graph);

// The reading half of preprocGraph, run in a thread of its own while the
// caller fills the word table: the word preprocessor reads the word dumps
// and the graph dump at the same time on two processors.
//
// The parse interns title words in a table of its own and holds its
// messages back. finish() then gives each title word the id that `words`
// gives it, in the order in which the dump first holds them: exactly the
// ids, and the new words in exactly the order, of a parse that had used
// `words` itself. The messages come out only then, so that the output is
// that of running the two passes one after the other.
class ConcurrentGraphParse {
 public:
  explicit ConcurrentGraphParse(const std::string& in_dir);

  // Waits for the parse and writes its messages to standard output and
  // error. Returns the graph with its title words interned in `words`, or
  // throws what the parse threw (a ParserError for a malformed line).
  std::unique_ptr<RawRefgroveGraph> finish(StringTable* words);

 private:
  std::string in_dir_;
  StringTable titles_;
  MessageLog messages_;
  std::unique_ptr<RawRefgroveGraph> graph_;
  BackgroundJob parse_;  // last: it runs while the others live
};

#endif  // REFGROVE_GRAPH_RAW_GRAPH_H_
