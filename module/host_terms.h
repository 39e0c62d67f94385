// Reading predicate arguments from host terms and handing results back:
// integer and atom inputs, the root stack, symbol reference slots, and the
// binding of integers, atoms, floats and integer lists to output arguments.
#ifndef REFGROVE_MODULE_HOST_TERMS_H_
#define REFGROVE_MODULE_HOST_TERMS_H_

#include <vector>

#include "module/host_machine.h"

namespace refgrove {

// The message of the LumoxObjectCreationError that a non-atom raises.
extern const char kNotAnAtomMessage[];  // "LUMOX_atom:term is not an atom"

// An integer input. A non-integer is reported on stdio's stderr ("Term has
// invalid type!") and read as -1; the caller carries on with that value.
int read_int_arg(term arg);

// The text of an atom, from the atom table. Any other word is reported as an
// invalid type and named through the functor table.
const char* term_name(term t);

// Pushes the (box-preserving) dereferenced term on the machine's root stack,
// growing it by doubling; returns its index. Entries are never popped here.
int root_push(LumoxMachine* m, term t);
inline term& root_at(LumoxMachine* m, int index) { return m->root_stack[index]; }

// A symbol reference slot, taken from the machine's free list at
// construction and given back at destruction. Several slots in one scope
// are therefore released in the reverse order of their allocation, also when
// an exception leaves the scope.
class SymbolSlot {
 public:
  explicit SymbolSlot(LumoxMachine* m);  // holds nil_atom
  SymbolSlot(LumoxMachine* m, term t);   // holds t
  ~SymbolSlot();
  SymbolSlot(const SymbolSlot&) = delete;
  SymbolSlot& operator=(const SymbolSlot&) = delete;

  int index() const { return index_; }
  term get() const { return machine_->slots[index_]; }
  void set(term t) { machine_->slots[index_] = t; }

 private:
  LumoxMachine* machine_;
  int index_;
};

// A slot holding an atom. Built from a term, it throws
// LumoxObjectCreationError unless the term dereferences to an atom.
class AtomSlot : public SymbolSlot {
 public:
  AtomSlot(LumoxMachine* m, term t);
  AtomSlot(LumoxMachine* m, const char* text);  // atom_lookup(0, text)
  const char* text() const { return term_name(get()); }

 private:
  static term checked_atom(term t);
};

// Binding outputs. A bound output is compared instead: same kind and equal
// value (atoms: the identical word; floats: a float box with an equal
// double). An unbound variable below the trail boundary is trailed first.
bool bind_int(LumoxMachine* m, term arg, std::int32_t value);
bool bind_atom(LumoxMachine* m, term arg, term atom);
bool bind_float(LumoxMachine* m, term arg, double value);

// Puts `cell` on the trail, making room first when the trail is past its limit.
void trail_push(LumoxMachine* m, term* cell);

// The number of entries on the trail, and the undoing of every binding
// trailed after such a mark: each variable is reset to point to itself.
std::int32_t trail_mark(const LumoxMachine* m);
void undo_trail(LumoxMachine* m, std::int32_t mark);

// unify_terms_always_trail, undoing its bindings when it fails.
bool unify_or_undo(LumoxMachine* m, term a, term b);

// Prepends one list cell (head, tail) at the heap top and returns the list.
term heap_cons(LumoxMachine* m, term head, term tail);

// The empty-list atom, as the host keeps it in its slot.
inline term empty_list(const LumoxMachine* m) { return m->slots[_lumox_atom_nil_0]; }

}  // namespace refgrove

#endif  // REFGROVE_MODULE_HOST_TERMS_H_
