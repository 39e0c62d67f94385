// Synthetic text dumps at any scale (document_generator.h), for benchmarks
// and scale tests.
//
// The four files of an input directory, under their fixed names: the graph
// dump lists every document by ascending DID (with gaps) and ends with the
// "xxxx" marker; the three word dumps share the documents' abstracts in
// three consecutive DID ranges. Missing keys and years are written "-".
#ifndef REFGROVE_GENERATE_DUMP_GENERATOR_H_
#define REFGROVE_GENERATE_DUMP_GENERATOR_H_

#include <cstdint>
#include <string>

#include "generate/document_generator.h"

namespace refgrove {

struct DumpGeneratorResult {
  std::int64_t bytes = 0;     // total size of the four files
  std::int64_t words = 0;     // abstract words, punctuation included
  std::int32_t last_did = 0;  // largest DID written
};

// Writes the four dumps into `dir` (a prefix: the file names are appended).
// Returns false, with a message in `error`, when a file cannot be written.
bool generate_dumps(const std::string& dir, const DocumentGeneratorOptions& options, DumpGeneratorResult* result,
                    std::string* error);

}  // namespace refgrove

#endif  // REFGROVE_GENERATE_DUMP_GENERATOR_H_
