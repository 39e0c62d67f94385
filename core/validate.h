// Checking a data directory: everything in its four files that does not fit
// together, found by reading the bytes themselves rather than through the
// loaders (which quietly skip what they cannot use).
//
// Checked, with the byte offset of each fault:
//   word-table, and the author table at the head of graph_data: the count
//     against the file's size, entries numbered in order, string offsets
//     ascending, inside the character block and NUL-terminated, the block's
//     declared size against what follows;
//   word-idx: a size that is a multiple of 8, the end sentinel (DID -1) last,
//     its offset equal to the size of word-data, document offsets that are
//     word boundaries, never go backwards and stay inside word-data, DIDs
//     that are not negative;
//   word-data: a size that is a multiple of 3, word ids inside word-table;
//   graph_data: the record count against the records present, every record
//     whole, counts that are not negative, DIDs ascending without repeats,
//     title word ids inside word-table, author ids inside the author table,
//     nothing behind the last record.
#ifndef REFGROVE_CORE_VALIDATE_H_
#define REFGROVE_CORE_VALIDATE_H_

#include <cstdint>
#include <string>
#include <vector>

namespace refgrove {

struct Finding {
  std::string file;     // the data file's name, e.g. "word-idx"
  std::int64_t offset;  // byte offset in the file; -1 for the file as a whole
  std::string message;  // one sentence

  // "word-idx at offset 16: <message>", or "word-idx: <message>".
  std::string text() const;
};

// At most this many findings of one kind are listed; one more finding then
// says how many others of that kind there were.
inline constexpr int kMaxFindingsPerKind = 10;

// Checks the data directory `dir`, a prefix to which the file names are
// appended. An empty result means the directory is consistent.
std::vector<Finding> validate_data_dir(const std::string& dir);

}  // namespace refgrove

#endif  // REFGROVE_CORE_VALIDATE_H_
