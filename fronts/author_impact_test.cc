// Author impact, rankings and timelines worked out by hand on a small set.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/data_view.h"
#include "fronts/author_impact.h"
#include "network/citation_graph.h"
#include "testing/test_documents.h"

namespace {

using namespace refgrove;

TEST(HIndex, OfCitationCounts) {
  const struct {
    std::vector<std::int32_t> counts;
    std::int32_t h;
  } cases[] = {{{}, 0}, {{0}, 0}, {{1}, 1}, {{3, 0, 6, 1, 5}, 3}, {{10, 10}, 2}, {{1, 1, 1}, 1}, {{4, 4, 4, 4}, 4}};
  for (auto c : cases) {
    const std::vector<std::int32_t> input = c.counts;
    EXPECT_EQ(h_index_of(c.counts), c.h) << ::testing::PrintToString(input);
  }
}

TestDocument doc(int did, int year, std::vector<int> cited, std::vector<std::string> authors) {
  TestDocument t;
  t.did = did;
  t.year = year;
  for (const int c : cited) t.citations.push_back(CitationInfo{0, c});
  t.authors = std::move(authors);
  return t;
}

// Citation counts: DID 1 has 4, DID 2 has 2, DID 3 has 1, DIDs 4 and 5 none.
// DID 4 has no year.
class AuthorImpactTest : public ::testing::Test {
 protected:
  void SetUp() override {
    DataDirBuilder b;
    b.add(doc(1, 1990, {}, {"A", "B"}));
    b.add(doc(2, 1991, {1}, {"A"}));
    b.add(doc(3, 1995, {1, 2}, {"B"}));
    b.add(doc(4, -1, {1, 2, 3}, {"C"}));
    b.add(doc(5, 1995, {1}, {"A", "C", "A"}));
    b.write(dir_.path());
    StreamCapture capture;
    data_ = std::make_unique<RefgroveData>(dir_.path());
  }
  int id(const char* name) const {
    int author = -1;
    get_author_named(*data_, name, 0, &author);
    return author;
  }
  TempDir dir_;
  std::unique_ptr<RefgroveData> data_;
};

TEST_F(AuthorImpactTest, ImpactOfEachAuthor) {
  const struct {
    const char* name;
    AuthorImpact expected;
  } cases[] = {{"A", {3, 6, 2, 1990, 1995}}, {"B", {2, 5, 1, 1990, 1995}}, {"C", {2, 0, 0, 1995, 1995}}};
  for (const auto& c : cases) {
    const AuthorImpact& got = author_impact(*data_, id(c.name));
    EXPECT_EQ(got.documents, c.expected.documents) << c.name;
    EXPECT_EQ(got.citations, c.expected.citations) << c.name;
    EXPECT_EQ(got.h_index, c.expected.h_index) << c.name;
    EXPECT_EQ(got.first_year, c.expected.first_year) << c.name;
    EXPECT_EQ(got.last_year, c.expected.last_year) << c.name;
  }
  EXPECT_THROW(author_impact(*data_, -1), NetworkArgumentError);
  EXPECT_THROW(author_impact(*data_, 3), NetworkArgumentError);
}

TEST_F(AuthorImpactTest, RankingsBestFirstTiesById) {
  const int a = id("A"), b = id("B"), c = id("C");
  const int b_or_c = std::min(b, c), c_or_b = std::max(b, c);
  const struct {
    const char* by;
    std::int64_t limit;
    std::vector<std::pair<int, std::int64_t>> expected;
  } cases[] = {
      {"h-index", 10, {{a, 2}, {b, 1}, {c, 0}}},
      {"citations", 2, {{a, 6}, {b, 5}}},
      {"documents", 3, {{a, 3}, {b_or_c, 2}, {c_or_b, 2}}},
      {"documents", 0, {}},
  };
  for (const auto& t : cases) {
    std::vector<std::pair<int, std::int64_t>> got;
    for (const RankedAuthor& r : ranked_authors(*data_, author_rank_by_from_text(t.by), t.limit))
      got.push_back({r.author, r.value});
    EXPECT_EQ(got, t.expected) << t.by << " limit " << t.limit;
  }
  EXPECT_THROW(author_rank_by_from_text("h_index"), NetworkArgumentError);
}

TEST_F(AuthorImpactTest, CitationsByYearOfCitingDocument) {
  EXPECT_EQ(document_citations_by_year(*data_, 1), (Timeline{{1991, 1}, {1995, 2}}));
  EXPECT_EQ(document_citations_by_year(*data_, 3), Timeline{});
  EXPECT_EQ(author_citations_by_year(*data_, id("A")), (Timeline{{1991, 1}, {1995, 3}}));
  EXPECT_EQ(author_citations_by_year(*data_, id("C")), Timeline{});
  EXPECT_THROW(document_citations_by_year(*data_, 7), NetworkArgumentError);
  EXPECT_THROW(author_citations_by_year(*data_, 99), NetworkArgumentError);
}

}  // namespace
