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
// Search with stems and phrases (SearchRequest) goes further:
// - a whole-word term matches every word with the same English stem
//   (english_stemmer.h): "holes" finds "hole" and "holes"; `exact` turns
//   this off. BM25 counts stems as it counts words above: n_t the
//   documents holding the stem, tf the words of D with that stem.
// - a prefix term still matches the words (not the stems) starting with
//   the rest, stemmed or not, so that "entrop*" finds what it says.
// - words in double quotes form a phrase, which matches where its words
//   (stemmed unless exact) follow one another in that order, within the
//   title or within the abstract, never from one to the other. A phrase
//   is one term for BM25: n_t the documents holding it, tf its
//   occurrences in D. A phrase of one word is that word's term.
//
// The indexes behind it (word_index.h) are built by the first search of a
// data set that needs them and released with the set; searches may run on
// any number of threads.
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
// more than kMaxQueryTerms distinct terms, its mode is unknown, or (with
// phrases) a quote is left open or a phrase of several words holds a "*". The
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

// One distinct term of a query, folded, without its "*"; a phrase has its
// words in `phrase` and them joined by blanks in `folded`.
struct QueryTerm {
  std::string folded;
  bool prefix = false;
  std::vector<std::string> phrase;
};

// The distinct terms of `query` in the order they first appear, every
// piece between white space a term. Throws SearchUsageError.
std::vector<QueryTerm> parse_query(std::string_view query);

// The same where words in double quotes form a phrase.
std::vector<QueryTerm> parse_query_with_phrases(std::string_view query);

// The index of `d`'s folded words, built on first use.
const WordIndex& word_index(const RefgroveData& d);

// The index of `d`'s stems, built on first use.
const WordIndex& stem_index(const RefgroveData& d);

// The best `limit` hits of `query` in `d` (limit 0: all of them), words
// matched exactly and no phrases. Throws SearchUsageError.
std::vector<SearchHit> search(const RefgroveData& d, std::string_view query, SearchMode mode, std::size_t limit);

// The same over parsed terms.
std::vector<SearchHit> search(const RefgroveData& d, std::span<const QueryTerm> terms, SearchMode mode,
                              std::size_t limit);

struct SearchRequest {
  SearchMode mode = SearchMode::kAnd;
  bool exact = false;     // words match as they are, not by their stems
  std::size_t limit = 0;  // the number of hits wanted, 0 for all
};

struct SearchAnswer {
  std::vector<SearchHit> hits;  // best first
  std::size_t total = 0;        // the documents matching, before the limit
};

// The hits of `query`, parsed with phrases (parse_query_with_phrases).
// Throws SearchUsageError.
SearchAnswer search(const RefgroveData& d, std::string_view query, const SearchRequest& request);

}  // namespace refgrove

#endif  // REFGROVE_SEARCH_WORD_SEARCH_H_
