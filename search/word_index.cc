#include "search/word_index.h"

#include <algorithm>
#include <limits>
#include <functional>
#include <numeric>

#include "core/lookup.h"
#include "search/text_folding.h"

namespace refgrove {
namespace {

constexpr std::uint32_t kNoTerm = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint8_t kLargeFrequency = 255;

std::int32_t high_part(std::int32_t did) { return did >> 16; }

}  // namespace

// The two passes over every document's words. Both walk the documents in
// DID order and see a term's first occurrence in a document through
// `last_did_`, so a posting list comes out sorted without sorting.
class WordIndex::Builder {
 public:
  Builder(const RefgroveData& d, WordIndex& index) : d_(d), index_(index) {}

  void build() {
    fold_vocabulary();
    const std::size_t terms = index_.term_count();
    index_.lengths_.assign(d_.did_index.size(), 0);
    std::vector<std::uint64_t> postings(terms, 0), chunks(terms, 0);
    last_did_.assign(terms, -1);
    for_each_document([&](std::int32_t did, const std::vector<std::uint32_t>& words) {
      index_.lengths_[static_cast<std::size_t>(did)] = static_cast<std::uint32_t>(words.size());
      for (const std::uint32_t t : words) {
        if (last_did_[t] == did) continue;
        if (last_did_[t] < 0 || high_part(last_did_[t]) != high_part(did)) ++chunks[t];
        last_did_[t] = did;
        ++postings[t];
      }
    });
    count_documents();
    allocate(postings, chunks);
    fill(postings, chunks);
  }

 private:
  // Calls visit(did, terms) for every document with the terms of its words
  // that have a text, title first, in ascending DID order.
  template <class Visit>
  void for_each_document(Visit visit) const {
    const std::vector<std::uint32_t>& term_of = index_.term_of_word_;
    const auto add = [&](std::uint32_t id, std::vector<std::uint32_t>& out) {
      if (id < term_of.size() && term_of[id] != kNoTerm) out.push_back(term_of[id]);
    };
    const WordData& words = *d_.word_data;
    std::vector<std::uint32_t> terms;
    for (std::int32_t did = 0; static_cast<std::size_t>(did) < d_.did_index.size(); ++did) {
      terms.clear();
      if (const RefgroveGraphData* r = graph_record(d_, did)) {
        for (std::int32_t i = 0; i < r->title.size(); ++i) add(r->title[i].id(), terms);
      }
      const AbstractRun run = abstract_run(d_, did);
      for (std::int64_t k = 0; k < run.words; ++k) {
        std::uint32_t id = 0;
        if (!words.word_id_at_byte(run.start + std::int64_t{kWordIdBytes} * k, &id)) break;
        add(id, terms);
      }
      if (!terms.empty()) visit(did, terms);
    }
  }

  // Folds every word of the table and numbers the distinct folded texts in
  // byte order.
  void fold_vocabulary() {
    const CompactedStringTable& table = *d_.word_data->word_table;
    std::vector<std::string> folded(static_cast<std::size_t>(std::max(table.count, 0)));
    std::vector<std::uint32_t> with_text;
    for (std::int32_t id = 0; id < table.count; ++id) {
      const char* text = table.lookup(id);
      if (text == nullptr) continue;
      folded[static_cast<std::size_t>(id)] = fold_word(text);
      with_text.push_back(static_cast<std::uint32_t>(id));
    }
    std::sort(with_text.begin(), with_text.end(),
              [&](std::uint32_t a, std::uint32_t b) { return folded[a] < folded[b]; });
    index_.term_of_word_.assign(folded.size(), kNoTerm);
    index_.term_text_start_.clear();
    for (std::size_t k = 0; k < with_text.size(); ++k) {
      const std::string& text = folded[with_text[k]];
      if (k == 0 || text != folded[with_text[k - 1]]) {
        index_.term_text_start_.push_back(index_.term_chars_.size());
        index_.term_chars_ += text;
      }
      index_.term_of_word_[with_text[k]] = static_cast<std::uint32_t>(index_.term_text_start_.size() - 1);
    }
    index_.term_text_start_.push_back(index_.term_chars_.size());
    index_.term_chars_.shrink_to_fit();
    index_.hash_terms();
  }

