#include "search/word_index.h"

#include <algorithm>
#include <functional>
#include <future>
#include <limits>
#include <numeric>
#include <optional>

#include "core/lookup.h"
#include "core/text_folding.h"
#include "search/english_stemmer.h"

namespace refgrove {
namespace {

constexpr std::uint32_t kNoTerm = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint8_t kLargeFrequency = 255;

std::int32_t high_part(std::int32_t did) { return did >> 16; }

}  // namespace

// The two passes over every document's words, each run on two stretches of
// DIDs side by side. A stretch walks its documents in DID order and sees a
// term's first occurrence in a document through its `last_did`, so a
// posting list comes out sorted without sorting. Stretches begin at
// multiples of 65,536, so that no chunk of a posting list spans two; the
// second stretch's postings of a term follow the first's.
class WordIndex::Builder {
 public:
  Builder(const RefgroveData& d, WordIndex& index) : d_(d), index_(index) {}

  void build(Terms terms) {
    fold_vocabulary(terms);
    index_.lengths_.assign(d_.did_index.size(), 0);
    std::vector<Stretch> stretches = split(d_.did_index.size(), index_.term_count());
    side_by_side(stretches, [this](Stretch& s) { count(s); });
    count_documents();
    allocate(stretches);
    side_by_side(stretches, [this](Stretch& s) { fill(s); });
    for (Stretch& s : stretches) {
      index_.large_frequencies_.insert(index_.large_frequencies_.end(), s.large.begin(), s.large.end());
    }
    std::sort(index_.large_frequencies_.begin(), index_.large_frequencies_.end());
  }

 private:
  // The documents of DIDs first .. end - 1, and what the passes keep for
  // them per term: first their numbers of postings and chunks, then where
  // the next of each goes.
  struct Stretch {
    Stretch(std::size_t first, std::size_t end, std::size_t terms)
        : first(static_cast<std::int32_t>(first)),
          end(static_cast<std::int32_t>(end)),
          postings(terms, 0),
          chunks(terms, 0),
          last_did(terms, -1) {}

    std::int32_t first, end;
    std::vector<std::uint64_t> postings, chunks;
    std::vector<std::int32_t> last_did;                          // the last document that held the term
    std::vector<std::pair<std::uint64_t, std::uint32_t>> large;  // posting -> frequency >= 255
  };

  // One stretch, or two split at the multiple of 65,536 nearest the middle.
  static std::vector<Stretch> split(std::size_t limit, std::size_t terms) {
    const std::size_t middle = (limit / 2 + 0x8000) & ~std::size_t{0xFFFF};
    std::vector<Stretch> stretches;
    if (middle == 0 || middle >= limit) {
      stretches.emplace_back(0, limit, terms);
    } else {
      stretches.emplace_back(0, middle, terms);
      stretches.emplace_back(middle, limit, terms);
    }
    return stretches;
  }

  // Runs work(s) on every stretch, the first in this thread, the others in
  // threads of their own; an exception in any of them comes out here.
  template <class Work>
  static void side_by_side(std::vector<Stretch>& stretches, Work work) {
    std::vector<std::future<void>> others;
    for (std::size_t i = 1; i < stretches.size(); ++i) {
      others.push_back(std::async(std::launch::async, [&work, &s = stretches[i]] { work(s); }));
    }
    work(stretches[0]);
    for (std::future<void>& other : others) other.get();
  }

  void count(Stretch& s) const {
    for_each_document(s, [&](std::int32_t did, const std::vector<std::uint32_t>& words) {
      index_.lengths_[static_cast<std::size_t>(did)] = static_cast<std::uint32_t>(words.size());
      for (const std::uint32_t t : words) {
        if (s.last_did[t] == did) continue;
        if (s.last_did[t] < 0 || high_part(s.last_did[t]) != high_part(did)) ++s.chunks[t];
        s.last_did[t] = did;
        ++s.postings[t];
      }
    });
  }

  // Calls visit(did, terms) for every document of the stretch with words
  // that have a text, in ascending DID order.
  template <class Visit>
  void for_each_document(const Stretch& s, Visit visit) const {
    std::vector<std::uint32_t> terms;
    for (std::int32_t did = s.first; did < s.end; ++did) {
      index_.document_terms(d_, did, terms);
      if (!terms.empty()) visit(did, terms);
    }
  }

