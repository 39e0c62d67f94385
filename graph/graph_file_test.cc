#include "graph/graph_file.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "testing/data_dir_builder.h"
#include "words/string_table.h"

namespace refgrove {

namespace {

std::string le32(std::int32_t v) {
  std::ostringstream out;
  put_int32(out, v);
  return out.str();
}

std::string record_bytes(const RefgroveGraphData& r) {
  std::ostringstream out;
  r.write(out);
  return out.str();
}

// A graph file with the given authors and records, as preprocessing writes it.
struct GraphFile {
  Arena arena;
  std::vector<RefgroveGraphData*> docs;

  GraphFile& add(std::int32_t did, std::string key = "", std::int32_t year = -1, std::vector<CitationInfo> cites = {},
                 std::vector<WordId> title = {}, std::vector<std::int32_t> authors = {}) {
    docs.push_back(RefgroveGraphData::create(arena, did, key, year, cites, title, authors));
    return *this;
  }
  std::string bytes(const std::vector<std::string>& author_names = {}) const {
    StringTable names;
    for (const std::string& a : author_names) names.String2ID(a);
    std::ostringstream out;
    write_graph_file(out, CompactedStringTable(names), docs);
    return out.str();
  }
};

std::unique_ptr<RefgroveGraph> read_graph(const std::string& bytes, std::string* messages = nullptr) {
  StreamCapture capture;
  std::istringstream in(bytes);
  auto graph = std::make_unique<RefgroveGraph>(in);
  if (messages) *messages = capture.err();
  return graph;
}

TEST(GraphRecord, ByteLayout) {
  GraphFile f;
  f.add(17).add(0x01020304, "k5", 1999, {{3, 40}, {8, 41}}, {WordId::from_id(70000)}, {6, 7});
  EXPECT_EQ(record_bytes(*f.docs[0]), le32(17) + le32(0) + le32(-1) + le32(0) + le32(0) + std::string(2, '\0'));
  EXPECT_EQ(record_bytes(*f.docs[0]).size(), 22u);
  EXPECT_EQ(record_bytes(*f.docs[1]), le32(0x01020304) + le32(2) + "k5" + le32(1999) + le32(2) + le32(3) + le32(40) +
                                          le32(8) + le32(41) + le32(1) + "\x70\x11\x01" + std::string("\x02\x00", 2) +
                                          le32(6) + le32(7));
}

TEST(GraphRecord, AuthorCountIsKeptInSixteenBits) {
  Arena arena;
  const std::vector<std::int32_t> many(32768, 5);
  const RefgroveGraphData* r = RefgroveGraphData::create(arena, 1, "", -1, {}, {}, many);
  EXPECT_EQ(r->nb_authors, -32768);
  EXPECT_EQ(record_bytes(*r).size(), 22u);  // a negative count writes no ids
  const std::vector<std::int32_t> wrapped(65537, 5);
  EXPECT_EQ(RefgroveGraphData::create(arena, 1, "", -1, {}, {}, wrapped)->nb_authors, 1);
}

TEST(RefgroveGraph, ReadsBackWhatWasWritten) {
  GraphFile f;
  f.add(3, "smith94", 1994, {{1, 5}}, {WordId::from_id(2), WordId::from_id(1)}, {0, 1})
      .add(5)
      .add(9, "k9", 2001, {}, {WordId::from_id(0xABCDEF)}, {1});
  std::string messages;
  const auto g = read_graph(f.bytes({"J. Smith", "A. Jones"}), &messages);
  EXPECT_EQ(messages, "Reading Graph Data...\nread 3 items.\nDone.\n");
  ASSERT_EQ(g->docs.size(), 3u);
  const RefgroveGraphData& r = *g->docs[0];
  EXPECT_EQ(r.did, 3);
  EXPECT_EQ(r.key, "smith94");
  EXPECT_EQ(r.year, 1994);
  ASSERT_EQ(r.citations.size(), 1);
  EXPECT_EQ(r.citations[0].gid, 1);
  EXPECT_EQ(r.citations[0].did, 5);
  EXPECT_EQ(r.title[1].id(), 1u);
  EXPECT_EQ(g->docs[2]->title[0].id(), 0xABCDEFu);
  EXPECT_EQ(r.nb_authors, 2);
  EXPECT_STREQ(g->author_name(r.authors[1]), "A. Jones");
  EXPECT_EQ(g->author_name(2), nullptr);

  std::ostringstream again;
  g->write(again);
  EXPECT_EQ(again.str(), f.bytes({"J. Smith", "A. Jones"}));
}

TEST(RefgroveGraph, EmptyAndOddCounts) {
  const std::string empty_table = le32(0) + le32(0);
  const struct {
    const char* what;
    std::string bytes;
    std::string messages;
    std::size_t docs;
  } cases[] = {
      {"no records", empty_table + le32(0), "Reading Graph Data...\nread 0 items.\nDone.\n", 0},
      {"negative count", empty_table + le32(-2), "Reading Graph Data...\nread -2 items.\nDone.\n", 0},
      {"count beyond the data",
       GraphFile().add(1).add(2).bytes().substr(0, 8) + le32(1000000) + GraphFile().add(1).add(2).bytes().substr(12),
       "Reading Graph Data...\nread 1000000 items.\nDone.\n", 2},
      {"missing file", "", "Reading Graph Data...\nread 0 items.\nDone.\n", 0},
  };
  for (const auto& c : cases) {
    std::string messages;
    const auto g = read_graph(c.bytes, &messages);
    EXPECT_EQ(messages, c.messages) << c.what;
    EXPECT_EQ(g->docs.size(), c.docs) << c.what;
  }
  EXPECT_EQ(GraphFile().bytes(), empty_table + le32(0));
}

TEST(RefgroveGraph, TruncatedFileKeepsTheWholeRecords) {
  GraphFile f;
  f.add(1, "a", 1, {{1, 2}}, {WordId::from_id(1)}, {0}).add(2, "bb", 2, {}, {}, {0, 0}).add(3);
  const std::string bytes = f.bytes({"x"});
  std::size_t records_start = bytes.size();
  for (const RefgroveGraphData* r : f.docs) records_start -= record_bytes(*r).size();
  std::vector<std::size_t> record_ends{records_start};
  for (const RefgroveGraphData* r : f.docs) record_ends.push_back(record_ends.back() + record_bytes(*r).size());
  for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
    std::size_t whole = 0;
    while (whole < f.docs.size() && record_ends[whole + 1] <= cut) ++whole;
    EXPECT_EQ(read_graph(bytes.substr(0, cut))->docs.size(), whole) << "cut at " << cut;
  }
}

TEST(RefgroveGraph, KeyWithNulComesBackShortened) {
  GraphFile f;
  f.add(1, std::string("ab\0cd", 5));
  const std::string bytes = f.bytes();
  EXPECT_NE(bytes.find(std::string("ab\0cd", 5)), std::string::npos);  // written in full
  EXPECT_EQ(read_graph(bytes)->docs[0]->key, "ab");
}

TEST(RefgroveGraph, FindDidIsABinarySearchOverFileOrder) {
  GraphFile f;
  f.add(3).add(5).add(9);
  const auto g = read_graph(f.bytes());
  const struct { int did, position; } cases[] = {{3, 0}, {5, 1}, {9, 2}, {4, -1}, {2, -1}, {10, -1}, {-1, -1}};
  for (const auto& c : cases) EXPECT_EQ(g->findDid(c.did), c.position) << "did " << c.did;
  EXPECT_EQ(read_graph(GraphFile().bytes())->findDid(0), -1);

  GraphFile dup;
  dup.add(1).add(4).add(4).add(4).add(7);
  EXPECT_EQ(read_graph(dup.bytes())->findDid(4), 2);  // the first probe that hits
}

}  // namespace

}  // namespace refgrove
