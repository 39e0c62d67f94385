// The foreign predicates: each converts its arguments, calls one operation
// of the query core and binds its outputs. Integer inputs of the wrong kind
// are reported and read as -1 (the operation then answers for -1); path
// inputs of the wrong kind make the predicate fail with its own message.
#include "module/predicates.h"

#include <iostream>
#include <vector>

#include "module/host_terms.h"
#include "refgrove/refgrove.h"

namespace refgrove {

namespace {

using IntLookup = int (*)(int, int*);
using ItemLookup = int (*)(int, int, int*);
using TextLookup = int (*)(int, int, const char**);

// Predicates of the form (+Did, ?N).
int int_result(LumoxMachine* m, IntLookup lookup) {
  const int did = read_int_arg(m->args[0]);
  lumox_global_machine = m;
  int n = 0;
  if (lookup(did, &n) == 0) return 0;
  return bind_int(m, m->args[1], n);
}

// The atom-returning predicates: the atom is made in a slot of its own,
// moved into the result slot, and the output bound to it.
int text_result(LumoxMachine* m, int did, int i, TextLookup lookup, term output) {
  SymbolSlot result(m);
  lumox_global_machine = m;
  const char* text = nullptr;
  if (lookup(did, i, &text) == 0) return 0;
  {
    AtomSlot atom(m, text);
    result.set(atom.get());
  }
  return bind_atom(m, output, result.get());
}

// Protects each path argument, checks that it is an atom (failing with its
// message on the first that is not), and passes their names on.
template <int N, class Call>
int with_paths(LumoxMachine* m, const char* const (&complaints)[N], Call call) {
  lumox_global_machine = m;
  int roots[N];
  for (int k = 0; k < N; ++k) roots[k] = root_push(m, m->args[k]);
  for (int k = 0; k < N; ++k) {
    if (!is_atom(deref(root_at(m, roots[k])))) {
      std::cerr << complaints[k];
      return 0;
    }
  }
  return call(roots);
}

}  // namespace

}  // namespace refgrove

// The predicates themselves are the host's C entry points.
using namespace refgrove;

int refgrove_preproc(LumoxMachine* m) {
  static const char* const complaints[] = {"refgrove_preproc/2 expects string as first arg\n",
                                           "refgrove_preproc/2 expects string as second arg\n"};
  return with_paths(m, complaints, [m](const int* roots) {
    AtomSlot in(m, root_at(m, roots[0]));
    AtomSlot out(m, root_at(m, roots[1]));
    refgrove_preproc_1(in.text(), out.text());
    return 1;
  });
}

int refgrove_load(LumoxMachine* m) {
  // The message says "second" although the predicate has one argument;
  // scripts match it as it is.
  static const char* const complaints[] = {"refgrove_load/1 expects string as second arg\n"};
  return with_paths(m, complaints, [m](const int* roots) {
    AtomSlot dir(m, root_at(m, roots[0]));
    refgrove_load_1(dir.text());
    return 1;
  });
}

int refgrove_has_word_info(LumoxMachine* m) {
  const int did = read_int_arg(m->args[0]);
  lumox_global_machine = m;
  return refgrove_has_word_info_1(did);
}

int refgrove_has_graph_info(LumoxMachine* m) {
  const int did = read_int_arg(m->args[0]);
  lumox_global_machine = m;
  return refgrove_has_graph_info_1(did);
}

int refgrove_printdoc(LumoxMachine* m) {
  const int did = read_int_arg(m->args[0]);
  lumox_global_machine = m;
  refgrove_printdoc_1(did);
  return 1;
}

int refgrove_print_author(LumoxMachine* m) {
  const int id = read_int_arg(m->args[0]);
  lumox_global_machine = m;
  refgrove_print_author_1(id);
  return 1;
}

int refgrove_last_did(LumoxMachine* m) {
  lumox_global_machine = m;
  int n = 0;
  refgrove_last_did_1(&n);
  return bind_int(m, m->args[0], n);
}

int refgrove_document_count(LumoxMachine* m) {
  lumox_global_machine = m;
  int docs = 0, words = 0, authors = 0;
  refgrove_stats_1(&docs, &words, &authors);
  return bind_int(m, m->args[0], docs);
}

int refgrove_get_nb_authors(LumoxMachine* m) {
  lumox_global_machine = m;
  return bind_int(m, m->args[0], refgrove_get_nb_authors_1());
}

