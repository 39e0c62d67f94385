#include "words/string_table.h"

#include <gtest/gtest.h>

#include <string>

#include "tokenizer/name_hash.h"

namespace refgrove {

namespace {

TEST(NameHash, FiveTimesPlusSignedByteUpToFirstNul) {
  const struct {
    std::string s;
    std::uint32_t h;
  } cases[] = {
      {"", 0},
      {"a", 97},
      {"ab", 5 * 97 + 98},
      {"\xff", 0xFFFFFFFFu},                    // the byte counts as -1
      {std::string("ab\0zz", 5), 5 * 97 + 98},  // stops at the NUL
      {std::string(20, 'z'),
       [] {  // wraps at 32 bits
         std::uint32_t h = 0;
         for (int i = 0; i < 20; ++i) h = 5 * h + 'z';
         return h;
       }()},
  };
  for (const auto& c : cases) EXPECT_EQ(hash_name_hash_key()(c.s), c.h) << "input of length " << c.s.size();
  EXPECT_TRUE(eq_name_hash_key()(std::string("a\0b", 3), std::string("a\0b", 3)));
  EXPECT_FALSE(eq_name_hash_key()(std::string("a\0b", 3), std::string("a\0c", 3)));
  EXPECT_FALSE(eq_name_hash_key()("a", std::string("a\0", 2)));
}

TEST(StringTable, HandsOutDenseIdsInFirstComeOrder) {
  StringTable t;
  EXPECT_EQ(t.String2ID("word"), 0);
  EXPECT_EQ(t.String2ID("Word"), 1);  // case matters
  EXPECT_EQ(t.String2ID(""), 2);
  EXPECT_EQ(t.String2ID(" word"), 3);  // surrounding blanks matter
  EXPECT_EQ(t.String2ID("word"), 0);
  EXPECT_EQ(t.String2ID(std::string("a\0b", 3)), 4);
  EXPECT_EQ(t.String2ID("a"), 5);  // same hash as "a\0b", different key
  EXPECT_EQ(t.size(), 6);
  EXPECT_EQ(t.by_id[1], "Word");
}

TEST(StringTable, KeysThatShareTheirFirstBytes) {
  // A slot holds a key's length and first bytes; keys that agree there, or
  // differ only past them, in NUL bytes or in bytes above 127 must still
  // get ids of their own.
  const std::string keys[] = {
      std::string("a"),
      std::string("a\0", 2),
      std::string("a\0\0", 3),
      std::string("\0a", 2),
      "abcdefgh",
      "abcdefghi",
      "abcdefghijk",
      "abcdefghijkl",  // longer than a slot holds
      "abcdefghijkm",
      "abcdefghijklmnopqrstuvwxyz",
      "abcdefghijklmnopqrstuvwxyZ",
      "caf\xc3\xa9",
      "caf\xc3\xa8",
      "\xff\xff\xff\xff\xff\xff\xff\xff\xff",
      std::string("abcdefgh\0", 9),
      std::string("abcdefgh\0x", 10),
  };
  StringTable t;
  const int n = static_cast<int>(sizeof keys / sizeof keys[0]);
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < n; ++i) EXPECT_EQ(t.String2ID(keys[i]), i) << "key " << i << ", round " << round;
  }
  EXPECT_EQ(t.size(), n);
}

// "w<i>", appended rather than added to the literal: GCC 12 warns
// (-Wrestrict) about `"w" + std::to_string(i)` at -O3.
std::string NumberedWord(int i) { return std::string("w").append(std::to_string(i)); }

TEST(StringTable, KeepsIdsAcrossGrowth) {
  StringTable t;
  for (int i = 0; i < 100000; ++i) ASSERT_EQ(t.String2ID(NumberedWord(i)), i);
  for (int i = 0; i < 100000; i += 997) EXPECT_EQ(t.String2ID(NumberedWord(i)), i);
  EXPECT_EQ(t.size(), 100000);
}

}  // namespace

}  // namespace refgrove
