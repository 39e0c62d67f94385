// The query operations of the C interface (refgrove.h). Each is a constant
// number of array accesses: no allocation, no copying of strings.
#include "core/lookup.h"
#include "core/refgrove.h"

namespace {

bool in_range(int i, std::int64_t n) { return i >= 0 && i < n; }

// Sets *out to `text` and returns 1, or returns 0 for a missing text.
int give_text(const char* text, const char** out) {
  if (text == nullptr) return 0;
  *out = text;
  return 1;
}

}  // namespace

void refgrove_last_did_1(int* out) {
  *out = refgrove_data == nullptr ? 0 : static_cast<int>(refgrove_data->did_index.size());
}

int refgrove_has_graph_info_1(int did) { return graph_record(did) != nullptr; }

int refgrove_has_word_info_1(int did) { return word_index_of(did) >= 0; }

int refgrove_get_key_1(int did, const char** out) {
  const RefgroveGraphData* r = graph_record(did);
  return r == nullptr ? 0 : give_text(r->key.data(), out);
}

int refgrove_get_year_1(int did, int* out) {
  const RefgroveGraphData* r = graph_record(did);
  *out = r == nullptr ? 0 : r->year;
  return r != nullptr;
}

int refgrove_cite_count_1(int did, int* out) {
  const RefgroveGraphData* r = graph_record(did);
  *out = r == nullptr ? 0 : r->citations.size();
  return r != nullptr;
}

int refgrove_get_cite_1(int did, int i, int* cited, int* gid) {
  const RefgroveGraphData* r = graph_record(did);
  const bool found = r != nullptr && in_range(i, r->citations.size());
  *cited = found ? r->citations[i].did : 0;
  *gid = found ? r->citations[i].gid : 0;
  return found;
}

int refgrove_title_length_1(int did, int* out) {
  const RefgroveGraphData* r = graph_record(did);
  *out = r == nullptr ? 0 : r->title.size();
  return r != nullptr;
}

int refgrove_get_title_word_1(int did, int i, const char** out) {
  const RefgroveGraphData* r = graph_record(did);
  if (r == nullptr || !in_range(i, r->title.size())) return 0;
  return give_text(word_text(r->title[i].id()), out);
}

int refgrove_author_count_1(int did, int* out) {
  const RefgroveGraphData* r = graph_record(did);
  *out = r == nullptr ? 0 : r->nb_authors;
  return r != nullptr;
}

int refgrove_get_author_id_1(int did, int i, int* out) {
  const RefgroveGraphData* r = graph_record(did);
  if (r == nullptr || !in_range(i, r->nb_authors)) return 0;
  *out = r->authors[i];
  return 1;
}

int refgrove_get_author_1(int did, int i, const char** out) {
  const RefgroveGraphData* r = graph_record(did);
  if (r == nullptr || !in_range(i, r->nb_authors)) return 0;
  return give_text(author_text(r->authors[i]), out);
}

void refgrove_get_authors_1(int did, int* out) {
  const RefgroveGraphData* r = graph_record(did);
  if (r == nullptr) return;
  for (int k = 0; k < r->nb_authors; ++k) out[k] = r->authors[k];
}

int refgrove_word_count_1(int did, int* out) {
  const int w = word_index_of(did);
  if (w < 0) return 0;
  *out = static_cast<int>(word_run_at(w).count);
  return 1;
}

int refgrove_get_word_1(int did, int i, const char** out) {
  const int w = word_index_of(did);
  if (w < 0) return 0;
  const WordRun run = word_run_at(w);
  std::uint32_t id = 0;
  if (!in_range(i, run.count) || !refgrove_data->word_data->word_id_at(run.start + i, &id)) return 0;
  return give_text(word_text(id), out);
}

int refgrove_id2author_1(int author_id, const char** out) { return give_text(author_text(author_id), out); }

int refgrove_get_nb_authors_1(void) {
  return refgrove_data == nullptr ? 0 : refgrove_data->graph->author_table->count;
}

void refgrove_stats_1(int* docs, int* words, int* authors) {
  if (refgrove_data == nullptr) {
    *docs = *words = *authors = 0;
    return;
  }
  *docs = static_cast<int>(refgrove_data->word_data->doc_info.size()) - 1;
  *words = refgrove_data->word_data->word_table->count;
  *authors = refgrove_data->graph->author_table->count;
}

double refgrove_author_distance_1(int, int) { return 0.0; }
