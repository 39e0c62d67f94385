// The host engine's binary interface as the module sees it: 32-bit term
// words, the fields of the host machine the module touches, and the
// functions and data the host runtime provides.
//
// This is an i386-only header: term words are 32-bit and addresses fit in
// them. Both refgrove.so and the simulated runtime in host/ include it.
#ifndef REFGROVE_MODULE_HOST_MACHINE_H_
#define REFGROVE_MODULE_HOST_MACHINE_H_

#include <cstddef>
#include <cstdint>
#include <cstring>

static_assert(sizeof(void*) == 4, "the host engine is 32-bit: build this with the i386 preset");

// A host term is one 32-bit word; its low bits are the tag.
//   ..00  reference: address of a cell (an unbound variable holds its own address)
//   0001  atom: index = word >> 4
//   0101  small integer: value = word >> 4 (arithmetic)
//   ..10  list cell: address | 2; head word, then tail word
//   0111  (as cell content) float box header, followed by the 8-byte double
using term = std::uint32_t;

constexpr term kAtomTag = 1;
constexpr term kIntTag = 5;
constexpr term kListTag = 2;
constexpr term kFloatHeader = 7;

inline bool is_ref(term t) { return (t & 3u) == 0; }
inline bool is_atom(term t) { return (t & 15u) == kAtomTag; }
inline bool is_int(term t) { return (t & 15u) == kIntTag; }
inline bool is_list(term t) { return (t & 3u) == kListTag; }
// Box headers (floats and other boxed data) have their low two bits set.
inline bool is_box_header(term t) { return (t & 3u) == 3; }

inline term ref_term(const term* cell) { return static_cast<term>(reinterpret_cast<std::uintptr_t>(cell)); }
inline term* ref_cell(term t) { return reinterpret_cast<term*>(static_cast<std::uintptr_t>(t & ~3u)); }

inline term int_term(std::int32_t v) { return (static_cast<term>(v) << 4) | kIntTag; }
inline std::int32_t int_value(term t) { return static_cast<std::int32_t>(t) >> 4; }
inline term atom_term(std::uint32_t index) { return (index << 4) | kAtomTag; }
inline std::uint32_t atom_index(term t) { return t >> 4; }
inline term list_term(const term* cell) { return ref_term(cell) | kListTag; }

// Follows references to the end. A cell holding its own address (an unbound
// variable) ends the chain and is returned as a reference.
inline term deref(term t) {
  while (is_ref(t)) {
    const term next = *ref_cell(t);
    if (next == t) break;
    t = next;
  }
  return t;
}

// As deref, but also stops at a reference to a box header, so that a float
// stays a reference to its box instead of turning into the bare header.
inline term deref_keep_box(term t) {
  while (is_ref(t)) {
    const term next = *ref_cell(t);
    if (next == t || is_box_header(next)) break;
    t = next;
  }
  return t;
}

inline bool is_unbound(term t) { return is_ref(t) && *ref_cell(t) == t; }
inline bool is_float_box(term t) { return is_ref(t) && *ref_cell(t) == kFloatHeader; }

// Atom pages: entry n of the atom table is at position n & kAtomPageMask of
// page n >> kAtomPageShift; an entry is two words, the second the name.
constexpr unsigned kAtomPageShift = 19;
constexpr std::uint32_t kAtomPageMask = 0x7FFFF;
// The functor table: entries of four words, the third the name; a non-atom
// word names entry (word >> 11, arithmetic).
constexpr unsigned kFunctorShift = 11;
constexpr unsigned kFunctorEntryWords = 4;

// The host machine. Only the fields below are used; the rest of the host's
// structure is kept as reserved space so that the offsets match.
struct LumoxMachine {
  term* heap_top;   // next free heap word
  term* trail_top;  // next free trail word
  std::uint32_t reserved_8[2];
  term* trail_boundary;  // variables at or above it are bound untrailed
  std::uint32_t reserved_20[3];
  term args[4];  // argument registers A1 .. A4
  std::uint32_t reserved_48[(1052 - 48) / 4];
  term* trail_base;  // start of the trail
  std::uint32_t reserved_1056;
  term* trail_limit;  // past it, make room before pushing
  std::uint32_t reserved_1064[(15524 - 1064) / 4];
  term* root_stack;  // terms the host keeps alive
  std::int32_t root_count;
  std::int32_t root_capacity;
  term* slots;             // symbol reference slots (handles)
  std::int32_t free_slot;  // first free slot, -1 when none
};

static_assert(offsetof(LumoxMachine, heap_top) == 0, "heap top");
static_assert(offsetof(LumoxMachine, trail_top) == 4, "trail top");
static_assert(offsetof(LumoxMachine, trail_boundary) == 16, "trail boundary");
static_assert(offsetof(LumoxMachine, args) == 32, "A1");
static_assert(offsetof(LumoxMachine, args) + 3 * sizeof(term) == 44, "A4");
static_assert(offsetof(LumoxMachine, trail_base) == 1052, "trail base");
static_assert(offsetof(LumoxMachine, trail_limit) == 1060, "trail limit");
static_assert(offsetof(LumoxMachine, root_stack) == 15524, "root stack");
static_assert(offsetof(LumoxMachine, root_count) == 15528, "root stack count");
static_assert(offsetof(LumoxMachine, root_capacity) == 15532, "root stack capacity");
static_assert(offsetof(LumoxMachine, slots) == 15536, "symbol reference slots");
static_assert(offsetof(LumoxMachine, free_slot) == 15540, "free slot head");

// Thrown by a module when a host object cannot be made from a term (an atom
// wrapper from a term that is not an atom). The host catches it by type; the
// object is nothing but its message buffer.
struct LumoxObjectCreationError {
  explicit LumoxObjectCreationError(const char* text) {
    std::strncpy(message, text, sizeof message - 1);
    message[sizeof message - 1] = '\0';
  }
  char message[1024];
};
static_assert(sizeof(LumoxObjectCreationError) == 1024, "the host expects a bare 1024-byte buffer");

#define LUMOX_HOST_VISIBLE __attribute__((visibility("default")))

// What the host runtime provides. refgrove.so leaves these undefined and
// takes them from the program that loads it.
extern "C" {
LUMOX_HOST_VISIBLE int atom_lookup(int flag, const char* name);
LUMOX_HOST_VISIBLE int unify_terms_always_trail(term a, term b, LumoxMachine* machine);
LUMOX_HOST_VISIBLE void expand_symbol_refs(LumoxMachine* machine);
LUMOX_HOST_VISIBLE void deal_with_tr_overflow(LumoxMachine* machine);
LUMOX_HOST_VISIBLE void LUMOXRegisterAllTypes(void);

LUMOX_HOST_VISIBLE extern LumoxMachine* lumox_global_machine;
LUMOX_HOST_VISIBLE extern term nil_atom;
LUMOX_HOST_VISIBLE extern int _lumox_atom_nil_0;
LUMOX_HOST_VISIBLE extern term* atomi1tab[];
LUMOX_HOST_VISIBLE extern term* functab;
}

#endif  // REFGROVE_MODULE_HOST_MACHINE_H_
