// A small data directory shared by the tests of the query core and of the
// faces above it.
#ifndef REFGROVE_TESTING_TEST_DOCUMENTS_H_
#define REFGROVE_TESTING_TEST_DOCUMENTS_H_

#include <gtest/gtest.h>

#include "core/data_set.h"
#include "refgrove/query.h"
#include "testing/data_dir_builder.h"

namespace refgrove {

// Documents below list every field of TestDocument in order: did, key, year,
// citations, title, authors, words, in_graph, in_words.
//
// DID 2: graph and words, first in word-data (its run is read as written).
// DID 4: graph only.  DID 6: words only.  DID 9: graph and words, second in
// word-data (its offset is a byte position read as a count).  DIDs 0, 1, 3,
// 5, 7, 8 are in neither half.
inline DataDirBuilder sample_documents() {
  DataDirBuilder b;
  b.add({2,
         "smith94",
         1994,
         {{11, 4}, {12, 9}},
         {"Graph", "walks"},
         {"J. Smith", "A. B. Jones", "C. Doe"},
         {"we", "study", "graph", "walks"},
         true,
         true});
  b.add({4, "", -1, {}, {"Untitled"}, {}, {}, true, false});
  b.add({6, "", -1, {}, {}, {}, {"only", "words"}, false, true});
  b.add({9, "doe01", 2001, {}, {"walks"}, {"C. Doe"}, {"more", "walks"}, true, true});
  return b;
}

// Two small documents: DID 3 (key "a", 1999, one citation, title "t u",
// authors A and B, words "one two") and DID 5 (title "v", word "three").
inline DataDirBuilder two_documents() {
  DataDirBuilder b;
  b.add({3, "a", 1999, {CitationInfo{1, 5}}, {"t", "u"}, {"A", "B"}, {"one", "two"}, true, true});
  b.add({5, "", -1, {}, {"v"}, {}, {"three"}, true, true});
  return b;
}

// Loads `dir` quietly.
inline void load_quietly(const std::string& dir) {
  StreamCapture capture;
  refgrove_load_1(dir.c_str());
}

// Tests that load data: whatever a test loads is released after it.
class LoadedDataTest : public ::testing::Test {
 protected:
  void TearDown() override {
    delete refgrove_data;
    refgrove_data = nullptr;
  }
  // Writes `docs` into dir_ and loads it quietly.
  void load(const DataDirBuilder& docs) {
    docs.write(dir_.path());
    load_quietly(dir_.path());
  }
  TempDir dir_;
};

}  // namespace refgrove

#endif  // REFGROVE_TESTING_TEST_DOCUMENTS_H_
