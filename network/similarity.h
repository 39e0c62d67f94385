// Papers like a given one, by the citations they share.
//
// Co-citation: the documents cited together with X, counted by the distinct
// documents citing both. Bibliographic coupling: the documents sharing
// references with X, counted by the distinct documents both cite.
//
// Raw counts favour documents with many citations (or references), so the
// count c of X and Y can also be normalised by the sizes a and b of their
// lists (of citing documents for co-citation, of cited ones for coupling):
// Salton's cosine c / sqrt(a b), or Jaccard's index c / (a + b - c).
#ifndef REFGROVE_NETWORK_SIMILARITY_H_
#define REFGROVE_NETWORK_SIMILARITY_H_

#include <cstdint>
#include <string>
#include <vector>

#include "core/data_set.h"

namespace refgrove {

enum class SimilarBy { cocitation, coupling };

// The text of a measure ("cocitation", "coupling") and back; from_text
// throws NetworkArgumentError for any other text.
const char* to_text(SimilarBy by);
SimilarBy similar_by_from_text(const std::string& text);

enum class SimilarMeasure { count, cosine, jaccard };

// The text of a measure ("count", "cosine", "jaccard") and back; from_text
// throws NetworkArgumentError for any other text.
const char* to_text(SimilarMeasure measure);
SimilarMeasure similar_measure_from_text(const std::string& text);

struct SimilarDocument {
  std::int32_t did;
  std::int32_t count;
  double score = 0;  // by the measure asked for (the count for count)
};

// The first k documents by score descending, then by ascending DID, X
// itself excluded. Throws NetworkArgumentError for a DID without a graph
// record.
std::vector<SimilarDocument> similar(const RefgroveData& d, std::int32_t did, SimilarBy by, std::int64_t k,
                                     SimilarMeasure measure = SimilarMeasure::count);

}  // namespace refgrove

#endif  // REFGROVE_NETWORK_SIMILARITY_H_
