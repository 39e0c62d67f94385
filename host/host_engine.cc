#include "host/host_engine.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <unordered_map>

namespace refgrove {

// ---- Data the module reads ------------------------------------------------

namespace {

constexpr std::size_t kAtomPages = 64;

// Functor table entries: arity, flags, name, spare. Entry 0 is what any
// word below 1 << 11 names (small integers among them); the simulation has
// no compound terms beyond lists, so the table only describes those.
const char kBoxName[] = "$box";
const char kListName[] = "[|]";
term functor_entries[2 * kFunctorEntryWords];

}  // namespace

}  // namespace refgrove

extern "C" {
LumoxMachine* lumox_global_machine = nullptr;
term nil_atom = 0;
int _lumox_atom_nil_0 = -1;
term* atomi1tab[refgrove::kAtomPages] = {};
term* functab = refgrove::functor_entries;
}

namespace refgrove {
namespace lumox_sim {
namespace {

struct Machine {
  LumoxMachine m{};  // first: the module sees only this part
  term* heap = nullptr;
  std::size_t heap_words = 0;
  std::size_t trail_margin = 0;
  std::int32_t slot_count = 0;
};

Machine* owner(LumoxMachine* m) { return reinterpret_cast<Machine*>(m); }
const Machine* owner(const LumoxMachine* m) { return reinterpret_cast<const Machine*>(m); }

// The share of the heap kept for the predicates' results: the largest a
// predicate builds is an author list of up to 32,767 ids (two words each).
constexpr std::size_t kResultShare = 4;  // a quarter

// Takes `words` heap words for a goal's term, or throws when they would
// reach into the part kept for results.
term* take_heap(LumoxMachine* m, std::size_t words) {
  const Machine* owned = owner(m);
  const std::size_t used = static_cast<std::size_t>(m->heap_top - owned->heap);
  const std::size_t limit = goal_heap_words(m);
  if (used > limit || words > limit - used) {
    throw HostLimitError("the goal's terms do not fit in the heap: they need more than the " + std::to_string(limit) +
                         " words a goal may take");
  }
  term* cells = m->heap_top;
  m->heap_top += words;
  return cells;
}

// The atom table: names are kept in a map for lookup and in the pages for
// the module, which reads them by index.
struct AtomTable {
  std::unordered_map<std::string, std::uint32_t> index;
  std::vector<char*> names;
  std::vector<std::size_t> page_capacity = std::vector<std::size_t>(kAtomPages, 0);

