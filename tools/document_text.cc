#include "tools/document_text.h"

#include "search/text_folding.h"

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
  return refgrove::as_utf8(text);
}

}  // namespace

DocumentText document_text(const RefgroveData& d, int did) {
  DocumentText doc;
  doc.did = did;
  const char* key = nullptr;
  if (refgrove::get_key(d, did, &key)) doc.key = refgrove::as_utf8(key);
  int n = 0;
  if (refgrove::get_year(d, did, &n) && n != -1) doc.year = n;
  refgrove::title_length(d, did, &n);
  doc.title = join_words(n, [&](int i, const char** w) { return refgrove::get_title_word(d, did, i, w); });
  refgrove::author_count(d, did, &n);
  for (int i = 0; i < n; ++i) {
    const char* name = nullptr;
    if (refgrove::get_author(d, did, i, &name)) doc.authors.push_back(refgrove::as_utf8(name));
  }
  refgrove::cite_count(d, did, &n);
  for (int i = 0; i < n; ++i) {
    int cited = 0, gid = 0;
    if (refgrove::get_cite(d, did, i, &cited, &gid)) doc.citations.push_back(cited);
  }
  n = 0;
  refgrove::abstract_length(d, did, &n);
  doc.abstract = join_words(n, [&](int i, const char** w) { return refgrove::get_abstract_word(d, did, i, w); });
  return doc;
}
