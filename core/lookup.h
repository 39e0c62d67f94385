// Shared steps of the query and printing operations: from a DID to its graph
// record or its word run, and from an id to its text. Every step checks its
// range, so a DID, index or id outside the data set is simply absent.
#ifndef REFGROVE_CORE_LOOKUP_H_
#define REFGROVE_CORE_LOOKUP_H_

#include <cstdint>

#include "core/data_set.h"

namespace refgrove {

// The run of word ids of one word-data header: positions start ..
// start + count - 1 of "word-data", counted in word ids.
struct WordRun {
  std::int64_t start;
  std::int64_t count;
};

// The graph record of `did` found through the DID index, or null.
const RefgroveGraphData* graph_record(const RefgroveData& d, int did);

// The word-data header position of `did`, or -1.
int word_index_of(const RefgroveData& d, int did);

// The word run of header `w` (which must be a document header, not the last
// entry of doc_info).
WordRun word_run_at(const RefgroveData& d, int w);

// The real abstract of `did`: `words` word ids from byte `start` of
// "word-data", its header's offset read as the byte position it is, up to
// the next header's offset and no further than the mapping reaches. Empty
// for a DID without word data.
struct AbstractRun {
  std::int64_t start = 0;
  std::int64_t words = 0;
};
AbstractRun abstract_run(const RefgroveData& d, int did);

// The text of a word id or an author id, or null outside its table.
const char* word_text(const RefgroveData& d, std::uint32_t id);
const char* author_text(const RefgroveData& d, int author_id);

}  // namespace refgrove

#endif  // REFGROVE_CORE_LOOKUP_H_
