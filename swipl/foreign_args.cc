#include "swipl/foreign_args.h"

#include <climits>
#include <cstdint>

#include "swipl/prolog_text.h"

namespace refgrove::swipl {
namespace {

bool read_int(term_t t, int* value) {
  if (!PL_is_integer(t)) return PL_type_error("integer", t);
  std::int64_t wide = 0;
  if (!PL_get_int64(t, &wide)) wide = -1;  // a big integer names nothing either
  *value = wide < INT_MIN || wide > INT_MAX ? -1 : static_cast<int>(wide);
  return true;
}

// Raises error(Formal, Context) for the built formal term; Context is
// context(Predicate/Arity, _) when a predicate is named, else unbound.
bool raise_formal(term_t formal, const char* predicate = nullptr, int arity = 0) {
  const term_t context = PL_new_term_ref();
  if (predicate != nullptr && !PL_unify_term(context, PL_FUNCTOR_CHARS, "context", 2, PL_FUNCTOR_CHARS, "/", 2,
                                             PL_CHARS, predicate, PL_INT, arity, PL_VARIABLE)) {
    return false;
  }
  const term_t error = PL_new_term_ref();
  return PL_unify_term(error, PL_FUNCTOR_CHARS, "error", 2, PL_TERM, formal, PL_TERM, context) &&
         PL_raise_exception(error);
}

bool put_atom(term_t t, const std::string& text) { return PL_put_variable(t) && unify_text(t, text); }

}  // namespace

bool get_int_input(term_t t, int* value) {
  if (PL_is_variable(t)) return PL_instantiation_error(t);
  return read_int(t, value);
}

bool get_optional_int(term_t t, bool* bound, int* value) {
  *bound = !PL_is_variable(t);
  return !*bound || read_int(t, value);
}

bool get_path_input(term_t t, std::string* path) {
  if (PL_is_variable(t)) return PL_instantiation_error(t);
  if (!PL_is_atom(t) && !PL_is_string(t)) return PL_type_error("atom", t);
  char* chars = nullptr;
  std::size_t length = 0;
  if (!PL_get_nchars(t, &length, &chars, CVT_ATOM | CVT_STRING | REP_UTF8 | CVT_EXCEPTION)) return false;
  path->assign(chars, length);
  if (path->find('\0') != std::string::npos) return PL_domain_error("path", t);
  return true;
}

bool check_optional_text(term_t t, bool* bound) {
  *bound = !PL_is_variable(t);
  return !*bound || PL_is_atom(t) || PL_is_string(t) || PL_type_error("atom", t);
}

bool raise_existence_error(const char* type, const std::string& name, const char* predicate, int arity) {
  const term_t culprit = PL_new_term_ref();
  const term_t formal = PL_new_term_ref();
  return put_atom(culprit, name) &&
         PL_unify_term(formal, PL_FUNCTOR_CHARS, "existence_error", 2, PL_CHARS, type, PL_TERM, culprit) &&
         raise_formal(formal, predicate, arity);
}

bool raise_error(const char* functor, std::initializer_list<std::string> texts) {
  const term_t args = PL_new_term_refs(static_cast<int>(texts.size()));
  term_t arg = args;
  for (const std::string& text : texts) {
    if (!put_atom(arg++, text)) return false;
  }
  const term_t formal = PL_new_term_ref();
  const functor_t f = PL_new_functor(PL_new_atom(functor), texts.size());
  return PL_cons_functor_v(formal, f, args) && raise_formal(formal);
}

bool raise_dump_syntax_error(const std::string& file, int row, int column, const std::string& message) {
  const term_t file_atom = PL_new_term_ref();
  const term_t message_atom = PL_new_term_ref();
  const term_t formal = PL_new_term_ref();
  return put_atom(file_atom, file) && put_atom(message_atom, message) &&
         PL_unify_term(formal, PL_FUNCTOR_CHARS, "syntax_error", 1, PL_FUNCTOR_CHARS, "refgrove_dump", 4, PL_TERM,
                       file_atom, PL_INT, row, PL_INT, column, PL_TERM, message_atom) &&
         raise_formal(formal);
}

}  // namespace refgrove::swipl
