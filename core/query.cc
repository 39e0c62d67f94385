// The query operations (data_view.h). Each forward query is a constant
// number of array accesses, each reverse one a bisection in an index built
// once: no allocation, no copying of strings.
#include <algorithm>
#include <span>

#include "core/author_names.h"
#include "core/data_view.h"
#include "core/lookup.h"

namespace refgrove {
namespace {

bool in_range(int i, std::int64_t n) { return i >= 0 && i < n; }

// Sets *out to `text` and returns 1, or returns 0 for a missing text.
int give_text(const char* text, const char** out) {
  if (text == nullptr) return 0;
  *out = text;
  return 1;
}

// The count operations of the reverse indexes.
int give_count(std::size_t n, int* out) {
  *out = static_cast<int>(n);
  return n > 0;
}

// The getters of the reverse indexes.
int give_item(std::span<const std::int32_t> items, int i, int* out) {
  if (!in_range(i, static_cast<std::int64_t>(items.size()))) return 0;
  *out = items[static_cast<std::size_t>(i)];
  return 1;
}

// The DIDs of the records at positions `at` of the graph.
int give_did_at(const RefgroveData& d, std::span<const std::int32_t> at, int i, int* out) {
  int position = 0;
  if (!give_item(at, i, &position)) return 0;
  *out = d.graph->docs[static_cast<std::size_t>(position)]->did;
  return 1;
}

// A null key, like "-", names no document.
std::span<const std::int32_t> key_docs(const RefgroveData& d, const char* key) {
  if (key == nullptr) return {};
  return d.key_docs().find(*d.graph, key);
}

const AuthorNameIndex& author_names(const RefgroveData& d) {
  return d.derived().get<AuthorNameIndex>([&] { return AuthorNameIndex(*d.graph); });
}

// A null name, or prefix, matches no author.
std::span<const std::int32_t> authors_named(const RefgroveData& d, const char* name) {
  if (name == nullptr) return {};
  return author_names(d).named(name);
}

std::span<const std::int32_t> authors_with_prefix(const RefgroveData& d, const char* prefix) {
  if (prefix == nullptr) return {};
  return author_names(d).with_prefix(prefix);
}

}  // namespace

void last_did(const RefgroveData& d, int* out) { *out = static_cast<int>(d.did_index.size()); }

int has_graph_info(const RefgroveData& d, int did) { return graph_record(d, did) != nullptr; }

int has_word_info(const RefgroveData& d, int did) { return word_index_of(d, did) >= 0; }

int get_key(const RefgroveData& d, int did, const char** out) {
  const RefgroveGraphData* r = graph_record(d, did);
  return r == nullptr ? 0 : give_text(r->key.data(), out);
}

int get_year(const RefgroveData& d, int did, int* out) {
  const RefgroveGraphData* r = graph_record(d, did);
  *out = r == nullptr ? 0 : r->year;
  return r != nullptr;
}

int cite_count(const RefgroveData& d, int did, int* out) {
  const RefgroveGraphData* r = graph_record(d, did);
  *out = r == nullptr ? 0 : r->citations.size();
  return r != nullptr;
}

int get_cite(const RefgroveData& d, int did, int i, int* cited, int* gid) {
  const RefgroveGraphData* r = graph_record(d, did);
  const bool found = r != nullptr && in_range(i, r->citations.size());
  *cited = found ? r->citations[i].did : 0;
  *gid = found ? r->citations[i].gid : 0;
  return found;
}

int title_length(const RefgroveData& d, int did, int* out) {
  const RefgroveGraphData* r = graph_record(d, did);
  *out = r == nullptr ? 0 : r->title.size();
  return r != nullptr;
}

int get_title_word(const RefgroveData& d, int did, int i, const char** out) {
  const RefgroveGraphData* r = graph_record(d, did);
  if (r == nullptr || !in_range(i, r->title.size())) return 0;
  return give_text(word_text(d, r->title[i].id()), out);
}

int author_count(const RefgroveData& d, int did, int* out) {
  const RefgroveGraphData* r = graph_record(d, did);
  *out = r == nullptr ? 0 : r->nb_authors;
  return r != nullptr;
}

int get_author_id(const RefgroveData& d, int did, int i, int* out) {
  const RefgroveGraphData* r = graph_record(d, did);
  if (r == nullptr || !in_range(i, r->nb_authors)) return 0;
  *out = r->authors[i];
  return 1;
}

int get_author(const RefgroveData& d, int did, int i, const char** out) {
  const RefgroveGraphData* r = graph_record(d, did);
  if (r == nullptr || !in_range(i, r->nb_authors)) return 0;
  return give_text(author_text(d, r->authors[i]), out);
}

void get_authors(const RefgroveData& d, int did, int* out) {
  const RefgroveGraphData* r = graph_record(d, did);
  if (r == nullptr) return;
  for (int k = 0; k < r->nb_authors; ++k) out[k] = r->authors[k];
}

int word_count(const RefgroveData& d, int did, int* out) {
  const int w = word_index_of(d, did);
  if (w < 0) return 0;
  *out = static_cast<int>(word_run_at(d, w).count);
  return 1;
}

int get_word(const RefgroveData& d, int did, int i, const char** out) {
  const int w = word_index_of(d, did);
  if (w < 0) return 0;
  const WordRun run = word_run_at(d, w);
  std::uint32_t id = 0;
  if (!in_range(i, run.count) || !d.word_data->word_id_at(run.start + i, &id)) return 0;
  return give_text(word_text(d, id), out);
}

int id2author(const RefgroveData& d, int author_id, const char** out) {
  return give_text(author_text(d, author_id), out);
}

int get_nb_authors(const RefgroveData& d) { return d.graph->author_table->count; }

void stats(const RefgroveData* d, int* docs, int* words, int* authors) {
  if (d == nullptr) {
    *docs = *words = *authors = 0;
    return;
  }
  *docs = static_cast<int>(d->word_data->doc_info.size()) - 1;
  *words = d->word_data->word_table->count;
  *authors = d->graph->author_table->count;
}

double author_distance(const RefgroveData&, int, int) { return 0.0; }

int cited_by_count(const RefgroveData& d, int did, int* out) { return give_count(d.cited_by().find(did).size(), out); }

int get_cited_by(const RefgroveData& d, int did, int i, int* citing) {
  return give_item(d.cited_by().find(did), i, citing);
}

int author_doc_count(const RefgroveData& d, int author_id, int* out) {
  return give_count(d.author_docs().find(author_id).size(), out);
}

int get_author_doc(const RefgroveData& d, int author_id, int i, int* did) {
  return give_item(d.author_docs().find(author_id), i, did);
}

int key_doc_count(const RefgroveData& d, const char* key, int* out) { return give_count(key_docs(d, key).size(), out); }

int get_key_doc(const RefgroveData& d, const char* key, int i, int* did) {
  return give_did_at(d, key_docs(d, key), i, did);
}

int author_named_count(const RefgroveData& d, const char* name, int* out) {
  return give_count(authors_named(d, name).size(), out);
}

int get_author_named(const RefgroveData& d, const char* name, int i, int* author_id) {
  return give_item(authors_named(d, name), i, author_id);
}

int author_prefix_count(const RefgroveData& d, const char* prefix, int* out) {
  return give_count(authors_with_prefix(d, prefix).size(), out);
}

int get_author_prefix(const RefgroveData& d, const char* prefix, int i, int* author_id) {
  return give_item(authors_with_prefix(d, prefix), i, author_id);
}

std::vector<std::int32_t> named_authors(const RefgroveData& d, std::string_view text) {
  const AuthorNameIndex& index = author_names(d);
  const bool prefix = !text.empty() && text.back() == '*';
  const std::span<const std::int32_t> ids =
      prefix ? index.with_prefix(text.substr(0, text.size() - 1)) : index.named(text);
  if (ids.empty() && !prefix) return index.with_words(text);
  return {ids.begin(), ids.end()};
}

std::vector<std::int32_t> authors_with_words(const RefgroveData& d, std::string_view text) {
  return author_names(d).with_words(text);
}

int abstract_length(const RefgroveData& d, int did, int* out) {
  return give_count(static_cast<std::size_t>(abstract_run(d, did).words), out);
}

int get_abstract_word(const RefgroveData& d, int did, int i, const char** out) {
  const AbstractRun run = abstract_run(d, did);
  std::uint32_t id = 0;
  if (!in_range(i, run.words) || !d.word_data->word_id_at_byte(run.start + std::int64_t{kWordIdBytes} * i, &id)) {
    return 0;
  }
  return give_text(word_text(d, id), out);
}

}  // namespace refgrove
