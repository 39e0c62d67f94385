#include "generate/dump_generator.h"

#include <algorithm>

#include "generate/buffered_file.h"

namespace refgrove {

namespace {

// The group id of a cited work: fixed per cited document.
std::int64_t group_of(std::int32_t did) { return 1000000 + (static_cast<std::int64_t>(did) * 2654435761ll) % 9000000; }

void append_graph_line(const GeneratedDocument& d, std::string& g) {
  append_int(g, d.did);
  g += ' ';
  g += d.key.empty() ? "-" : d.key;
  g += ' ';
  if (d.year) {
    append_int(g, *d.year);
  } else {
    g += '-';
  }
  g += " GIDs:";
  for (std::int32_t c : d.cited) {
    g += ' ';
    append_int(g, group_of(c));
  }
  g += " DIDs:";
  for (std::int32_t c : d.cited) {
    g += ' ';
    append_int(g, c);
  }
  g += " Title:";
  for (const std::string& w : d.title) {
    g += ' ';
    g += w;
  }
  g += " Authors:";
  for (std::size_t k = 0; k < d.authors.size(); ++k) {
    g += k == 0 ? " " : " and ";
    g += d.authors[k];
  }
  g += '\n';
}

void append_word_line(const GeneratedDocument& d, std::string& w) {
  append_int(w, d.did);
  w += ' ';
  w += d.key.empty() ? "-" : d.key;
  for (std::string_view word : d.abstract) {
    w += ' ';
    w += word;
  }
  w += '\n';
}

}  // namespace

bool generate_dumps(const std::string& dir, const DocumentGeneratorOptions& options, DumpGeneratorResult* result,
                    std::string* error) {
  const char* word_names[] = {"word-data1-mar-2002.txt", "word-data2-mar-2002.txt", "word-data3-mar-2002.txt"};
  BufferedFile graph, word_files[3];
  if (!graph.open(dir + "graph-data-aug-2002.txt")) {
    *error = "cannot create " + graph.name();
    return false;
  }
  for (int f = 0; f < 3; ++f) {
    if (!word_files[f].open(dir + word_names[f])) {
      *error = "cannot create " + word_files[f].name();
      return false;
    }
  }

  DocumentGenerator documents(options);
  const std::int64_t n = documents.count();
  GeneratedDocument d;
  DumpGeneratorResult r;
  for (std::int64_t i = 0; documents.next(&d); ++i) {
    append_graph_line(d, graph.text());
    if (!graph.flush_if_full()) break;
    if (!d.has_abstract) continue;
    // The abstract goes to the word dump of the document's third.
    BufferedFile& out = word_files[std::min<std::int64_t>(2, i * 3 / std::max<std::int64_t>(n, 1))];
    append_word_line(d, out.text());
    r.words += static_cast<std::int64_t>(d.abstract.size());
    if (!out.flush_if_full()) break;
  }
  r.last_did = d.did;
  graph.text() += "xxxx\n";

  bool ok = graph.close();
  for (BufferedFile& out : word_files) ok = out.close() && ok;
  if (!ok) {
    *error = "write error in " + dir;
    return false;
  }
  r.bytes = graph.bytes();
  for (const BufferedFile& out : word_files) r.bytes += out.bytes();
  *result = r;
  return true;
}

}  // namespace refgrove
