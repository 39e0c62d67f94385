// The predicates named after the query operations, as every face offers
// them (the host binding, the simulated host's toplevel, the SWI-Prolog
// library) and as the tool's `refgrove query` runs them: each face derives
// its list from this one table, so that a new query operation is one line
// here plus its code in each face.
//
// REFGROVE_HOST_PREDICATES(X) calls X(name, arity, operation, query, args)
// once per predicate, in the order of this list:
//   name, arity  the predicate;
//   operation    the query operation it calls, refgrove_<operation>_1 in the
//                C interface and refgrove::<operation> over a data set;
//   query        the operation's name under `refgrove query`, or `none`
//                where the tool has none;
//   args         the kinds of its arguments, in order, in parentheses
//                (PredicateArg below; which are inputs is each face's
//                business).
#ifndef REFGROVE_CORE_PREDICATE_TABLE_H_
#define REFGROVE_CORE_PREDICATE_TABLE_H_

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

// clang-format off
#define REFGROVE_HOST_PREDICATES(X)                                                                  \
  X(refgrove_hello, 0, hello, none, ())                                                              \
  X(refgrove_preproc, 2, preproc, none, (path, path))                                                \
  X(refgrove_load, 1, load, none, (path))                                                            \
  X(refgrove_has_word_info, 1, has_word_info, has_word_info, (did))                                  \
  X(refgrove_has_graph_info, 1, has_graph_info, has_graph_info, (did))                               \
  X(refgrove_printdoc, 1, printdoc, none, (did))                                                     \
  X(refgrove_print_author, 1, print_author, none, (author_id))                                       \
  X(refgrove_last_did, 1, last_did, last_did, (count))                                               \
  X(refgrove_document_count, 1, stats, none, (count))                                                \
  X(refgrove_get_nb_authors, 1, get_nb_authors, nb_authors, (count))                                 \
  X(refgrove_stats, 3, stats, stats, (count, count, count))                                          \
  X(refgrove_word_count, 2, word_count, word_count, (did, count))                                    \
  X(refgrove_title_length, 2, title_length, title_length, (did, count))                              \
  X(refgrove_author_count, 2, author_count, author_count, (did, count))                              \
  X(refgrove_cite_count, 2, cite_count, cite_count, (did, count))                                    \
  X(refgrove_get_year, 2, get_year, year, (did, year))                                               \
  X(refgrove_get_author_id, 3, get_author_id, author_id, (did, item, author_id))                     \
  X(refgrove_get_cite, 4, get_cite, cite, (did, item, did, group_id))                                \
  X(refgrove_get_key, 2, get_key, key, (did, text))                                                  \
  X(refgrove_get_title_word, 3, get_title_word, title_word, (did, item, text))                       \
  X(refgrove_get_word, 3, get_word, word, (did, item, text))                                         \
  X(refgrove_get_author, 3, get_author, author, (did, item, text))                                   \
  X(refgrove_id2author, 2, id2author, id2author, (author_id, text))                                  \
  X(refgrove_get_authors, 2, get_authors, authors, (did, author_ids))                                \
  X(refgrove_author_distance, 3, author_distance, author_distance, (author_id, author_id, number))
// clang-format on

namespace refgrove {

// What an argument of a predicate holds.
enum class PredicateArg {
  did,         // a document id
  item,        // the position of an item in a document's list, from 0
  author_id,   // an index into the author table
  group_id,    // a citation's group id
  year,        // a year, -1 when unknown
  count,       // a number of things
  path,        // a directory, as a prefix (an atom in Prolog)
  text,        // a word, key or name (an atom in Prolog)
  number,      // a floating-point number
  author_ids,  // a list of author ids
};

struct PredicateInfo {
  std::string_view name;
  int arity;
  std::string_view operation;
  std::string_view query;  // empty where `refgrove query` has none
  std::array<PredicateArg, 4> arg_storage;

  std::span<const PredicateArg> args() const { return std::span(arg_storage).first(static_cast<std::size_t>(arity)); }
};

namespace predicate_table_detail {
// `none` in the query column reads as the empty name.
constexpr std::string_view query_name(std::string_view query) { return query == "none" ? "" : query; }
}  // namespace predicate_table_detail

// The table as data, for faces that build their lists at run time.
inline constexpr PredicateInfo kPredicateTable[] = {
#define REFGROVE_PREDICATE_INFO(name, arity, operation, query, args)                                  \
  {#name, arity, #operation, predicate_table_detail::query_name(#query), [] {                         \
     using enum PredicateArg;                                                                         \
     constexpr PredicateArg kinds[] = {REFGROVE_PREDICATE_ARGS args did};                             \
     static_assert(std::size(kinds) == arity + 1, #name ": the arity and the argument kinds differ"); \
     std::array<PredicateArg, 4> stored{};                                                            \
     for (int k = 0; k < arity; ++k) stored[static_cast<std::size_t>(k)] = kinds[k];                  \
     return stored;                                                                                   \
   }()},
#define REFGROVE_PREDICATE_ARGS(...) __VA_ARGS__ __VA_OPT__(, )
    REFGROVE_HOST_PREDICATES(REFGROVE_PREDICATE_INFO)
#undef REFGROVE_PREDICATE_ARGS
#undef REFGROVE_PREDICATE_INFO
};

}  // namespace refgrove

#endif  // REFGROVE_CORE_PREDICATE_TABLE_H_