int refgrove_stats(LumoxMachine* m) {
  lumox_global_machine = m;
  int docs = 0, words = 0, authors = 0;
  refgrove_stats_1(&docs, &words, &authors);
  return bind_int(m, m->args[0], docs) && bind_int(m, m->args[1], words) && bind_int(m, m->args[2], authors);
}

int refgrove_word_count(LumoxMachine* m) { return int_result(m, refgrove_word_count_1); }
int refgrove_title_length(LumoxMachine* m) { return int_result(m, refgrove_title_length_1); }
int refgrove_author_count(LumoxMachine* m) { return int_result(m, refgrove_author_count_1); }
int refgrove_cite_count(LumoxMachine* m) { return int_result(m, refgrove_cite_count_1); }
int refgrove_get_year(LumoxMachine* m) { return int_result(m, refgrove_get_year_1); }

int refgrove_get_author_id(LumoxMachine* m) {
  const int did = read_int_arg(m->args[0]);
  const int i = read_int_arg(m->args[1]);
  lumox_global_machine = m;
  int id = 0;
  if (refgrove_get_author_id_1(did, i, &id) == 0) return 0;
  return bind_int(m, m->args[2], id);
}

// Cited is bound before Gid and stays bound when Gid then does not match;
// undoing it is the host's business, as for any failing call.
int refgrove_get_cite(LumoxMachine* m) {
  const int did = read_int_arg(m->args[0]);
  const int i = read_int_arg(m->args[1]);
  lumox_global_machine = m;
  int cited = 0, gid = 0;
  if (refgrove_get_cite_1(did, i, &cited, &gid) == 0) return 0;
  return bind_int(m, m->args[2], cited) && bind_int(m, m->args[3], gid);
}

int refgrove_get_key(LumoxMachine* m) {
  const int did = read_int_arg(m->args[0]);
  return text_result(
      m, did, 0, [](int d, int, const char** out) { return refgrove_get_key_1(d, out); }, m->args[1]);
}

int refgrove_get_title_word(LumoxMachine* m) {
  const int did = read_int_arg(m->args[0]);
  const int i = read_int_arg(m->args[1]);
  return text_result(m, did, i, refgrove_get_title_word_1, m->args[2]);
}

int refgrove_get_word(LumoxMachine* m) {
  const int did = read_int_arg(m->args[0]);
  const int i = read_int_arg(m->args[1]);
  return text_result(m, did, i, refgrove_get_word_1, m->args[2]);
}

int refgrove_get_author(LumoxMachine* m) {
  const int did = read_int_arg(m->args[0]);
  const int i = read_int_arg(m->args[1]);
  return text_result(m, did, i, refgrove_get_author_1, m->args[2]);
}

int refgrove_id2author(LumoxMachine* m) {
  const int id = read_int_arg(m->args[0]);
  return text_result(
      m, id, 0, [](int a, int, const char** out) { return refgrove_id2author_1(a, out); }, m->args[1]);
}

// Builds the list of the document's author ids by prepending, so the last
// author comes first, and unifies the caller's argument with it. The
// predicate succeeds exactly when that unification does; a document
// without a graph record gives the empty list.
int refgrove_get_authors(LumoxMachine* m) {
  const int did = read_int_arg(m->args[0]);
  const int output = root_push(m, m->args[1]);
  lumox_global_machine = m;
  int n = 0;
  refgrove_author_count_1(did, &n);
  std::vector<int> ids(n > 0 ? static_cast<std::size_t>(n) : 0);
  if (n > 0) refgrove_get_authors_1(did, ids.data());

  const int list = root_push(m, empty_list(m));
  const int item = root_push(m, nil_atom);
  for (const int id : ids) {
    root_at(m, item) = int_term(id);
    root_at(m, list) = heap_cons(m, root_at(m, item), root_at(m, list));
  }
  if (!unify_or_undo(m, root_at(m, output), root_at(m, list))) return 0;
  // The protected entry is the caller's own variable (now bound) or value,
  // so this second unification writes nothing new; it keeps the argument
  // register and the protected copy in step.
  return unify_or_undo(m, root_at(m, output), m->args[1]);
}

int refgrove_author_distance(LumoxMachine* m) {
  const int a = read_int_arg(m->args[0]);
  const int b = read_int_arg(m->args[1]);
  lumox_global_machine = m;
  return bind_float(m, m->args[2], refgrove_author_distance_1(a, b));
}