  std::uint32_t lookup(const char* name) {
    auto it = index.find(name);
    if (it != index.end()) return it->second;
    const std::uint32_t n = static_cast<std::uint32_t>(names.size());
    const std::size_t page = n >> kAtomPageShift, slot = n & kAtomPageMask;
    if (page >= kAtomPages) std::abort();  // 2^25 atoms: far beyond any use here
    if (slot >= page_capacity[page]) {
      const std::size_t capacity = page_capacity[page] ? 2 * page_capacity[page] : 256;
      void* grown = std::realloc(atomi1tab[page], capacity * 2 * sizeof(term));
      if (grown == nullptr) throw std::bad_alloc();
      atomi1tab[page] = static_cast<term*>(grown);
      page_capacity[page] = capacity;
    }
    char* copy = strdup(name);
    names.push_back(copy);
    atomi1tab[page][2 * slot] = atom_term(n);
    atomi1tab[page][2 * slot + 1] = static_cast<term>(reinterpret_cast<std::uintptr_t>(copy));
    index.emplace(copy, n);
    return n;
  }
};

AtomTable& atoms() {
  static AtomTable table;
  return table;
}

void set_functor(std::size_t entry, int arity, const char* name) {
  term* e = functor_entries + kFunctorEntryWords * entry;
  e[0] = static_cast<term>(arity);
  e[2] = static_cast<term>(reinterpret_cast<std::uintptr_t>(name));
}

// Links slots [from, to) into the free list in front of the current head.
void link_free_slots(LumoxMachine* m, std::int32_t from, std::int32_t to) {
  for (std::int32_t k = to - 1; k >= from; --k) {
    m->slots[k] = static_cast<term>(m->free_slot);
    m->free_slot = k;
  }
}

void bind(LumoxMachine* m, term var, term value) {
  term* cell = ref_cell(var);
  if (reinterpret_cast<std::uintptr_t>(m->trail_top) > reinterpret_cast<std::uintptr_t>(m->trail_limit)) {
    deal_with_tr_overflow(m);
  }
  *m->trail_top++ = ref_term(cell);
  *cell = value;
}

bool unify(LumoxMachine* m, term a, term b) {
  for (;;) {
    a = deref_keep_box(a);
    b = deref_keep_box(b);
    if (a == b) return true;
    const bool a_var = is_unbound(a), b_var = is_unbound(b);
    if (a_var && b_var) {
      // The younger variable points to the older one.
      if (ref_cell(a) < ref_cell(b))
        bind(m, b, a);
      else
        bind(m, a, b);
      return true;
    }
    if (a_var) {
      bind(m, a, b);
      return true;
    }
    if (b_var) {
      bind(m, b, a);
      return true;
    }
    if (is_float_box(a) && is_float_box(b)) return float_value(a) == float_value(b);
    if (is_list(a) && is_list(b)) {
      if (!unify(m, ref_cell(a)[0], ref_cell(b)[0])) return false;
      a = ref_cell(a)[1];
      b = ref_cell(b)[1];
      continue;
    }
    return false;  // atoms and integers are equal only as identical words
  }
}

}  // namespace

LumoxMachine* create_machine(const MachineSizes& sizes) {
  Machine* owned = new Machine();
  LumoxMachine* m = &owned->m;
  owned->heap_words = sizes.heap_words;
  owned->heap = static_cast<term*>(std::calloc(sizes.heap_words, sizeof(term)));
  owned->trail_margin = sizes.trail_margin;
  m->trail_base = static_cast<term*>(std::calloc(sizes.trail_words + sizes.trail_margin, sizeof(term)));
  m->trail_limit = m->trail_base + sizes.trail_words;
  m->root_capacity = sizes.root_capacity;
  m->root_stack = static_cast<term*>(std::malloc(static_cast<std::size_t>(sizes.root_capacity) * sizeof(term)));
  m->slots = static_cast<term*>(std::malloc(static_cast<std::size_t>(sizes.slot_count) * sizeof(term)));
  if (owned->heap == nullptr || m->trail_base == nullptr || m->root_stack == nullptr || m->slots == nullptr) {
    throw std::bad_alloc();
  }
  owned->slot_count = sizes.slot_count;
  m->free_slot = -1;
  link_free_slots(m, 0, sizes.slot_count);

  set_functor(0, 0, kBoxName);
  set_functor(1, 2, kListName);
  nil_atom = nil();
  // The empty list lives in a slot of its own, taken for good.
  _lumox_atom_nil_0 = m->free_slot;
  m->free_slot = static_cast<std::int32_t>(m->slots[_lumox_atom_nil_0]);
  m->slots[_lumox_atom_nil_0] = nil_atom;

  reset(m);
  lumox_global_machine = m;
  return m;
}

void destroy_machine(LumoxMachine* m) {
  if (m == nullptr) return;
  Machine* owned = owner(m);
  std::free(owned->heap);
  std::free(m->trail_base);
  std::free(m->root_stack);
  std::free(m->slots);
  if (lumox_global_machine == m) lumox_global_machine = nullptr;
  delete owned;
}

void reset(LumoxMachine* m) {
  Machine* owned = owner(m);
  m->heap_top = owned->heap;
  m->trail_top = m->trail_base;
  m->trail_boundary = owned->heap;
  m->root_count = 0;
}

std::size_t goal_heap_words(const LumoxMachine* m) {
  const std::size_t words = owner(m)->heap_words;
  return words - words / kResultShare;
}

term new_var(LumoxMachine* m) {
  term* cell = take_heap(m, 1);
  *cell = ref_term(cell);
  return *cell;
}

term make_atom(const std::string& name) { return atom_term(atoms().lookup(name.c_str())); }

term nil() { return make_atom("[]"); }

term make_float(LumoxMachine* m, double value) {
  term* box = take_heap(m, 3);
  box[0] = kFloatHeader;
  std::memcpy(box + 1, &value, sizeof value);
  return ref_term(box);
}

term make_list(LumoxMachine* m, const std::vector<term>& items, term tail) {
  term list = tail;
  term* cell = take_heap(m, 2 * items.size());
  for (auto it = items.rbegin(); it != items.rend(); ++it, cell += 2) {
    cell[0] = *it;
    cell[1] = list;
    list = list_term(cell);
  }
  return list;
}

const char* atom_text(term atom) {
  const std::uint32_t n = atom_index(atom);
  return atoms().names.at(n);
}

double float_value(term box) {
  double value = 0;
  std::memcpy(&value, ref_cell(box) + 1, sizeof value);
  return value;
}

void set_trail_boundary_to_heap_top(LumoxMachine* m) { m->trail_boundary = m->heap_top; }

int free_slot_count(const LumoxMachine* m) {
  int n = 0;
  for (std::int32_t k = m->free_slot; k != -1; k = static_cast<std::int32_t>(m->slots[k])) ++n;
  return n;
}

CallCounts& call_counts() {
  static CallCounts counts;
  return counts;
}

}  // namespace lumox_sim

}  // namespace refgrove

// ---- Functions the module calls ---------------------------------------------

using namespace refgrove::lumox_sim;

extern "C" int atom_lookup(int /*flag*/, const char* name) { return static_cast<int>(atoms().lookup(name)); }

extern "C" int unify_terms_always_trail(term a, term b, LumoxMachine* m) { return unify(m, a, b) ? 1 : 0; }

// Doubles the slot array and puts the new slots on the free list.
extern "C" void expand_symbol_refs(LumoxMachine* m) {
  ++call_counts().expand_slots;
  Machine* owned = owner(m);
  const std::int32_t count = owned->slot_count, grown_count = count > 0 ? 2 * count : 8;
  void* grown = std::realloc(m->slots, static_cast<std::size_t>(grown_count) * sizeof(term));
  if (grown == nullptr) throw std::bad_alloc();
  m->slots = static_cast<term*>(grown);
  owned->slot_count = grown_count;
  link_free_slots(m, count, grown_count);
}

// Grows the trail, keeping the same room past the new limit.
extern "C" void deal_with_tr_overflow(LumoxMachine* m) {
  ++call_counts().tr_overflow;
  Machine* owned = owner(m);
  const std::size_t used = static_cast<std::size_t>(m->trail_top - m->trail_base);
  const std::size_t words = 2 * static_cast<std::size_t>(m->trail_limit - m->trail_base) + 1;
  void* grown = std::realloc(m->trail_base, (words + owned->trail_margin) * sizeof(term));
  if (grown == nullptr) throw std::bad_alloc();
  m->trail_base = static_cast<term*>(grown);
  m->trail_top = m->trail_base + used;
  m->trail_limit = m->trail_base + words;
}

extern "C" void LUMOXRegisterAllTypes(void) { ++call_counts().register_types; }
