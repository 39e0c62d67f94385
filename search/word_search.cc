#include "search/word_search.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <queue>
#include <string>
#include <unordered_set>
#include <utility>

#include "core/text_folding.h"
#include "search/english_stemmer.h"

namespace refgrove {
namespace {

// Prefix lists holding more than one posting per this many DIDs are merged
// in an array over all DIDs rather than by sorting.
constexpr std::size_t kDenseMergeRatio = 16;

using Postings = std::vector<std::pair<std::int32_t, std::uint32_t>>;  // DID, frequency

// The documents holding any of the terms of `range`, ascending, with the
// number of their words that those terms match. A single term is read in
// place through a cursor; the lists of several terms (a prefix) are merged
// into a list of their own first.
class TermPostings {
 public:
  // A list made elsewhere (a phrase's), ascending by DID.
  explicit TermPostings(Postings merged) : merged_(std::move(merged)), size_(merged_.size()) {}

  TermPostings(const WordIndex& index, WordIndex::TermRange range) {
    if (range.last - range.first == 1) {
      cursor_.emplace(index, range.first);
      size_ = index.posting_count(range.first);
      return;
    }
    std::size_t total = 0;
    for (WordIndex::Term t = range.first; t < range.last; ++t) total += index.posting_count(t);
    total > index.did_limit() / kDenseMergeRatio ? merge_densely(index, range) : merge_by_sorting(index, range);
    size_ = merged_.size();
  }

  std::size_t size() const { return size_; }
  bool done() const { return cursor_ ? cursor_->done() : at_ == merged_.size(); }
  std::int32_t did() const { return cursor_ ? cursor_->did() : merged_[at_].first; }
  std::uint32_t frequency() const { return cursor_ ? cursor_->frequency() : merged_[at_].second; }
  void next() { cursor_ ? cursor_->next() : void(++at_); }

  // Moves to the first document `did` or after; true when it is `did`.
  bool seek(std::int32_t did) {
    if (cursor_) return cursor_->seek(did);
    at_ = std::lower_bound(merged_.begin() + static_cast<std::ptrdiff_t>(at_), merged_.end(),
                           std::pair{did, std::uint32_t{0}}) -
          merged_.begin();
    return !done() && merged_[at_].first == did;
  }

 private:
  // Sorts the postings of all the terms, then adds up those of one DID.
  void merge_by_sorting(const WordIndex& index, WordIndex::TermRange range) {
    for (WordIndex::Term t = range.first; t < range.last; ++t) {
      for (WordIndex::Cursor c(index, t); !c.done(); c.next()) merged_.emplace_back(c.did(), c.frequency());
    }
    std::sort(merged_.begin(), merged_.end());
    std::size_t kept = 0;
    for (const auto& [did, frequency] : merged_) {
      if (kept > 0 && merged_[kept - 1].first == did) {
        merged_[kept - 1].second += frequency;
      } else {
        merged_[kept++] = {did, frequency};
      }
    }
    merged_.resize(kept);
  }

  // Adds up the frequencies in an array over all DIDs: for prefixes whose
  // lists are long, where sorting them would cost more than a pass over
  // the DIDs.
  void merge_densely(const WordIndex& index, WordIndex::TermRange range) {
    std::vector<std::uint32_t> frequencies(index.did_limit(), 0);
    for (WordIndex::Term t = range.first; t < range.last; ++t) {
      for (WordIndex::Cursor c(index, t); !c.done(); c.next()) {
        frequencies[static_cast<std::size_t>(c.did())] += c.frequency();
      }
    }
    for (std::size_t did = 0; did < frequencies.size(); ++did) {
      if (frequencies[did] > 0) merged_.emplace_back(static_cast<std::int32_t>(did), frequencies[did]);
    }
  }

  std::optional<WordIndex::Cursor> cursor_;
  Postings merged_;
  std::size_t at_ = 0;
  std::size_t size_ = 0;
};

bool better(const SearchHit& a, const SearchHit& b) {
  return a.score > b.score || (a.score == b.score && a.did < b.did);
}

// The best `limit` hits offered (all when limit is 0), best first.
class TopHits {
 public:
  explicit TopHits(std::size_t limit) : limit_(limit) {}

