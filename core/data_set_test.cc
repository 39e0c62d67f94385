#include "core/data_set.h"

#include <gtest/gtest.h>

#include <regex>

#include "testing/test_documents.h"

namespace refgrove {

namespace {

using DataSetTest = LoadedDataTest;

// How the DID index is built is checked through the queries (query_test.cc);
// these are the loads around it.

TEST_F(DataSetTest, LastOccurrenceWinsAndUnownedHeadersAreSkipped) {
  write_word_table(dir_.path(), {"w"});
  write_word_idx(dir_.path(), {{5, 0}, {-1, 0}, {5, 0}, {3, 0}, {-1, 0}});
  write_word_data(dir_.path(), {});
  load_quietly(dir_.path());
  ASSERT_EQ(refgrove_data->did_index.size(), 6u);
  EXPECT_EQ(refgrove_data->did_index[5].word_index, 2);
  EXPECT_EQ(refgrove_data->did_index[3].word_index, 3);
}

// An empty directory, a missing one, and a path without its "/" (a plain
// prefix, so it names other files): each loads a data set with no documents.
TEST_F(DataSetTest, LoadsWithoutDocuments) {
  sample_documents().write(dir_.path());
  TempDir empty;
  DataDirBuilder().write(empty.path());
  const std::string without_slash = dir_.path().substr(0, dir_.path().size() - 1);
  for (const std::string& path : {empty.path(), std::string("/nonexistent-refgrove-dir/"), without_slash}) {
    StreamCapture capture;
    refgrove_load_1(path.c_str());
    ASSERT_NE(refgrove_data, nullptr) << path;
    EXPECT_TRUE(refgrove_data->did_index.empty()) << path;
    EXPECT_NE(capture.err().find("graph_file_name=" + path + "graph_data\n"), std::string::npos) << capture.err();
  }
}

TEST_F(DataSetTest, LoadAndReloadMessages) {
  sample_documents().write(dir_.path());
  std::string err[2];
  for (std::string& e : err) {
    StreamCapture capture;
    refgrove_load_1(dir_.path().c_str());
    e = capture.err();
  }
  EXPECT_EQ(err[0].rfind("Reading Word Data from ", 0), 0u) << err[0];
  // The second mapping need not land where the first one did (it does not
  // under an emulator), so the address is left out of the comparison.
  const std::regex address("at 0x[0-9a-f]+");
  EXPECT_EQ(std::regex_replace(err[1], address, "at ADDRESS"),
            "deleting loaded data...\n" + std::regex_replace(err[0], address, "at ADDRESS"));
  const std::string graph_part =
      "graph_file_name=" + dir_.path() + "graph_data\n" + "Reading Graph Data...\nread 3 items.\nDone.\n";
  EXPECT_NE(err[0].find("start=Done.\n" + graph_part), std::string::npos) << err[0];
}

TEST_F(DataSetTest, ImplausibleDidsAreNotIndexed) {
  DataDirBuilder docs;
  for (const int did : {2000000000, -7, 12}) docs.add({did, "", -1, {}, {}, {}, {}, true, true});
  docs.write(dir_.path());
  StreamCapture capture;
  refgrove_load_1(dir_.path().c_str());
  EXPECT_EQ(refgrove_data->did_index.size(), 13u);
  EXPECT_NE(capture.err().find("refgrove: 4 documents not indexed"), std::string::npos) << capture.err();
}

}  // namespace

}  // namespace refgrove
