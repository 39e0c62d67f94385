// RefgroveData: the one loaded data set, joining the graph half and the word
// half of a data directory through a DID index.
//
// The two halves are written by different passes and list documents in
// different orders; a document may be in one half only. `did_index` is a flat
// array indexed by DID that gives, for every DID, the position of its graph
// record and of its word-data header (-1 where a half has none), so that a
// query reaches either in one array access. Where a DID occurs more than
// once in a half, the last occurrence wins.
//
// A loaded set is never changed, except that its reverse indexes and derived
// structures are built on first use (thread-safely, see reverse_index.h); any number of threads
// may query it at once.
#ifndef REFGROVE_CORE_DATA_SET_H_
#define REFGROVE_CORE_DATA_SET_H_

#include <cstdint>
#include <iostream>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "core/derived_structures.h"
#include "core/reverse_index.h"
#include "graph/graph_file.h"
#include "refgrove/query.h"
#include "words/word_data.h"

namespace refgrove {

struct WordGraphDataIds {
  std::int32_t graph_index = -1;  // position in graph->docs, or -1
  std::int32_t word_index = -1;   // position in word_data->doc_info, or -1
};

class RefgroveData {
 public:
  // Loads the data directory `path`, a prefix to which the file names are
  // appended (so it normally ends in "/"), writing progress to `log`.
  explicit RefgroveData(const std::string& path, std::ostream& log = std::cerr);

  // A set without documents, words or authors, standing for "nothing
  // loaded" where a data set is required.
  static const RefgroveData& empty();

  RefgroveData(const RefgroveData&) = delete;
  RefgroveData& operator=(const RefgroveData&) = delete;

  // The entry of `did`, or null for a DID outside the index.
  const WordGraphDataIds* entry(int did) const {
    if (did < 0 || static_cast<std::size_t>(did) >= did_index.size()) return nullptr;
    return &did_index[static_cast<std::size_t>(did)];
  }

  // The reverse indexes, built on first use.
  const GroupedIndex& cited_by() const {
    return cited_by_.get([this] { return cited_by_index(*graph, did_index); });
  }
  const GroupedIndex& author_docs() const {
    return author_docs_.get([this] { return author_docs_index(*graph, did_index); });
  }
  const KeyIndex& key_docs() const {
    return key_docs_.get([this] { return KeyIndex(*graph, did_index); });
  }

  // What the layers above derive from this set (search, analyses), built on
  // first use and released with the set.
  const DerivedStructures& derived() const { return derived_; }

  // Documents left out of the index: their DID is negative or too large.
  std::size_t unindexed() const { return unindexed_; }

  std::vector<WordGraphDataIds> did_index;
  std::unique_ptr<WordData> word_data;
  std::unique_ptr<RefgroveGraph> graph;

 private:
  RefgroveData();  // empty()

  // Whether `did` has a place in an index proportional to the data's size;
  // indexable() also counts the DIDs that have none.
  bool fits(std::int32_t did) const;
  bool indexable(std::int32_t did);
  void size_index();
  void index_graph();
  void index_words();

  std::size_t max_index_size_ = 0;
  std::size_t unindexed_ = 0;  // documents whose DID could not be indexed

  BuiltOnce<GroupedIndex> cited_by_;
  BuiltOnce<GroupedIndex> author_docs_;
  BuiltOnce<KeyIndex> key_docs_;
  DerivedStructures derived_;
};

// The data set that the C operations read: the one in `refgrove_data`, or
// the empty set before the first load, which answers every lookup as absent.
const RefgroveData& loaded_data();

}  // namespace refgrove

#endif  // REFGROVE_CORE_DATA_SET_H_
