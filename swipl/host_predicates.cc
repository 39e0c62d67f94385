// The predicates that the host binding offers, with its names, arities and
// answers: texts as atoms, integers, author lists last author first, 0.0
// for the distance; absent documents and items fail, bound outputs are
// compared by unification. Only their errors differ, following SWI-Prolog.
#include <sstream>
#include <string>
#include <vector>

#include "core/predicate_table.h"
#include "swipl/library_data.h"
#include "swipl/prolog_text.h"
#include "swipl/set_tables.h"

namespace refgrove::swipl {
namespace {

using IntLookup = int (*)(const RefgroveData&, int, int*);
using ItemLookup = int (*)(const RefgroveData&, int, int, int*);
using TextLookup = int (*)(const RefgroveData&, int, int, const char**);

// Predicates of the form (+Did, ?N).
template <IntLookup lookup>
foreign_t int_result(term_t args, int, control_t) {
  int did = 0, n = 0;
  if (!get_int_input(args, &did)) return false;
  return lookup(current_data(), did, &n) && PL_unify_integer(args + 1, n);
}

// Predicates of the form (+Id, +I, ?Text); those without an index (+Id,
// ?Text) ignore `i`.
template <TextLookup lookup>
foreign_t text_result(term_t args, int arity, control_t) {
  int id = 0, i = 0;
  if (!get_int_input(args, &id) || (arity == 3 && !get_int_input(args + 1, &i))) return false;
  const char* text = nullptr;
  return lookup(current_data(), id, i, &text) && unify_text(args + arity - 1, text);
}

// refgrove_get_title_word/3 and refgrove_get_word/3, whose words come as
// atoms made once per data set.
template <bool (*unify)(term_t, const DataSetPtr&, int, int)>
foreign_t word_result(term_t args, int, control_t) {
  int did = 0, i = 0;
  if (!get_int_input(args, &did) || !get_int_input(args + 1, &i)) return false;
  return unify(args + 2, loaded_set(), did, i);
}

int key_of(const RefgroveData& d, int did, int, const char** out) { return get_key(d, did, out); }
int name_of(const RefgroveData& d, int author_id, int, const char** out) { return id2author(d, author_id, out); }

foreign_t year_pred(term_t args, int, control_t) {
  int did = 0;
  return get_int_input(args, &did) && unify_year(args + 1, loaded_set(), did);
}

foreign_t has_word_info_pred(term_t args, int, control_t) {
  int did = 0;
  return get_int_input(args, &did) && has_word_info(current_data(), did);
}

foreign_t has_graph_info_pred(term_t args, int, control_t) {
  int did = 0;
  return get_int_input(args, &did) && has_graph_info(current_data(), did);
}

// Writes `text` to the stream, as held for this thread (current_output
// follows with_output_to/2).
bool write_to(IOSTREAM* stream, const std::string& text) {
  IOSTREAM* held = PL_acquire_stream(stream);
  if (held == nullptr) return false;
  const bool written = write_text(held, text);
  return PL_release_stream(held) && written;
}

foreign_t hello(term_t, int, control_t) { return write_to(Scurrent_output, "init_refgrove:\n[]\n"); }

foreign_t printdoc_pred(term_t args, int, control_t) {
  int did = 0;
  if (!get_int_input(args, &did)) return false;
  std::ostringstream out, err;
  printdoc(current_data(), did, out, err);
  return write_to(Scurrent_output, out.str()) && write_to(Suser_error, err.str());
}

foreign_t print_author_pred(term_t args, int, control_t) {
  int author_id = 0;
  if (!get_int_input(args, &author_id)) return false;
  std::ostringstream out;
  print_author(current_data(), author_id, out);
  return write_to(Scurrent_output, out.str());
}

foreign_t last_did_pred(term_t args, int, control_t) {
  int n = 0;
  last_did(current_data(), &n);
  return PL_unify_integer(args, n);
}

foreign_t stats_pred(term_t args, int arity, control_t) {
  int docs = 0, words = 0, authors = 0;
  stats(&current_data(), &docs, &words, &authors);
  if (arity == 1) return PL_unify_integer(args, docs);  // refgrove_document_count/1
  return PL_unify_integer(args, docs) && PL_unify_integer(args + 1, words) && PL_unify_integer(args + 2, authors);
}

foreign_t nb_authors_pred(term_t args, int, control_t) {
  return PL_unify_integer(args, get_nb_authors(current_data()));
}

foreign_t author_id_pred(term_t args, int, control_t) {
  int did = 0, i = 0, id = 0;
  if (!get_int_input(args, &did) || !get_int_input(args + 1, &i)) return false;
  return get_author_id(current_data(), did, i, &id) && PL_unify_integer(args + 2, id);
}

foreign_t cite_pred(term_t args, int, control_t) {
  int did = 0, i = 0, cited = 0, gid = 0;
  if (!get_int_input(args, &did) || !get_int_input(args + 1, &i)) return false;
  return get_cite(current_data(), did, i, &cited, &gid) && PL_unify_integer(args + 2, cited) &&
         PL_unify_integer(args + 3, gid);
}

// The author ids last author first, the empty list without a graph record.
foreign_t authors_pred(term_t args, int, control_t) {
  int did = 0, n = 0;
  if (!get_int_input(args, &did)) return false;
  const RefgroveData& d = current_data();
  author_count(d, did, &n);
  std::vector<int> ids(static_cast<std::size_t>(n));
  if (n > 0) get_authors(d, did, ids.data());
  return unify_int_list(args + 1, std::vector<int>(ids.rbegin(), ids.rend()));
}

foreign_t distance_pred(term_t args, int, control_t) {
  int a = 0, b = 0;
  if (!get_int_input(args, &a) || !get_int_input(args + 1, &b)) return false;
  return PL_unify_float(args + 2, author_distance(current_data(), a, b));
}

// Each predicate's implementation under the predicate's name, from which
// the table's registration below is made.
constexpr ForeignFunction refgrove_hello = hello;
constexpr ForeignFunction refgrove_preproc = preproc_pred;
constexpr ForeignFunction refgrove_load = load_pred;
constexpr ForeignFunction refgrove_has_word_info = has_word_info_pred;
constexpr ForeignFunction refgrove_has_graph_info = has_graph_info_pred;
constexpr ForeignFunction refgrove_printdoc = printdoc_pred;
constexpr ForeignFunction refgrove_print_author = print_author_pred;
constexpr ForeignFunction refgrove_last_did = last_did_pred;
constexpr ForeignFunction refgrove_document_count = stats_pred;
constexpr ForeignFunction refgrove_get_nb_authors = nb_authors_pred;
constexpr ForeignFunction refgrove_stats = stats_pred;
constexpr ForeignFunction refgrove_word_count = int_result<word_count>;
constexpr ForeignFunction refgrove_title_length = int_result<title_length>;
constexpr ForeignFunction refgrove_author_count = int_result<author_count>;
constexpr ForeignFunction refgrove_cite_count = int_result<cite_count>;
constexpr ForeignFunction refgrove_get_year = year_pred;
constexpr ForeignFunction refgrove_get_author_id = author_id_pred;
constexpr ForeignFunction refgrove_get_cite = cite_pred;
constexpr ForeignFunction refgrove_get_key = text_result<key_of>;
constexpr ForeignFunction refgrove_get_title_word = word_result<unify_title_word>;
constexpr ForeignFunction refgrove_get_word = word_result<unify_word>;
constexpr ForeignFunction refgrove_get_author = text_result<get_author>;
constexpr ForeignFunction refgrove_id2author = text_result<name_of>;
constexpr ForeignFunction refgrove_get_authors = authors_pred;
constexpr ForeignFunction refgrove_author_distance = distance_pred;

constexpr ForeignPredicate kPredicates[] = {
#define REFGROVE_REGISTER(name, arity, ...) {#name, arity, guarded<name>, false},
    REFGROVE_HOST_PREDICATES(REFGROVE_REGISTER)
#undef REFGROVE_REGISTER
};

}  // namespace

std::span<const ForeignPredicate> host_predicates() { return kPredicates; }

}  // namespace refgrove::swipl
