// Tokenizer languages: character classes, scanner flags and the trees of
// multi-token elements.
//
// A language says how a tokenizer cuts characters into tokens:
//
//   class               meaning                                   default
//   single_char_tokens  always a token of its own; ends any word  empty
//   space_chars         white space, delivered as one blank ' '   empty
//   comment_chars       starts a comment running to end of line   empty
//
// plus flags for quoted strings, "//" and "/* */" comments and the number
// character. The blank itself always separates tokens, even when it is not
// in space_chars; tab and newline do only when they are.
//
// Multi-token elements ("Title:" scanned as "Title" and ":") live per
// sub-language in a tree: the root maps a first token to a node, that node
// maps the second token to the next, and so on; a node at which an element
// ends holds that element, whose name replaces the matched sequence. With
// ":" a single-character token, the elements "Title:" and "Authors:" give
//
//   root --"Title"--> n1 --":"--> n2 [Title:]
//        --"Authors"--> n3 --":"--> n4 [Authors:]
//
// Nodes and elements are shared through intrusive, non-atomic counts: a
// tokenizer that selected a sub-language holds its root, so the root may
// outlive the language.
#ifndef REFGROVE_TOKENIZER_TOKENIZER_LANGUAGE_H_
#define REFGROVE_TOKENIZER_TOKENIZER_LANGUAGE_H_

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <unordered_map>
#include <vector>

#include "tokenizer/name_hash.h"

namespace refgrove {

class Tokenizer;
class TokenizerLangHash;

// A set of the 256 byte values: bit (c mod 32) of word (c / 32), indexed by
// the unsigned value of the character. Membership is one shift and mask.
struct TokenizerCharSet {
  std::uint32_t words[8] = {0, 0, 0, 0, 0, 0, 0, 0};

  bool contains(int c) const {
    const unsigned u = static_cast<unsigned char>(c);
    return (words[u >> 5] >> (u & 31)) & 1u;
  }
  void add(int c) {
    const unsigned u = static_cast<unsigned char>(c);
    words[u >> 5] |= 1u << (u & 31);
  }
  void remove(int c) {
    const unsigned u = static_cast<unsigned char>(c);
    words[u >> 5] &= ~(1u << (u & 31));
  }
  // Adds every character of a NUL-terminated text.
  void add_all(const char* chars) {
    for (; *chars != '\0'; ++chars) add(*chars);
  }
  void clear() {
    for (std::uint32_t& w : words) w = 0;
  }
  void merge(const TokenizerCharSet& other) {
    for (int i = 0; i < 8; ++i) words[i] |= other.words[i];
  }
};

// One multi-token element. `refcount` counts the tree nodes holding it; the
// last one to let go deletes it.
struct TokenizerLangElem {
  int refcount = 0;
  std::string name;  // the token that replaces the matched sequence
};

// Counted pointer to a tree node: copies add to the node's refcount, and the
// last pointer to go deletes the node.
class TokenizerLangHashPtr {
 public:
  TokenizerLangHashPtr() : node_(nullptr) {}
  explicit TokenizerLangHashPtr(TokenizerLangHash* node);
  TokenizerLangHashPtr(const TokenizerLangHashPtr& other);
  TokenizerLangHashPtr(TokenizerLangHashPtr&& other) noexcept : node_(other.node_) { other.node_ = nullptr; }
  TokenizerLangHashPtr& operator=(const TokenizerLangHashPtr& other);
  TokenizerLangHashPtr& operator=(TokenizerLangHashPtr&& other) noexcept;
  ~TokenizerLangHashPtr() { release(); }

  TokenizerLangHash* get() const { return node_; }
  TokenizerLangHash* operator->() const { return node_; }
  TokenizerLangHash& operator*() const { return *node_; }
  explicit operator bool() const { return node_ != nullptr; }

  // Drops the reference (the pointer becomes null).
  void release();

 private:
  TokenizerLangHash* node_;
};

// String-keyed hash map over the standard chained hash container, with the
// project-wide name hash. try_add() finds or creates the value for a key; it
// is defined for the values that know how to make themselves from a key.
template <class Value>
class StringKeyHash : public std::unordered_map<std::string, Value, hash_name_hash_key, eq_name_hash_key> {
 public:
  Value try_add(const std::string& key);
};

// One node of an element tree: a map from the next token to the next node,
// and the element that ends here (or null). The node does not know its own
// key.
class TokenizerLangHash : public StringKeyHash<TokenizerLangHashPtr> {
 public:
  int refcount = 0;
  TokenizerLangElem* elem = nullptr;  // counted

