#include "graph/graph_record.h"

#include <algorithm>
#include <cstring>

namespace refgrove {

namespace {

constexpr std::size_t kCitationBytes = 8;
constexpr std::size_t kAuthorIdBytes = 4;

template <class T>
Span<T> copy_to_arena(Arena& arena, std::span<const T> items) {
  T* copy = arena.allocate_array<T>(items.size());
  std::copy(items.begin(), items.end(), copy);
  return Span<T>{copy, static_cast<std::int32_t>(items.size())};
}

// A copy of `key` with a NUL behind it, so that it can be handed out as a
// C string.
std::string_view copy_key(Arena& arena, std::string_view key) {
  char* copy = arena.allocate_array<char>(key.size() + 1);
  std::memcpy(copy, key.data(), key.size());
  copy[key.size()] = '\0';
  return std::string_view(copy, key.size());
}

}  // namespace

void bin_write_string(std::string& out, std::string_view s) {
  put_int32(out, static_cast<std::int32_t>(s.size()));
  out.append(s.data(), s.size());
}

bool bin_read_string(ByteReader& in, std::string_view* out) {
  std::int32_t n = 0;
  if (!in.read_count(1, &n)) return false;
  const char* bytes = reinterpret_cast<const char*>(in.take(static_cast<std::size_t>(n)));
  *out = std::string_view(bytes, strnlen(bytes, static_cast<std::size_t>(n)));
  return true;
}

RefgroveGraphData* RefgroveGraphData::create(Arena& arena, std::int32_t did, std::string_view key, std::int32_t year,
                                             std::span<const CitationInfo> citations, std::span<const WordId> title,
                                             std::span<const std::int32_t> authors) {
  const auto nb_authors = static_cast<std::int16_t>(authors.size());
  const std::span<const std::int32_t> kept = authors.first(static_cast<std::size_t>(std::max<int>(nb_authors, 0)));
  return arena.create<RefgroveGraphData>(RefgroveGraphData{did, copy_key(arena, key), year,
                                                           copy_to_arena(arena, citations), copy_to_arena(arena, title),
                                                           copy_to_arena(arena, kept).items, nb_authors});
}

std::ostream& RefgroveGraphData::write(std::ostream& out) const {
  std::string record;
  append_to(record);
  return out.write(record.data(), static_cast<std::streamsize>(record.size()));
}

void RefgroveGraphData::append_to(std::string& out) const {
  put_int32(out, did);
  bin_write_string(out, key);
  put_int32(out, year);
  put_int32(out, citations.size());
  for (const CitationInfo& c : citations) {
    put_int32(out, c.gid);
    put_int32(out, c.did);
  }
  put_int32(out, title.size());
  for (const WordId& w : title) write_word_id(out, w);
  put_uint16(out, static_cast<std::uint16_t>(nb_authors));
  for (std::int32_t k = 0; k < nb_authors; ++k) put_int32(out, authors[k]);
}

bool RefgroveGraphData::read(ByteReader& in, Arena& arena, RefgroveGraphData* out) {
  std::int32_t did = 0, year = 0, nc = 0, nt = 0;
  std::string_view key;
  if (!in.read_int32(&did) || !bin_read_string(in, &key) || !in.read_int32(&year)) return false;

  // Counts of zero or less read nothing; larger ones must fit in what is left.
  if (!in.read_int32(&nc) || (nc > 0 && static_cast<std::uint64_t>(nc) * kCitationBytes > in.remaining())) return false;
  const unsigned char* cites = in.take(kCitationBytes * static_cast<std::size_t>(std::max(nc, 0)));
  if (!in.read_int32(&nt) || (nt > 0 && static_cast<std::uint64_t>(nt) * kWordIdBytes > in.remaining())) return false;
  const unsigned char* words = in.take(kWordIdBytes * static_cast<std::size_t>(std::max(nt, 0)));
  std::int16_t na = 0;
  if (!in.read_int16(&na)) return false;
  const unsigned char* ids = in.take(kAuthorIdBytes * static_cast<std::size_t>(std::max<int>(na, 0)));
  if (ids == nullptr) return false;

  auto* citations = arena.allocate_array<CitationInfo>(static_cast<std::size_t>(std::max(nc, 0)));
  for (std::int32_t i = 0; i < nc; ++i)
    citations[i] = CitationInfo{get_int32(cites + kCitationBytes * i), get_int32(cites + kCitationBytes * i + 4)};
  auto* title = arena.allocate_array<WordId>(static_cast<std::size_t>(std::max(nt, 0)));
  for (std::int32_t i = 0; i < nt; ++i) title[i] = read_word_id(words + kWordIdBytes * i);
  auto* authors = arena.allocate_array<std::int32_t>(static_cast<std::size_t>(std::max<int>(na, 0)));
  for (std::int32_t k = 0; k < na; ++k) authors[k] = get_int32(ids + kAuthorIdBytes * k);

  *out = RefgroveGraphData{did,
                           copy_key(arena, key),
                           year,
                           Span<CitationInfo>{citations, std::max(nc, 0)},
                           Span<WordId>{title, std::max(nt, 0)},
                           authors,
                           na};
  return true;
}

}  // namespace refgrove
