// Ranked search of a loaded data set's documents by their words.
//
// A query is a list of terms separated by white space. A term matches a word
// when both fold to the same text (core/text_folding.h); a term ending in "*"
// matches every word whose folded text starts with the rest. Mode kAnd keeps
// the documents holding every term, kOr those holding at least one.
//
// Hits are ranked by BM25 over one field, a document's title words followed
// by its abstract words. For a document D and a term t:
//
//   score(D, t) = idf(t) * tf * (k1 + 1) / (tf + k1 * (1 - b + b * len(D) / avglen))
//   idf(t)      = ln(1 + (N - n_t + 0.5) / (n_t + 0.5))
//
// with k1 = 1.2, b = 0.75, N the documents with at least one word, n_t those
// holding a word that t matches, tf the number of D's words that t matches
// (for a prefix term, all the words it matches), len(D) D's number of words
// and avglen their mean over the N documents. A document's score is the sum
// of score(D, t) over the query's distinct terms, in the order they first
// appear. Best first; equal scores by ascending DID.
//
// The index behind it (word_index.h) is built by the first search of a data
// set and released with the set; searches may run on any number of threads.
#ifndef REFGROVE_SEARCH_WORD_SEARCH_H_
#define REFGROVE_SEARCH_WORD_SEARCH_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "core/data_set.h"
#include "search/word_index.h"

namespace refgrove {

enum class SearchMode { kAnd, kOr };

struct SearchHit {
  std::int32_t did;
  double score;
};

// A query that cannot be run: it has no term, a term is a lone "*", it has
// more than kMaxQueryTerms distinct terms, or its mode is unknown. The
// message is for people.
class SearchUsageError : public std::invalid_argument {
 public:
  using std::invalid_argument::invalid_argument;
};

// The text of a mode ("and", "or") and back; from_text throws
// SearchUsageError for any other text.
const char* to_text(SearchMode mode);
SearchMode search_mode_from_text(std::string_view text);

// Bounds the work and memory of one query: each prefix term may hold a
// merged list as long as the data set's documents.
inline constexpr std::size_t kMaxQueryTerms = 1024;

inline constexpr double kBm25K1 = 1.2;
inline constexpr double kBm25B = 0.75;

// One distinct term of a query, folded, without its "*".
struct QueryTerm {
  std::string folded;
  bool prefix = false;
};

// The distinct terms of `query` in the order they first appear. Throws
// SearchUsageError.
std::vector<QueryTerm> parse_query(std::string_view query);

// The index of `d`, built on first use.
const WordIndex& word_index(const RefgroveData& d);

// The best `limit` hits of `query` in `d` (limit 0: all of them). Throws
// SearchUsageError.
std::vector<SearchHit> search(const RefgroveData& d, std::string_view query, SearchMode mode, std::size_t limit);

// The same over an index and parsed terms.
std::vector<SearchHit> search(const WordIndex& index, std::span<const QueryTerm> terms, SearchMode mode,
                              std::size_t limit);

}  // namespace refgrove

#endif  // REFGROVE_SEARCH_WORD_SEARCH_H_
