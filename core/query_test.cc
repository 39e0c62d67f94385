#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "core/data_set.h"
#include "core/test_documents.h"

namespace {

constexpr int kUntouched = 77;
constexpr int kFar = 1000000;

class QueryTest : public ::testing::Test {
 protected:
  void SetUp() override {
    sample_documents().write(dir_.path());
    load_quietly(dir_.path());
  }
  void TearDown() override {
    delete refgrove_data;
    refgrove_data = nullptr;
  }
  TempDir dir_;
};

// Word ids of the sample, as interned: the abstracts first (we study graph
// walks only words more), then the title words (Graph Untitled). Offsets in
// word-idx are bytes (0, 12, 18, sentinel 24) over 8 mapped word ids.
TEST_F(QueryTest, IntegerResults) {
  using Op = std::function<int(int, int*)>;
  const Op year = refgrove_get_year_1, cites = refgrove_cite_count_1, title = refgrove_title_length_1,
           authors = refgrove_author_count_1, words = refgrove_word_count_1;
  const struct {
    const char* op_name;
    Op op;
    int did, found, out;
  } cases[] = {
      {"year", year, 2, 1, 1994},          {"year", year, 4, 1, -1},
      {"year", year, 6, 0, 0},             {"year", year, 3, 0, 0},
      {"year", year, -1, 0, 0},            {"year", year, kFar, 0, 0},
      {"cite_count", cites, 2, 1, 2},      {"cite_count", cites, 4, 1, 0},
      {"cite_count", cites, 6, 0, 0},      {"title_length", title, 2, 1, 2},
      {"title_length", title, 9, 1, 1},    {"title_length", title, 6, 0, 0},
      {"author_count", authors, 2, 1, 3},  {"author_count", authors, 4, 1, 0},
      {"author_count", authors, 6, 0, 0},  {"word_count", words, 2, 1, 12},
      {"word_count", words, 6, 1, 6},      {"word_count", words, 9, 1, 6},
      {"word_count", words, 4, 0, kUntouched}, {"word_count", words, kFar, 0, kUntouched},
      {"word_count", words, -5, 0, kUntouched},
  };
  for (const auto& c : cases) {
    int out = kUntouched;
    EXPECT_EQ(c.op(c.did, &out), c.found) << c.op_name << "(" << c.did << ")";
    EXPECT_EQ(out, c.out) << c.op_name << "(" << c.did << ")";
  }
}

TEST_F(QueryTest, TextResults) {
  using Op = std::function<int(int, int, const char**)>;
  const Op title = refgrove_get_title_word_1, author = refgrove_get_author_1, word = refgrove_get_word_1;
  const Op key = [](int did, int, const char** out) { return refgrove_get_key_1(did, out); };
  const Op id2author = [](int id, int, const char** out) { return refgrove_id2author_1(id, out); };
  const struct {
    const char* op_name;
    Op op;
    int did, i;
    const char* text;  // null: absent
  } cases[] = {
      {"key", key, 2, 0, "smith94"},      {"key", key, 4, 0, ""},
      {"key", key, 6, 0, nullptr},        {"key", key, kFar, 0, nullptr},
      {"title", title, 2, 0, "Graph"},    {"title", title, 2, 1, "walks"},
      {"title", title, 9, 0, "walks"},    {"title", title, 2, 2, nullptr},
      {"title", title, 2, -1, nullptr},   {"title", title, 6, 0, nullptr},
      {"author", author, 2, 1, "A. B. Jones"}, {"author", author, 9, 0, "C. Doe"},
      {"author", author, 2, 3, nullptr},  {"author", author, 4, 0, nullptr},
      {"word", word, 2, 0, "we"},         {"word", word, 2, 7, "walks"},
      {"word", word, 2, 8, nullptr},      // inside the run, past the mapped file
      {"word", word, 2, 12, nullptr},     // past the run
      {"word", word, 6, 0, nullptr},      // position 12: past the mapped file
      {"word", word, 4, 0, nullptr},      {"word", word, -1, 0, nullptr},
      {"id2author", id2author, 0, 0, "J. Smith"}, {"id2author", id2author, 3, 0, nullptr},
      {"id2author", id2author, -1, 0, nullptr},
  };
  for (const auto& c : cases) {
    const char* untouched = "untouched";
    const char* out = untouched;
    const int found = c.op(c.did, c.i, &out);
    EXPECT_EQ(found, c.text != nullptr) << c.op_name << "(" << c.did << ", " << c.i << ")";
    EXPECT_STREQ(out, c.text ? c.text : untouched) << c.op_name << "(" << c.did << ", " << c.i << ")";
  }
}

TEST_F(QueryTest, CitationsComeOutDidFirst) {
  const struct {
    int did, i, found, cited, gid;
  } cases[] = {{2, 0, 1, 4, 11}, {2, 1, 1, 9, 12}, {2, 2, 0, 0, 0}, {2, -1, 0, 0, 0}, {6, 0, 0, 0, 0}};
  for (const auto& c : cases) {
    int cited = kUntouched, gid = kUntouched;
    EXPECT_EQ(refgrove_get_cite_1(c.did, c.i, &cited, &gid), c.found) << c.did << ", " << c.i;
    EXPECT_EQ(cited, c.cited) << c.did << ", " << c.i;
    EXPECT_EQ(gid, c.gid) << c.did << ", " << c.i;
  }
}

TEST_F(QueryTest, AuthorIdsAndPresence) {
  int id = kUntouched;
  EXPECT_EQ(refgrove_get_author_id_1(2, 2, &id), 1);
  EXPECT_EQ(id, 2);
  id = kUntouched;
  EXPECT_EQ(refgrove_get_author_id_1(2, 3, &id), 0);
  EXPECT_EQ(refgrove_get_author_id_1(6, 0, &id), 0);
  EXPECT_EQ(id, kUntouched);

  std::vector<int> ids(4, kUntouched);
  refgrove_get_authors_1(2, ids.data());
  EXPECT_EQ(ids, (std::vector<int>{0, 1, 2, kUntouched}));
  ids.assign(4, kUntouched);
  refgrove_get_authors_1(4, ids.data());  // no authors
  refgrove_get_authors_1(6, ids.data());  // no graph record
  refgrove_get_authors_1(kFar, ids.data());
  EXPECT_EQ(ids, std::vector<int>(4, kUntouched));

  const struct {
    int did, graph, words;
  } presence[] = {{2, 1, 1}, {4, 1, 0}, {6, 0, 1}, {3, 0, 0}, {-1, 0, 0}, {kFar, 0, 0}};
  for (const auto& p : presence) {
    EXPECT_EQ(refgrove_has_graph_info_1(p.did), p.graph) << p.did;
    EXPECT_EQ(refgrove_has_word_info_1(p.did), p.words) << p.did;
  }
}

TEST_F(QueryTest, WholeDataSet) {
  int last = 0, docs = 0, words = 0, authors = 0;
  refgrove_last_did_1(&last);
  EXPECT_EQ(last, 10);
  refgrove_stats_1(&docs, &words, &authors);
  EXPECT_EQ(docs, 4);  // three documents and the file's end sentinel
  EXPECT_EQ(words, 9);
  EXPECT_EQ(authors, 3);
  EXPECT_EQ(refgrove_get_nb_authors_1(), 3);
  EXPECT_EQ(refgrove_author_distance_1(1, 2), 0.0);
  EXPECT_EQ(refgrove_author_distance_1(5, 5), 0.0);
}

TEST(QueryWithoutData, EverythingIsAbsent) {
  ASSERT_EQ(refgrove_data, nullptr);
  int docs = kUntouched, words = kUntouched, authors = kUntouched, n = kUntouched;
  refgrove_stats_1(&docs, &words, &authors);
  EXPECT_EQ(docs + words + authors, 0);
  refgrove_last_did_1(&n);
  EXPECT_EQ(n, 0);
  EXPECT_EQ(refgrove_get_nb_authors_1(), 0);
  EXPECT_EQ(refgrove_get_year_1(0, &n), 0);
  const char* text = nullptr;
  EXPECT_EQ(refgrove_id2author_1(0, &text), 0);
  EXPECT_EQ(refgrove_get_word_1(0, 0, &text), 0);
  StreamCapture capture;
  refgrove_printdoc_1(0);
  refgrove_print_author_1(0);
  EXPECT_EQ(capture.out() + capture.err(), "");
}

}  // namespace
