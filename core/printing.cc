// Printing a document or an author for a person at the host's prompt.
//
// A document prints its word-data header, its graph part and its abstract.
// The title's label goes to the output stream but the title words and their
// line end go to the error stream; scripts that read the two streams apart
// depend on that split. The graph part is found by the graph's own binary
// search (findDid), not through the DID index.
#include <algorithm>
#include <ostream>

#include "core/data_view.h"
#include "core/lookup.h"

namespace refgrove {
namespace {

const char* or_empty(const char* text) { return text == nullptr ? "" : text; }

void print_authors(const RefgroveData& d, const RefgroveGraphData& r, std::ostream& out) {
  out << "# Authors = " << r.nb_authors << std::endl;
  for (int k = 0; k < r.nb_authors; ++k) {
    if (k > 0) out << " and ";
    out << or_empty(author_text(d, r.authors[k]));
  }
  out << std::endl;
}

void print_title(const RefgroveData& d, const RefgroveGraphData& r, std::ostream& out, std::ostream& err) {
  out << "title: ";
  for (const WordId& w : r.title) err << or_empty(word_text(d, w.id())) << " ";
  err << std::endl;
}

void print_graph_part(const RefgroveData& d, int did, std::ostream& out, std::ostream& err) {
  const int g = d.graph->findDid(did);
  if (g < 0) {
    out << "no graph info found \n";
    return;
  }
  const RefgroveGraphData& r = *d.graph->docs[static_cast<std::size_t>(g)];
  print_authors(d, r, out);
  print_title(d, r, out, err);
}

// The abstract's words; positions outside "word-data" are not printed.
void print_abstract(const RefgroveData& d, const WordRun& run, std::ostream& out) {
  out << "abstract:\n";
  const WordData& words = *d.word_data;
  const std::int64_t first = std::max<std::int64_t>(run.start, 0);
  const std::int64_t last = std::min(run.start + run.count, words.mapped_word_count());
  for (std::int64_t p = first; p < last; ++p) {
    std::uint32_t id = 0;
    words.word_id_at(p, &id);
    out << or_empty(word_text(d, id)) << " ";
  }
  out << std::endl;
}

}  // namespace

void printdoc(const RefgroveData& d, int did, std::ostream& out, std::ostream& err) {
  const int w = word_index_of(d, did);
  const WordRun run = w < 0 ? WordRun{0, 0} : word_run_at(d, w);
  if (w < 0) {
    out << "Document without word-data\n";
  } else {
    out << "Document " << w << " - DID=" << did << " - # words=" << static_cast<int>(run.count) << std::endl;
  }
  print_graph_part(d, did, out, err);
  if (w >= 0) print_abstract(d, run, out);
}

void print_author(const RefgroveData& d, int author_id, std::ostream& out) {
  out << or_empty(author_text(d, author_id));
}

}  // namespace refgrove
