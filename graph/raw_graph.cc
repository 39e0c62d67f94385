#include "graph/raw_graph.h"

#include <cerrno>
#include <climits>
#include <fstream>
#include <iostream>

#include "graph/did_index.h"
#include "graph/graph_dump.h"
#include "graph/graph_file.h"
#include "words/compacted_string_table.h"

namespace refgrove {

RawRefgroveGraph::RawRefgroveGraph(const std::string& in_dir, StringTable* words, std::ostream& out,
                                   std::ostream& err) {
  out << "preprocGraph() ...\n";
  std::ifstream in(in_dir + kGraphDumpFile, std::ios::in | std::ios::binary);
  const std::unique_ptr<RefgroveGraphTokenizer> t = create_refgrovegraph_tokenizer(in);
  GraphLineParser parser(&arena_, words, &author_table);
  while (t->has_more_tokens() && !t->is_next_token("xxxx")) {
    docs.push_back(parser.parse(*t));
    reportGraphProgress(err, docs.size());
  }
  err << std::endl;
}

std::ostream& RawRefgroveGraph::write(std::ostream& out) const {
  const CompactedStringTable authors(author_table);
  write_graph_file(out, authors, docs);
  return out;
}

RawRefgroveGraph::Counts RawRefgroveGraph::counts() const {
  const auto clamped = [](std::int32_t v) { return v == INT_MAX || v == INT_MIN ? 1 : 0; };
  Counts c;
  c.records = static_cast<std::int64_t>(docs.size());
  c.authors = author_table.size();
  for (const RefgroveGraphData* doc : docs) {
    c.citations += doc->citations.size();
    c.clamped_values += clamped(doc->did) + clamped(doc->year);
    if (did_may_be_unindexed(doc->did)) c.outlying_dids.push_back(doc->did);
    for (const CitationInfo& cite : doc->citations) c.clamped_values += clamped(cite.gid) + clamped(cite.did);
  }
  return c;
}

void reportGraphProgress(std::ostream& err, std::size_t records) {
  if (records % 1000 == 0) err << '\r' << static_cast<unsigned>(records);
}

GraphPassResult preprocGraph(const std::string& in_dir, const std::string& out_dir, StringTable* words,
                             std::ostream& out, std::ostream& err) {
  const RawRefgroveGraph graph(in_dir, words, out, err);
  announceGraphFile(out_dir, err);
  return GraphPassResult{graph.counts(), writeGraphFile(out_dir, graph)};
}

void announceGraphFile(const std::string& out_dir, std::ostream& err) {
  err << "writing graph file " << out_dir << kGraphFile << "...\n";
}

std::error_code writeGraphFile(const std::string& out_dir, const RawRefgroveGraph& graph) {
  std::ofstream out(out_dir + kGraphFile, std::ios::out | std::ios::trunc | std::ios::binary);
  if (!out.is_open()) return std::error_code(errno, std::generic_category());
  errno = 0;  // a failed write sets it; a failure without one is EIO
  graph.write(out);
  out.close();
  return out.fail() ? std::error_code(errno != 0 ? errno : EIO, std::generic_category()) : std::error_code();
}

}  // namespace refgrove
