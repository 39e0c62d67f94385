// The word files of a data directory, beside "graph_data":
//
//   "word-table"  every interned string, as a compacted string table
//                 (compacted_string_table.h); a word id is an index into it.
//   "word-idx"    DocumentWordInfo records, 8 bytes each, no header: one per
//                 document in the order the dumps listed them, then an end
//                 sentinel {did = -1, offset = byte size of "word-data"}.
//   "word-data"   the documents' word ids back to back, 3 bytes each
//                 (WordId), no separators.
//
// The preprocessor writes each document's `offset` as the byte position of
// its first word id in "word-data"; readers take the same field as a count of
// 3-byte word ids (word i of document w lies at byte 3 * (offset(w) + i)).
// The two readings agree only for a run that starts at 0. Data directories in
// use depend on exactly this pairing, so both sides are kept as they are.
#ifndef REFGROVE_WORDS_WORD_FILES_H_
#define REFGROVE_WORDS_WORD_FILES_H_

#include <cstdint>
#include <ostream>

#include "words/byte_io.h"

namespace refgrove {

inline constexpr char kWordTableFile[] = "word-table";
inline constexpr char kWordIdxFile[] = "word-idx";
inline constexpr char kWordDataFile[] = "word-data";

// A 24-bit word id: bits 0-15 in `low`, bits 16-23 in `high`. On disk
// exactly 3 bytes: `low` little-endian, then `high`. Bits 24-31 of an id are
// dropped when a WordId is formed.
struct WordId {
  std::uint16_t low;
  std::uint8_t high;

  static WordId from_id(std::uint32_t id) {
    return WordId{static_cast<std::uint16_t>(id & 0xFFFF), static_cast<std::uint8_t>((id >> 16) & 0xFF)};
  }
  std::uint32_t id() const { return low + 65536u * high; }
};

inline constexpr int kWordIdBytes = 3;

// `Out` is a std::ostream or a std::string (see byte_io.h).
template <class Out>
void write_word_id(Out& out, WordId w) {
  put_uint16(out, w.low);
  put_uint8(out, w.high);
}

inline WordId read_word_id(const unsigned char* p) { return WordId{get_uint16(p), p[2]}; }

// The 3 bytes of `w` at `at`, as write_word_id writes them.
inline void store_word_id(char* at, WordId w) { encode_le(at, w.id(), kWordIdBytes); }

// One "word-idx" record: 8 bytes, int32 `did` then int32 `offset`.
struct DocumentWordInfo {
  std::int32_t did;
  std::int32_t offset;
};

inline constexpr int kDocumentWordInfoBytes = 8;

inline void write_document_word_info(std::ostream& out, DocumentWordInfo info) {
  put_int32(out, info.did);
  put_int32(out, info.offset);
}

inline DocumentWordInfo read_document_word_info(const unsigned char* p) {
  return DocumentWordInfo{get_int32(p), get_int32(p + 4)};
}

}  // namespace refgrove

#endif  // REFGROVE_WORDS_WORD_FILES_H_
