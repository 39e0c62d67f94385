// A document's texts as UTF-8 (utf8_text.h), for the faces that show or
// write whole documents: the tool's `export` and `show`, the web explorer.
#ifndef REFGROVE_CORE_DOCUMENT_TEXT_H_
#define REFGROVE_CORE_DOCUMENT_TEXT_H_

#include <optional>
#include <string>
#include <vector>

#include "core/data_set.h"

namespace refgrove {

// Each "" when the document (or author) has none.
std::string key_text(const RefgroveData& d, int did);
// The title words joined by blanks.
std::string title_text(const RefgroveData& d, int did);
// The abstract's words as preprocessing wrote them (the offsets of word-idx
// read as the byte positions they are), joined by blanks.
std::string abstract_text(const RefgroveData& d, int did);
std::string author_name_text(const RefgroveData& d, int author_id);

struct DocumentText {
  int did = 0;
  std::string key;          // empty when unknown or without a graph record
  std::optional<int> year;  // none when unknown
  std::string title;
  std::vector<std::string> authors;
  std::vector<int> author_ids;  // aligned with authors
  std::vector<int> citations;  // cited DIDs, in the record's order
  std::string abstract;
};

// Document `did` of `d`; the fields of a half the document lacks are empty.
DocumentText document_text(const RefgroveData& d, int did);

}  // namespace refgrove

#endif  // REFGROVE_CORE_DOCUMENT_TEXT_H_
