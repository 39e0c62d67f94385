// Test support: every query operation of the C interface on every DID of the
// loaded data set (reverse lookups included), and on arguments outside it,
// plus printing. For tests and fuzz targets that care only that nothing goes
// wrong on damaged data.
#ifndef REFGROVE_TESTING_QUERY_EVERYTHING_H_
#define REFGROVE_TESTING_QUERY_EVERYTHING_H_

#include <algorithm>
#include <climits>
#include <cstdint>
#include <string>
#include <vector>

#include "core/data_set.h"
#include "refgrove/query.h"

namespace refgrove {

namespace query_everything_detail {

// Item indexes to try for a list of n items: the ones before and after the
// list, the list's ends and, for short lists, every one (a word list may
// claim two billion entries).
inline std::vector<int> item_indexes(int n) {
  std::vector<int> out = {INT_MIN, -1, 0, INT_MAX};
  for (const long long i : {static_cast<long long>(n) - 1, static_cast<long long>(n), static_cast<long long>(n) + 1}) {
    out.push_back(static_cast<int>(std::clamp<long long>(i, INT_MIN, INT_MAX)));
  }
  for (int i = 1; i < std::min(n, 64); ++i) out.push_back(i);
  return out;
}

inline std::uint64_t text_sum(const char* s) {
  std::uint64_t h = 0;
  for (; *s != '\0'; ++s) h = h * 31 + static_cast<unsigned char>(*s);
  return h;
}

inline std::uint64_t query_document(int did, bool print) {
  std::uint64_t sum = 0;
  const char* text = nullptr;
  int n = 0, a = 0, b = 0;
  sum += refgrove_has_graph_info_1(did) + refgrove_has_word_info_1(did);
  if (refgrove_get_key_1(did, &text)) sum += text_sum(text);
  refgrove_get_year_1(did, &n);
  sum += static_cast<unsigned>(n);
  refgrove_cite_count_1(did, &n);
  for (const int i : item_indexes(n)) {
    if (refgrove_get_cite_1(did, i, &a, &b)) sum += static_cast<unsigned>(a) + static_cast<unsigned>(b);
  }
  refgrove_title_length_1(did, &n);
  for (const int i : item_indexes(n)) {
    if (refgrove_get_title_word_1(did, i, &text)) sum += text_sum(text);
  }
  n = 0;
  refgrove_author_count_1(did, &n);
  for (const int i : item_indexes(n)) {
    if (refgrove_get_author_id_1(did, i, &a)) sum += static_cast<unsigned>(a);
    if (refgrove_get_author_1(did, i, &text)) sum += text_sum(text);
  }
  // Room for the count that author_count reports, which may be negative.
  std::vector<int> ids(static_cast<std::size_t>(std::max(n, 0)) + 1, 0);
  refgrove_get_authors_1(did, ids.data());
  n = 0;
  if (refgrove_word_count_1(did, &n)) {
    for (const int i : item_indexes(n)) {
      if (refgrove_get_word_1(did, i, &text)) sum += text_sum(text);
    }
  }
  n = 0;
  if (refgrove_abstract_length_1(did, &n)) {
    for (const int i : item_indexes(n)) {
      if (refgrove_get_abstract_word_1(did, i, &text)) sum += text_sum(text);
    }
  }
  refgrove_cited_by_count_1(did, &n);
  for (const int i : item_indexes(n)) {
    if (refgrove_get_cited_by_1(did, i, &a)) sum += static_cast<unsigned>(a);
  }
  if (refgrove_get_key_1(did, &text)) {
    const char* key = text;
    refgrove_key_doc_count_1(key, &n);
    for (const int i : item_indexes(n)) {
      if (refgrove_get_key_doc_1(key, i, &a)) sum += static_cast<unsigned>(a);
    }
  }
  if (print) refgrove_printdoc_1(did);
  return sum;
}

}  // namespace query_everything_detail

// Runs everything on the loaded data set (or on none). Printing goes to the
// standard streams; callers silence or capture them. Returns a sum over the
// results so that the calls cannot be optimised away.
inline std::uint64_t query_everything() {
  using namespace query_everything_detail;
  std::uint64_t sum = 0;
  int last = 0;
  refgrove_last_did_1(&last);
  int docs = 0, words = 0, authors = 0;
  refgrove_stats_1(&docs, &words, &authors);
  sum += static_cast<unsigned>(docs) + static_cast<unsigned>(words) + static_cast<unsigned>(authors);
  // Every DID that either half names, and a sample of the DIDs in between
  // (a damaged file may name a DID in the millions).
  std::vector<int> dids;
  if (refgrove_data != nullptr) {
    for (const RefgroveGraphData* doc : refgrove_data->graph->docs) dids.push_back(doc->did);
    for (const DocumentWordInfo& h : refgrove_data->word_data->doc_info) dids.push_back(h.did);
  }
  for (int did = 0; did < last; did += 4096) dids.push_back(did);
  std::sort(dids.begin(), dids.end());
  dids.erase(std::unique(dids.begin(), dids.end()), dids.end());
  for (const int did : dids) sum += query_document(did, true);
  for (const int did : {INT_MIN, -2, -1, last, last + 1, INT_MAX}) sum += query_document(did, true);

  const int nb_authors = refgrove_get_nb_authors_1();
  for (const int id : item_indexes(nb_authors)) {
    const char* text = nullptr;
    if (refgrove_id2author_1(id, &text)) sum += text_sum(text);
    refgrove_print_author_1(id);
    int n = 0, did = 0;
    refgrove_author_doc_count_1(id, &n);
    for (const int i : item_indexes(n)) {
      if (refgrove_get_author_doc_1(id, i, &did)) sum += static_cast<unsigned>(did);
    }
  }
  for (int id = 64; id < nb_authors; ++id) refgrove_print_author_1(id);
  sum += static_cast<std::uint64_t>(refgrove_author_distance_1(0, 1));
  return sum;
}

// The title words and authors of the loaded graph records that have no
// text, as " title word I of DID D" and " author I of DID D"; empty when
// all have one, as they must when the directory passed the check.
inline std::string unanswered_items() {
  std::string out;
  int last = 0;
  refgrove_last_did_1(&last);
  for (int did = 0; did < last; ++did) {
    if (!refgrove_has_graph_info_1(did)) continue;
    int n = 0;
    const char* text = nullptr;
    refgrove_title_length_1(did, &n);
    for (int i = 0; i < n; ++i) {
      if (!refgrove_get_title_word_1(did, i, &text))
        out += " title word " + std::to_string(i) + " of DID " + std::to_string(did);
    }
    refgrove_author_count_1(did, &n);
    for (int i = 0; i < n; ++i) {
      if (!refgrove_get_author_1(did, i, &text))
        out += " author " + std::to_string(i) + " of DID " + std::to_string(did);
    }
  }
  return out;
}

}  // namespace refgrove

#endif  // REFGROVE_TESTING_QUERY_EVERYTHING_H_
