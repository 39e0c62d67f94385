#include "tokenizer/tokenizer_language.h"

#include "tokenizer/string_helpers.h"

namespace refgrove {

namespace {

void retain_elem(TokenizerLangElem* e) {
  if (e != nullptr) ++e->refcount;
}

void release_elem(TokenizerLangElem* e) {
  if (e != nullptr && --e->refcount == 0) delete e;
}

}  // namespace

template <>
TokenizerLangHashPtr StringKeyHash<TokenizerLangHashPtr>::try_add(const std::string& key) {
  auto it = this->find(key);
  if (it != this->end()) return it->second;
  TokenizerLangHashPtr node(new TokenizerLangHash(key));
  this->emplace(key, node);
  return node;
}

TokenizerLangHash::TokenizerLangHash(const std::string& /*key*/) {}

TokenizerLangHash::~TokenizerLangHash() {
  // The child pointers go with the map, releasing their subtrees.
  release_elem(elem);
}

void TokenizerLangHash::set_elem(TokenizerLangElem* e) {
  retain_elem(e);  // first, in case e is the element already held
  release_elem(elem);
  elem = e;
}

void TokenizerLangHash::addLangElem(const std::vector<std::string>& tokens, TokenizerLangElem* e, unsigned int i) {
  // Iterative walk. Raw pointers suffice: every node on the path is held by
  // its parent's map, and this node by whoever called us.
  TokenizerLangHash* node = this;
  for (; i < tokens.size(); ++i) node = node->try_add(tokens[i]).get();
  node->set_elem(e);
}

std::ostream& TokenizerLangHash::write(std::ostream& os, int indent) const {
  if (elem != nullptr) mtab(os, indent) << elem->name << '\n';
  for (const auto& entry : *this) {
    mtab(os, indent) << entry.first << '\n';
    entry.second->write(os, indent + 1);
  }
  return os;
}

TokenizerLanguage::~TokenizerLanguage() { delete[] elements; }

void TokenizerLanguage::resetCharMaps() {
  single_char_tokens.clear();
  space_chars.clear();
  comment_chars.clear();
}

void TokenizerLanguage::initDefaultSingleCharTokens() { single_char_tokens.add_all(",.:;[]{}()+-*/=#<>|^@"); }

void TokenizerLanguage::initDefaultSpaceTokens() { space_chars.add_all(" \t\n\r"); }

void TokenizerLanguage::initDefault() {
  initDefaultSingleCharTokens();
  initDefaultSpaceTokens();
}

void TokenizerLanguage::addSubLanguages(int n) {
  for (int i = 0; i < n; ++i) sub_languages.emplace_back(new TokenizerLangHash());
}

void TokenizerLanguage::addLanguageElem(int sub, const std::vector<std::string>& tokens, TokenizerLangElem* elem) {
  sub_languages[static_cast<std::size_t>(sub)]->addLangElem(tokens, elem, 0);
}

void TokenizerLanguage::addElementIndex(int n) {
  delete[] elements;
  elements = new TokenizerLangElem*[static_cast<std::size_t>(n)]();
}

}  // namespace refgrove
