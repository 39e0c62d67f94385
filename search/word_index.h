// WordIndex: the inverted index of a loaded data set's words, for ranked
// search.
//
// Every document's words are its title words (graph record) followed by its
// real abstract (core/lookup.h abstract_run); words without a text in the
// word table are left out. A term is a folded word (core/text_folding.h), or
// in an index of stems the English stem of one (english_stemmer.h); word
// ids whose texts fold (and stem) alike share one term. Terms are numbered in byte
// order of their folded texts, so the terms that start with a prefix form
// one range of ids; a hash table finds a whole term in a probe or two
// rather than the cache misses of a bisection.
//
// Each term has a posting list: the DIDs of the documents holding it,
// ascending, each with its frequency there. DIDs are split into a 16-bit
// high part and a 16-bit low part: a term's list is cut into chunks of one
// high part each (at most one chunk per 65,536 DIDs), and a posting stores
// only the low part and the frequency, 3 bytes in all. Within a chunk the
// low parts are sorted and of fixed width, so a cursor can gallop to a DID
// instead of decoding the list, which keeps AND queries of a rare and a
// common term fast. Frequencies above 254 are kept exactly on the side.
//
// Built in two passes over the words (the first counts, the second fills),
// so nothing is allocated beyond the final arrays and a few per-term
// counters. A built index is never changed: any number of threads may read
// it at once.
#ifndef REFGROVE_SEARCH_WORD_INDEX_H_
#define REFGROVE_SEARCH_WORD_INDEX_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/data_set.h"

namespace refgrove {

class WordIndex {
 public:
  using Term = std::uint32_t;

  // Terms first .. last - 1.
  struct TermRange {
    Term first = 0;
    Term last = 0;
  };

  // A position in one term's posting list that moves forward only.
  class Cursor {
   public:
    Cursor(const WordIndex& index, Term t);
    bool done() const { return posting_ == end_; }
    std::int32_t did() const;
    std::uint32_t frequency() const { return index_->frequency_at(posting_); }
    void next();
    // Moves to the first posting whose DID is `did` or more; true when that
    // posting is `did`'s.
    bool seek(std::int32_t did);

   private:
    void enter_chunk();

    const WordIndex* index_;
    std::size_t chunk_;
    std::size_t chunk_end_ = 0;  // first posting after the current chunk
    std::size_t posting_;
    std::size_t end_;
    std::int32_t high_ = 0;  // DID bits 16-31 of the current chunk
  };

  // What a term is: a folded word, or its stem.
  enum class Terms { kWords, kStems };

  WordIndex(const RefgroveData& d, Terms terms);

  // The terms of `did`'s words in their order, title words then abstract
  // words, into `out` (cleared first); returns the number of title words.
  // Words without a text are left out.
  std::size_t document_terms(const RefgroveData& d, std::int32_t did, std::vector<Term>& out) const;

  // The terms equal to `folded` (a stem, in an index of stems), or (prefix) starting with it.
  TermRange find(std::string_view folded, bool prefix) const;

  std::size_t term_count() const { return term_text_start_.size() - 1; }
  std::string_view term_text(Term t) const;
  // Number of documents holding term `t`.
  std::size_t posting_count(Term t) const { return term_postings_[t + 1] - term_postings_[t]; }

  // Documents with at least one word, and their mean number of words.
  std::size_t document_count() const { return documents_; }
  double average_length() const { return average_length_; }
  // One more than the largest DID the index may hold.
  std::size_t did_limit() const { return lengths_.size(); }
  // Number of words of `did` (0 outside the data set).
  std::uint32_t length(std::int32_t did) const;

  // Bytes held by the index.
  std::size_t memory_bytes() const;

 private:
  struct Chunk {
    std::uint32_t high;   // DID bits 16-31 of its postings
    std::uint64_t first;  // its first posting
  };
  class Builder;

  std::uint32_t frequency_at(std::size_t posting) const;
  void hash_terms();
  // The term whose text is `folded`, or term_count().
  Term exact_term(std::string_view folded) const;

  std::vector<std::uint32_t> term_of_word_;     // by word id
  std::string term_chars_;                      // folded texts, back to back
  std::vector<std::uint64_t> term_text_start_;  // per term, + end
  std::vector<std::uint32_t> term_slots_;       // open addressing by text hash: term + 1, or 0
  std::vector<std::uint64_t> term_postings_;    // first posting per term, + end
  std::vector<std::uint64_t> term_chunks_;      // first chunk per term, + end
  std::vector<Chunk> chunks_;                   // + a sentinel at the end of all postings
  std::vector<std::uint16_t> low_;              // per posting: DID bits 0-15
  std::vector<std::uint8_t> frequency_;         // per posting: min(frequency, 255)
  std::vector<std::pair<std::uint64_t, std::uint32_t>> large_frequencies_;  // posting -> frequency >= 255
  std::vector<std::uint32_t> lengths_;                                      // by DID
  std::size_t documents_ = 0;
  double average_length_ = 0;
};

}  // namespace refgrove

#endif  // REFGROVE_SEARCH_WORD_INDEX_H_
