// A whole data directory loaded from the fuzzer's input, then every query
// operation run on every DID of the index and on out-of-range arguments,
// every document and author printed, words of the data searched, and the
// network analyses run on the first documents and authors.
//
// Input: three little-endian uint32 lengths, then the files "word-table",
// "word-idx" and "word-data" with those lengths (each cut to what is left),
// then "graph_data" (the rest). fuzz/pack_data_dir makes such an input from
// a data directory. The check of the directory runs on the same files.
#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/data_set.h"
#include "core/validate.h"
#include "fuzz/fuzz_support.h"
#include "graph/graph_file.h"
#include "refgrove/network.h"
#include "refgrove/search.h"
#include "testing/query_everything.h"
#include "words/word_files.h"

namespace refgrove {

namespace {

// Searches the first words of the first documents, whole and as prefixes,
// in both modes, through the C operations.
void search_words() {
  int last = 0;
  refgrove_last_did_1(&last);
  int dids[10];
  double scores[10];
  for (int did = 0; did < std::min(last, 32); ++did) {
    const char* word = nullptr;
    if (!refgrove_get_title_word_1(did, 0, &word) && !refgrove_get_abstract_word_1(did, 0, &word)) continue;
    const std::string w = word;
    for (const std::string& query : {w, w.substr(0, 2) + "* " + w, w + " the"}) {
      const int total = refgrove_search_1(query.c_str(), did % 2, 10, dids, scores);
      FUZZ_CHECK(total >= -1 && total == refgrove_search_1(query.c_str(), did % 2, 0, nullptr, nullptr));
    }
  }
}

std::uint32_t take_length(const std::uint8_t* p) {
  return p[0] | (p[1] << 8) | (p[2] << 16) | (static_cast<std::uint32_t>(p[3]) << 24);
}

// Every analysis on up to 32 documents and authors and on arguments outside
// the data; the results are not checked, only that each call returns.
void analyse_some() {
  int last = 0;
  refgrove_last_did_1(&last);
  std::vector<int> dids = {-1, INT_MAX, last};
  for (int did = 0; did < last && dids.size() < 35; ++did)
    if (refgrove_has_graph_info_1(did)) dids.push_back(did);
  const int authors = refgrove_get_nb_authors_1();
  int n = 0, id = 0, items[16], more[16];
  double score = 0, scores[16];
  refgrove_ranked_1(REFGROVE_BY_PAGERANK, INT_MIN, INT_MAX, 16, items, scores);
  refgrove_ranked_1(REFGROVE_BY_CITATIONS, 1990, 1999, 16, items, scores);
  refgrove_component_count_1();
  refgrove_author_component_count_1();
  for (const int did : dids) {
    refgrove_citation_count_1(did, &n);
    refgrove_pagerank_1(did, &score);
    refgrove_citation_distance_1(dids.back(), did, REFGROVE_DIRECTION_BOTH);
    refgrove_neighbourhood_1(did, 1000000000, REFGROVE_DIRECTION_BOTH, 16, 16, items, more);
    refgrove_neighbourhood_edges_1(did, 2, REFGROVE_DIRECTION_OUT, 1000000000, 16, items, more);
    refgrove_similar_1(did, REFGROVE_BY_COCITATION, 16, items, more);
    refgrove_similar_1(did, REFGROVE_BY_COUPLING, 16, items, more);
    refgrove_component_1(did, &id, &n);
  }
  for (int a = -1; a < std::min(authors, 32) + 1; ++a) {
    refgrove_collaboration_path_1(0, a, 16, items);
    refgrove_author_component_1(a, &id, &n);
  }
}

}  // namespace

int fuzz_one_input(const std::uint8_t* data, std::size_t size) {
  if (size < 12) return 0;
  const std::string& dir = fuzz::scratch_dir();
  const char* const names[] = {kWordTableFile, kWordIdxFile, kWordDataFile};
  std::size_t at = 12;
  for (int i = 0; i < 3; ++i) {
    const std::size_t n = std::min<std::size_t>(take_length(data + 4 * i), size - at);
    fuzz::write_file(dir + names[i], data + at, n);
    at += n;
  }
  fuzz::write_file(dir + kGraphFile, data + at, size - at);

  fuzz::Silence quiet;
  refgrove_load_1(dir.c_str());
  query_everything();
  analyse_some();
  search_words();
  // What passes the check must load into data that answers every item.
  if (validate_data_dir(dir).empty()) FUZZ_CHECK(unanswered_items().empty());
  return 0;
}

}  // namespace refgrove

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return refgrove::fuzz_one_input(data, size);
}
