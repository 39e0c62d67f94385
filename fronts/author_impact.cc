#include "fronts/author_impact.h"

#include <algorithm>
#include <map>

#include "network/citation_graph.h"
#include "network/coauthor_graph.h"

namespace refgrove {
namespace {

struct AuthorImpacts {
  std::vector<AuthorImpact> by_author;
};

AuthorImpact impact_of(const CitationGraph& g, std::span<const std::int32_t> documents,
                       std::vector<std::int32_t>& counts) {
  AuthorImpact a;
  a.documents = static_cast<std::int32_t>(documents.size());
  counts.clear();
  for (const std::int32_t v : documents) {
    counts.push_back(g.citation_count(v));
    a.citations += counts.back();
    const std::int32_t year = g.year(v);
    if (year < 0) continue;
    a.first_year = a.first_year < 0 ? year : std::min(a.first_year, year);
    a.last_year = std::max(a.last_year, year);
  }
  a.h_index = h_index_of(counts);
  return a;
}

}  // namespace

const char* to_text(AuthorRankBy by) {
  switch (by) {
    case AuthorRankBy::h_index:
      return "h-index";
    case AuthorRankBy::citations:
      return "citations";
    case AuthorRankBy::documents:
      return "documents";
  }
  return "";
}

AuthorRankBy author_rank_by_from_text(const std::string& text) {
  for (const AuthorRankBy by : {AuthorRankBy::h_index, AuthorRankBy::citations, AuthorRankBy::documents})
    if (text == to_text(by)) return by;
  throw NetworkArgumentError("unknown author ranking \"" + text + "\" (h-index, citations or documents)");
}

std::int32_t h_index_of(std::span<std::int32_t> counts) {
  std::sort(counts.begin(), counts.end(), std::greater<>());
  std::int32_t h = 0;
  while (h < static_cast<std::int32_t>(counts.size()) && counts[static_cast<std::size_t>(h)] > h) ++h;
  return h;
}

const std::vector<AuthorImpact>& author_impacts(const RefgroveData& d) {
  const CitationGraph& g = CitationGraph::of(d);
  const CoauthorGraph& authors = CoauthorGraph::of(d);
  return d.derived()
      .get<AuthorImpacts>([&] {
        AuthorImpacts all;
        all.by_author.resize(static_cast<std::size_t>(authors.author_count()));
        std::vector<std::int32_t> counts;
        for (std::int32_t a = 0; a < authors.author_count(); ++a)
          all.by_author[static_cast<std::size_t>(a)] = impact_of(g, authors.documents(a), counts);
        return all;
      })
      .by_author;
}

const AuthorImpact& author_impact(const RefgroveData& d, std::int32_t author) {
  CoauthorGraph::of(d).require_author(author);
  return author_impacts(d)[static_cast<std::size_t>(author)];
}

std::vector<RankedAuthor> ranked_authors(const RefgroveData& d, AuthorRankBy by, std::int64_t limit) {
  const std::vector<AuthorImpact>& all = author_impacts(d);
  std::vector<RankedAuthor> ranked;
  ranked.reserve(all.size());
  for (std::size_t a = 0; a < all.size(); ++a) {
    const AuthorImpact& i = all[a];
    const std::int64_t value = by == AuthorRankBy::h_index     ? i.h_index
                               : by == AuthorRankBy::citations ? i.citations
                                                               : i.documents;
    ranked.push_back({static_cast<std::int32_t>(a), value});
  }
  const auto better = [](const RankedAuthor& x, const RankedAuthor& y) {
    return x.value != y.value ? x.value > y.value : x.author < y.author;
  };
  const auto keep =
      static_cast<std::size_t>(std::clamp<std::int64_t>(limit, 0, static_cast<std::int64_t>(ranked.size())));
  std::partial_sort(ranked.begin(), ranked.begin() + static_cast<std::ptrdiff_t>(keep), ranked.end(), better);
  ranked.resize(keep);
  return ranked;
}

Timeline citations_by_year(const CitationGraph& g, std::span<const std::int32_t> nodes) {
  std::map<std::int32_t, std::int64_t> years;
  for (const std::int32_t v : nodes)
    for (const std::int32_t u : g.citing(v))
      if (g.year(u) >= 0) ++years[g.year(u)];
  return {years.begin(), years.end()};
}

Timeline document_citations_by_year(const RefgroveData& d, std::int32_t did) {
  const CitationGraph& g = CitationGraph::of(d);
  const std::int32_t v = g.require_node(did);
  return citations_by_year(g, std::span(&v, 1));
}

Timeline author_citations_by_year(const RefgroveData& d, std::int32_t author) {
  const CoauthorGraph& authors = CoauthorGraph::of(d);
  authors.require_author(author);
  return citations_by_year(CitationGraph::of(d), authors.documents(author));
}

}  // namespace refgrove
