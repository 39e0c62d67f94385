// The C operations of refgrove/query.h: the one global data set, and each query
// of data_view.h applied to it. Before the first load the queries see an
// empty set, which answers every lookup as absent.
#include <iostream>

#include "core/data_view.h"
#include "refgrove/query.h"

RefgroveData* refgrove_data = nullptr;

const RefgroveData& refgrove::loaded_data() {
  return refgrove_data == nullptr ? RefgroveData::empty() : *refgrove_data;
}

using refgrove::loaded_data;

void refgrove_load_1(const char* path) {
  if (refgrove_data != nullptr) {
    std::cerr << "deleting loaded data...\n";
    delete refgrove_data;
    refgrove_data = nullptr;
  }
  refgrove_data = new RefgroveData(path);
}

void refgrove_last_did_1(int* out) { refgrove::last_did(loaded_data(), out); }
int refgrove_has_graph_info_1(int did) { return refgrove::has_graph_info(loaded_data(), did); }
int refgrove_has_word_info_1(int did) { return refgrove::has_word_info(loaded_data(), did); }

int refgrove_get_key_1(int did, const char** out) { return refgrove::get_key(loaded_data(), did, out); }
int refgrove_get_year_1(int did, int* out) { return refgrove::get_year(loaded_data(), did, out); }
int refgrove_cite_count_1(int did, int* out) { return refgrove::cite_count(loaded_data(), did, out); }
int refgrove_get_cite_1(int did, int i, int* cited, int* gid) {
  return refgrove::get_cite(loaded_data(), did, i, cited, gid);
}
int refgrove_title_length_1(int did, int* out) { return refgrove::title_length(loaded_data(), did, out); }
int refgrove_get_title_word_1(int did, int i, const char** out) {
  return refgrove::get_title_word(loaded_data(), did, i, out);
}
int refgrove_author_count_1(int did, int* out) { return refgrove::author_count(loaded_data(), did, out); }
int refgrove_get_author_id_1(int did, int i, int* out) { return refgrove::get_author_id(loaded_data(), did, i, out); }
int refgrove_get_author_1(int did, int i, const char** out) { return refgrove::get_author(loaded_data(), did, i, out); }
void refgrove_get_authors_1(int did, int* out) { refgrove::get_authors(loaded_data(), did, out); }

int refgrove_word_count_1(int did, int* out) { return refgrove::word_count(loaded_data(), did, out); }
int refgrove_get_word_1(int did, int i, const char** out) { return refgrove::get_word(loaded_data(), did, i, out); }
int refgrove_abstract_length_1(int did, int* out) { return refgrove::abstract_length(loaded_data(), did, out); }
int refgrove_get_abstract_word_1(int did, int i, const char** out) {
  return refgrove::get_abstract_word(loaded_data(), did, i, out);
}

int refgrove_cited_by_count_1(int did, int* out) { return refgrove::cited_by_count(loaded_data(), did, out); }
int refgrove_get_cited_by_1(int did, int i, int* citing) {
  return refgrove::get_cited_by(loaded_data(), did, i, citing);
}
int refgrove_author_doc_count_1(int author_id, int* out) {
  return refgrove::author_doc_count(loaded_data(), author_id, out);
}
int refgrove_get_author_doc_1(int author_id, int i, int* did) {
  return refgrove::get_author_doc(loaded_data(), author_id, i, did);
}
int refgrove_key_doc_count_1(const char* key, int* out) { return refgrove::key_doc_count(loaded_data(), key, out); }
int refgrove_get_key_doc_1(const char* key, int i, int* did) {
  return refgrove::get_key_doc(loaded_data(), key, i, did);
}

int refgrove_author_named_count_1(const char* name, int* out) {
  return refgrove::author_named_count(loaded_data(), name, out);
}
int refgrove_get_author_named_1(const char* name, int i, int* author_id) {
  return refgrove::get_author_named(loaded_data(), name, i, author_id);
}
int refgrove_author_prefix_count_1(const char* prefix, int* out) {
  return refgrove::author_prefix_count(loaded_data(), prefix, out);
}
int refgrove_get_author_prefix_1(const char* prefix, int i, int* author_id) {
  return refgrove::get_author_prefix(loaded_data(), prefix, i, author_id);
}

int refgrove_id2author_1(int author_id, const char** out) { return refgrove::id2author(loaded_data(), author_id, out); }
int refgrove_get_nb_authors_1(void) { return refgrove::get_nb_authors(loaded_data()); }
void refgrove_stats_1(int* docs, int* words, int* authors) { refgrove::stats(refgrove_data, docs, words, authors); }
double refgrove_author_distance_1(int a, int b) { return refgrove::author_distance(loaded_data(), a, b); }

// Nothing is printed before the first load.
void refgrove_printdoc_1(int did) {
  if (refgrove_data != nullptr) refgrove::printdoc(*refgrove_data, did, std::cout, std::cerr);
}
void refgrove_print_author_1(int author_id) { refgrove::print_author(loaded_data(), author_id, std::cout); }
