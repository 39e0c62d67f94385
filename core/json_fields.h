// The field names of every JSON that refgrove writes for people and
// programs: the explorer's API, the tool's json and jsonl formats, and the
// Python package's documents and tables. One name per idea, whatever the
// face: a writer names its fields through this table only, so that one
// figure cannot be "citations" in one answer and "citation_count" in
// another.
#ifndef REFGROVE_CORE_JSON_FIELDS_H_
#define REFGROVE_CORE_JSON_FIELDS_H_

#include <string_view>

namespace refgrove {

// X(name) for each field, the constant's name being the field's.
// clang-format off
#define REFGROVE_JSON_FIELDS(X)                                                  \
  /* A document: its DID, key, year, title, authors (names, and their ids), */ \
  /* abstract, the DIDs it cites and those citing it, how many documents of */ \
  /* the set cite it, and figures of an answer that lists it. */               \
  X(did) X(key) X(year) X(title) X(authors) X(author_ids) X(abstract) X(cites) \
  X(cited_by) X(citation_count) X(pagerank) X(score) X(rank) X(hops)           \
  /* An author: the id, the name, the documents shared with another. */       \
  X(id) X(name) X(shared) X(papers) X(coauthors)                               \
  /* A list cut by a limit: the items there are in all, whether it was cut. */ \
  X(total) X(truncated)                                                        \
  /* Answers: search, neighbourhoods, paths, rankings, similar documents. */   \
  X(query) X(mode) X(exact) X(hits) X(keys) X(center) X(nodes) X(edges)        \
  X(links) X(source) X(target) X(from) X(to) X(distance) X(path) X(by)         \
  X(years) X(similar) X(cocitation) X(coupling)                                \
  /* The set's figures. */                                                     \
  X(documents) X(words) X(last_did)                                            \
  /* Clusters. */                                                              \
  X(graph) X(quality) X(resolution) X(seed) X(modularity) X(quality_value)     \
  X(iterations) X(stable) X(clusters) X(members) X(cluster) X(author) X(size)  \
  X(first_year) X(last_year) X(top) X(label)                                   \
  /* The structure of a field: citations received (by an author's documents, */ \
  /* or from a year's documents), per year, h-index, the main path, links */   \
  /* weighted by citations, the overview's lists. */                           \
  X(citations) X(citations_by_year) X(h_index) X(main_path) X(timeline)        \
  X(weight) X(most_cited) X(top_authors)                                       \
  /* A request that failed. */                                                 \
  X(error)
// clang-format on

// field::did is "did", and so on.
namespace field {
#define REFGROVE_JSON_FIELD_NAME(name) inline constexpr char name[] = #name;
REFGROVE_JSON_FIELDS(REFGROVE_JSON_FIELD_NAME)
#undef REFGROVE_JSON_FIELD_NAME
}  // namespace field

// Every name of the table.
inline constexpr std::string_view kJsonFieldNames[] = {
#define REFGROVE_JSON_FIELD_ENTRY(name) field::name,
    REFGROVE_JSON_FIELDS(REFGROVE_JSON_FIELD_ENTRY)
#undef REFGROVE_JSON_FIELD_ENTRY
};

}  // namespace refgrove

#endif  // REFGROVE_CORE_JSON_FIELDS_H_
