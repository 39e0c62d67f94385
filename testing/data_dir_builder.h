// Test support: data directories of whole documents, written with the
// production writers.
#ifndef REFGROVE_TESTING_DATA_DIR_BUILDER_H_
#define REFGROVE_TESTING_DATA_DIR_BUILDER_H_

#include <cstdint>
#include <string>
#include <vector>

#include "graph/graph_record.h"
#include "testing/test_files.h"

namespace refgrove {

// A document as the dumps would describe it.
struct TestDocument {
  std::int32_t did = 0;
  std::string key;
  std::int32_t year = -1;
  std::vector<CitationInfo> citations;
  std::vector<std::string> title;
  std::vector<std::string> authors;
  std::vector<std::string> words;
  bool in_graph = true;  // has a graph record
  bool in_words = true;  // has a word-data header
};

// Writes a data directory the way preprocessing does: word ids are interned
// first from the documents' words (in document order), then from the title
// words; authors have a table of their own; word-idx offsets are byte
// positions in word-data, followed by the end sentinel.
class DataDirBuilder {
 public:
  DataDirBuilder& add(TestDocument doc);
  void write(const std::string& dir) const;

 private:
  std::vector<TestDocument> docs_;
};

}  // namespace refgrove

#endif  // REFGROVE_TESTING_DATA_DIR_BUILDER_H_
