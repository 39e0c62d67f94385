#include "words/compacted_string_table.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "words/string_table.h"

namespace refgrove {

namespace {

CompactedStringTable freeze(const std::vector<std::string>& words) {
  StringTable table;
  for (const std::string& w : words) table.String2ID(w);
  return CompactedStringTable(table);
}

std::string bytes_of(const CompactedStringTable& table) {
  std::ostringstream out;
  table.write(out);
  return out.str();
}

std::vector<std::string> alpha_order(const CompactedStringTable& t) {
  std::vector<std::string> texts;
  for (int i = 0; i < t.count; ++i) texts.push_back(t.text_at(t.alpha_index()[i].offset));
  return texts;
}

std::string le32(std::int32_t v) {
  std::ostringstream out;
  put_int32(out, v);
  return out.str();
}

TEST(CompactedStringTable, WritesCountEntriesSizeAndBlock) {
  const std::string expected =
      le32(3) + le32(0) + le32(0) + le32(1) + le32(3) + le32(2) + le32(4) + le32(6) + std::string("ab\0\0c\0", 6);
  EXPECT_EQ(bytes_of(freeze({"ab", "", "c"})), expected);
}

TEST(CompactedStringTable, ReadsBackWhatItWrote) {
  const CompactedStringTable original = freeze({"delta", "alpha", "", "charlie", "bravo"});
  std::istringstream in(bytes_of(original));
  const CompactedStringTable copy(in);
  ASSERT_EQ(copy.count, original.count);
  ASSERT_EQ(copy.chars_size, original.chars_size);
  for (int i = 0; i < copy.count; ++i) {
    EXPECT_EQ(copy.index[i].id, i);
    EXPECT_EQ(copy.index[i].offset, original.index[i].offset);
    EXPECT_STREQ(copy.lookup(i), original.lookup(i));
  }
  EXPECT_EQ(std::string(copy.chars.get(), copy.chars_size), std::string(original.chars.get(), original.chars_size));
}

TEST(CompactedStringTable, StreamIsLeftJustBehindTheTable) {
  std::istringstream in(bytes_of(freeze({"x", "yz"})) + "tail");
  CompactedStringTable table(in);
  std::string rest;
  in >> rest;
  EXPECT_EQ(rest, "tail");
}

TEST(CompactedStringTable, AlphaIndexSortsAllButTheLastEntry) {
  const struct {
    std::vector<std::string> words;  // in id order
    std::vector<std::string> alpha;  // expected alpha_index order
  } cases[] = {
      {{"only"}, {"only"}},
      {{"b", "a"}, {"b", "a"}},  // one sorted entry: nothing moves
      {{"c", "b", "a"}, {"b", "c", "a"}},
      {{"pear", "Apple", "apple", "app", "0"}, {"Apple", "app", "apple", "pear", "0"}},
      {{"\xe9t\xe9", "zoo", "abc"}, {"zoo", "\xe9t\xe9", "abc"}},  // bytes compare unsigned
  };
  for (const auto& c : cases) {
    EXPECT_EQ(alpha_order(freeze(c.words)), c.alpha) << "first word: " << c.words[0];
  }
}

TEST(CompactedStringTable, EmptyTableFreezesWritesAndReadsBack) {
  const CompactedStringTable empty = freeze({});
  EXPECT_EQ(empty.count, 0);
  EXPECT_EQ(empty.chars_size, 0);
  EXPECT_EQ(bytes_of(empty), le32(0) + le32(0));
  std::istringstream in(bytes_of(empty));
  EXPECT_EQ(CompactedStringTable(in).count, 0);
}

TEST(CompactedStringTable, KeyWithNulIsCutButKeepsItsFullLength) {
  const CompactedStringTable t = freeze({std::string("a\0b", 3), "c"});
  EXPECT_STREQ(t.lookup(0), "a");
  EXPECT_EQ(t.index[1].offset, 4);
  EXPECT_STREQ(t.lookup(1), "c");
}

TEST(CompactedStringTable, DamagedFilesGiveNothingOutsideWhatIsThere) {
  const std::string good = bytes_of(freeze({"one", "two", "three"}));
  const struct {
    const char* what;
    std::string bytes;
    int count;
    std::vector<const char*> texts;  // lookup of ids 0..3, null for absent
  } cases[] = {
      {"empty file", "", 0, {nullptr}},
      {"negative count", le32(-1) + le32(0), 0, {nullptr}},
      {"count larger than the file", le32(1000) + le32(0), 0, {nullptr}},
      {"block cut short", good.substr(0, good.size() - 6), 3, {"one", "two", nullptr, nullptr}},
      {"offset past the block",
       le32(2) + le32(0) + le32(0) + le32(1) + le32(99) + le32(2) + std::string("a\0", 2),
       2,
       {"a", nullptr, nullptr}},
      {"negative offset", le32(1) + le32(0) + le32(-5) + le32(2) + std::string("a\0", 2), 1, {nullptr}},
      {"unterminated block", le32(1) + le32(0) + le32(0) + le32(2) + "ab", 1, {"ab"}},
  };
  for (const auto& c : cases) {
    std::istringstream in(c.bytes);
    const CompactedStringTable t(in);
    EXPECT_EQ(t.count, c.count) << c.what;
    for (std::size_t id = 0; id < c.texts.size(); ++id) {
      if (c.texts[id] == nullptr) {
        EXPECT_EQ(t.lookup(static_cast<int>(id)), nullptr) << c.what << ", id " << id;
      } else {
        EXPECT_STREQ(t.lookup(static_cast<int>(id)), c.texts[id]) << c.what << ", id " << id;
      }
    }
    EXPECT_EQ(t.lookup(-1), nullptr) << c.what;
  }
}

}  // namespace

}  // namespace refgrove
