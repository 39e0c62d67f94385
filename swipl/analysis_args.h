// The arguments and answers shared by the predicates of the analyses
// (network_predicates.cc, fronts_predicates.cc): 64-bit inputs, choices
// named by atoms, lists of A-B pairs, and unknown ids failing the call.
#ifndef REFGROVE_SWIPL_ANALYSIS_ARGS_H_
#define REFGROVE_SWIPL_ANALYSIS_ARGS_H_

#include <SWI-Prolog.h>

#include <cstdint>
#include <string>
#include <vector>

#include "network/citation_graph.h"

namespace refgrove::swipl {

// Runs an analysis whose unknown DID or author makes the call fail.
template <class F>
bool answered(F f) {
  try {
    return f();
  } catch (const NetworkArgumentError&) {
    return false;
  }
}

inline bool get_int64_input(term_t t, std::int64_t* value) {
  if (!PL_is_integer(t)) return PL_type_error("integer", t);
  return PL_get_int64(t, value) || PL_representation_error("int64");
}

// An atom out of the names `from_text` knows for the values of T; another
// atom raises domain_error(refgrove_option, Atom).
template <class T>
bool get_choice(term_t t, T (*from_text)(const std::string&), T* value) {
  char* text = nullptr;
  if (!PL_get_atom_chars(t, &text)) return PL_type_error("atom", t);
  try {
    *value = from_text(text);
    return true;
  } catch (const NetworkArgumentError&) {
    return PL_domain_error("refgrove_option", t);
  }
}

inline bool put_number(term_t t, double value) { return PL_put_float(t, value); }
inline bool put_number(term_t t, std::int64_t value) { return PL_put_int64(t, value); }

// Unifies `list` with [A1-B1, ...], Ai = left(item i), Bi = right(item i).
template <class Item, class Left, class Right>
bool unify_pairs(term_t list, const std::vector<Item>& items, Left left, Right right) {
  static const functor_t minus = PL_new_functor(PL_new_atom("-"), 2);
  const term_t result = PL_new_term_ref(), pair = PL_new_term_ref(), a = PL_new_term_ref(), b = PL_new_term_ref();
  PL_put_nil(result);
  for (auto it = items.rbegin(); it != items.rend(); ++it) {
    if (!put_number(a, left(*it)) || !put_number(b, right(*it)) || !PL_cons_functor(pair, minus, a, b) ||
        !PL_cons_list(result, pair, result))
      return false;
  }
  return PL_unify(list, result);
}

}  // namespace refgrove::swipl

#endif  // REFGROVE_SWIPL_ANALYSIS_ARGS_H_
