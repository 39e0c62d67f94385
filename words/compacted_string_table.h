// CompactedStringTable: a frozen, read-only table of strings by dense id.
//
// File format (the whole of "word-table", and the head of "graph_data"),
// little-endian, 8 + 8*N + S bytes:
//   int32 N                  number of strings (`count`)
//   N x (int32 id, int32 offset)
//                            entry i: string i's id (always i) and the
//                            position of its first byte in the block
//   int32 S                  size of the character block (`chars_size`)
//   S bytes                  the strings, each followed by a NUL, in id order
//
// The text of id k is `chars` + `index`[k].offset; the id field is not
// consulted. Reading never trusts the file: a count that cannot fit in the
// bytes that remain yields an empty table, a short character block keeps what
// is there, and lookups outside the table or the block find nothing.
#ifndef REFGROVE_WORDS_COMPACTED_STRING_TABLE_H_
#define REFGROVE_WORDS_COMPACTED_STRING_TABLE_H_

#include <cstdint>
#include <istream>
#include <memory>
#include <ostream>

#include "words/byte_io.h"

namespace refgrove {

class StringTable;

class CompactedStringTable {
 public:
  struct Entry {
    std::int32_t id;
    std::int32_t offset;
  };

  // Reads one table from the current position of `in`, leaving `in` just
  // behind it.
  explicit CompactedStringTable(std::istream& in);
  // Reads one table from `in`; an untrustworthy count fails `in`.
  explicit CompactedStringTable(ByteReader& in);
  // Freezes `table`: entry i holds the string with id i.
  explicit CompactedStringTable(const StringTable& table);

  CompactedStringTable(const CompactedStringTable&) = delete;
  CompactedStringTable& operator=(const CompactedStringTable&) = delete;

  void write(std::ostream& out) const;

  // The entries in text order: a copy of `index` whose first count-1 entries
  // are sorted by text (strcmp order, bytes unsigned); the last entry stays
  // last whatever its text. Built on first use, as loading never needs it.
  const Entry* alpha_index() const {
    if (!alpha_index_) makeAlphaIndex();
    return alpha_index_.get();
  }

  // (Re)builds the alpha index.
  void makeAlphaIndex() const;

  // The text of `id`, or null when the id or its offset lies outside the
  // table. The text is NUL-terminated and lives as long as the table.
  const char* lookup(std::int32_t id) const {
    if (id < 0 || id >= count) return nullptr;
    return text_at(index[id].offset);
  }

  // The text at a byte offset of the block; null outside it.
  const char* text_at(std::int32_t offset) const {
    if (offset < 0 || offset >= chars_size) return nullptr;
    return chars.get() + offset;
  }

  // `chars` holds chars_size bytes plus one guard NUL, so that every offset
  // inside the block starts a terminated string even in a damaged file.
  std::unique_ptr<char[]> chars;
  std::int32_t chars_size = 0;
  std::int32_t count = 0;
  std::unique_ptr<Entry[]> index;

 private:
  void read(ByteReader& in);
  void allocate(std::int32_t n, std::int32_t size);

  mutable std::unique_ptr<Entry[]> alpha_index_;
};

// Orders two entries by their text in the table whose block is being sorted
// (set by makeAlphaIndex; the comparator carries no state of its own).
struct str2word_cmp {
  bool operator()(const CompactedStringTable::Entry& a, const CompactedStringTable::Entry& b) const;
};

}  // namespace refgrove

#endif  // REFGROVE_WORDS_COMPACTED_STRING_TABLE_H_
