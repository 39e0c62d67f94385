#include "core/lookup.h"

const RefgroveGraphData* graph_record(int did) {
  if (refgrove_data == nullptr) return nullptr;
  const WordGraphDataIds* e = refgrove_data->entry(did);
  if (e == nullptr || e->graph_index < 0) return nullptr;
  return refgrove_data->graph->docs[static_cast<std::size_t>(e->graph_index)];
}

int word_index_of(int did) {
  if (refgrove_data == nullptr) return -1;
  const WordGraphDataIds* e = refgrove_data->entry(did);
  return e == nullptr ? -1 : e->word_index;
}

WordRun word_run_at(int w) {
  const std::vector<DocumentWordInfo>& headers = refgrove_data->word_data->doc_info;
  const std::int64_t start = headers[static_cast<std::size_t>(w)].offset;
  return WordRun{start, headers[static_cast<std::size_t>(w) + 1].offset - start};
}

const char* word_text(std::uint32_t id) {
  if (refgrove_data == nullptr || id > INT32_MAX) return nullptr;
  return refgrove_data->word_data->word_table->lookup(static_cast<std::int32_t>(id));
}

const char* author_text(int author_id) {
  if (refgrove_data == nullptr) return nullptr;
  return refgrove_data->graph->author_name(author_id);
}
