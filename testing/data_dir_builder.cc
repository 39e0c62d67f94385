#include "testing/data_dir_builder.h"

#include <fstream>

#include "graph/arena.h"
#include "graph/graph_file.h"
#include "words/compacted_string_table.h"
#include "words/string_table.h"

namespace refgrove {

DataDirBuilder& DataDirBuilder::add(TestDocument doc) {
  docs_.push_back(std::move(doc));
  return *this;
}

void DataDirBuilder::write(const std::string& dir) const {
  StringTable words;
  std::vector<DocumentWordInfo> headers;
  std::vector<std::uint32_t> ids;
  for (const TestDocument& doc : docs_) {
    if (!doc.in_words) continue;
    headers.push_back(DocumentWordInfo{doc.did, static_cast<std::int32_t>(kWordIdBytes * ids.size())});
    for (const std::string& w : doc.words) ids.push_back(static_cast<std::uint32_t>(words.String2ID(w)));
  }
  headers.push_back(DocumentWordInfo{-1, static_cast<std::int32_t>(kWordIdBytes * ids.size())});
  write_word_idx(dir, headers);
  write_word_data(dir, ids);

  Arena arena;
  StringTable authors;
  std::vector<RefgroveGraphData*> records;
  for (const TestDocument& doc : docs_) {
    if (!doc.in_graph) continue;
    std::vector<WordId> title;
    for (const std::string& w : doc.title)
      title.push_back(WordId::from_id(static_cast<std::uint32_t>(words.String2ID(w))));
    std::vector<std::int32_t> author_ids;
    for (const std::string& a : doc.authors) author_ids.push_back(authors.String2ID(a));
    records.push_back(RefgroveGraphData::create(arena, doc.did, doc.key, doc.year, doc.citations, title, author_ids));
  }
  std::ofstream graph(dir + kGraphFile, std::ios::binary);
  write_graph_file(graph, CompactedStringTable(authors), records);

  std::ofstream table(dir + kWordTableFile, std::ios::binary);
  CompactedStringTable(words).write(table);
}

}  // namespace refgrove
