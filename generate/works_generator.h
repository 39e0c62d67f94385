// The synthetic documents (document_generator.h) written as works in a
// source's own format, the inputs of `refgrove import`, for its tests and
// benchmark. Every format holds the same documents in the same order, with
// the citations in the same order, so that their imports agree; only the
// keys differ, as each source names its works in its own way:
//
//   openalex  part_000.gz, part_001.gz, ...: JSON Lines of 100,000 works,
//             compressed as the snapshot's parts are; key "W" + the DID
//   s2        papers.jsonl, abstracts.jsonl, citations.jsonl; key the DID
//   arxiv     abs/NNNN/NNNNNNN.abs (a folder per 1,000 papers) and
//             cit-generated.txt; key "gen/" + the DID in seven digits (a
//             year-less paper then reads its year from the key: 2000)
//   csv       works.csv and citations.csv; key "W" + the DID
//
// Titles and abstracts are the documents' words joined by blanks; authors
// as they are (they hold neither "," nor "and").
#ifndef REFGROVE_GENERATE_WORKS_GENERATOR_H_
#define REFGROVE_GENERATE_WORKS_GENERATOR_H_

#include <cstdint>
#include <string>
#include <vector>

#include "generate/document_generator.h"

namespace refgrove {

// "openalex", "s2", "arxiv", "csv".
const std::vector<std::string>& generated_work_formats();

// The key that `format` gives the document `did`.
std::string generated_work_key(const std::string& format, std::int32_t did);

struct WorksGeneratorResult {
  std::int64_t bytes = 0;     // written (compressed where the format is)
  std::int32_t last_did = 0;  // largest DID written
};

// Writes the documents of `options` in `format` into the directory `dir`
// (a prefix: file names are appended). Returns false, with a message in
// `error`, for an unknown format, a file that cannot be written, or (arxiv)
// a DID beyond seven digits.
bool generate_works(const std::string& format, const std::string& dir, const DocumentGeneratorOptions& options,
                    WorksGeneratorResult* result, std::string* error);

}  // namespace refgrove

#endif  // REFGROVE_GENERATE_WORKS_GENERATOR_H_
