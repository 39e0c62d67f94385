// Languages: character sets, element trees and their counting.
#include "tokenizer/tokenizer_language.h"

#include <sstream>

#include <gtest/gtest.h>

#include "tokenizer/parser_error.h"

namespace refgrove {

namespace {

// The members of a set, in byte order.
std::string Members(const TokenizerCharSet& set) {
  std::string out;
  for (int c = 0; c < 256; ++c) {
    if (set.contains(c)) out += static_cast<char>(c);
  }
  return out;
}

TEST(TokenizerLanguageTest, DefaultsAndCharacterSets) {
  TokenizerLanguage lang;
  EXPECT_EQ(lang.number_char, 0);
  EXPECT_EQ(lang.strings, 1);
  EXPECT_EQ(lang.line_comments + lang.block_comments, 0);
  EXPECT_EQ(Members(lang.single_char_tokens) + Members(lang.space_chars) + Members(lang.comment_chars), "");
  lang.initDefault();
  EXPECT_EQ(Members(lang.single_char_tokens), "#()*+,-./:;<=>@[]^{|}");
  EXPECT_EQ(Members(lang.space_chars), "\t\n\r ");
  lang.comment_chars.add('%');
  lang.strings = 0;
  lang.resetCharMaps();
  EXPECT_EQ(Members(lang.single_char_tokens) + Members(lang.space_chars) + Members(lang.comment_chars), "");
  EXPECT_EQ(lang.strings, 0);  // flags stay
}

std::string Dump(const TokenizerLangHash& root) {
  std::ostringstream os;
  root.write(os, 1);
  return os.str();
}

TEST(TokenizerLanguageTest, TextDrivenElements) {
  TokenizerLanguage lang;
  lang.initDefault();
  lang.addSubLanguages(2);
  lang.addLanguageElem(0, "Title:");
  EXPECT_EQ(Dump(*lang.sub_languages[0]), "\tTitle\n\t\t:\n\t\t\tTitle:\n");
  lang.addLanguageElem(1, "< =");
  EXPECT_EQ(Dump(*lang.sub_languages[1]), "\t<\n\t\t=\n\t\t\t<=\n");
  lang.addLanguageElem(1, "");  // an element at the root, printed first; sub-language 0 has none
  EXPECT_EQ(Dump(*lang.sub_languages[1]), "\t\n\t<\n\t\t=\n\t\t\t<=\n");
  EXPECT_EQ(Dump(*lang.sub_languages[0]), "\tTitle\n\t\t:\n\t\t\tTitle:\n");

  // A text that does not tokenize throws, and leaks nothing.
  EXPECT_THROW(lang.addLanguageElem(0, "'open"), ParserError);
}

TEST(TokenizerLanguageTest, SameSequenceTwiceReplacesTheElement) {
  TokenizerLanguage lang;
  lang.addSubLanguages(1);
  TokenizerLangElem* first = new TokenizerLangElem();
  first->name = "first";
  TokenizerLangElem* second = new TokenizerLangElem();
  second->name = "second";
  lang.addLanguageElem(0, {"a", "b"}, first);
  first->refcount += 1;  // keep it alive to look at its count
  lang.addLanguageElem(0, {"a", "b"}, second);
  EXPECT_EQ(first->refcount, 1);
  EXPECT_EQ(second->refcount, 1);
  EXPECT_EQ(lang.sub_languages[0]->size(), 1u);
  EXPECT_EQ(Dump(*lang.sub_languages[0]), "\ta\n\t\tb\n\t\t\tsecond\n");
  delete first;

  // One element held by two nodes lives until both let go.
  TokenizerLangElem* shared = new TokenizerLangElem();
  shared->name = "shared";
  lang.addLanguageElem(0, {"x"}, shared);
  lang.addLanguageElem(0, {"y"}, shared);
  EXPECT_EQ(shared->refcount, 2);
}

TEST(TokenizerLanguageTest, NodeCounting) {
  TokenizerLangHashPtr root(new TokenizerLangHash());
  TokenizerLangHashPtr a = root->try_add("a");
  EXPECT_EQ(a->refcount, 2);  // the map and `a`
  EXPECT_EQ(root->try_add("a").get(), a.get());
  TokenizerLangHashPtr copy = a;
  EXPECT_EQ(a->refcount, 3);
  const TokenizerLangHashPtr& same = copy;
  copy = same;  // self-assignment (through a reference) keeps the count
  EXPECT_EQ(a->refcount, 3);
  copy.release();
  root.release();  // frees the root; `a` survives through our pointer
  EXPECT_EQ(a->refcount, 1);
}

}  // namespace

}  // namespace refgrove
