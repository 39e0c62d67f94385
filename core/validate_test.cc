// The consistency check of a data directory: clean directories give no
// finding; each kind of damage is reported with its file and byte offset.
#include "core/validate.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "testing/data_dir_builder.h"
#include "testing/data_files.h"
#include "testing/test_documents.h"

namespace refgrove {

namespace {

std::string all_text(const std::vector<Finding>& findings) {
  std::string out;
  for (const Finding& f : findings) out += f.text() + "\n";
  return out;
}

// The bytes of two_documents():
//   word ids: one 0, two 1, three 2 (abstracts), then t 3, u 4, v 5 (titles)
//   word-idx: (3, 0) (5, 6) (-1, 9); word-data: 9 bytes
//   word-table: 6 entries at 4..51, block size at 52, block "one\0two\0..."
//   graph_data: author table "A", "B" (28 bytes), count at 28, record 0 (DID
//     3) at 32: key "a" at 40, year at 41, 1 citation, 2 title words at 61
//     and 64, author count at 67, author ids at 69 and 73; record 1 (DID 5)
//     at 77..102.

TEST(ValidateTest, CleanDirectoriesHaveNoFindings) {
  TempDir built, sample;
  two_documents().write(built.path());
  preprocess_sample(sample.path());
  for (const TempDir* d : {&built, &sample}) EXPECT_EQ(all_text(validate_data_dir(d->path())), "") << d->path();
}

TEST(ValidateTest, EachFaultIsReportedWithFileAndOffset) {
  struct Case {
    const char* name;
    std::function<void(DataFiles&)> damage;
    const char* expected;
  };
  const Case cases[] = {
      {"word-idx not a multiple of 8", [](DataFiles& f) { f["word-idx"] += std::string(3, '\0'); },
       "word-idx at offset 24: the size 27 is not a multiple of 8: the last 3 bytes are not a whole document header."},
      {"sentinel missing", [](DataFiles& f) { f["word-idx"].resize(16); },
       "word-idx at offset 8: the last header has DID 5, not the end sentinel's -1"},
      {"sentinel offset", [](DataFiles& f) { set_int32(&f["word-idx"], 20, 12); },
       "word-idx at offset 20: the end sentinel gives 12 as the size of word-data, but word-data has 9 bytes."},
      {"offset backwards",
       [](DataFiles& f) {
         set_int32(&f["word-idx"], 4, 6);
         set_int32(&f["word-idx"], 12, 3);
       },
       "word-idx at offset 12: header 1 starts at byte 3 of word-data, before the header ahead of it (6)."},
      {"offset past the end", [](DataFiles& f) { set_int32(&f["word-idx"], 12, 12); },
       "word-idx at offset 12: header 1 starts at byte 12, past the end of word-data (9 bytes)."},
      {"offset inside a word id", [](DataFiles& f) { set_int32(&f["word-idx"], 12, 4); },
       "word-idx at offset 12: header 1 starts at byte 4 of word-data, which is not a multiple of 3."},
      {"sentinel DID inside", [](DataFiles& f) { set_int32(&f["word-idx"], 0, -1); },
       "word-idx at offset 0: header 0 has the DID -1, which marks the end sentinel, but more headers follow."},
      {"word id outside the table", [](DataFiles& f) { f["word-data"][3] = 6; },
       "word-data at offset 3: word id 6 is outside the word table of 6 strings."},
      {"word-data not a multiple of 3", [](DataFiles& f) { f["word-data"] += 'x'; },
       "word-data at offset 9: the size 10 is not a multiple of 3"},
      {"title word outside the table", [](DataFiles& f) { f["graph_data"].replace(64, 3, "\x70\x11\x01"); },
       "graph_data at offset 64: title word 1 of record 0 (DID 3) has the id 70000, outside the word table of 6 "
       "strings."},
      {"author outside the table", [](DataFiles& f) { set_int32(&f["graph_data"], 73, 2); },
       "graph_data at offset 73: author 1 of record 0 (DID 3) has the id 2, outside the author table of 2 names."},
      {"records out of order", [](DataFiles& f) { set_int32(&f["graph_data"], 77, 2); },
       "graph_data at offset 77: record 1 has DID 2, after DID 3: records must be in ascending DID order."},
      {"DID repeated", [](DataFiles& f) { set_int32(&f["graph_data"], 77, 3); },
       "graph_data at offset 77: record 1 repeats DID 3 of the record before it."},
      {"record count too large", [](DataFiles& f) { set_int32(&f["graph_data"], 28, 3); },
       "graph_data at offset 102: record 2 of 3 is cut short: the file ends inside its DID or key length."},
      {"record cut short", [](DataFiles& f) { f["graph_data"].resize(70); },
       "graph_data at offset 32: record 0 of 2 is cut short: the file ends inside its author ids."},
      {"bytes behind the records", [](DataFiles& f) { set_int32(&f["graph_data"], 28, 1); },
       "graph_data at offset 77: 25 bytes follow the last of the 1 records."},
      {"negative author count", [](DataFiles& f) { f["graph_data"].replace(67, 2, "\x00\x80", 2); },
       "graph_data at offset 67: record 0 (DID 3) has a negative author count, -32768"},
      {"author table cut short", [](DataFiles& f) { f["graph_data"].resize(10); },
       "graph_data at offset 0: the author "
       "table counts 2 strings, whose index and block size need 24 bytes, but only 10 bytes are left in the file."},
      {"word count too large", [](DataFiles& f) { set_int32(&f["word-table"], 0, 100); },
       "word-table at offset 0: the word table counts 100 strings"},
      {"entry numbered out of order", [](DataFiles& f) { set_int32(&f["word-table"], 12, 7); },
       "word-table at offset 12: entry 1 of the word table has the id 7; entries must be numbered in order."},
      {"string outside the block", [](DataFiles& f) { set_int32(&f["word-table"], 48, 1000); },
       "word-table at offset "
       "48: string 5 of the word table starts at 1000, outside its character block of 20 bytes."},
      {"strings overlapping", [](DataFiles& f) { set_int32(&f["word-table"], 24, 4); },
       "word-table at offset 24: "
       "string 2 of the word table starts at 4, before the end of the string ahead of it (8)."},
      {"last string unterminated", [](DataFiles& f) { f["word-table"].back() = 'x'; },
       "word-table at offset 74: string 5 of the word table has no terminating NUL before the end of the block."},
      {"block longer than the file", [](DataFiles& f) { set_int32(&f["word-table"], 52, 30); },
       "word-table at offset "
       "52: the character block of the word table is declared as 30 bytes, but only 20 bytes follow."},
      {"bytes behind the word table", [](DataFiles& f) { f["word-table"] += "zz"; },
       "word-table at offset 76: 2 bytes follow the end of the word table."},
      {"word table empty", [](DataFiles& f) { f["word-table"].clear(); }, "word-table: the file is empty."},
  };
  TempDir dir;
  two_documents().write(dir.path());
  const DataFiles clean = read_data_files(dir.path());
  ASSERT_EQ(clean.at("graph_data").size(), 102u);
  ASSERT_EQ(clean.at("word-table").size(), 76u);
  for (const Case& c : cases) {
    DataFiles files = clean;
    c.damage(files);
    write_data_files(dir.path(), files);
    const std::string found = all_text(validate_data_dir(dir.path()));
    EXPECT_NE(found.find(c.expected), std::string::npos) << c.name << ": expected\n  " << c.expected << "\nfound\n"
                                                         << found;
  }
}

TEST(ValidateTest, ListsTenFindingsOfOneKindThenTheirNumber) {
  TempDir dir;
  write_word_table(dir.path(), {"a"});
  write_word_data(dir.path(), std::vector<std::uint32_t>(25, 9));
  write_word_idx(dir.path(), {{1, 0}, {-1, 75}});
  const std::vector<Finding> findings = validate_data_dir(dir.path());
  int listed = 0;
  for (const Finding& f : findings) listed += f.message.find("word id 9 is outside") != std::string::npos;
  EXPECT_EQ(listed, kMaxFindingsPerKind);
  const std::string text = all_text(findings);
  EXPECT_NE(text.find("word-data: 15 more findings of the same kind (word id outside table) are not listed."),
            std::string::npos)
      << text;
}

// The word data is scanned in blocks of 4,096 ids, four at a time: an id
// outside the table is found wherever it lies, alone or with later ones.
TEST(ValidateTest, FindsAWordIdOutsideTheTableAnywhere) {
  const std::size_t kIds = 3 * 4096 + 7;
  for (const std::vector<std::size_t>& bad :
       std::vector<std::vector<std::size_t>>{{0}, {1}, {3}, {4095}, {4096}, {4097}, {8190}, {kIds - 1}, {5, 9000}}) {
    TempDir dir;
    write_word_table(dir.path(), {"a", "b"});
    std::vector<std::uint32_t> ids(kIds, 1);
    for (const std::size_t i : bad) ids[i] = 2;
    write_word_data(dir.path(), ids);
    write_word_idx(dir.path(), {{1, 0}, {-1, static_cast<std::int32_t>(3 * kIds)}});
    std::vector<std::size_t> found;
    for (const Finding& f : validate_data_dir(dir.path())) {
      if (f.message.find("word id 2 is outside") != std::string::npos) found.push_back(f.offset / 3);
    }
    EXPECT_EQ(found, bad) << "bad ids at " << ::testing::PrintToString(bad);
  }
}

}  // namespace

}  // namespace refgrove
