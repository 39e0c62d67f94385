#include "words/compacted_string_table.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "words/string_table.h"

namespace refgrove {

namespace {
// The table whose alpha index is being sorted; read by str2word_cmp.
const CompactedStringTable* sorting_table = nullptr;
constexpr int kEntryBytes = 8;
}  // namespace

bool str2word_cmp::operator()(const CompactedStringTable::Entry& a, const CompactedStringTable::Entry& b) const {
  const char* ta = sorting_table->text_at(a.offset);
  const char* tb = sorting_table->text_at(b.offset);
  return std::strcmp(ta ? ta : "", tb ? tb : "") < 0;
}

void CompactedStringTable::allocate(std::int32_t n, std::int32_t size) {
  count = n;
  chars_size = size;
  index.reset(new Entry[static_cast<std::size_t>(n)]());
  chars.reset(new char[static_cast<std::size_t>(size) + 1]());
}

CompactedStringTable::CompactedStringTable(ByteReader& in) { read(in); }

CompactedStringTable::CompactedStringTable(std::istream& in) {
  const std::istream::pos_type start = in.tellg();
  const std::string bytes = read_rest_of_stream(in);
  ByteReader reader(bytes.data(), bytes.size());
  read(reader);
  if (start != std::istream::pos_type(-1)) {
    in.clear();
    in.seekg(start + static_cast<std::streamoff>(bytes.size() - reader.remaining()));
  }
}

void CompactedStringTable::read(ByteReader& in) {
  std::int32_t n = 0;
  if (!in.read_count(kEntryBytes, &n)) {
    allocate(0, 0);
    return;
  }
  const unsigned char* entries = in.take(static_cast<std::size_t>(n) * kEntryBytes);
  std::int32_t size = 0;
  in.read_int32(&size);
  // A block longer than the file keeps the bytes that are there.
  size = static_cast<std::int32_t>(std::min<std::size_t>(static_cast<std::size_t>(std::max(size, 0)), in.remaining()));
  allocate(n, size);
  for (std::int32_t i = 0; i < n; ++i) {
    index[i] = Entry{get_int32(entries + kEntryBytes * i), get_int32(entries + kEntryBytes * i + 4)};
  }
  if (size > 0) std::memcpy(chars.get(), in.take(static_cast<std::size_t>(size)), static_cast<std::size_t>(size));
}

CompactedStringTable::CompactedStringTable(const StringTable& table) {
  std::size_t size = 0;
  for (const std::string& key : table.by_id) size += key.size() + 1;
  allocate(static_cast<std::int32_t>(table.by_id.size()), static_cast<std::int32_t>(size));
  std::int32_t p = 0;
  for (std::int32_t i = 0; i < count; ++i) {
    const std::string& key = table.by_id[i];
    // A NUL-terminated copy: a key holding a NUL byte is cut there, while the
    // position still advances by its full length.
    std::strcpy(chars.get() + p, key.c_str());
    index[i] = Entry{i, p};
    p += static_cast<std::int32_t>(key.size()) + 1;
  }
}

void CompactedStringTable::write(std::ostream& out) const {
  put_int32(out, count);
  for (std::int32_t i = 0; i < count; ++i) {
    put_int32(out, index[i].id);
    put_int32(out, index[i].offset);
  }
  put_int32(out, chars_size);
  out.write(chars.get(), chars_size);
}

void CompactedStringTable::makeAlphaIndex() const {
  alpha_index_.reset(new Entry[static_cast<std::size_t>(count)]());
  std::copy(index.get(), index.get() + count, alpha_index_.get());
  if (count < 2) return;
  sorting_table = this;
  std::sort(alpha_index_.get(), alpha_index_.get() + count - 1, str2word_cmp());
  sorting_table = nullptr;
}

}  // namespace refgrove
