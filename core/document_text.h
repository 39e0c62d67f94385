// A document as people see it: its key, year, title, authors and abstract,
// each text as UTF-8 (utf8_text.h). Every face that shows or writes a
// document takes its texts from here (the tool's lists, `show` and `export`,
// the explorer's JSON, the Python face), so that a byte of the dumps reads
// the same wherever it appears. The module's own printing operations write
// the bytes as they are and do not use this.
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
// The year of `did`; none when unknown.
std::optional<int> year_of(const RefgroveData& d, int did);

struct DocumentText {
  int did = 0;
  std::string key;          // empty when unknown or without a graph record
  std::optional<int> year;  // none when unknown
  std::string title;
  std::vector<std::string> authors;
  std::vector<int> author_ids;  // aligned with authors
  std::vector<int> cites;       // cited DIDs, in the record's order
  std::string abstract;
};

// What a list shows of document `did`: its key, year, title and authors;
// `cites` and `abstract` stay empty.
DocumentText document_heading(const RefgroveData& d, int did);
// Document `did` of `d`, whole; the fields of a half the document lacks are
// empty.
DocumentText document_text(const RefgroveData& d, int did);

}  // namespace refgrove

#endif  // REFGROVE_CORE_DOCUMENT_TEXT_H_
