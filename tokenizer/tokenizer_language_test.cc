// Languages: character sets, element trees and their counting.
#include "tokenizer/tokenizer_language.h"

#include <sstream>

#include <gtest/gtest.h>

#include "tokenizer/parser_error.h"

namespace {

TEST(TokenizerLanguageTest, DefaultsAndCharacterSets) {
  TokenizerLanguage lang;
  EXPECT_EQ(lang.number_char, 0);
  EXPECT_EQ(lang.strings, 1);
  EXPECT_EQ(lang.line_comments + lang.block_comments, 0);
  for (int c = 0; c < 256; ++c) {
    EXPECT_FALSE(lang.single_char_tokens.contains(c) || lang.space_chars.contains(c) ||
                 lang.comment_chars.contains(c))
        << c;
  }
  lang.initDefault();
  const std::string singles = ",.:;[]{}()+-*/=#<>|^@";
  for (int c = 0; c < 256; ++c) {
    EXPECT_EQ(lang.single_char_tokens.contains(c), singles.find(static_cast<char>(c)) != std::string::npos && c != 0) << c;
    EXPECT_EQ(lang.space_chars.contains(c), c == ' ' || c == '\t' || c == '\n' || c == '\r') << c;
  }
  lang.comment_chars.add('%');
  lang.strings = 0;
  lang.resetCharMaps();
  EXPECT_FALSE(lang.single_char_tokens.contains(','));
  EXPECT_FALSE(lang.space_chars.contains(' '));
  EXPECT_FALSE(lang.comment_chars.contains('%'));
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
  lang.addLanguageElem(1, "");
  EXPECT_NE(lang.sub_languages[1]->elem, nullptr);
  EXPECT_EQ(lang.sub_languages[1]->elem->name, "");
  EXPECT_TRUE(lang.sub_languages[0]->elem == nullptr);

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
  copy = copy;  // self-assignment keeps the count
  EXPECT_EQ(a->refcount, 3);
  copy.release();
  root.release();  // frees the root; `a` survives through our pointer
  EXPECT_EQ(a->refcount, 1);
}

}  // namespace
