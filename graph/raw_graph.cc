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
  while (t->has_more_tokens() && !t->is_next_token("xxxx")) {
    docs.push_back(parse_graph_record(arena_, words, &author_table, *t));
    if (docs.size() % 1000 == 0) err << '\r' << static_cast<unsigned>(docs.size());
  }
  err << std::endl;
}

std::ostream& RawRefgroveGraph::write(std::ostream& out) const {
  const CompactedStringTable authors(author_table);
  write_graph_file(out, authors, docs);
  return out;
}

void RawRefgroveGraph::renumberTitleWords(const std::vector<WordId>& ids) {
  for (RefgroveGraphData* doc : docs) {
    // The arena's memory; records only show it read-only.
    WordId* title = const_cast<WordId*>(doc->title.items);
    for (std::int32_t i = 0; i < doc->title.size(); ++i) title[i] = ids[title[i].id()];
  }
}

void preprocGraph(const std::string& in_dir, const std::string& out_dir, StringTable* words) {
  writeGraph(out_dir, RawRefgroveGraph(in_dir, words));
}

void writeGraph(const std::string& out_dir, const RawRefgroveGraph& graph) {
  const std::string name = out_dir + kGraphFile;
  std::cerr << "writing graph file " << name << "...\n";
  std::ofstream out(name, std::ios::out | std::ios::trunc | std::ios::binary);
  graph.write(out);
  out.close();
}

ConcurrentGraphParse::ConcurrentGraphParse(const std::string& in_dir)
    : in_dir_(in_dir), parse_([this] {
        graph_ = std::make_unique<RawRefgroveGraph>(in_dir_, &titles_, messages_.out(), messages_.err());
      }) {}

std::unique_ptr<RawRefgroveGraph> ConcurrentGraphParse::finish(StringTable* words) {
  const std::exception_ptr error = parse_.wait();
  // Title word ids are kept in 24 bits. Beyond that many distinct title
  // words the local ids cannot be told apart in the records any more, and
  // the pass is run again on `words` itself, one after the other.
  if (titles_.size() > (1 << 24)) return std::make_unique<RawRefgroveGraph>(in_dir_, words);
  messages_.replay();
  if (error) std::rethrow_exception(error);
  std::vector<WordId> ids;
  ids.reserve(titles_.by_id.size());
  for (const std::string& word : titles_.by_id) {
    ids.push_back(WordId::from_id(static_cast<std::uint32_t>(words->String2ID(word))));
  }
  graph_->renumberTitleWords(ids);
  return std::move(graph_);
}
