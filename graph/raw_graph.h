// Graph preprocessing: the graph text dump of an input directory read into
// records, and written as the graph file of a data directory.
#ifndef REFGROVE_GRAPH_RAW_GRAPH_H_
#define REFGROVE_GRAPH_RAW_GRAPH_H_

#include <cstdint>
#include <iostream>
#include <memory>
#include <ostream>
#include <string>
#include <system_error>
#include <vector>

#include "graph/arena.h"
#include "graph/graph_record.h"
#include "words/string_table.h"

namespace refgrove {

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

  // What the records hold, for a report of the pass.
  struct Counts {
    std::int64_t records = 0, authors = 0, citations = 0;
    // DIDs, years, group ids and cited DIDs that the dump wrote beyond the
    // int32 range, which parsing clamped to its ends.
    std::int64_t clamped_values = 0;
    std::vector<std::int32_t> outlying_dids;  // those that did_may_be_unindexed
  };
  Counts counts() const;

  std::vector<RefgroveGraphData*> docs;
  StringTable author_table;

 private:
  friend class ConcurrentGraphParse;  // joins graphs of parts of a dump
  RawRefgroveGraph() = default;

  Arena arena_;  // holds the records
};

// The outcome of a graph pass: what it wrote, and the error of the first
// write to the graph file that failed, if any.
struct GraphPassResult {
  RawRefgroveGraph::Counts counts;
  std::error_code write_error;
};

// Reads the graph dump of in_dir and writes out_dir + "graph_data" (both
// plain prefixes), reporting "writing graph file <name>..." on `err`.
// `words` keeps every title word of the dump, with the ids the graph file
// uses. The output file is opened only once the whole dump has parsed.
GraphPassResult preprocGraph(const std::string& in_dir, const std::string& out_dir, StringTable* words,
                             std::ostream& out = std::cout, std::ostream& err = std::cerr);

// The progress of a pass once it has read `records` records: "\r" and the
// count, every 1000 records, so that the count overwrites itself on one
// terminal line.
void reportGraphProgress(std::ostream& err, std::size_t records);

// The two steps of preprocGraph after the reading: the message
// "writing graph file <name>..." on `err`, and the file itself, which
// returns the error of the first write that failed.
void announceGraphFile(const std::string& out_dir, std::ostream& err = std::cerr);
std::error_code writeGraphFile(const std::string& out_dir, const RawRefgroveGraph& graph);

}  // namespace refgrove

#endif  // REFGROVE_GRAPH_RAW_GRAPH_H_
