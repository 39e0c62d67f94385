#include "web/author_impact_api.h"

#include "fronts/author_impact.h"

namespace refgrove::web {

Json author_impact_json(const RefgroveData& d, int author_id) {
  require_author(d, author_id);
  const AuthorImpact& impact = author_impact(d, author_id);
  Json author = author_ref(d, author_id);
  author["h_index"] = impact.h_index;
  author["documents"] = impact.documents;
  author["citations"] = impact.citations;
  author["years"] = impact.first_year < 0 ? Json() : Json{{"from", impact.first_year}, {"to", impact.last_year}};
  Json by_year = Json::array();
  for (const auto& [year, count] : author_citations_by_year(d, author_id))
    by_year.push_back({{"year", year}, {"citations", count}});
  author["citations_by_year"] = std::move(by_year);
  return author;
}

}  // namespace refgrove::web
