#include "module/host_terms.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace refgrove {

const char kNotAnAtomMessage[] = "LUMOX_atom:term is not an atom";

namespace {

void report_invalid_type() {
  static const char text[] = "Term has invalid type!\n";
  std::fwrite(text, 1, sizeof text - 1, stderr);
}

// Binds the unbound variable `var` to `value`, trailing it when it is older
// than the trail boundary.
void bind_variable(LumoxMachine* m, term var, term value) {
  term* cell = ref_cell(var);
  if (cell < m->trail_boundary) trail_push(m, cell);
  *cell = value;
}

}  // namespace

int read_int_arg(term arg) {
  const term t = deref(arg);
  if (is_int(t)) return int_value(t);
  report_invalid_type();
  return -1;
}

const char* term_name(term t) {
  t = deref(t);
  if (is_atom(t)) {
    const std::uint32_t n = atom_index(t);
    const term* page = atomi1tab[n >> kAtomPageShift];
    return reinterpret_cast<const char*>(page[2 * (n & kAtomPageMask) + 1]);
  }
  report_invalid_type();
  const std::int32_t entry = static_cast<std::int32_t>(t) >> kFunctorShift;
  return reinterpret_cast<const char*>(functab[kFunctorEntryWords * entry + 2]);
}

int root_push(LumoxMachine* m, term t) {
  if (m->root_count >= m->root_capacity) {
    const std::int32_t capacity = m->root_capacity > 0 ? 2 * m->root_capacity : 1;
    void* grown = std::realloc(m->root_stack, static_cast<std::size_t>(capacity) * sizeof(term));
    if (grown == nullptr) throw std::bad_alloc();
    m->root_stack = static_cast<term*>(grown);
    m->root_capacity = capacity;
  }
  const int index = m->root_count;
  m->root_stack[index] = nil_atom;
  ++m->root_count;
  m->root_stack[index] = deref_keep_box(t);
  return index;
}

SymbolSlot::SymbolSlot(LumoxMachine* m) : machine_(m) {
  if (m->free_slot == -1) expand_symbol_refs(m);
  index_ = m->free_slot;
  m->free_slot = static_cast<std::int32_t>(m->slots[index_]);
  m->slots[index_] = nil_atom;
}

SymbolSlot::SymbolSlot(LumoxMachine* m, term t) : SymbolSlot(m) { set(t); }

SymbolSlot::~SymbolSlot() {
  machine_->slots[index_] = static_cast<term>(machine_->free_slot);
  machine_->free_slot = index_;
}

AtomSlot::AtomSlot(LumoxMachine* m, term t) : SymbolSlot(m, checked_atom(t)) {}

AtomSlot::AtomSlot(LumoxMachine* m, const char* text)
    : SymbolSlot(m, atom_term(static_cast<std::uint32_t>(atom_lookup(0, text)))) {}

term AtomSlot::checked_atom(term t) {
  t = deref(t);
  if (!is_atom(t)) throw LumoxObjectCreationError(kNotAnAtomMessage);
  return t;
}

void trail_push(LumoxMachine* m, term* cell) {
  if (reinterpret_cast<std::uintptr_t>(m->trail_top) > reinterpret_cast<std::uintptr_t>(m->trail_limit)) {
    deal_with_tr_overflow(m);
  }
  *m->trail_top = ref_term(cell);
  ++m->trail_top;
}

std::int32_t trail_mark(const LumoxMachine* m) { return static_cast<std::int32_t>(m->trail_top - m->trail_base); }

void undo_trail(LumoxMachine* m, std::int32_t mark) {
  while (m->trail_top - m->trail_base > mark) {
    --m->trail_top;
    term* cell = ref_cell(*m->trail_top);
    *cell = ref_term(cell);
  }
}

bool unify_or_undo(LumoxMachine* m, term a, term b) {
  const std::int32_t mark = trail_mark(m);
  if (unify_terms_always_trail(a, b, m) != 0) return true;
  undo_trail(m, mark);
  return false;
}

bool bind_int(LumoxMachine* m, term arg, std::int32_t value) {
  const term t = deref_keep_box(arg);
  if (is_unbound(t)) {
    bind_variable(m, t, int_term(value));
    return true;
  }
  return is_int(t) && int_value(t) == value;
}

bool bind_atom(LumoxMachine* m, term arg, term atom) {
  const term t = deref_keep_box(arg);
  if (is_unbound(t)) {
    bind_variable(m, t, atom);
    return true;
  }
  return t == atom;
}

bool bind_float(LumoxMachine* m, term arg, double value) {
  const term t = deref_keep_box(arg);
  if (is_unbound(t)) {
    term* box = m->heap_top;
    box[0] = kFloatHeader;
    std::memcpy(box + 1, &value, sizeof value);
    m->heap_top += 3;
    bind_variable(m, t, ref_term(box));
    return true;
  }
  if (!is_float_box(t)) return false;
  double bound = 0;
  std::memcpy(&bound, ref_cell(t) + 1, sizeof bound);
  return bound == value;
}

term heap_cons(LumoxMachine* m, term head, term tail) {
  term* cell = m->heap_top;
  cell[0] = head;
  cell[1] = tail;
  m->heap_top += 2;
  return list_term(cell);
}

}  // namespace refgrove
