// The atoms of a data set's words, by word id, and the title of each DID.
//
// Title and abstract words are ids into the set's word table. Making the
// atom of a word's text on every call costs a UTF-8 check of its bytes and a
// lookup in Prolog's atom table; here each word's atom is made once, on its
// first use, and kept with the data set, so that a later answer is one array
// load. The atoms are registered while the set lives and released with it.
// Threads share the table: a slot is filled once, and a thread that made the
// same atom in between lets its own reference go.
//
// A title word on a random document costs its cache misses: from the DID
// index to the record's position, to the record, to its title. The titles
// by DID, kept beside the atoms, go from the DID to the title ids at once.
#ifndef REFGROVE_SWIPL_WORD_ATOMS_H_
#define REFGROVE_SWIPL_WORD_ATOMS_H_

#include <SWI-Prolog.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "core/data_set_slot.h"
#include "graph/graph_record.h"

namespace refgrove::swipl {

class WordAtoms {
 public:
  explicit WordAtoms(const RefgroveData& d);
  ~WordAtoms();
  WordAtoms(const WordAtoms&) = delete;
  WordAtoms& operator=(const WordAtoms&) = delete;

  // The atom of word `id`, or 0 for an id outside the table (or when Prolog
  // cannot make the atom; an exception is then pending).
  atom_t atom(std::uint32_t id) const {
    if (id >= size_) return 0;
    const atom_t a = atoms_[id].load(std::memory_order_acquire);
    return a != 0 ? a : make(id);
  }

  // The title word ids of `did`, or null when it has no graph record.
  const Span<WordId>* title(int did) const {
    if (did < 0 || static_cast<std::size_t>(did) >= titles_.size()) return nullptr;
    const Span<WordId>& t = titles_[static_cast<std::size_t>(did)];
    return t.n >= 0 ? &t : nullptr;
  }

  // The table of the set, made on first use (the set holds it).
  static const WordAtoms& of(const DataSetPtr& set);

 private:
  atom_t make(std::uint32_t id) const;

  const RefgroveData& data_;
  std::uint32_t size_;
  std::unique_ptr<std::atomic<atom_t>[]> atoms_;  // 0: not made yet
  std::vector<Span<WordId>> titles_;  // by DID; n = -1 without a graph record
};

// Unifies `t` with title word `i` of `did`, or with word `i` of its word
// data as refgrove_get_word/3 reads it; false when the document has no such
// word.
bool unify_title_word(term_t t, const DataSetPtr& set, int did, int i);
bool unify_word(term_t t, const DataSetPtr& set, int did, int i);

// Unifies `t` with the list of the title words of `did`; false when the
// document has no graph record.
bool unify_title(term_t t, const DataSetPtr& set, int did);

}  // namespace refgrove::swipl

#endif  // REFGROVE_SWIPL_WORD_ATOMS_H_