  void offer(SearchHit hit) {
    ++offered_;
    if (limit_ == 0 || hits_.size() < limit_) {
      hits_.push_back(hit);
      if (limit_ != 0) std::push_heap(hits_.begin(), hits_.end(), better);
    } else if (better(hit, hits_.front())) {
      std::pop_heap(hits_.begin(), hits_.end(), better);
      hits_.back() = hit;
      std::push_heap(hits_.begin(), hits_.end(), better);
    }
  }

  SearchAnswer take() {
    std::sort(hits_.begin(), hits_.end(), better);
    return SearchAnswer{std::move(hits_), offered_};
  }

 private:
  std::size_t limit_;
  std::size_t offered_ = 0;
  std::vector<SearchHit> hits_;  // a heap whose top is the worst kept, while limited
};

// The BM25 parts that depend on the term or on the document alone.
class Scorer {
 public:
  Scorer(const WordIndex& index) : index_(index) {}

  double idf(std::size_t holding) const {
    const double n = static_cast<double>(index_.document_count());
    const double n_t = static_cast<double>(holding);
    return std::log(1.0 + (n - n_t + 0.5) / (n_t + 0.5));
  }

  // k1 * (1 - b + b * len(D) / avglen)
  double length_norm(std::int32_t did) const {
    return kBm25K1 * (1.0 - kBm25B + kBm25B * index_.length(did) / index_.average_length());
  }

  static double term_score(double idf, std::uint32_t tf, double norm) {
    return idf * tf * (kBm25K1 + 1.0) / (tf + norm);
  }

 private:
  const WordIndex& index_;
};

struct MatchedTerm {
  TermPostings postings;
  double idf;
};

SearchAnswer search_all_terms(const WordIndex& index, std::vector<MatchedTerm>& terms, std::size_t limit) {
  TopHits top(limit);
  std::size_t driver = 0;
  for (std::size_t k = 1; k < terms.size(); ++k) {
    if (terms[k].postings.size() < terms[driver].postings.size()) driver = k;
  }
  std::vector<std::uint32_t> tf(terms.size());
  const Scorer scorer(index);
  for (TermPostings& lead = terms[driver].postings; !lead.done(); lead.next()) {
    const std::int32_t did = lead.did();
    bool everywhere = true;
    for (std::size_t k = 0; k < terms.size() && everywhere; ++k) {
      if (k == driver) {
        tf[k] = lead.frequency();
      } else {
        everywhere = terms[k].postings.seek(did);
        if (everywhere) tf[k] = terms[k].postings.frequency();
      }
    }
    if (!everywhere) continue;
    const double norm = scorer.length_norm(did);
    double score = 0;
    for (std::size_t k = 0; k < terms.size(); ++k) score += Scorer::term_score(terms[k].idf, tf[k], norm);
    top.offer(SearchHit{did, score});
  }
  return top.take();
}

// Merges the terms' lists by DID; within a DID the terms come in query
// order, so that scores add up in the same order as for kAnd.
SearchAnswer search_any_term(const WordIndex& index, std::vector<MatchedTerm>& terms, std::size_t limit) {
  using Head = std::pair<std::int32_t, std::size_t>;  // DID, term
  std::priority_queue<Head, std::vector<Head>, std::greater<>> heads;
  for (std::size_t k = 0; k < terms.size(); ++k) {
    if (!terms[k].postings.done()) heads.emplace(terms[k].postings.did(), k);
  }
  TopHits top(limit);
  const Scorer scorer(index);
  while (!heads.empty()) {
    const std::int32_t did = heads.top().first;
    const double norm = scorer.length_norm(did);
    double score = 0;
    while (!heads.empty() && heads.top().first == did) {
      const std::size_t k = heads.top().second;
      heads.pop();
      TermPostings& p = terms[k].postings;
      score += Scorer::term_score(terms[k].idf, p.frequency(), norm);
      p.next();
      if (!p.done()) heads.emplace(p.did(), k);
    }
    top.offer(SearchHit{did, score});
  }
  return top.take();
}

// How a query's terms find their postings: whole words (and the words of
// phrases) in `words`, a folded word's index or a stem's, prefixes always in
// the folded words' index.
class TermResolver {
 public:
  TermResolver(const RefgroveData& d, bool stems) : d_(d), words_(stems ? stem_index(d) : word_index(d)) {
    if (stems) stemmer_.emplace();
  }

