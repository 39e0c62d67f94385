#include "graph/raw_graph.h"

#include <fstream>
#include <iostream>

#include "graph/graph_dump.h"
#include "graph/graph_file.h"
#include "words/compacted_string_table.h"

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

void reportGraphProgress(std::ostream& err, std::size_t records) {
  if (records % 1000 == 0) err << '\r' << static_cast<unsigned>(records);
}

void preprocGraph(const std::string& in_dir, const std::string& out_dir, StringTable* words) {
  const RawRefgroveGraph graph(in_dir, words);
  announceGraphFile(out_dir);
  writeGraphFile(out_dir, graph);
}

void announceGraphFile(const std::string& out_dir) {
  std::cerr << "writing graph file " << out_dir << kGraphFile << "...\n";
}

void writeGraphFile(const std::string& out_dir, const RawRefgroveGraph& graph) {
  std::ofstream out(out_dir + kGraphFile, std::ios::out | std::ios::trunc | std::ios::binary);
  graph.write(out);
  out.close();
}
