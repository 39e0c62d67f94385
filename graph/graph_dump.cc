#include "graph/graph_dump.h"

#include <string>
#include <vector>

namespace refgrove {

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

void GraphLineParser::StringBatch::clear() {
  text_.clear();
  ends_.clear();
}

void GraphLineParser::StringBatch::add(const std::string& s) {
  text_ += s;
  ends_.push_back(text_.size());
}

void GraphLineParser::StringBatch::extend(char c, const std::string& s) {
  text_ += c;
  text_ += s;
  ends_.back() = text_.size();
}

template <class F>
void GraphLineParser::StringBatch::intern(StringTable* table, F&& use_id) {
  // Padding behind the last string lets every key be made with 16-byte
  // loads; the keys' lengths leave it out.
  constexpr std::size_t kPadding = 16;
  const std::size_t size = text_.size();
  text_.append(kPadding, '\0');
  keys_.resize(ends_.size());
  std::size_t begin = 0;
  for (std::size_t i = 0; i < ends_.size(); ++i) {
    table->makeKey(&text_[begin], ends_[i] - begin, text_.size() - begin, &keys_[i]);
    table->prefetch(keys_[i]);
    begin = ends_[i];
  }
  for (const StringTable::Key& key : keys_) use_id(table->intern(key));
  text_.resize(size);
}

RefgroveGraphData* GraphLineParser::parse(Tokenizer& t) {
  const std::int32_t did = t.next_integer();

  key_.clear();
  if (!next_token_is(t, "-")) key_ = t.token;

  std::int32_t year = -1;
  if (!next_token_is(t, "-")) year = t.token_integer();

  // The GIDs come first; each fixes one citation, whose DID follows after
  // "DIDs:" in the same order.
  t.ensure_next_token("GIDs:");
  citations_.clear();
  while (!next_token_is(t, "DIDs:")) citations_.push_back(CitationInfo{t.token_integer(), 0});
  for (CitationInfo& c : citations_) c.did = t.next_integer();

  // The first title word is taken whatever it is, so a title never is empty.
  t.ensure_next_token("Title:");
  title_words_.clear();
  t.next_token();
  do {
    title_words_.add(t.token);
  } while (!next_token_is(t, "Authors:"));
  title_.clear();
  title_words_.intern(words_, [this](int id) { title_.push_back(WordId::from_id(static_cast<std::uint32_t>(id))); });

  // Names run up to the line end, split at "and"; the token after an "and"
  // starts the next name whatever it is.
  author_names_.clear();
  if (!next_token_is(t, "\n")) {
    author_names_.add(t.token);
    while (!next_token_is(t, "\n")) {
      if (t.token_is("and")) {
        author_names_.add(t.next_token());
      } else {
        author_names_.extend(' ', t.token);
      }
    }
  }
  author_ids_.clear();
  author_names_.intern(authors_, [this](int id) { author_ids_.push_back(id); });

  return RefgroveGraphData::create(*arena_, did, key_, year, citations_, title_, author_ids_);
}

RefgroveGraphData* parse_graph_record(Arena& arena, StringTable* words, StringTable* authors, Tokenizer& t) {
  return GraphLineParser(&arena, words, authors).parse(t);
}

}  // namespace refgrove