  // Folds (and stems) every word of the table and numbers the distinct
  // texts in byte order.
  void fold_vocabulary(Terms terms) {
    std::optional<EnglishStemmer> stemmer;
    if (terms == Terms::kStems) stemmer.emplace();
    const CompactedStringTable& table = *d_.word_data->word_table;
    std::vector<std::string> folded(static_cast<std::size_t>(std::max(table.count, 0)));
    std::vector<std::uint32_t> with_text;
    for (std::int32_t id = 0; id < table.count; ++id) {
      const char* text = table.lookup(id);
      if (text == nullptr) continue;
      folded[static_cast<std::size_t>(id)] = stemmer ? stemmer->stem(fold_text(text)) : fold_text(text);
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

  // Turns the stretches' counts into the start of each term's postings and
  // chunks, and each stretch's counts into where its own begin.
  void allocate(std::vector<Stretch>& stretches) {
    const std::size_t terms = index_.term_count();
    std::vector<std::uint64_t> postings(terms, 0), chunks(terms, 0);
    for (const Stretch& s : stretches) {
      for (std::size_t t = 0; t < terms; ++t) {
        postings[t] += s.postings[t];
        chunks[t] += s.chunks[t];
      }
    }
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
    // Each stretch's count of a term becomes where its own begin: after
    // those of the stretches before it.
    const auto hand_out = [&stretches](const std::vector<std::uint64_t>& firsts,
                                       std::vector<std::uint64_t> Stretch::*counts) {
      std::vector<std::uint64_t> next(firsts.begin(), firsts.end() - 1);
      for (Stretch& s : stretches) {
        for (std::size_t t = 0; t < next.size(); ++t) {
          const std::uint64_t count = (s.*counts)[t];
          (s.*counts)[t] = next[t];
          next[t] += count;
        }
      }
    };
    hand_out(index_.term_postings_, &Stretch::postings);
    hand_out(index_.term_chunks_, &Stretch::chunks);
  }

  // Counts each term of a document, then writes one posting per distinct
  // term, so that the posting arrays are written once per posting rather
  // than once per word.
  void fill(Stretch& s) const {
    std::vector<std::uint64_t>& next_posting = s.postings;
    std::vector<std::uint64_t>& next_chunk = s.chunks;
    std::fill(s.last_did.begin(), s.last_did.end(), -1);
    std::vector<std::uint32_t> count(s.last_did.size(), 0), distinct;
    for_each_document(s, [&](std::int32_t did, const std::vector<std::uint32_t>& words) {
      distinct.clear();
      for (const std::uint32_t t : words) {
        if (s.last_did[t] == did) {
          ++count[t];
          continue;
        }
        if (s.last_did[t] < 0 || high_part(s.last_did[t]) != high_part(did)) {
          index_.chunks_[next_chunk[t]++] = Chunk{static_cast<std::uint32_t>(high_part(did)), next_posting[t]};
        }
        s.last_did[t] = did;
        count[t] = 1;
        distinct.push_back(t);
      }
      for (const std::uint32_t t : distinct) {
        const std::uint64_t p = next_posting[t]++;
        index_.low_[p] = static_cast<std::uint16_t>(did & 0xFFFF);
        index_.frequency_[p] = static_cast<std::uint8_t>(std::min<std::uint32_t>(count[t], kLargeFrequency));
        if (count[t] >= kLargeFrequency) s.large.emplace_back(p, count[t]);
      }
    });
  }

  const RefgroveData& d_;
  WordIndex& index_;
};

WordIndex::WordIndex(const RefgroveData& d, Terms terms) { Builder(d, *this).build(terms); }

std::size_t WordIndex::document_terms(const RefgroveData& d, std::int32_t did, std::vector<Term>& out) const {
  out.clear();
  const auto add = [&](std::uint32_t id) {
    if (id < term_of_word_.size() && term_of_word_[id] != kNoTerm) out.push_back(term_of_word_[id]);
  };
  if (const RefgroveGraphData* r = graph_record(d, did)) {
    for (std::int32_t i = 0; i < r->title.size(); ++i) add(r->title[i].id());
  }
  const std::size_t title_terms = out.size();
  const AbstractRun run = abstract_run(d, did);
  for (std::int64_t k = 0; k < run.words; ++k) {
    std::uint32_t id = 0;
    if (!d.word_data->word_id_at_byte(run.start + std::int64_t{kWordIdBytes} * k, &id)) break;
    add(id);
  }
  return title_terms;
}

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
      if (past(term_text(mid)))
        hi = mid;
      else
        lo = mid + 1;
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
  return bytes(term_of_word_) + term_chars_.capacity() + bytes(term_text_start_) + bytes(term_slots_) +
         bytes(term_postings_) + bytes(term_chunks_) + bytes(chunks_) + bytes(low_) + bytes(frequency_) +
         bytes(large_frequencies_) + bytes(lengths_) + sizeof(*this);
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
