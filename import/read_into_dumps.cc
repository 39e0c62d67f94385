#include "import/read_into_dumps.h"

#include <zlib.h>

#include <sstream>
#include <stdexcept>
#include <vector>

namespace refgrove {

std::ostream& operator<<(std::ostream& os, const Dumps& d) {
  return os << "graph:\n" << d.graph << "words:\n" << d.words << "outside: " << d.outside << "\nerrors:\n" << d.errors;
}

Dumps read_into_dumps(const std::function<void(const WorkSink&)>& read, std::optional<YearRange> years,
                      WorkSetCounts* counts) {
  WorkSet set(years);
  Dumps d;
  const WorkSink sink{[&set](const ImportedWork& w) { set.add(w); },
                      [&set](std::string citing, std::string cited) { set.add_citation(citing, cited); },
                      [&set](std::string key, std::string text) { set.add_abstract(key, text); },
                      [&d](const ImportError& e) { d.errors += std::string(e.what()) + "\n"; }};
  read(sink);
  std::ostringstream graph, words;
  std::vector<std::string> outside;
  const WorkSetCounts written = set.write_dumps(graph, words, &outside);
  if (counts) *counts = written;
  d.graph = graph.str();
  d.words = words.str();
  for (const std::string& k : outside) d.outside += k + " ";
  return d;
}

void write_gzip(const std::string& path, const std::string& bytes) {
  gzFile gz = gzopen(path.c_str(), "wb1");
  const bool written =
      gz && gzwrite(gz, bytes.data(), static_cast<unsigned>(bytes.size())) == static_cast<int>(bytes.size());
  if (gz) gzclose(gz);
  if (!written) throw std::runtime_error(path + ": cannot be written");
}

}  // namespace refgrove
