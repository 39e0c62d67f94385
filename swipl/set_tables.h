// What the library keeps with a data set to answer its most frequent
// questions fast: the atoms of its words, by word id, and a row per DID.
//
// Title and abstract words are ids into the set's word table. Making the
// atom of a word's text on every call costs a UTF-8 check of its bytes and a
// lookup in Prolog's atom table; here each word's atom is made once, on its
// first use, and kept with the data set, so that a later answer is one array
// load. The atoms are registered while the set lives and released with it.
// Threads share the table: a slot is filled once, and a thread that made the
// same atom in between lets its own reference go.
//
// A question about a random document costs its cache misses: from the DID
// index to the record's position, to the record, to its arrays. A row of 16
// bytes by DID holds the record's year and where its title lies, so that the
// DID leads to them at once; the citations of all records, packed in one
// array with 4 bytes of start by DID, are small enough to stay in cache.
#ifndef REFGROVE_SWIPL_SET_TABLES_H_
#define REFGROVE_SWIPL_SET_TABLES_H_

#include <SWI-Prolog.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "core/data_set_slot.h"
#include "graph/graph_record.h"

namespace refgrove::swipl {

// The title and year of a DID's graph record.
struct DocumentRow {
  const WordId* title_words = nullptr;
  std::int32_t title_size = -1;  // -1: no graph record
  std::int32_t year = 0;

  Span<WordId> title() const { return {title_words, title_size}; }
};

class SetTables {
 public:
  explicit SetTables(const RefgroveData& d);
  ~SetTables();
  SetTables(const SetTables&) = delete;
  SetTables& operator=(const SetTables&) = delete;

  // The atom of word `id`, or 0 for an id outside the table (or when Prolog
  // cannot make the atom; an exception is then pending).
  atom_t atom(std::uint32_t id) const {
    if (id >= size_) return 0;
    const atom_t a = atoms_[id].load(std::memory_order_acquire);
    return a != 0 ? a : make(id);
  }

  // The row of `did`, or null when it has no graph record.
  const DocumentRow* row(int did) const {
    if (did < 0 || static_cast<std::size_t>(did) >= rows_.size()) return nullptr;
    const DocumentRow& r = rows_[static_cast<std::size_t>(did)];
    return r.title_size >= 0 ? &r : nullptr;
  }

  // The DIDs that `did` cites, in record order; false when it has no graph
  // record.
  bool citations(int did, std::span<const std::int32_t>* cited) const {
    if (did < 0 || static_cast<std::size_t>(did) + 1 >= citation_start_.size()) return false;
    const std::uint32_t start = citation_start_[static_cast<std::size_t>(did)];
    if (start & kNoRecord) return false;
    const std::uint32_t end = citation_start_[static_cast<std::size_t>(did) + 1] & ~kNoRecord;
    *cited = std::span<const std::int32_t>(cited_.data() + start, end - start);
    return true;
  }

  // The tables of the set, made on first use (the set holds them).
  static const SetTables& of(const DataSetPtr& set);

 private:
  atom_t make(std::uint32_t id) const;

  const RefgroveData& data_;
  std::uint32_t size_;
  std::unique_ptr<std::atomic<atom_t>[]> atoms_;  // 0: not made yet
  std::vector<DocumentRow> rows_;                 // by DID
  // The citations of every DID, packed: those of `did` are cited_[start[did]]
  // up to cited_[start[did + 1]], both without the kNoRecord bit, which marks
  // a DID without a graph record.
  static constexpr std::uint32_t kNoRecord = 0x80000000u;
  std::vector<std::uint32_t> citation_start_;
  std::vector<std::int32_t> cited_;
};

// Unifies `t` with title word `i` of `did`, or with word `i` of its word
// data as refgrove_get_word/3 reads it; false when the document has no such
// word.
bool unify_title_word(term_t t, const DataSetPtr& set, int did, int i);
bool unify_word(term_t t, const DataSetPtr& set, int did, int i);

// Unifies `t` with the list of the title words of `did`; false when the
// document has no graph record.
bool unify_title(term_t t, const DataSetPtr& set, int did);

// Unifies `t` with the year of `did`, or with the list of the DIDs it cites
// in citation order; false when the document has no graph record.
bool unify_year(term_t t, const DataSetPtr& set, int did);
bool unify_citations(term_t t, const DataSetPtr& set, int did);

}  // namespace refgrove::swipl

#endif  // REFGROVE_SWIPL_SET_TABLES_H_
