#include "web/overview_api.h"

#include <algorithm>
#include <map>
#include <vector>

#include "fronts/author_impact.h"
#include "network/citation_graph.h"
#include "network/ranking.h"
#include "web/api_params.h"

namespace refgrove::web {
namespace {

struct YearRow {
  std::int32_t year;
  std::int64_t documents = 0;
  std::int64_t citations = 0;
};

// The figures of a set that the overview shows, kept with the set: counting
// them takes a pass over every citation, too slow for each request.
struct Overview {
  std::vector<YearRow> years;
  std::vector<RankedDocument> most_cited;  // the first kMaxLimit
  std::vector<RankedAuthor> top_authors;   // by h-index, the first kMaxLimit
  std::int64_t documents = 0;              // with a citation record
  std::int64_t authors = 0;
};

std::vector<YearRow> year_rows(const CitationGraph& g) {
  std::map<std::int32_t, YearRow> rows;
  for (std::int32_t v = 0; v < g.size(); ++v) {
    const std::int32_t year = g.years()[static_cast<std::size_t>(v)];
    if (year < 0) continue;
    YearRow& row = rows.try_emplace(year, YearRow{year}).first->second;
    ++row.documents;
    row.citations += static_cast<std::int64_t>(g.cited(v).size());
  }
  std::vector<YearRow> list;
  for (const auto& [year, row] : rows) list.push_back(row);
  return list;
}

const Overview& overview_of(const RefgroveData& d) {
  return d.derived().get<Overview>([&] {
    const CitationGraph& g = CitationGraph::of(d);
    return Overview{year_rows(g), ranked(d, RankBy::citations, kMaxLimit),
                    ranked_authors(d, AuthorRankBy::h_index, kMaxLimit), g.size(),
                    static_cast<std::int64_t>(author_impacts(d).size())};
  });
}

// {"<name>": list, "total", "truncated"} of the first `limit` of `all`,
// whose full length is `total`.
template <class Item, class ToJson>
Json cut_list(const char* name, const std::vector<Item>& all, std::int64_t total, int limit, ToJson to_json) {
  Json list = Json::array();
  for (std::size_t i = 0; i < all.size() && i < static_cast<std::size_t>(limit); ++i) list.push_back(to_json(all[i]));
  const bool truncated = total > static_cast<std::int64_t>(list.size());
  return {{name, std::move(list)}, {"total", total}, {"truncated", truncated}};
}

}  // namespace

void prepare_overview(const RefgroveData& d) { overview_of(d); }

Json overview_json(const RefgroveData& d, int limit) {
  const Overview& o = overview_of(d);
  Json years = Json::array();
  for (const YearRow& row : o.years)
    years.push_back({{"year", row.year}, {"documents", row.documents}, {"citations", row.citations}});
  Json most_cited = cut_list("papers", o.most_cited, o.documents, limit, [&](const RankedDocument& r) {
    Json paper = paper_ref(d, r.did);
    paper["citation_count"] = static_cast<std::int64_t>(r.score);
    return paper;
  });
  Json top_authors = cut_list("authors", o.top_authors, o.authors, limit, [&](const RankedAuthor& r) {
    const AuthorImpact& impact = author_impact(d, r.author);
    Json author = author_ref(d, r.author);
    author["h_index"] = impact.h_index;
    author["documents"] = impact.documents;
    author["citations"] = impact.citations;
    return author;
  });
  return {{"years", std::move(years)}, {"most_cited", std::move(most_cited)}, {"top_authors", std::move(top_authors)}};
}

}  // namespace refgrove::web
