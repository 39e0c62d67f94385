// WordData: the word half of a loaded data directory (see word_files.h).
//
// "word-table" and "word-idx" are read into memory; "word-data", the bulk,
// is mapped read-only and never copied. After construction `doc_info` holds
// the document headers, then the file's end sentinel, then the sentinel once
// more (the header count printed while loading, size - 1, counts the file's
// own sentinel as a header).
//
// Missing or damaged files load as an empty or shortened half: a missing
// "word-idx" gives one zero header, a trailing partial header is dropped, and
// the mapping never extends past the end of "word-data", so every word
// position is checked against the mapped size before it is read.
#ifndef REFGROVE_WORDS_WORD_DATA_H_
#define REFGROVE_WORDS_WORD_DATA_H_

#include <cstddef>
#include <cstdint>
#include <iostream>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "words/compacted_string_table.h"
#include "words/mapped_file.h"
#include "words/word_files.h"

namespace refgrove {

class WordData {
 public:
  // Loads "word-table", "word-idx" and "word-data" of `dir`, a prefix to
  // which the file names are appended. Progress goes to `log`.
  explicit WordData(const std::string& dir, std::ostream& log = std::cerr);
  // A word half without files, as from a directory without any: no words,
  // one zero header, nothing mapped.
  WordData();

  WordData(const WordData&) = delete;
  WordData& operator=(const WordData&) = delete;

  // The word id at `position` (counted in word ids) of the mapped file, or
  // false when those three bytes lie outside the mapping.
  bool word_id_at(std::int64_t position, std::uint32_t* id) const {
    if (position < 0 || position >= mapped_word_count()) return false;
    *id = read_word_id(word_ids + kWordIdBytes * position).id();
    return true;
  }

  // The word id whose 3 bytes start at byte `offset` of the mapped file, or
  // false when they do not lie wholly inside it.
  bool word_id_at_byte(std::int64_t offset, std::uint32_t* id) const {
    if (offset < 0 || offset > mapped_bytes() - kWordIdBytes) return false;
    *id = read_word_id(word_ids + offset).id();
    return true;
  }

  // Number of word ids that lie wholly inside the mapping.
  std::int64_t mapped_word_count() const { return mapped_bytes() / kWordIdBytes; }
  std::int64_t mapped_bytes() const { return word_file_ ? static_cast<std::int64_t>(word_file_->size()) : 0; }

  std::unique_ptr<CompactedStringTable> word_table;
  std::vector<DocumentWordInfo> doc_info;
  const unsigned char* word_ids = nullptr;  // base of the mapping of "word-data"

 private:
  void read_word_table(const std::string& name, std::ostream& log);
  void read_headers(const std::string& name, std::ostream& log);
  void map_word_ids(const std::string& name, std::ostream& log);

  std::unique_ptr<MappedFile> word_file_;  // "word-data", as far as the last header's offset names; null without files
};

}  // namespace refgrove

#endif  // REFGROVE_WORDS_WORD_DATA_H_
