#include "swipl/set_tables.h"

#include <memory>
#include <stdexcept>
#include <string_view>

#include "core/lookup.h"
#include "swipl/prolog_text.h"

namespace refgrove::swipl {
namespace {

// The set's table without a lock on the way: each thread remembers the last
// set it asked about and that set's table. The set is recognised by its
// owner (the shared pointer's control block), which the weak pointer keeps
// from being reused, so a new set at the address of a freed one is not
// mistaken for it.
struct LastAsked {
  std::weak_ptr<const RefgroveData> set;
  const SetTables* tables = nullptr;
};

bool same_owner(const std::weak_ptr<const RefgroveData>& a, const DataSetPtr& b) {
  return !a.owner_before(b) && !b.owner_before(a);
}

// What the set's derived structures hold for this file.
struct SetTablesOfSet {
  std::unique_ptr<SetTables> tables;
};

}  // namespace

SetTables::SetTables(const RefgroveData& d)
    : data_(d),
      size_(d.word_data->word_table->count > 0 ? static_cast<std::uint32_t>(d.word_data->word_table->count) : 0),
      atoms_(new std::atomic<atom_t>[size_]()),
      rows_(d.did_index.size()),
      citation_start_(d.did_index.size() + 1) {
  for (std::size_t did = 0; did < rows_.size(); ++did) {
    const RefgroveGraphData* r = graph_record(d, static_cast<int>(did));
    citation_start_[did] = static_cast<std::uint32_t>(cited_.size()) | (r == nullptr ? kNoRecord : 0);
    if (r == nullptr) continue;
    rows_[did] = DocumentRow{r->title.items, r->title.n, r->year};
    for (const CitationInfo& c : r->citations) cited_.push_back(c.did);
    // A start must leave the kNoRecord bit free (a graph file of 16 GB).
    if (cited_.size() >= kNoRecord) throw std::length_error("more citations than the library's tables can hold");
  }
  citation_start_.back() = static_cast<std::uint32_t>(cited_.size());
}

SetTables::~SetTables() {
  // A set freed at exit, after Prolog has cleaned up, has no atoms to give back.
  if (!PL_is_initialised(nullptr, nullptr)) return;
  for (std::uint32_t id = 0; id < size_; ++id) {
    if (const atom_t a = atoms_[id].load(std::memory_order_relaxed)) PL_unregister_atom(a);
  }
}

const SetTables& SetTables::of(const DataSetPtr& set) {
  thread_local LastAsked last;
  if (last.tables == nullptr || !same_owner(last.set, set)) {
    const auto build = [&set] { return SetTablesOfSet{std::make_unique<SetTables>(*set)}; };
    last.tables = set->derived().get<SetTablesOfSet>(build).tables.get();
    last.set = set;
  }
  return *last.tables;
}

atom_t SetTables::make(std::uint32_t id) const {
  const char* text = word_text(data_, id);
  if (text == nullptr) return 0;
  const std::string_view bytes(text);
  const int rep = is_valid_utf8(bytes) ? REP_UTF8 : REP_ISO_LATIN_1;
  const atom_t made = PL_new_atom_mbchars(rep, bytes.size(), bytes.data());
  if (made == 0) return 0;
  atom_t expected = 0;
  if (atoms_[id].compare_exchange_strong(expected, made, std::memory_order_acq_rel)) return made;
  PL_unregister_atom(made);  // another thread was first: the same atom, held once
  return expected;
}

bool unify_title_word(term_t t, const DataSetPtr& set, int did, int i) {
  if (!set) return false;
  const SetTables& tables = SetTables::of(set);
  const DocumentRow* row = tables.row(did);
  if (row == nullptr || i < 0 || i >= row->title().size()) return false;
  const atom_t a = tables.atom(row->title()[i].id());
  return a != 0 && PL_unify_atom(t, a);
}

bool unify_word(term_t t, const DataSetPtr& set, int did, int i) {
  if (!set) return false;
  const int w = word_index_of(*set, did);
  if (w < 0) return false;
  const WordRun run = word_run_at(*set, w);
  std::uint32_t id = 0;
  if (i < 0 || i >= run.count || !set->word_data->word_id_at(run.start + i, &id)) return false;
  const atom_t a = SetTables::of(set).atom(id);
  return a != 0 && PL_unify_atom(t, a);
}

bool unify_title(term_t t, const DataSetPtr& set, int did) {
  if (!set) return false;
  const SetTables& tables = SetTables::of(set);
  const DocumentRow* row = tables.row(did);
  if (row == nullptr) return false;
  const term_t tail = PL_copy_term_ref(t);
  const term_t head = PL_new_term_ref();
  for (const WordId word : row->title()) {
    // A word outside the table is left out, as the texts are.
    const atom_t a = tables.atom(word.id());
    if (a == 0) {
      if (PL_exception(0) != 0) return false;
      continue;
    }
    if (!PL_unify_list(tail, head, tail) || !PL_unify_atom(head, a)) return false;
  }
  return PL_unify_nil(tail);
}

bool unify_year(term_t t, const DataSetPtr& set, int did) {
  const DocumentRow* row = set ? SetTables::of(set).row(did) : nullptr;
  return row != nullptr && PL_unify_integer(t, row->year);
}

bool unify_citations(term_t t, const DataSetPtr& set, int did) {
  std::span<const std::int32_t> cited;
  if (!set || !SetTables::of(set).citations(did, &cited)) return false;
  const term_t tail = PL_copy_term_ref(t);
  const term_t head = PL_new_term_ref();
  for (const std::int32_t c : cited) {
    if (!PL_unify_list(tail, head, tail) || !PL_unify_integer(head, c)) return false;
  }
  return PL_unify_nil(tail);
}

}  // namespace refgrove::swipl