  void count_documents() {
    std::uint64_t words = 0;
    for (const std::uint32_t n : index_.lengths_) {
      index_.documents_ += n > 0;
      words += n;
    }
    if (index_.documents_ > 0) index_.average_length_ = static_cast<double>(words) / index_.documents_;
  }

  // Turns the counts into the start of each term's postings and chunks.
  void allocate(const std::vector<std::uint64_t>& postings, const std::vector<std::uint64_t>& chunks) {
    const auto starts = [](const std::vector<std::uint64_t>& counts, std::vector<std::uint64_t>& out) {
      out.assign(counts.size() + 1, 0);
      std::partial_sum(counts.begin(), counts.end(), out.begin() + 1);
    };
    starts(postings, index_.term_postings_);
    starts(chunks, index_.term_chunks_);
    index_.low_.resize(index_.term_postings_.back());
    index_.frequency_.resize(index_.term_postings_.back());
    index_.chunks_.resize(index_.term_chunks_.back() + 1);
    index_.chunks_.back() = Chunk{0, index_.term_postings_.back()};
  }

  // Counts each term of a document, then writes one posting per distinct
  // term, so that the posting arrays are written once per posting rather
  // than once per word.
  void fill(std::vector<std::uint64_t>& next_posting, std::vector<std::uint64_t>& next_chunk) {
    std::copy(index_.term_postings_.begin(), index_.term_postings_.end() - 1, next_posting.begin());
    std::copy(index_.term_chunks_.begin(), index_.term_chunks_.end() - 1, next_chunk.begin());
    std::fill(last_did_.begin(), last_did_.end(), -1);
    std::vector<std::uint32_t> count(last_did_.size(), 0), distinct;
    for_each_document([&](std::int32_t did, const std::vector<std::uint32_t>& words) {
      distinct.clear();
      for (const std::uint32_t t : words) {
        if (last_did_[t] == did) {
          ++count[t];
          continue;
        }
        if (last_did_[t] < 0 || high_part(last_did_[t]) != high_part(did)) {
          index_.chunks_[next_chunk[t]++] = Chunk{static_cast<std::uint32_t>(high_part(did)), next_posting[t]};
        }
        last_did_[t] = did;
        count[t] = 1;
        distinct.push_back(t);
      }
      for (const std::uint32_t t : distinct) {
        const std::uint64_t p = next_posting[t]++;
        index_.low_[p] = static_cast<std::uint16_t>(did & 0xFFFF);
        index_.frequency_[p] = static_cast<std::uint8_t>(std::min<std::uint32_t>(count[t], kLargeFrequency));
        if (count[t] >= kLargeFrequency) index_.large_frequencies_.emplace_back(p, count[t]);
      }
    });
    std::sort(index_.large_frequencies_.begin(), index_.large_frequencies_.end());
  }