  TokenizerLangHash() = default;
  explicit TokenizerLangHash(const std::string& key);  // the key is not kept
  TokenizerLangHash(const TokenizerLangHash&) = delete;
  TokenizerLangHash& operator=(const TokenizerLangHash&) = delete;
  ~TokenizerLangHash();

  // Adds tokens[i..] below this node, ending in `elem` (which replaces and
  // releases any element already ending there).
  void addLangElem(const std::vector<std::string>& tokens, TokenizerLangElem* elem, unsigned int i);

  // Adds the tokens that `source` still delivers below this node, ending in
  // `elem`; each token is appended to elem->name on the way.
  void addLangElem(Tokenizer* source, TokenizerLangElem* elem);

  // Debugging dump: the element name, then each key followed by its subtree
  // one tab deeper, `indent` tabs in front of every line.
  std::ostream& write(std::ostream& os, int indent) const;

  // Sets the element ending here, counting the new one and releasing the old.
  void set_elem(TokenizerLangElem* e);
};

template <>
TokenizerLangHashPtr StringKeyHash<TokenizerLangHashPtr>::try_add(const std::string& key);

// The language itself. Users set the character classes and flags directly,
// then add sub-languages and elements. It must outlive the tokenizers using
// it (the sub-language roots they selected may outlive it).
class TokenizerLanguage {
 public:
  char number_char = 0;    // continues an integer token into a number; 0: off
  int block_comments = 0;  // "/* ... */"
  int line_comments = 0;   // "// ..." to end of line
  int strings = 1;         // '...' and "..." are string tokens
  TokenizerCharSet single_char_tokens;
  TokenizerCharSet space_chars;
  TokenizerCharSet comment_chars;
  std::vector<TokenizerLangHashPtr> sub_languages;  // one root per sub-language
  TokenizerLangElem** elements = nullptr;           // user's index; never read here

  TokenizerLanguage() = default;
  TokenizerLanguage(const TokenizerLanguage&) = delete;
  TokenizerLanguage& operator=(const TokenizerLanguage&) = delete;
  ~TokenizerLanguage();

  // Empties the three character sets; flags and elements stay.
  void resetCharMaps();
  // Adds ,.:;[]{}()+-*/=#<>|^@ to single_char_tokens.
  void initDefaultSingleCharTokens();
  // Adds blank, tab, newline and carriage return to space_chars.
  void initDefaultSpaceTokens();
  void initDefault();

  // Appends n empty roots; sub-languages are numbered from 0 in order.
  void addSubLanguages(int n);

  // Adds the element whose tokens are what this language makes of `text`
  // (cut with no sub-language selected); its name is those tokens joined
  // without the white space between them. Throws ParserError when the text
  // does not tokenize (e.g. an unterminated quote).
  void addLanguageElem(int sub, const char* text);
  // Adds a caller-made element under the given token sequence.
  void addLanguageElem(int sub, const std::vector<std::string>& tokens, TokenizerLangElem* elem);

  // Replaces the user's element index by n null entries.
  void addElementIndex(int n);
  void setElement(int i, TokenizerLangElem* elem) { elements[i] = elem; }
};

// ---- inline definitions of the counted pointer --------------------------

inline TokenizerLangHashPtr::TokenizerLangHashPtr(TokenizerLangHash* node) : node_(node) {
  if (node_ != nullptr) ++node_->refcount;
}

inline TokenizerLangHashPtr::TokenizerLangHashPtr(const TokenizerLangHashPtr& other) : node_(other.node_) {
  if (node_ != nullptr) ++node_->refcount;
}

inline TokenizerLangHashPtr& TokenizerLangHashPtr::operator=(const TokenizerLangHashPtr& other) {
  TokenizerLangHash* node = other.node_;  // `other` may be this very pointer
  if (node != nullptr) ++node->refcount;
  release();
  node_ = node;
  return *this;
}

inline TokenizerLangHashPtr& TokenizerLangHashPtr::operator=(TokenizerLangHashPtr&& other) noexcept {
  if (this != &other) {
    release();
    node_ = other.node_;
    other.node_ = nullptr;
  }
  return *this;
}

inline void TokenizerLangHashPtr::release() {
  TokenizerLangHash* node = node_;
  node_ = nullptr;
  if (node != nullptr && --node->refcount == 0) delete node;
}

}  // namespace refgrove

#endif  // REFGROVE_TOKENIZER_TOKENIZER_LANGUAGE_H_
