// ConcurrentGraphParse: preprocGraph, run in threads of its own while the
// caller fills the word table.
//
// The dump is cut at line ends into parts of about equal size, and each part
// is parsed in a thread of its own, with a title table and an author table of
// its own. finish() then joins the parts in dump order: each title word gets
// the id that the caller's word table gives it, and each author name the id
// of the joined author table, in the order in which the dump first holds
// them. The ids, the records, the file and the messages are therefore
// exactly those of preprocGraph over the whole dump on the caller's table.
//
// A part is only a guess at where records start: a record may run over a
// line end (a line end as its key or as a title word), and the dump may be
// malformed. A part that does not end in a whole record fails to parse. When
// any part that counts failed, the dump is read again from the start, one
// record after the other, and that parse decides what is reported.
#ifndef REFGROVE_PREPROC_CONCURRENT_GRAPH_PARSE_H_
#define REFGROVE_PREPROC_CONCURRENT_GRAPH_PARSE_H_

#include <cstdint>
#include <exception>
#include <memory>
#include <ostream>
#include <string>
#include <system_error>
#include <vector>

#include "graph/arena.h"
#include "graph/graph_record.h"
#include "graph/raw_graph.h"
#include "preproc/background_job.h"
#include "preproc/preprocess.h"
#include "words/string_table.h"

namespace refgrove {

class ConcurrentGraphParse {
 public:
  // Starts parsing the graph dump of in_dir in up to `parts` parts of at
  // least `min_part_bytes` bytes each. Messages go to the options' streams
  // and what the parts read to their progress.
  static constexpr int kParts = 2;
  static constexpr std::uintmax_t kMinPartBytes = std::uintmax_t{1} << 20;
  explicit ConcurrentGraphParse(const std::string& in_dir, const PreprocOptions& options = {}, int parts = kParts,
                                std::uintmax_t min_part_bytes = kMinPartBytes);
  ~ConcurrentGraphParse();

  // Once `words` holds every word of the word dumps, and nothing else can
  // keep the graph file from being written: waits for the parts. When they
  // hold the dump, a thread of its own then joins them, interning the title
  // words in `words`, and writes the graph file out_dir + "graph_data";
  // `words` must be left alone until finish(). Otherwise nothing happens
  // here.
  void write_file(StringTable* words, const std::string& out_dir);

  // Writes the messages of the pass, once write_file() has written the
  // file. When it has not, reads the dump again with preprocGraph, which
  // writes the messages and the file. Either way the outcome is exactly
  // that of preprocGraph on `words`, a DumpParseError thrown for a malformed
  // line included.
  GraphPassResult finish(StringTable* words, const std::string& out_dir);

 private:
  struct Part;

  // Whether the parts up to the first that ends at an "xxxx" line all
  // parsed, with title ids that records can hold.
  bool parts_hold_the_dump() const;
  // Joins those parts into graph_, with title ids of `words`, and writes
  // it to out_dir.
  void join_and_write(StringTable* words, const std::string& out_dir);
  // Moves the records of `part` to the end of graph_.
  void append(Part& part, StringTable* words);
  // Writes the messages of a whole pass that read `records` records.
  void report(std::size_t records) const;

  std::string in_dir_;
  std::ostream& out_;
  std::ostream& err_;
  std::error_code write_error_;  // of the graph file written by writer_
  std::vector<std::unique_ptr<Part>> parts_;
  RawRefgroveGraph graph_;
  std::unique_ptr<BackgroundJob> writer_;  // runs join_and_write
};

}  // namespace refgrove

#endif  // REFGROVE_PREPROC_CONCURRENT_GRAPH_PARSE_H_
