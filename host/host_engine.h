// A simulated host engine: the runtime that refgrove.so expects to find in
// the program that loads it. It keeps a heap of term words, a trail with its
// boundary and limit, the atom table pages, a functor table, the root stack
// and the symbol reference slots, and implements general unification with
// trailing. The functions and data the module calls are defined with C
// linkage and default visibility (see module/host_machine.h); programs that
// dlopen the module must export them (-rdynamic).
//
// One machine exists at a time; creating it makes it lumox_global_machine.
#ifndef REFGROVE_HOST_HOST_ENGINE_H_
#define REFGROVE_HOST_HOST_ENGINE_H_

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "module/host_machine.h"

namespace refgrove {

namespace lumox_sim {

// A goal that needs more than the simulated machine has room for: too many
// heap words for its terms, or terms nested too deeply to be read.
struct HostLimitError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct MachineSizes {
  std::size_t heap_words = 1u << 20;
  std::size_t trail_words = 1u << 12;
  std::size_t trail_margin = 16;  // room kept past the trail limit
  std::int32_t root_capacity = 8;
  std::int32_t slot_count = 8;
};

// Creates the machine (heap, trail, root stack, slots with their free list
// and the empty-list slot) and makes it the global machine.
LumoxMachine* create_machine(const MachineSizes& sizes = MachineSizes());
void destroy_machine(LumoxMachine* m);

// Building terms. The terms of a goal may take the heap up to
// goal_heap_words(); the rest is kept for what the predicates build, which
// the module writes without asking. Past that, these throw HostLimitError.
std::size_t goal_heap_words(const LumoxMachine* m);
term new_var(LumoxMachine* m);  // a fresh unbound cell on the heap
term make_atom(const std::string& name);
term make_float(LumoxMachine* m, double value);  // a box on the heap
term make_list(LumoxMachine* m, const std::vector<term>& items, term tail);
term nil();  // the empty-list atom

// Reading terms.
const char* atom_text(term atom);
double float_value(term box);  // box: a reference to a float box

// The trail boundary: variables at or above it are bound without trailing.
// Setting it to the heap top makes every existing variable "older".
void set_trail_boundary_to_heap_top(LumoxMachine* m);
// Number of slots currently free, following the free list.
int free_slot_count(const LumoxMachine* m);

// Resets the heap, trail and root stack to the state after create_machine
// (what the host does between goals).
void reset(LumoxMachine* m);

// How often the module asked the host for room or registration.
struct CallCounts {
  int tr_overflow = 0;
  int expand_slots = 0;
  int register_types = 0;
};
CallCounts& call_counts();

}  // namespace lumox_sim

}  // namespace refgrove

#endif  // REFGROVE_HOST_HOST_ENGINE_H_
