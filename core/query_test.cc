#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "core/data_set.h"
#include "testing/test_documents.h"

namespace refgrove {

namespace {

constexpr int kUntouched = 77;
constexpr int kFar = 1000000;

class QueryTest : public LoadedDataTest {
 protected:
  void SetUp() override { load(sample_documents()); }
};

// Per DID: its entry in the DID index (positions of the graph record and of
// the word-data header, -1 where a half has none) and the integer results.
// Without a graph record the graph results are 0; without word data the word
// count is left untouched. Word counts are byte distances in word-idx (0, 12,
// 18, sentinel 24) read as counts of word ids.
TEST_F(QueryTest, DidIndexAndIntegerResults) {
  const struct {
    int did, graph, words, year, cites, title, authors, word_count;
  } cases[] = {
      {2, 0, 0, 1994, 2, 2, 3, 12},
      {4, 1, -1, -1, 0, 1, 0, kUntouched},
      {6, -1, 1, 0, 0, 0, 0, 6},
      {9, 2, 2, 2001, 0, 1, 1, 6},
      {0, -1, -1, 0, 0, 0, 0, kUntouched},
      {3, -1, -1, 0, 0, 0, 0, kUntouched},
      {-1, -1, -1, 0, 0, 0, 0, kUntouched},
      {kFar, -1, -1, 0, 0, 0, 0, kUntouched},
      {10, -1, -1, 0, 0, 0, 0, kUntouched},  // one past the largest DID
  };
  for (const auto& c : cases) {
    const WordGraphDataIds* e = refgrove_data->entry(c.did);
    EXPECT_EQ(e ? e->graph_index : -1, c.graph) << "did " << c.did;
    EXPECT_EQ(e ? e->word_index : -1, c.words) << "did " << c.did;
    int year = kUntouched, cites = kUntouched, title = kUntouched, authors = kUntouched, words = kUntouched;
    const int in_graph = c.graph >= 0, in_words = c.words >= 0;
    EXPECT_EQ((std::vector<int>{refgrove_has_graph_info_1(c.did), refgrove_get_year_1(c.did, &year),
                                refgrove_cite_count_1(c.did, &cites), refgrove_title_length_1(c.did, &title),
                                refgrove_author_count_1(c.did, &authors), refgrove_has_word_info_1(c.did),
                                refgrove_word_count_1(c.did, &words)}),
              (std::vector<int>{in_graph, in_graph, in_graph, in_graph, in_graph, in_words, in_words}))
        << "found, did " << c.did;
    EXPECT_EQ((std::vector<int>{year, cites, title, authors, words}),
              (std::vector<int>{c.year, c.cites, c.title, c.authors, c.word_count}))
        << "year, citations, title, authors, words of did " << c.did;
  }
  int last = 0, docs = 0, words = 0, authors = 0;
  refgrove_last_did_1(&last);
  refgrove_stats_1(&docs, &words, &authors);
  // Four headers: three documents and the file's end sentinel.
  EXPECT_EQ((std::vector<int>{last, docs, words, authors, refgrove_get_nb_authors_1()}),
            (std::vector<int>{10, 4, 9, 3, 3}));
}

// Word ids of the sample, as interned: the abstracts first (we study graph
// walks only words more), then the title words (Graph Untitled); 8 of them
// are in the mapped word-data.
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
      {"key", key, 2, 0, "smith94"},
      {"key", key, 4, 0, ""},
      {"key", key, 6, 0, nullptr},
      {"key", key, kFar, 0, nullptr},
      {"title", title, 2, 0, "Graph"},
      {"title", title, 2, 1, "walks"},
      {"title", title, 9, 0, "walks"},
      {"title", title, 2, 2, nullptr},
      {"title", title, 2, -1, nullptr},
      {"title", title, 6, 0, nullptr},
      {"author", author, 2, 1, "A. B. Jones"},
      {"author", author, 9, 0, "C. Doe"},
      {"author", author, 2, 3, nullptr},
      {"author", author, 4, 0, nullptr},
      {"id2author", id2author, 0, 0, "J. Smith"},
      {"id2author", id2author, 3, 0, nullptr},
      {"id2author", id2author, -1, 0, nullptr},
      {"word", word, 2, 0, "we"},
      {"word", word, 2, 7, "walks"},
      {"word", word, 4, 0, nullptr},
      {"word", word, -1, 0, nullptr},
      {"word", word, 2, 8, nullptr},   // inside the run, past the mapped file
      {"word", word, 2, 12, nullptr},  // past the run
      {"word", word, 6, 0, nullptr},   // position 12: past the mapped file
  };
  for (const auto& c : cases) {
    const char* untouched = "untouched";
    const char* out = untouched;
    const int found = c.op(c.did, c.i, &out);
    EXPECT_EQ(found, c.text != nullptr) << c.op_name << "(" << c.did << ", " << c.i << ")";
    EXPECT_STREQ(out, c.text ? c.text : untouched) << c.op_name << "(" << c.did << ", " << c.i << ")";
  }
}

// Item i of a document as a citation (cited DID first, then its group id)
// and as an author id; absent citations give 0, absent author ids leave the
// output untouched.
TEST_F(QueryTest, CitationsAndAuthorIds) {
  const struct {
    int did, i, cite_found, cited, gid, author_found, author_id;
  } cases[] = {{2, 0, 1, 4, 11, 1, 0},         {2, 1, 1, 9, 12, 1, 1},          {2, 2, 0, 0, 0, 1, 2},
               {2, 3, 0, 0, 0, 0, kUntouched}, {2, -1, 0, 0, 0, 0, kUntouched}, {6, 0, 0, 0, 0, 0, kUntouched}};
  for (const auto& c : cases) {
    int cited = kUntouched, gid = kUntouched, id = kUntouched;
    EXPECT_EQ(refgrove_get_cite_1(c.did, c.i, &cited, &gid), c.cite_found) << c.did << ", " << c.i;
    EXPECT_EQ(refgrove_get_author_id_1(c.did, c.i, &id), c.author_found) << c.did << ", " << c.i;
    EXPECT_EQ((std::vector<int>{cited, gid, id}), (std::vector<int>{c.cited, c.gid, c.author_id}))
        << c.did << ", " << c.i;
  }

  std::vector<int> ids(4, kUntouched);
  refgrove_get_authors_1(2, ids.data());
  EXPECT_EQ(ids, (std::vector<int>{0, 1, 2, kUntouched}));
  ids.assign(4, kUntouched);
  refgrove_get_authors_1(4, ids.data());  // no authors
  refgrove_get_authors_1(6, ids.data());  // no graph record
  refgrove_get_authors_1(kFar, ids.data());
  EXPECT_EQ(ids, std::vector<int>(4, kUntouched));
}

TEST(QueryWithoutData, EverythingIsAbsent) {
  ASSERT_EQ(refgrove_data, nullptr);
  int docs = kUntouched, words = kUntouched, authors = kUntouched, last = kUntouched, year = kUntouched;
  refgrove_stats_1(&docs, &words, &authors);
  refgrove_last_did_1(&last);
  const char* text = nullptr;
  EXPECT_EQ((std::vector<int>{docs, words, authors, last, refgrove_get_nb_authors_1(), refgrove_get_year_1(0, &year),
                              refgrove_id2author_1(0, &text), refgrove_get_word_1(0, 0, &text)}),
            std::vector<int>(8, 0));
  StreamCapture capture;
  refgrove_printdoc_1(0);
  refgrove_print_author_1(0);
  EXPECT_EQ(capture.out() + capture.err(), "");
}

}  // namespace

}  // namespace refgrove