  // The index whose document lengths score the hits: every index has the
  // same.
  const WordIndex& index() const { return words_; }

  // The postings of `term`, or nothing when no document holds it.
  std::optional<TermPostings> postings(const QueryTerm& term) {
    if (!term.phrase.empty()) return phrase_postings(term.phrase);
    if (term.prefix) {
      const WordIndex& prefixes = word_index(d_);
      return of_range(prefixes, prefixes.find(term.folded, true));
    }
    return of_range(words_, words_.find(key(term.folded), false));
  }

 private:
  static std::optional<TermPostings> of_range(const WordIndex& index, WordIndex::TermRange range) {
    if (range.first == range.last) return std::nullopt;
    return TermPostings(index, range);
  }

  std::string key(const std::string& folded) { return stemmer_ ? stemmer_->stem(folded) : folded; }

  // The documents where the phrase's terms follow one another, with the
  // number of times they do: the documents holding all its terms, each
  // read word by word.
  std::optional<TermPostings> phrase_postings(const std::vector<std::string>& words) {
    std::vector<WordIndex::Term> phrase;
    std::vector<TermPostings> lists;
    for (const std::string& word : words) {
      const WordIndex::TermRange range = words_.find(key(word), false);
      if (range.first == range.last) return std::nullopt;
      phrase.push_back(range.first);
      lists.emplace_back(words_, range);
    }
    std::size_t driver = 0;
    for (std::size_t k = 1; k < lists.size(); ++k) {
      if (lists[k].size() < lists[driver].size()) driver = k;
    }
    Postings found;
    std::vector<WordIndex::Term> terms;
    for (TermPostings& lead = lists[driver]; !lead.done(); lead.next()) {
      const std::int32_t did = lead.did();
      bool everywhere = true;
      for (std::size_t k = 0; k < lists.size() && everywhere; ++k) everywhere = k == driver || lists[k].seek(did);
      if (!everywhere) continue;
      const std::size_t title = words_.document_terms(d_, did, terms);
      const std::span<const WordIndex::Term> all(terms);
      const std::uint32_t n = occurrences(all.first(title), phrase) + occurrences(all.subspan(title), phrase);
      if (n > 0) found.emplace_back(did, n);
    }
    if (found.empty()) return std::nullopt;
    return TermPostings(std::move(found));
  }

  static std::uint32_t occurrences(std::span<const WordIndex::Term> run, std::span<const WordIndex::Term> phrase) {
    std::uint32_t n = 0;
    for (std::size_t at = 0; at + phrase.size() <= run.size(); ++at) {
      n += std::equal(phrase.begin(), phrase.end(), run.begin() + static_cast<std::ptrdiff_t>(at));
    }
    return n;
  }

  const RefgroveData& d_;
  const WordIndex& words_;
  std::optional<EnglishStemmer> stemmer_;
};

SearchAnswer run_search(TermResolver& resolver, std::span<const QueryTerm> terms, SearchMode mode, std::size_t limit) {
  const WordIndex& index = resolver.index();
  const Scorer scorer(index);
  std::vector<MatchedTerm> matched;
  for (const QueryTerm& term : terms) {
    std::optional<TermPostings> postings = resolver.postings(term);
    if (!postings) {
      if (mode == SearchMode::kAnd) return {};
      continue;
    }
    const double idf = scorer.idf(postings->size());
    matched.push_back(MatchedTerm{std::move(*postings), idf});
  }
  if (matched.empty()) return {};
  if (mode == SearchMode::kAnd || matched.size() == 1) return search_all_terms(index, matched, limit);
  return search_any_term(index, matched, limit);
}

// Adds a term unless the query has it already.
class TermList {
 public:
  void add(QueryTerm term) {
    if (!seen_.insert(term.folded + (term.prefix ? "*" : term.phrase.empty() ? "" : "\"")).second) return;
    if (terms_.size() == kMaxQueryTerms) {
      throw SearchUsageError("too many search terms: a query has at most " + std::to_string(kMaxQueryTerms) +
                             " distinct terms");
    }
    terms_.push_back(std::move(term));
  }

