#include "search/word_search.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <queue>
#include <string>
#include <unordered_set>
#include <utility>

#include "core/text_folding.h"

namespace refgrove {
namespace {

// Prefix lists holding more than one posting per this many DIDs are merged
// in an array over all DIDs rather than by sorting.
constexpr std::size_t kDenseMergeRatio = 16;

// The documents holding any of the terms of `range`, ascending, with the
// number of their words that those terms match. A single term is read in
// place through a cursor; the lists of several terms (a prefix) are merged
// into a list of their own first.
class TermPostings {
 public:
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
  std::vector<std::pair<std::int32_t, std::uint32_t>> merged_;
  std::size_t at_ = 0;
  std::size_t size_ = 0;
};

bool better(const SearchHit& a, const SearchHit& b) { return a.score > b.score || (a.score == b.score && a.did < b.did); }

// The best `limit` hits offered (all when limit is 0), best first.
class TopHits {
 public:
  explicit TopHits(std::size_t limit) : limit_(limit) {}

  void offer(SearchHit hit) {
    if (limit_ == 0 || hits_.size() < limit_) {
      hits_.push_back(hit);
      if (limit_ != 0) std::push_heap(hits_.begin(), hits_.end(), better);
    } else if (better(hit, hits_.front())) {
      std::pop_heap(hits_.begin(), hits_.end(), better);
      hits_.back() = hit;
      std::push_heap(hits_.begin(), hits_.end(), better);
    }
  }

  std::vector<SearchHit> take() {
    std::sort(hits_.begin(), hits_.end(), better);
    return std::move(hits_);
  }

 private:
  std::size_t limit_;
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

std::vector<SearchHit> search_all_terms(const WordIndex& index, std::vector<MatchedTerm>& terms, std::size_t limit) {
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
std::vector<SearchHit> search_any_term(const WordIndex& index, std::vector<MatchedTerm>& terms, std::size_t limit) {
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

}  // namespace

const char* to_text(SearchMode mode) { return mode == SearchMode::kAnd ? "and" : "or"; }

SearchMode search_mode_from_text(std::string_view text) {
  for (const SearchMode mode : {SearchMode::kAnd, SearchMode::kOr})
    if (text == to_text(mode)) return mode;
  throw SearchUsageError("unknown search mode \"" + std::string(text) + "\" (and or or)");
}

std::vector<QueryTerm> parse_query(std::string_view query) {
  std::vector<QueryTerm> terms;
  std::unordered_set<std::string> seen;  // folded text, with the "*" of a prefix
  for (const std::string_view piece : split_terms(query)) {
    if (piece == "*") throw SearchUsageError("a lone \"*\" is no search term: give the start of a word before it");
    const bool prefix = piece.ends_with('*');
    QueryTerm term{fold_text(prefix ? piece.substr(0, piece.size() - 1) : piece), prefix};
    if (!seen.insert(term.folded + (prefix ? "*" : "")).second) continue;
    if (terms.size() == kMaxQueryTerms) {
      throw SearchUsageError("too many search terms: a query has at most " + std::to_string(kMaxQueryTerms) +
                             " distinct terms");
    }
    terms.push_back(std::move(term));
  }
  if (terms.empty()) throw SearchUsageError("empty query: give at least one search term");
  return terms;
}

const WordIndex& word_index(const RefgroveData& d) {
  return d.derived().get<WordIndex>([&d] { return WordIndex(d); });
}

std::vector<SearchHit> search(const WordIndex& index, std::span<const QueryTerm> terms, SearchMode mode,
                              std::size_t limit) {
  std::vector<WordIndex::TermRange> ranges;
  for (const QueryTerm& term : terms) {
    const WordIndex::TermRange range = index.find(term.folded, term.prefix);
    if (range.first < range.last) {
      ranges.push_back(range);
    } else if (mode == SearchMode::kAnd) {
      return {};
    }
  }
  const Scorer scorer(index);
  std::vector<MatchedTerm> matched;
  for (const WordIndex::TermRange range : ranges) {
    TermPostings postings(index, range);
    const double idf = scorer.idf(postings.size());
    matched.push_back(MatchedTerm{std::move(postings), idf});
  }
  if (matched.empty()) return {};
  if (mode == SearchMode::kAnd || matched.size() == 1) return search_all_terms(index, matched, limit);
  return search_any_term(index, matched, limit);
}

std::vector<SearchHit> search(const RefgroveData& d, std::string_view query, SearchMode mode, std::size_t limit) {
  const std::vector<QueryTerm> terms = parse_query(query);
  return search(word_index(d), terms, mode, limit);
}

}  // namespace refgrove
