// The JSON API's answers about documents and authors, read from one data
// set. Texts are UTF-8 as `refgrove export` writes them; a year that is
// unknown is null.
#ifndef REFGROVE_WEB_PAPER_API_H_
#define REFGROVE_WEB_PAPER_API_H_

#include <nlohmann/json.hpp>

namespace refgrove {
class RefgroveData;
}  // namespace refgrove

namespace refgrove::web {

using Json = nlohmann::ordered_json;

// A document named by a DID, or an author by an id, that the set does not
// have: an ApiError 404.
void require_document(const RefgroveData& d, int did);
void require_author(const RefgroveData& d, int author_id);

// {"id", "name"}: an author where it is listed.
Json author_ref(const RefgroveData& d, int author_id);
// {"did", "year", "title"}: a document where it is listed.
Json paper_ref(const RefgroveData& d, int did);
// paper_ref with "key" and "authors" [{"id", "name"}].
Json paper_summary(const RefgroveData& d, int did);

// /api/stats: {"documents", "words", "authors", "last_did"}.
Json stats_json(const RefgroveData& d);

// /api/paper/{did}: paper_summary with "abstract", "cites" (paper_refs in
// the record's order) and the network's figures (add_network_figures).
Json paper_json(const RefgroveData& d, int did);

// /api/author/{id}: {"id", "name", "papers" (paper_refs by DID),
// "coauthors" [{"id", "name", "shared"}] by shared papers, most first}.
Json author_json(const RefgroveData& d, int author_id);

}  // namespace refgrove::web

#endif  // REFGROVE_WEB_PAPER_API_H_
