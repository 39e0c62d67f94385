// The DID index of a loaded data set: one entry for every DID from 0 up to
// a limit that follows from the number of documents, so that a damaged file
// with a DID of two billion cannot make the index take gigabytes. A
// document whose DID is outside that range is left out of the index
// (unindexed). Preprocessing counts these documents for its summary with
// the same rule that loading applies.
#ifndef REFGROVE_GRAPH_DID_INDEX_H_
#define REFGROVE_GRAPH_DID_INDEX_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace refgrove {

inline constexpr std::size_t kDidIndexEntriesPerDocument = 16;
inline constexpr std::size_t kMinDidIndexSize = std::size_t{1} << 21;

// One past the largest DID indexed, for the graph file's records and the
// word-idx headers as loading holds them (the file's, plus the end
// sentinel repeated).
inline std::size_t did_index_limit(std::size_t graph_records, std::size_t word_headers) {
  return std::max(kMinDidIndexSize, kDidIndexEntriesPerDocument * (graph_records + word_headers));
}

inline bool did_indexable(std::int32_t did, std::size_t limit) {
  return did >= 0 && static_cast<std::size_t>(did) < limit;
}

// Whether `did` may be unindexed in some data set: it is negative or at or
// beyond the smallest limit. Preprocessing keeps only these DIDs.
inline bool did_may_be_unindexed(std::int32_t did) { return !did_indexable(did, kMinDidIndexSize); }

}  // namespace refgrove

#endif  // REFGROVE_GRAPH_DID_INDEX_H_
