// The search predicate under refgrove_search/2,3 (prolog/refgrove.pl):
// '$refgrove_search'(+Query, +Mode, +Exact, +Limit, -Hits, -Total), Mode
// `and` or `or` and Exact `true` or `false` (checked by the Prolog side),
// Limit 0 for all hits, Hits a list of Did-Score pairs best first, Total
// the number of documents matching before the limit.
#include <cstdint>
#include <string>
#include <vector>

#include "search/word_search.h"
#include "swipl/library_data.h"

namespace refgrove::swipl {
namespace {

bool get_query(term_t t, std::string* query) {
  if (PL_is_variable(t)) return PL_instantiation_error(t);
  if (!PL_is_atom(t) && !PL_is_string(t)) return PL_type_error("text", t);
  char* chars = nullptr;
  std::size_t length = 0;
  if (!PL_get_nchars(t, &length, &chars, CVT_ATOM | CVT_STRING | REP_UTF8 | CVT_EXCEPTION)) return false;
  query->assign(chars, length);
  return true;
}

bool unify_hits(term_t t, const std::vector<SearchHit>& hits) {
  const term_t tail = PL_copy_term_ref(t);
  const term_t head = PL_new_term_ref();
  const functor_t pair = PL_new_functor(PL_new_atom("-"), 2);
  for (const SearchHit& hit : hits) {
    if (!PL_unify_list(tail, head, tail) ||
        !PL_unify_term(head, PL_FUNCTOR, pair, PL_INT, static_cast<int>(hit.did), PL_FLOAT, hit.score)) {
      return false;
    }
  }
  return PL_unify_nil(tail);
}

foreign_t search_hits(term_t args, int, control_t) {
  std::string query;
  char* mode = nullptr;
  char* exact = nullptr;
  std::int64_t limit = 0;
  if (!get_query(args, &query) || !PL_get_atom_chars(args + 1, &mode) || !PL_get_atom_chars(args + 2, &exact)) {
    return false;
  }
  if (!PL_get_int64(args + 3, &limit) || limit < 0) limit = 0;  // beyond int64: all hits
  const SearchRequest request{std::string(mode) == "or" ? SearchMode::kOr : SearchMode::kAnd,
                              std::string(exact) == "true", static_cast<std::size_t>(limit)};
  SearchAnswer answer;
  try {
    answer = search(current_data(), query, request);
  } catch (const SearchUsageError&) {
    return PL_domain_error("refgrove_query", args);
  }
  return unify_hits(args + 4, answer.hits) && PL_unify_int64(args + 5, static_cast<std::int64_t>(answer.total));
}

constexpr ForeignPredicate kPredicates[] = {
    {"$refgrove_search", 6, guarded<search_hits>, false},
};

}  // namespace

std::span<const ForeignPredicate> search_predicates() { return kPredicates; }

}  // namespace refgrove::swipl
