// Reading the arguments of the foreign predicates, and the errors they
// raise, in SWI-Prolog's conventions: an unbound input is an instantiation
// error, an input of the wrong kind a type error. Every function that
// returns false has left an exception pending; the predicate returns false
// in turn and Prolog raises it.
#ifndef REFGROVE_SWIPL_FOREIGN_ARGS_H_
#define REFGROVE_SWIPL_FOREIGN_ARGS_H_

#include <SWI-Prolog.h>

#include <initializer_list>
#include <string>

namespace refgrove::swipl {

// An integer input. Integers beyond the int range name no DID, index or
// author, and are read as -1, which names none either.
bool get_int_input(term_t t, int* value);

// An argument that is either an input or an output: sets *bound and, when
// bound, *value (as get_int_input).
bool get_optional_int(term_t t, bool* bound, int* value);

// An atom or string naming a path (UTF-8), without NUL characters.
bool get_path_input(term_t t, std::string* path);

// A key: an atom or string, or unbound (*bound false).
bool check_optional_text(term_t t, bool* bound);

// error(existence_error(Type, Culprit), Context) with Culprit the atom
// `name`; Context is context(Predicate/Arity, _) when `predicate` is given.
bool raise_existence_error(const char* type, const std::string& name, const char* predicate = nullptr, int arity = 0);

// error(Formal, _) with Formal = Functor(Text...), every text an atom.
bool raise_error(const char* functor, std::initializer_list<std::string> texts);

// error(syntax_error(refgrove_dump(File, Row, Column, Message)), _).
bool raise_dump_syntax_error(const std::string& file, int row, int column, const std::string& message);

}  // namespace refgrove::swipl

#endif  // REFGROVE_SWIPL_FOREIGN_ARGS_H_
