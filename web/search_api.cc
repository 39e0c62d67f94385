#include "web/search_api.h"

#include <cctype>
#include <vector>

#include "core/data_view.h"
#include "core/json_fields.h"
#include "core/text_folding.h"
#include "core/utf8_text.h"
#include "web/api_params.h"

namespace refgrove::web {
namespace {

// The folded names of the set's authors, by id, kept with the set.
struct FoldedAuthorNames {
  std::vector<std::string> names;
};

const FoldedAuthorNames& folded_author_names(const RefgroveData& d) {
  return d.derived().get<FoldedAuthorNames>([&] {
    FoldedAuthorNames folded;
    const int n = get_nb_authors(d);
    folded.names.reserve(static_cast<std::size_t>(n));
    for (int id = 0; id < n; ++id) {
      const char* name = nullptr;
      folded.names.push_back(id2author(d, id, &name) ? fold_text(name) : std::string());
    }
    return folded;
  });
}

// Whether `term` starts a word of `name`: at its start or after a character
// that is not a letter or digit.
bool starts_a_word(std::string_view name, std::string_view term) {
  for (std::size_t at = name.find(term); at != std::string_view::npos; at = name.find(term, at + 1)) {
    if (at == 0 || !std::isalnum(static_cast<unsigned char>(name[at - 1]))) return true;
  }
  return false;
}

Json matching_authors(const RefgroveData& d, std::string_view query, int limit) {
  std::vector<std::string> terms;
  for (const std::string_view term : split_terms(query)) terms.push_back(fold_text(term));
  const std::vector<std::string>& names = folded_author_names(d).names;
  Json authors = Json::array();
  for (std::size_t id = 0; id < names.size() && authors.size() < static_cast<std::size_t>(limit); ++id) {
    bool all = true;
    for (const std::string& term : terms) all = all && starts_a_word(names[id], term);
    if (all) authors.push_back(author_ref(d, static_cast<int>(id)));
  }
  return authors;
}

Json key_matches(const RefgroveData& d, std::string_view query) {
  const std::vector<std::string_view> terms = split_terms(query);
  Json papers = Json::array();
  if (terms.size() != 1) return papers;
  const std::string key(terms[0]);
  int n = 0;
  key_doc_count(d, key.c_str(), &n);
  for (int i = 0; i < n; ++i) {
    int did = 0;
    if (get_key_doc(d, key.c_str(), i, &did)) papers.push_back(paper_summary(d, did));
  }
  return papers;
}

}  // namespace

Json search_json(const RefgroveData& d, std::string_view query, const SearchRequest& request) {
  SearchAnswer answer;
  try {
    answer = search(d, query, request);
  } catch (const SearchUsageError& e) {
    throw ApiError(400, e.what());
  }
  Json found = Json::array();
  for (const SearchHit& hit : answer.hits) {
    Json paper = paper_summary(d, hit.did);
    paper[field::score] = hit.score;
    found.push_back(std::move(paper));
  }
  return {{field::query, as_utf8(query)},
          {field::mode, to_text(request.mode)},
          {field::exact, request.exact},
          {field::hits, std::move(found)},
          {field::total, answer.total},
          {field::truncated, answer.hits.size() < answer.total},
          {field::keys, key_matches(d, query)},
          {field::authors, matching_authors(d, query, static_cast<int>(request.limit))}};
}

void prepare_search(const RefgroveData& d) {
  stem_index(d);
  folded_author_names(d);
}

}  // namespace refgrove::web
