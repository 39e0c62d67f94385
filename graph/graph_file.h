// RefgroveGraph: the citation graph of a data directory, read from its file
// "graph_data" and held in memory.
//
// File layout (little-endian, no header or padding):
//   the author table, as a compacted string table (compacted_string_table.h)
//   int32 N, the number of records
//   N records (graph_record.h)
//
// Records are kept in file order, which is the order of the text dump; the
// DID lookup findDid relies on that order being by ascending DID.
#ifndef REFGROVE_GRAPH_GRAPH_FILE_H_
#define REFGROVE_GRAPH_GRAPH_FILE_H_

#include <iostream>
#include <istream>
#include <memory>
#include <ostream>
#include <vector>

#include "graph/arena.h"
#include "graph/graph_record.h"
#include "words/byte_io.h"
#include "words/compacted_string_table.h"
#include "words/mapped_file.h"

namespace refgrove {

inline constexpr char kGraphFile[] = "graph_data";

// Writes a whole graph file: the author table, the record count, the records.
void write_graph_file(std::ostream& out, const CompactedStringTable& authors,
                      const std::vector<RefgroveGraphData*>& docs);

class RefgroveGraph {
 public:
  // Reads a graph file from the current position of `in` to its end. Reports
  // "Reading Graph Data...", then "read N items." with the count stored in
  // the file, and "Done." on `log`. A missing or short file gives the
  // records that are whole (none for a stream that failed to open).
  explicit RefgroveGraph(std::istream& in, std::ostream& log = std::cerr);
  // The same, from a graph file mapped into memory.
  explicit RefgroveGraph(const MappedFile& file, std::ostream& log = std::cerr);

  RefgroveGraph(const RefgroveGraph&) = delete;
  RefgroveGraph& operator=(const RefgroveGraph&) = delete;

  std::ostream& write(std::ostream& out) const;

  // Position in `docs` of a record with DID `did`, or -1, by binary search;
  // among equal DIDs, the first one the probing meets.
  int findDid(int did) const;

  // The name of `author_id`, or null outside the author table.
  const char* author_name(int author_id) const { return author_table->lookup(author_id); }

  std::vector<RefgroveGraphData*> docs;
  std::unique_ptr<CompactedStringTable> author_table;

 private:
  void read(ByteReader& in, std::ostream& log);

  // The records read from a file, back to back so that a pass over all
  // DIDs reads memory in order; `docs` points into it. Their arrays live in
  // the arena.
  std::vector<RefgroveGraphData> records_;
  Arena arena_;
};

}  // namespace refgrove

#endif  // REFGROVE_GRAPH_GRAPH_FILE_H_
