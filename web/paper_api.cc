#include "web/paper_api.h"

#include <algorithm>
#include <map>
#include <set>

#include "core/data_view.h"
#include "core/document_text.h"
#include "core/json_fields.h"
#include "web/api_params.h"
#include "web/network_api.h"

namespace refgrove::web {
namespace {

Json year_json(const std::optional<int>& year) { return year ? Json(*year) : Json(nullptr); }

std::vector<int> author_ids(const RefgroveData& d, int did) {
  int n = 0;
  author_count(d, did, &n);
  std::vector<int> ids;
  for (int i = 0; i < n; ++i) {
    int id = 0;
    if (get_author_id(d, did, i, &id)) ids.push_back(id);
  }
  return ids;
}

}  // namespace

void require_document(const RefgroveData& d, int did) {
  if (!has_graph_info(d, did) && !has_word_info(d, did)) {
    throw ApiError(404, "no document has DID " + std::to_string(did));
  }
}

void require_author(const RefgroveData& d, int author_id) {
  if (author_id < 0 || author_id >= get_nb_authors(d)) {
    throw ApiError(404, "no author has id " + std::to_string(author_id));
  }
}

Json author_ref(const RefgroveData& d, int author_id) {
  return {{field::id, author_id}, {field::name, author_name_text(d, author_id)}};
}

Json paper_ref(const RefgroveData& d, int did) {
  return {{field::did, did}, {field::year, year_json(year_of(d, did))}, {field::title, title_text(d, did)}};
}

Json paper_summary(const RefgroveData& d, int did) {
  const DocumentText doc = document_heading(d, did);
  Json paper = {
      {field::did, did}, {field::year, year_json(doc.year)}, {field::title, doc.title}, {field::key, doc.key}};
  Json authors = Json::array();
  for (std::size_t i = 0; i < doc.authors.size(); ++i)
    authors.push_back({{field::id, doc.author_ids[i]}, {field::name, doc.authors[i]}});
  paper[field::authors] = std::move(authors);
  return paper;
}

Json stats_json(const RefgroveData& d) {
  int headers = 0, words = 0, authors = 0, last = 0;
  stats(&d, &headers, &words, &authors);  // headers: the word-idx headers, their end sentinel included
  last_did(d, &last);
  int documents = 0;  // with words, a graph record or both
  for (int did = 0; did < last; ++did) documents += has_word_info(d, did) || has_graph_info(d, did);
  return {{field::documents, documents}, {field::words, words}, {field::authors, authors}, {field::last_did, last}};
}

Json paper_json(const RefgroveData& d, int did) {
  require_document(d, did);
  Json paper = paper_summary(d, did);
  paper[field::abstract] = abstract_text(d, did);
  int n = 0;
  cite_count(d, did, &n);
  Json cites = Json::array();
  for (int i = 0; i < n; ++i) {
    int cited = 0, gid = 0;
    if (get_cite(d, did, i, &cited, &gid)) cites.push_back(paper_ref(d, cited));
  }
  paper[field::cites] = std::move(cites);
  add_network_figures(d, did, paper);
  return paper;
}

Json author_json(const RefgroveData& d, int author_id) {
  require_author(d, author_id);
  Json author = author_ref(d, author_id);
  std::map<int, int> shared;  // co-author id -> papers shared
  int n = 0;
  author_doc_count(d, author_id, &n);
  Json papers = Json::array();
  for (int i = 0; i < n; ++i) {
    int did = 0;
    if (!get_author_doc(d, author_id, i, &did)) continue;
    papers.push_back(paper_ref(d, did));
    const std::vector<int> ids = author_ids(d, did);
    for (const int id : std::set<int>(ids.begin(), ids.end())) {
      if (id != author_id) ++shared[id];
    }
  }
  std::vector<std::pair<int, int>> coauthors(shared.begin(), shared.end());
  std::stable_sort(coauthors.begin(), coauthors.end(),
                   [](const auto& a, const auto& b) { return a.second > b.second; });
  Json list = Json::array();
  for (const auto& [id, count] : coauthors) {
    Json coauthor = author_ref(d, id);
    coauthor[field::shared] = count;
    list.push_back(std::move(coauthor));
  }
  author[field::papers] = std::move(papers);
  author[field::coauthors] = std::move(list);
  return author;
}

}  // namespace refgrove::web
