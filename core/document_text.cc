#include "core/document_text.h"

#include "core/data_view.h"
#include "core/utf8_text.h"

namespace refgrove {
namespace {

// Joins `count` words given by `get` with blanks.
template <typename Get>
std::string join_words(int count, Get get) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    const char* word = nullptr;
    if (!get(i, &word)) break;
    if (i > 0) text += ' ';
    text += word;
  }
  return as_utf8(text);
}

}  // namespace

std::string key_text(const RefgroveData& d, int did) {
  const char* key = nullptr;
  return get_key(d, did, &key) ? as_utf8(key) : std::string();
}

std::string title_text(const RefgroveData& d, int did) {
  int n = 0;
  title_length(d, did, &n);
  return join_words(n, [&](int i, const char** w) { return get_title_word(d, did, i, w); });
}

std::string abstract_text(const RefgroveData& d, int did) {
  int n = 0;
  abstract_length(d, did, &n);
  return join_words(n, [&](int i, const char** w) { return get_abstract_word(d, did, i, w); });
}

std::string author_name_text(const RefgroveData& d, int author_id) {
  const char* name = nullptr;
  return id2author(d, author_id, &name) ? as_utf8(name) : std::string();
}

std::optional<int> year_of(const RefgroveData& d, int did) {
  int year = -1;
  if (get_year(d, did, &year) && year != -1) return year;
  return std::nullopt;
}

DocumentText document_heading(const RefgroveData& d, int did) {
  DocumentText doc;
  doc.did = did;
  doc.key = key_text(d, did);
  doc.year = year_of(d, did);
  doc.title = title_text(d, did);
  int n = 0;
  author_count(d, did, &n);
  for (int i = 0; i < n; ++i) {
    const char* name = nullptr;
    int id = 0;
    if (get_author(d, did, i, &name) && get_author_id(d, did, i, &id)) {
      doc.authors.push_back(as_utf8(name));
      doc.author_ids.push_back(id);
    }
  }
  return doc;
}

DocumentText document_text(const RefgroveData& d, int did) {
  DocumentText doc = document_heading(d, did);
  int n = 0;
  cite_count(d, did, &n);
  for (int i = 0; i < n; ++i) {
    int cited = 0, gid = 0;
    if (get_cite(d, did, i, &cited, &gid)) doc.cites.push_back(cited);
  }
  doc.abstract = abstract_text(d, did);
  return doc;
}

}  // namespace refgrove
