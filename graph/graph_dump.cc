#include "graph/graph_dump.h"

#include <string>
#include <vector>

RefgroveGraphLanguage::RefgroveGraphLanguage() {
  single_char_tokens.add('\n');
  space_chars.add_all(" \t\r");
  // With ":" an ordinary character, both elements are single tokens; the
  // elements only make them stand out as keywords of the line.
  addSubLanguages(1);
  addLanguageElem(0, "Title:");
  addLanguageElem(0, "Authors:");
  number_char = 0;
  strings = 0;
}

RefgroveGraphTokenizer::RefgroveGraphTokenizer(std::istream& in) : StreamTokenizer(&in, &language_) {
  language_.strings = 0;
  select_language(0);
}

std::unique_ptr<RefgroveGraphTokenizer> create_refgrovegraph_tokenizer(std::istream& in) {
  return std::make_unique<RefgroveGraphTokenizer>(in);
}

namespace {

// Reads the next token and tells whether it is `s`; either way the token is
// consumed and stays current, for the caller to use. The record is read
// with this rather than with is_next_token, which would push every token
// that is not the keyword back and read it again: a copy and a second
// element lookup for each of the line's numbers and words. Reading a token
// once and then deciding consumes the same tokens in the same order.
inline bool next_token_is(Tokenizer& t, const char* s) {
  t.next_token();
  return t.token_is(s);
}

}  // namespace

RefgroveGraphData* parse_graph_record(Arena& arena, StringTable* words, StringTable* authors, Tokenizer& t) {
  const std::int32_t did = t.next_integer();

  std::string key;
  if (!next_token_is(t, "-")) key = t.token;

  std::int32_t year = -1;
  if (!next_token_is(t, "-")) year = t.token_integer();

  // The GIDs come first; each fixes one citation, whose DID follows after
  // "DIDs:" in the same order.
  t.ensure_next_token("GIDs:");
  std::vector<CitationInfo> citations;
  while (!next_token_is(t, "DIDs:")) citations.push_back(CitationInfo{t.token_integer(), 0});
  for (CitationInfo& c : citations) c.did = t.next_integer();

  // The first title word is taken whatever it is, so a title never is empty.
  t.ensure_next_token("Title:");
  std::vector<WordId> title;
  t.next_token();
  do {
    title.push_back(WordId::from_id(static_cast<std::uint32_t>(words->String2ID(t.token))));
  } while (!next_token_is(t, "Authors:"));

  // Names run up to the line end, split at "and"; the token after an "and"
  // starts the next name whatever it is.
  std::vector<std::int32_t> author_ids;
  if (!next_token_is(t, "\n")) {
    std::string name = t.token;
    while (!next_token_is(t, "\n")) {
      if (t.token_is("and")) {
        author_ids.push_back(authors->String2ID(name));
        name = t.next_token();
      } else {
        name += ' ';
        name += t.token;
      }
    }
    author_ids.push_back(authors->String2ID(name));
  }

  return RefgroveGraphData::create(arena, did, key, year, citations, title, author_ids);
}
