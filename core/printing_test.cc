#include <gtest/gtest.h>

#include <string>

#include "core/data_set.h"
#include "testing/test_documents.h"

namespace refgrove {

namespace {

using PrintingTest = LoadedDataTest;

TEST_F(PrintingTest, DocumentsAndAuthorsOfTheSample) {
  load(sample_documents());
  const struct {
    int did;
    const char* out;
    const char* err;
  } cases[] = {
      {2,
       "Document 0 - DID=2 - # words=12\n# Authors = 3\nJ. Smith and A. B. Jones and C. Doe\n"
       "title: abstract:\nwe study graph walks only words more walks \n",
       "Graph walks \n"},
      {4, "Document without word-data\n# Authors = 0\n\ntitle: ", "Untitled \n"},
      {6, "Document 1 - DID=6 - # words=6\nno graph info found \nabstract:\n\n", ""},
      {9, "Document 2 - DID=9 - # words=6\n# Authors = 1\nC. Doe\ntitle: abstract:\n\n", "walks \n"},
      {3, "Document without word-data\nno graph info found \n", ""},
      {-1, "Document without word-data\nno graph info found \n", ""},
      {1000000, "Document without word-data\nno graph info found \n", ""},
  };
  for (const auto& c : cases) {
    StreamCapture capture;
    refgrove_printdoc_1(c.did);
    EXPECT_EQ(capture.out(), c.out) << "did " << c.did;
    EXPECT_EQ(capture.err(), c.err) << "did " << c.did;
  }
  // An author prints without a line end; an unknown one prints nothing.
  StreamCapture capture;
  for (const int id : {1, 99, -1, 0}) refgrove_print_author_1(id);
  EXPECT_EQ(capture.out(), "A. B. JonesJ. Smith");
  EXPECT_EQ(capture.err(), "");
}

TEST_F(PrintingTest, EmptyTitleAndEmptyRun) {
  load(DataDirBuilder().add({1, "", -1, {}, {}, {"Solo"}, {}, true, true}));
  StreamCapture capture;
  refgrove_printdoc_1(1);
  EXPECT_EQ(capture.out(), "Document 0 - DID=1 - # words=0\n# Authors = 1\nSolo\ntitle: abstract:\n\n");
  EXPECT_EQ(capture.err(), "\n");
}

}  // namespace

}  // namespace refgrove