  // A word, or a prefix when it ends in "*".
  void add_word(std::string_view piece) {
    if (piece == "*") throw SearchUsageError("a lone \"*\" is no search term: give the start of a word before it");
    const bool prefix = piece.ends_with('*');
    add(QueryTerm{fold_text(prefix ? piece.substr(0, piece.size() - 1) : piece), prefix, {}});
  }

  std::vector<QueryTerm> take() {
    if (terms_.empty()) throw SearchUsageError("empty query: give at least one search term");
    return std::move(terms_);
  }

 private:
  std::vector<QueryTerm> terms_;
  std::unordered_set<std::string> seen_;  // folded text, with "*" for a prefix and '"' for a phrase
};

}  // namespace

const char* to_text(SearchMode mode) { return mode == SearchMode::kAnd ? "and" : "or"; }

SearchMode search_mode_from_text(std::string_view text) {
  for (const SearchMode mode : {SearchMode::kAnd, SearchMode::kOr})
    if (text == to_text(mode)) return mode;
  throw SearchUsageError("unknown search mode \"" + std::string(text) + "\" (and or or)");
}

std::vector<QueryTerm> parse_query(std::string_view query) {
  TermList terms;
  for (const std::string_view piece : split_terms(query)) terms.add_word(piece);
  return terms.take();
}

std::vector<QueryTerm> parse_query_with_phrases(std::string_view query) {
  TermList terms;
  bool quoted = false;
  for (std::size_t from = 0; from <= query.size();) {
    const std::size_t quote = std::min(query.find('"', from), query.size());
    const std::vector<std::string_view> pieces = split_terms(query.substr(from, quote - from));
    if (!quoted || pieces.size() == 1) {
      for (const std::string_view piece : pieces) terms.add_word(piece);
    } else if (!pieces.empty()) {
      QueryTerm phrase;
      for (const std::string_view piece : pieces) {
        if (piece.ends_with('*')) {
          throw SearchUsageError("a phrase holds whole words: \"" + std::string(piece) + "\" ends in \"*\"");
        }
        phrase.phrase.push_back(fold_text(piece));
        phrase.folded += (phrase.folded.empty() ? "" : " ") + phrase.phrase.back();
      }
      terms.add(std::move(phrase));
    }
    if (quote == query.size()) {
      if (quoted) throw SearchUsageError("a phrase has no closing quote: close it with \"");
      break;
    }
    quoted = !quoted;
    from = quote + 1;
  }
  return terms.take();
}

const WordIndex& word_index(const RefgroveData& d) {
  return d.derived().get<WordIndex>([&d] { return WordIndex(d, WordIndex::Terms::kWords); });
}

const WordIndex& stem_index(const RefgroveData& d) {
  // A type of its own for the set's cache of derived structures.
  struct StemIndex {
    WordIndex index;
  };
  return d.derived().get<StemIndex>([&d] { return StemIndex{WordIndex(d, WordIndex::Terms::kStems)}; }).index;
}

std::vector<SearchHit> search(const RefgroveData& d, std::span<const QueryTerm> terms, SearchMode mode,
                              std::size_t limit) {
  TermResolver resolver(d, false);
  return run_search(resolver, terms, mode, limit).hits;
}

std::vector<SearchHit> search(const RefgroveData& d, std::string_view query, SearchMode mode, std::size_t limit) {
  const std::vector<QueryTerm> terms = parse_query(query);
  return search(d, terms, mode, limit);
}

SearchAnswer search(const RefgroveData& d, std::string_view query, const SearchRequest& request) {
  const std::vector<QueryTerm> terms = parse_query_with_phrases(query);
  TermResolver resolver(d, !request.exact);
  return run_search(resolver, terms, request.mode, request.limit);
}

}  // namespace refgrove
