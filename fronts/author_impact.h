// Author impact and timelines over the citation graph.
//
// An author's documents are the graph records listing them (once each); the
// citations they received are the citations of those documents within the
// set, summed; the h-index is the largest h such that h of their documents
// have at least h citations each. First and last year are those of their
// documents with a known year (-1 when none has one).
//
// A timeline counts citations received per year of the citing document;
// citations from documents without a year are left out.
#ifndef REFGROVE_FRONTS_AUTHOR_IMPACT_H_
#define REFGROVE_FRONTS_AUTHOR_IMPACT_H_

#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "core/data_set.h"
#include "network/citation_graph.h"

namespace refgrove {

struct AuthorImpact {
  std::int32_t documents = 0;
  std::int64_t citations = 0;
  std::int32_t h_index = 0;
  std::int32_t first_year = -1;
  std::int32_t last_year = -1;
};

enum class AuthorRankBy { h_index, citations, documents };

// The text of a ranking ("h-index", "citations", "documents") and back;
// from_text throws NetworkArgumentError for any other text.
const char* to_text(AuthorRankBy by);
AuthorRankBy author_rank_by_from_text(const std::string& text);

// The h-index of a list of citation counts (reordered in place).
std::int32_t h_index_of(std::span<std::int32_t> citation_counts);

// The impact of every author of the author table, by author id, built on
// first use.
const std::vector<AuthorImpact>& author_impacts(const RefgroveData& d);
// One author's impact; throws NetworkArgumentError for an id outside the
// author table.
const AuthorImpact& author_impact(const RefgroveData& d, std::int32_t author);

struct RankedAuthor {
  std::int32_t author;
  std::int64_t value;
};
// The first `limit` authors by the measure, descending, ties by ascending id.
std::vector<RankedAuthor> ranked_authors(const RefgroveData& d, AuthorRankBy by, std::int64_t limit);

// (year, citations) pairs by ascending year. Throw NetworkArgumentError for a
// DID without a graph record or an unknown author.
using Timeline = std::vector<std::pair<std::int32_t, std::int64_t>>;
// The citations the nodes received, summed, by year of the citing node.
Timeline citations_by_year(const CitationGraph& g, std::span<const std::int32_t> nodes);
Timeline document_citations_by_year(const RefgroveData& d, std::int32_t did);
Timeline author_citations_by_year(const RefgroveData& d, std::int32_t author);

}  // namespace refgrove

#endif  // REFGROVE_FRONTS_AUTHOR_IMPACT_H_
