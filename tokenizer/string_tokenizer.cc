#include "tokenizer/string_tokenizer.h"

#include <cstring>
#include <memory>

namespace refgrove {

StringTokenizer::StringTokenizer(const char* text_, TokenizerLanguage* language_) : Tokenizer(language_) {
  init(text_);
}

StringTokenizer::StringTokenizer(TokenizerLanguage* language_) : Tokenizer(language_) { init(); }

StringTokenizer::StringTokenizer(const char* text_) : Tokenizer() { init(text_); }

StringTokenizer::StringTokenizer() : Tokenizer() { init(); }

void StringTokenizer::init() {
  text = nullptr;
  length = 0;
  index = -1;
}

void StringTokenizer::init(const char* text_) {
  text = text_;
  length = static_cast<int>(std::strlen(text_));
  index = -1;
}

void StringTokenizer::set_string(const char* text_) {
  init(text_);
  reset_all();
}

int StringTokenizer::stream_get() {
  // Past the end this keeps delivering the terminating NUL (stream_ok() is
  // then false) instead of reading beyond the text.
  if (index < length) ++index;
  return text != nullptr ? text[index] : 0;
}

// ---- element definition from text -----------------------------------------
// These belong to the language classes but need a concrete tokenizer.

void TokenizerLangHash::addLangElem(Tokenizer* source, TokenizerLangElem* e) {
  TokenizerLangHash* node = this;  // each node is held by its parent's map
  for (;;) {
    const std::string& t = source->try_next_token();
    if (t.empty()) break;
    e->name += t;
    node = node->try_add(t).get();
  }
  node->set_elem(e);
}

void TokenizerLanguage::addLanguageElem(int sub, const char* text) {
  StringTokenizer source(text, this);
  // Owned here until a node holds it, so that a tokenizing error does not
  // leak it.
  std::unique_ptr<TokenizerLangElem> elem(new TokenizerLangElem());
  sub_languages[static_cast<std::size_t>(sub)]->addLangElem(&source, elem.get());
  elem.release();
}

}  // namespace refgrove
