#include "core/lookup.h"

#include <algorithm>

namespace refgrove {

const RefgroveGraphData* graph_record(const RefgroveData& d, int did) {
  const WordGraphDataIds* e = d.entry(did);
  if (e == nullptr || e->graph_index < 0) return nullptr;
  return d.graph->docs[static_cast<std::size_t>(e->graph_index)];
}

int word_index_of(const RefgroveData& d, int did) {
  const WordGraphDataIds* e = d.entry(did);
  return e == nullptr ? -1 : e->word_index;
}

WordRun word_run_at(const RefgroveData& d, int w) {
  const std::vector<DocumentWordInfo>& headers = d.word_data->doc_info;
  const std::int64_t start = headers[static_cast<std::size_t>(w)].offset;
  return WordRun{start, headers[static_cast<std::size_t>(w) + 1].offset - start};
}

AbstractRun abstract_run(const RefgroveData& d, int did) {
  const int w = word_index_of(d, did);
  if (w < 0) return {};
  const std::vector<DocumentWordInfo>& headers = d.word_data->doc_info;
  const std::int64_t start = headers[static_cast<std::size_t>(w)].offset;
  const std::int64_t end =
      std::min<std::int64_t>(headers[static_cast<std::size_t>(w) + 1].offset, d.word_data->mapped_bytes());
  if (start < 0 || end <= start) return {};
  return AbstractRun{start, (end - start) / kWordIdBytes};
}

const char* word_text(const RefgroveData& d, std::uint32_t id) {
  if (id > INT32_MAX) return nullptr;
  return d.word_data->word_table->lookup(static_cast<std::int32_t>(id));
}

const char* author_text(const RefgroveData& d, int author_id) { return d.graph->author_name(author_id); }

}  // namespace refgrove
