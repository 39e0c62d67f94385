// A whole data directory loaded from the fuzzer's input, then every query
// operation run on every DID of the index and on out-of-range arguments,
// every document and author printed, and words of the data searched.
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
#include "search/refgrove_search.h"
#include "testing/query_everything.h"
#include "fuzz/fuzz_support.h"
#include "graph/graph_file.h"
#include "words/word_files.h"

namespace {

// Searches the first words of the first documents, whole and as prefixes,
// in both modes, through the C operations.
void search_words() {
  int last = 0, n = 0;
  refgrove_last_did_1(&last);
  int dids[10];
  double scores[10];
  for (int did = 0; did < std::min(last, 32); ++did) {
    const char* word = nullptr;
    if (!refgrove_get_title_word_1(did, 0, &word) && !refgrove_get_abstract_word_1(did, 0, &word)) continue;
    const std::string w = word;
    for (const std::string& query : {w, w.substr(0, 2) + "* " + w, w + " the"}) {
      refgrove_search_count_1(query.c_str(), did % 2, &n);
      FUZZ_CHECK(refgrove_search_1(query.c_str(), did % 2, 10, dids, scores) <= 10);
    }
  }
}

std::uint32_t take_length(const std::uint8_t* p) {
  return p[0] | (p[1] << 8) | (p[2] << 16) | (static_cast<std::uint32_t>(p[3]) << 24);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
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
  search_words();
  // What passes the check must load into data that answers every item.
  if (validate_data_dir(dir).empty()) FUZZ_CHECK(unanswered_items().empty());
  return 0;
}