  const RefgroveData& d_;
  WordIndex& index_;
  std::vector<std::int32_t> last_did_;  // per term: the last document that held it
};

WordIndex::WordIndex(const RefgroveData& d) { Builder(d, *this).build(); }

void WordIndex::hash_terms() {
  std::size_t slots = 16;
  while (slots < 2 * term_count()) slots *= 2;
  term_slots_.assign(slots, 0);
  for (Term t = 0; t < term_count(); ++t) {
    std::size_t at = std::hash<std::string_view>()(term_text(t)) & (slots - 1);
    while (term_slots_[at] != 0) at = (at + 1) & (slots - 1);
    term_slots_[at] = t + 1;
  }
}

WordIndex::Term WordIndex::exact_term(std::string_view folded) const {
  const std::size_t mask = term_slots_.size() - 1;
  for (std::size_t at = std::hash<std::string_view>()(folded) & mask; term_slots_[at] != 0; at = (at + 1) & mask) {
    if (term_text(term_slots_[at] - 1) == folded) return term_slots_[at] - 1;
  }
  return static_cast<Term>(term_count());
}

WordIndex::TermRange WordIndex::find(std::string_view folded, bool prefix) const {
  if (!prefix) {
    const Term t = exact_term(folded);
    return t == term_count() ? TermRange{} : TermRange{t, t + 1};
  }
  // The first term in [lo, term_count()) for which `past` holds, `past`
  // being false then true along the terms' byte order.
  const auto first_past = [&](Term lo, auto past) {
    Term hi = static_cast<Term>(term_count());
    while (lo < hi) {
      const Term mid = lo + (hi - lo) / 2;
      if (past(term_text(mid))) hi = mid; else lo = mid + 1;
    }
    return lo;
  };
  const Term first = first_past(0, [&](std::string_view text) { return text >= folded; });
  const Term last = first_past(first, [&](std::string_view text) { return !text.starts_with(folded); });
  return TermRange{first, last};
}

std::string_view WordIndex::term_text(Term t) const {
  return std::string_view(term_chars_).substr(term_text_start_[t], term_text_start_[t + 1] - term_text_start_[t]);
}

std::uint32_t WordIndex::length(std::int32_t did) const {
  if (did < 0 || static_cast<std::size_t>(did) >= lengths_.size()) return 0;
  return lengths_[static_cast<std::size_t>(did)];
}

std::uint32_t WordIndex::frequency_at(std::size_t posting) const {
  if (frequency_[posting] < kLargeFrequency) return frequency_[posting];
  return std::lower_bound(large_frequencies_.begin(), large_frequencies_.end(),
                          std::pair{std::uint64_t{posting}, std::uint32_t{0}})
      ->second;
}

std::size_t WordIndex::memory_bytes() const {
  const auto bytes = [](const auto& v) { return v.capacity() * sizeof(v[0]); };
  return bytes(term_of_word_) + term_chars_.capacity() + bytes(term_text_start_) + bytes(term_slots_) + bytes(term_postings_) +
         bytes(term_chunks_) + bytes(chunks_) + bytes(low_) + bytes(frequency_) + bytes(large_frequencies_) +
         bytes(lengths_) + sizeof(*this);
}

WordIndex::Cursor::Cursor(const WordIndex& index, Term t)
    : index_(&index),
      chunk_(index.term_chunks_[t]),
      posting_(index.term_postings_[t]),
      end_(index.term_postings_[t + 1]) {
  if (!done()) enter_chunk();
}

void WordIndex::Cursor::enter_chunk() {
  high_ = static_cast<std::int32_t>(index_->chunks_[chunk_].high);
  chunk_end_ = index_->chunks_[chunk_ + 1].first;
}

std::int32_t WordIndex::Cursor::did() const { return (high_ << 16) | index_->low_[posting_]; }

void WordIndex::Cursor::next() {
  if (++posting_ == chunk_end_ && !done()) {
    ++chunk_;
    enter_chunk();
  }
}

bool WordIndex::Cursor::seek(std::int32_t did) {
  const std::int32_t high = high_part(did);
  while (!done() && high_ < high) {
    posting_ = chunk_end_;
    if (done()) return false;
    ++chunk_;
    enter_chunk();
  }
  if (done() || high_ > high) return false;
  const std::uint16_t low = static_cast<std::uint16_t>(did & 0xFFFF);
  const std::uint16_t* lows = index_->low_.data();
  if (lows[posting_] >= low) return lows[posting_] == low;
  // Gallop while lows[from] < low, then bisect the last step.
  std::size_t from = posting_, step = 1;
  while (from + step < chunk_end_ && lows[from + step] < low) {
    from += step;
    step *= 2;
  }
  posting_ = std::lower_bound(lows + from + 1, lows + std::min(from + step + 1, chunk_end_), low) - lows;
  if (posting_ < chunk_end_) return lows[posting_] == low;
  if (!done()) {
    ++chunk_;
    enter_chunk();
  }
  return false;
}

}  // namespace refgrove
