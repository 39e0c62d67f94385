// preprocess(): the text dumps of an input directory turned into a data
// directory, with its messages on streams of the caller's choice, and, for
// callers that must not lose data, every input and every write checked.
//
// refgrove_preproc_1 (refgrove/preprocess.h), the module's entry, runs it
// unchecked on the standard streams and ends the process with status 3 when
// a dump does not parse. Tools and libraries call preprocess() itself: it
// throws instead.
#ifndef REFGROVE_PREPROC_PREPROCESS_H_
#define REFGROVE_PREPROC_PREPROCESS_H_

#include <atomic>
#include <cstdint>
#include <iostream>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>

#include "preproc/format_limits.h"
#include "tokenizer/parser_error.h"

namespace refgrove {

// How far a run has read, for a progress display: updated by the threads
// that read the dumps, read by any thread.
struct PreprocProgress {
  std::atomic<std::uint64_t> bytes_read{0};
  std::uint64_t total_bytes = 0;  // the four dumps' sizes, set before reading starts
};

struct PreprocOptions {
  std::ostream* out = &std::cout;  // the steps: "Preproc word data ... " and on
  std::ostream* err = &std::cerr;  // diagnostics and the running counters
  // Checks that the four dumps are regular files before anything is read,
  // and every output file once written: a failure throws PreprocError.
  // Checked, dumps beyond `limits` throw FormatLimitError. Unchecked, a
  // missing dump reads as empty, a failed write is lost and offsets and ids
  // beyond the limits wrap around.
  bool checked = false;
  FormatLimits limits;
  PreprocProgress* progress = nullptr;
};

// What a run wrote, and what it had to skip or change on the way.
struct PreprocSummary {
  std::int64_t documents = 0;                            // word-data headers, the end sentinel left out
  std::int64_t abstract_words = 0;                       // word ids in word-data
  std::int64_t words = 0;                                // distinct words, title words included
  std::int64_t records = 0, authors = 0, citations = 0;  // of the graph file
  std::int64_t lines_without_did = 0;                    // word dump lines skipped
  // Integers beyond the int32 range in either dump, stored clamped to it.
  std::int64_t values_out_of_range = 0;
  // Documents that loading leaves out of the DID index (graph_data and
  // word-idx counted apart): their DID is negative or too large.
  std::int64_t unindexed = 0;
};

// An input that cannot be read or an output that cannot be written.
class PreprocError : public std::runtime_error {
 public:
  // what(): "<path>: <reason>".
  PreprocError(std::string path, std::string reason)
      : std::runtime_error(path + ": " + reason), path(std::move(path)), reason(std::move(reason)) {}
  std::string path;
  std::string reason;
};

// Dumps that hold more than a data directory can (format_limits.h): `path`
// is the file that cannot hold them, `reason` one sentence with the limit.
class FormatLimitError : public PreprocError {
 public:
  using PreprocError::PreprocError;
};

// A dump that does not parse: the parser's error, written exactly as the
// module writes it, and the path of the dump, which the parsers reading
// streams do not know.
class DumpParseError : public ParserError {
 public:
  DumpParseError(const ParserError& error, std::string dump) : ParserError(error), dump(std::move(dump)) {}
  std::string dump;
};

// Preprocesses the dumps of in_dir into out_dir (both plain prefixes, to
// which file names are appended). Throws DumpParseError when a dump does not
// parse (the files written by then stay as they are), PreprocError when
// checked and an input or output fails, FormatLimitError when checked and
// the dumps hold more than a data directory can.
PreprocSummary preprocess(const std::string& in_dir, const std::string& out_dir, const PreprocOptions& options = {});

// The sizes of the four dumps of in_dir together; a missing dump counts 0.
std::uint64_t dumps_size(const std::string& in_dir);

}  // namespace refgrove

#endif  // REFGROVE_PREPROC_PREPROCESS_H_
