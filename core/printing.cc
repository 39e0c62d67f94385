// Printing a document or an author for a person at the host's prompt.
//
// A document prints its word-data header, its graph part and its abstract.
// The title's label goes to standard output but the title words and their
// line end go to standard error; scripts that read the two streams apart
// depend on that split. The graph part is found by the graph's own binary
// search (findDid), not through the DID index.
#include <algorithm>
#include <iostream>

#include "core/lookup.h"
#include "core/refgrove.h"

namespace {

const char* or_empty(const char* text) { return text == nullptr ? "" : text; }

void print_authors(const RefgroveGraphData& r) {
  std::cout << "# Authors = " << r.nb_authors << std::endl;
  for (int k = 0; k < r.nb_authors; ++k) {
    if (k > 0) std::cout << " and ";
    std::cout << or_empty(author_text(r.authors[k]));
  }
  std::cout << std::endl;
}

void print_title(const RefgroveGraphData& r) {
  std::cout << "title: ";
  for (const WordId& w : r.title) std::cerr << or_empty(word_text(w.id())) << " ";
  std::cerr << std::endl;
}

void print_graph_part(int did) {
  const int g = refgrove_data->graph->findDid(did);
  if (g < 0) {
    std::cout << "no graph info found \n";
    return;
  }
  const RefgroveGraphData& r = *refgrove_data->graph->docs[static_cast<std::size_t>(g)];
  print_authors(r);
  print_title(r);
}

// The abstract's words; positions outside "word-data" are not printed.
void print_abstract(const WordRun& run) {
  std::cout << "abstract:\n";
  const WordData& words = *refgrove_data->word_data;
  const std::int64_t first = std::max<std::int64_t>(run.start, 0);
  const std::int64_t last = std::min(run.start + run.count, words.mapped_word_count());
  for (std::int64_t p = first; p < last; ++p) {
    std::uint32_t id = 0;
    words.word_id_at(p, &id);
    std::cout << or_empty(word_text(id)) << " ";
  }
  std::cout << std::endl;
}

}  // namespace

void refgrove_printdoc_1(int did) {
  if (refgrove_data == nullptr) return;
  const int w = word_index_of(did);
  const WordRun run = w < 0 ? WordRun{0, 0} : word_run_at(w);
  if (w < 0) {
    std::cout << "Document without word-data\n";
  } else {
    std::cout << "Document " << w << " - DID=" << did << " - # words=" << static_cast<int>(run.count) << std::endl;
  }
  print_graph_part(did);
  if (w >= 0) print_abstract(run);
}

void refgrove_print_author_1(int author_id) { std::cout << or_empty(author_text(author_id)); }
