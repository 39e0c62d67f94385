// A document's texts as UTF-8, for the faces that show them (export, the
// web explorer).
//
// The dumps hold bytes, not text: keys, names and words may be Latin-1,
// UTF-8 or anything else. A byte sequence that is valid UTF-8 is kept, and
// every other byte is read as the Latin-1 character of that value (the
// dumps' own encoding), so nothing is lost and the result is always valid
// UTF-8.
#ifndef REFGROVE_CORE_DOCUMENT_TEXT_H_
#define REFGROVE_CORE_DOCUMENT_TEXT_H_

#include <string>
#include <string_view>

class RefgroveData;

namespace refgrove {

std::string as_utf8(std::string_view bytes);

// "" when the document has none (no graph record, no key, no words).
std::string key_text(const RefgroveData& d, int did);
// The title words joined by blanks.
std::string title_text(const RefgroveData& d, int did);
// The abstract's words as preprocessing wrote them, joined by blanks.
std::string abstract_text(const RefgroveData& d, int did);
// The name of an author id, "" outside the author table.
std::string author_name_text(const RefgroveData& d, int author_id);

}  // namespace refgrove

#endif  // REFGROVE_CORE_DOCUMENT_TEXT_H_
