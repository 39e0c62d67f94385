// Papers like a given one, by the citations they share.
//
// Co-citation: the documents cited together with X, counted by the distinct
// documents citing both. Bibliographic coupling: the documents sharing
// references with X, counted by the distinct documents both cite.
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

struct SimilarDocument {
  std::int32_t did;
  std::int32_t count;
};

// The first k documents by count descending, then by ascending DID, X
// itself excluded. Throws NetworkArgumentError for a DID without a graph
// record.
std::vector<SimilarDocument> similar(const RefgroveData& d, std::int32_t did, SimilarBy by, std::int64_t k);

}  // namespace refgrove

#endif  // REFGROVE_NETWORK_SIMILARITY_H_
