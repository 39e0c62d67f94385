// One document's record in the citation graph, and its binary layout.
//
// Record layout in "graph_data" (little-endian, no padding):
//   int32 did
//   int32 L, then L key bytes (no terminator)        bin_write_string
//   int32 year                                       -1: unknown
//   int32 Nc, then Nc x (int32 gid, int32 did)       citations
//   int32 Nt, then Nt x (uint16 low, uint8 high)     title word ids
//   int16 Na, then Na x int32                        author ids
// A record with nothing but its DID takes 22 bytes.
//
// The arrays of a record live in the arena of the graph that holds it; a
// record is never destroyed on its own.
#ifndef REFGROVE_GRAPH_GRAPH_RECORD_H_
#define REFGROVE_GRAPH_GRAPH_RECORD_H_

#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "graph/arena.h"
#include "words/byte_io.h"
#include "words/word_files.h"

namespace refgrove {

// One citation: the cited work's group id, then its DID.
struct CitationInfo {
  std::int32_t gid;
  std::int32_t did;
};

// A read-only array held elsewhere (in a graph's arena).
template <class T>
struct Span {
  const T* items = nullptr;
  std::int32_t n = 0;

  std::int32_t size() const { return n; }
  const T& operator[](std::int32_t i) const { return items[i]; }
  const T* begin() const { return items; }
  const T* end() const { return items + n; }
};

struct RefgroveGraphData {
  std::int32_t did;
  std::string_view key;  // followed by a NUL in memory; empty when the dump gave "-"
  std::int32_t year;
  Span<CitationInfo> citations;
  Span<WordId> title;
  const std::int32_t* authors;  // max(nb_authors, 0) ids of the author table
  std::int16_t nb_authors;      // may be negative: the count is kept in 16 bits

  // Builds a record in `arena`. The author count is cut to 16 bits as the
  // file stores it; the ids kept are the first max(count, 0) of `authors`.
  static RefgroveGraphData* create(Arena& arena, std::int32_t did, std::string_view key, std::int32_t year,
                                   std::span<const CitationInfo> citations, std::span<const WordId> title,
                                   std::span<const std::int32_t> authors);

  // Reads one record into *out, its arrays into `arena`; false when the
  // bytes left do not hold a whole record (the reader has then failed).
  static bool read(ByteReader& in, Arena& arena, RefgroveGraphData* out);

  std::ostream& write(std::ostream& out) const;
  // Appends the record's bytes to `out`; write() and the graph file's
  // writer both go through here.
  void append_to(std::string& out) const;
};

// Appends the length of `s` as int32, then its bytes without terminator.
void bin_write_string(std::string& out, std::string_view s);

// Reads a string written by bin_write_string. The text ends at the first NUL
// among the bytes read, so a string holding a NUL comes back shortened.
bool bin_read_string(ByteReader& in, std::string_view* out);

}  // namespace refgrove

#endif  // REFGROVE_GRAPH_GRAPH_RECORD_H_
