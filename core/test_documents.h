// A small data directory shared by the query-core tests.
#ifndef REFGROVE_CORE_TEST_DOCUMENTS_H_
#define REFGROVE_CORE_TEST_DOCUMENTS_H_

#include <gtest/gtest.h>

#include "core/data_set.h"
#include "core/refgrove.h"
#include "testing/data_dir_builder.h"

// DID 2: graph and words, first in word-data (its run is read as written).
// DID 4: graph only.  DID 6: words only.  DID 9: graph and words, second in
// word-data (its offset is a byte position read as a count).  DIDs 0, 1, 3,
// 5, 7, 8 are in neither half.
inline DataDirBuilder sample_documents() {
  DataDirBuilder b;
  TestDocument d2;
  d2.did = 2;
  d2.key = "smith94";
  d2.year = 1994;
  d2.citations = {{11, 4}, {12, 9}};
  d2.title = {"Graph", "walks"};
  d2.authors = {"J. Smith", "A. B. Jones", "C. Doe"};
  d2.words = {"we", "study", "graph", "walks"};
  TestDocument d4;
  d4.did = 4;
  d4.key = "";
  d4.year = -1;
  d4.title = {"Untitled"};
  d4.in_words = false;
  TestDocument d6;
  d6.did = 6;
  d6.words = {"only", "words"};
  d6.in_graph = false;
  TestDocument d9;
  d9.did = 9;
  d9.key = "doe01";
  d9.year = 2001;
  d9.title = {"walks"};
  d9.authors = {"C. Doe"};
  d9.words = {"more", "walks"};
  b.add(d2).add(d4).add(d6).add(d9);
  return b;
}

// Two small documents: DID 3 (key "a", 1999, one citation, title "t u",
// authors A and B, words "one two") and DID 5 (title "v", word "three").
inline DataDirBuilder two_documents() {
  TestDocument a;
  a.did = 3;
  a.key = "a";
  a.year = 1999;
  a.citations = {CitationInfo{1, 5}};
  a.title = {"t", "u"};
  a.authors = {"A", "B"};
  a.words = {"one", "two"};
  TestDocument b;
  b.did = 5;
  b.title = {"v"};
  b.words = {"three"};
  DataDirBuilder builder;
  builder.add(a).add(b);
  return builder;
}

// Tests that load data: whatever a test loads is released after it.
class LoadedDataTest : public ::testing::Test {
 protected:
  void TearDown() override {
    delete refgrove_data;
    refgrove_data = nullptr;
  }
  TempDir dir_;
};

// Loads `dir` quietly.
inline void load_quietly(const std::string& dir) {
  StreamCapture capture;
  refgrove_load_1(dir.c_str());
}

#endif  // REFGROVE_CORE_TEST_DOCUMENTS_H_
