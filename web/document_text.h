// A document's texts as the explorer shows them: UTF-8 as `refgrove export`
// writes them (as_utf8 of search/text_folding.h: bytes that are not UTF-8
// read as Latin-1).
#ifndef REFGROVE_WEB_DOCUMENT_TEXT_H_
#define REFGROVE_WEB_DOCUMENT_TEXT_H_

#include <string>

class RefgroveData;

namespace refgrove::web {

// "" when the document has none (no graph record, no key, no words).
std::string key_text(const RefgroveData& d, int did);
// The title words joined by blanks.
std::string title_text(const RefgroveData& d, int did);
// The abstract's words as preprocessing wrote them, joined by blanks.
std::string abstract_text(const RefgroveData& d, int did);
// The name of an author id, "" outside the author table.
std::string author_name_text(const RefgroveData& d, int author_id);

}  // namespace refgrove::web

#endif  // REFGROVE_WEB_DOCUMENT_TEXT_H_
