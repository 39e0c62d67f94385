#include "core/data_set.h"

#include <gtest/gtest.h>

#include "core/test_documents.h"

namespace {

using DataSetTest = LoadedDataTest;

TEST_F(DataSetTest, IndexJoinsBothHalvesByDid) {
  sample_documents().write(dir_.path());
  load_quietly(dir_.path());
  ASSERT_NE(refgrove_data, nullptr);
  const std::vector<WordGraphDataIds>& index = refgrove_data->did_index;
  ASSERT_EQ(index.size(), 10u);
  const struct {
    int did, graph_index, word_index;
  } cases[] = {{0, -1, -1}, {2, 0, 0}, {3, -1, -1}, {4, 1, -1}, {6, -1, 1}, {9, 2, 2}};
  for (const auto& c : cases) {
    EXPECT_EQ(index[c.did].graph_index, c.graph_index) << "did " << c.did;
    EXPECT_EQ(index[c.did].word_index, c.word_index) << "did " << c.did;
  }
}

TEST_F(DataSetTest, LastOccurrenceWinsAndUnownedHeadersAreSkipped) {
  write_word_table(dir_.path(), {"w"});
  write_word_idx(dir_.path(), {{5, 0}, {-1, 0}, {5, 0}, {3, 0}, {-1, 0}});
  write_word_data(dir_.path(), {});
  load_quietly(dir_.path());
  ASSERT_EQ(refgrove_data->did_index.size(), 6u);
  EXPECT_EQ(refgrove_data->did_index[5].word_index, 2);
  EXPECT_EQ(refgrove_data->did_index[3].word_index, 3);
}

TEST_F(DataSetTest, EmptyDirectoryGivesAnEmptyIndex) {
  DataDirBuilder().write(dir_.path());
  load_quietly(dir_.path());
  EXPECT_TRUE(refgrove_data->did_index.empty());
}

TEST_F(DataSetTest, LoadAndReloadMessages) {
  sample_documents().write(dir_.path());
  std::string first, second;
  {
    StreamCapture capture;
    refgrove_load_1(dir_.path().c_str());
    first = capture.err();
  }
  {
    StreamCapture capture;
    refgrove_load_1(dir_.path().c_str());
    second = capture.err();
  }
  EXPECT_EQ(first.find("deleting loaded data"), std::string::npos);
  EXPECT_EQ(second.rfind("deleting loaded data...\nReading Word Data from ", 0), 0u) << second;
  EXPECT_EQ(second.substr(second.find("deleting loaded data...\n") + 24), first);
  const std::string graph_part = "graph_file_name=" + dir_.path() + "graph_data\n" +
                                 "Reading Graph Data...\nread 3 items.\nDone.\n";
  EXPECT_NE(first.find("start=Done.\n" + graph_part), std::string::npos) << first;
}

TEST_F(DataSetTest, PathIsAPlainPrefix) {
  sample_documents().write(dir_.path());
  const std::string without_slash = dir_.path().substr(0, dir_.path().size() - 1);
  StreamCapture capture;
  refgrove_load_1(without_slash.c_str());
  EXPECT_NE(capture.err().find("graph_file_name=" + without_slash + "graph_data\n"), std::string::npos);
  EXPECT_TRUE(refgrove_data->did_index.empty());
}

TEST_F(DataSetTest, MissingDirectoryLoadsNothingAndReturns) {
  load_quietly("/nonexistent-refgrove-dir/");
  ASSERT_NE(refgrove_data, nullptr);
  EXPECT_TRUE(refgrove_data->did_index.empty());
}

TEST_F(DataSetTest, ImplausibleDidsAreNotIndexed) {
  TestDocument far;
  far.did = 2000000000;
  TestDocument negative;
  negative.did = -7;
  TestDocument near;
  near.did = 12;
  DataDirBuilder().add(far).add(negative).add(near).write(dir_.path());
  StreamCapture capture;
  refgrove_load_1(dir_.path().c_str());
  EXPECT_EQ(refgrove_data->did_index.size(), 13u);
  EXPECT_NE(capture.err().find("refgrove: 4 documents not indexed"), std::string::npos) << capture.err();
}

}  // namespace
