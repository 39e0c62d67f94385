// Synthetic text dumps at any scale, for benchmarks and scale tests.
//
// The four files of an input directory, under their fixed names: the graph
// dump lists every document by ascending DID (with gaps) and ends with the
// "xxxx" marker; the three word dumps share the documents' abstracts in
// three consecutive DID ranges. On average a document has about 10
// citations of earlier documents, 9 title words, 2.5 authors and 120 words
// in its abstract (punctuation included), drawn from a Zipf-distributed
// vocabulary; keys and years are sometimes missing ("-"), and a few words
// are not ASCII. The output depends only on the document count and the
// seed: the generator uses no library distribution, so it is the same on
// every platform.
#ifndef REFGROVE_GENERATE_DUMP_GENERATOR_H_
#define REFGROVE_GENERATE_DUMP_GENERATOR_H_

#include <cstdint>
#include <string>

namespace refgrove {

struct DumpGeneratorOptions {
  std::int64_t docs = 1000;
  std::uint64_t seed = 2002;
};

struct DumpGeneratorResult {
  std::int64_t bytes = 0;     // total size of the four files
  std::int64_t words = 0;     // abstract words, punctuation included
  std::int32_t last_did = 0;  // largest DID written
};

// Writes the four dumps into `dir` (a prefix: the file names are appended).
// Returns false, with a message in `error`, when a file cannot be written.
bool generate_dumps(const std::string& dir, const DumpGeneratorOptions& options, DumpGeneratorResult* result,
                    std::string* error);

}  // namespace refgrove

#endif  // REFGROVE_GENERATE_DUMP_GENERATOR_H_
