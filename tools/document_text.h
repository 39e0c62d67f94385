// One document of a data set as text, for the commands that write whole
// documents (`export`, `show`).
//
// The dumps hold bytes, not text: keys, names and words may be Latin-1,
// UTF-8 or anything else. The texts here are UTF-8: a byte sequence that is
// valid UTF-8 is kept, and every other byte is read as the Latin-1
// character of that value (the dumps' own encoding), so nothing is lost and
// the result is always valid.
#ifndef REFGROVE_TOOLS_DOCUMENT_TEXT_H_
#define REFGROVE_TOOLS_DOCUMENT_TEXT_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/data_view.h"

struct DocumentText {
  int did = 0;
  std::string key;          // empty when unknown or without a graph record
  std::optional<int> year;  // none when unknown
  std::string title;        // the title words joined by blanks
  std::vector<std::string> authors;
  std::vector<int> citations;  // cited DIDs, in the record's order
  // The abstract's words as preprocessing wrote them, joined by blanks (the
  // offsets of word-idx read as the byte positions they are).
  std::string abstract;
};

// Document `did` of `d`; the fields of a half the document lacks are empty.
DocumentText document_text(const RefgroveData& d, int did);

#endif  // REFGROVE_TOOLS_DOCUMENT_TEXT_H_
