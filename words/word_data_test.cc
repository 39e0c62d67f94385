#include "words/word_data.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "testing/test_files.h"

namespace refgrove {

namespace {

std::vector<std::uint32_t> words_at(const WordData& data, std::int64_t from, std::int64_t to) {
  std::vector<std::uint32_t> ids;
  for (std::int64_t p = from; p < to; ++p) {
    std::uint32_t id = 0;
    if (data.word_id_at(p, &id)) ids.push_back(id);
  }
  return ids;
}

TEST(WordData, LoadsTheThreeFilesWithItsMessages) {
  TempDir dir;
  write_word_table(dir.path(), {"alpha", "beta", "gamma"});
  write_word_idx(dir.path(), {{7, 0}, {3, 6}, {-1, 12}});
  write_word_data(dir.path(), {2, 1, 0, 70000});
  StreamCapture capture;
  const WordData data(dir.path());

  const std::string before = "Reading Word Data from " + dir.path() + "word-table ...\n" +
                             "Read 3 words in 17 bytes.\n"
                             "Read 3 document headers\n"
                             "Mapping abstract file " +
                             dir.path() +
                             "word-data...\n"
                             "Mapped abstracts file at 0x";
  const std::string after = "\nstart=Done.\n";
  const std::string err = capture.err();
  ASSERT_GT(err.size(), before.size() + after.size()) << err;
  EXPECT_EQ(err.substr(0, before.size()), before);
  EXPECT_EQ(err.substr(err.size() - after.size()), after);
  const std::string address = err.substr(before.size(), err.size() - before.size() - after.size());
  EXPECT_EQ(address.find_first_not_of("0123456789abcdef"), std::string::npos) << address;
  EXPECT_EQ(capture.out(), "");

  // The headers, the sentinel, and the sentinel again.
  ASSERT_EQ(data.doc_info.size(), 4u);
  EXPECT_EQ(data.doc_info[2].did, -1);
  EXPECT_EQ(data.doc_info[3].did, -1);
  EXPECT_EQ(data.doc_info[3].offset, 12);
  EXPECT_EQ(words_at(data, 0, 10), (std::vector<std::uint32_t>{2, 1, 0, 70000}));
  EXPECT_STREQ(data.word_table->lookup(1), "beta");
}

TEST(WordData, OnlyTheSentinelCountsAsOneHeader) {
  TempDir dir;
  write_word_table(dir.path(), {"w"});
  write_word_idx(dir.path(), {{-1, 0}});
  write_word_data(dir.path(), {});
  StreamCapture capture;
  const WordData data(dir.path());
  EXPECT_EQ(data.doc_info.size(), 2u);
  EXPECT_NE(capture.err().find("Read 1 document headers\n"), std::string::npos);
  EXPECT_EQ(data.mapped_word_count(), 0);
}

TEST(WordData, DamagedOrMissingFilesLoadWhatIsWhole) {
  const struct {
    const char* what;
    std::string idx;         // bytes of word-idx, or "missing"
    std::uint32_t data_ids;  // word ids in word-data
    std::size_t headers;     // expected doc_info size
    std::int64_t readable;   // word positions that can be read
  } cases[] = {
      {"missing word-idx", "missing", 4, 1, 0},
      {"empty word-idx", "", 4, 1, 0},
      {"partial last header dropped", "whole", 4, 3, 4},
      {"sentinel beyond the data", "long", 2, 3, 2},
  };
  for (const auto& c : cases) {
    TempDir dir;
    write_word_table(dir.path(), {"a", "b"});
    std::vector<std::uint32_t> ids(c.data_ids, 1);
    write_word_data(dir.path(), ids);
    if (c.idx == "whole" || c.idx == "long") {
      write_word_idx(dir.path(), {{5, 0}, {-1, c.idx == "long" ? 3000 : 12}});
      if (c.idx == "whole") write_file(dir.path() + "word-idx", read_file(dir.path() + "word-idx") + "xyz");
    } else if (c.idx != "missing") {
      write_file(dir.path() + "word-idx", c.idx);
    }
    StreamCapture capture;
    const WordData data(dir.path());
    EXPECT_EQ(data.doc_info.size(), c.headers) << c.what;
    EXPECT_EQ(words_at(data, -1, 5000).size(), static_cast<std::size_t>(c.readable)) << c.what;
  }
}

TEST(WordData, MissingDirectoryLoadsEmpty) {
  StreamCapture capture;
  const WordData data("/nonexistent-refgrove-dir/");
  EXPECT_EQ(data.word_table->count, 0);
  EXPECT_EQ(data.doc_info.size(), 1u);
  EXPECT_EQ(data.mapped_word_count(), 0);
  EXPECT_NE(capture.err().find("Read 0 words in 0 bytes.\nRead 0 document headers\n"), std::string::npos);
}

}  // namespace

}  // namespace refgrove
