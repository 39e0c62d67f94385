#include "graph/graph_file.h"

#include <algorithm>
#include <iostream>
#include <string>

#include "words/byte_io.h"

namespace refgrove {

namespace {
constexpr std::size_t kSmallestRecordBytes = 22;
}

void write_graph_file(std::ostream& out, const CompactedStringTable& authors,
                      const std::vector<RefgroveGraphData*>& docs) {
  authors.write(out);
  put_int32(out, static_cast<std::int32_t>(docs.size()));
  // The records are gathered in a buffer and written some 64 KB at a time:
  // a few large writes cost less than a small one for each field.
  constexpr std::size_t kFlushBytes = std::size_t{1} << 16;
  std::string buffer;
  for (const RefgroveGraphData* doc : docs) {
    doc->append_to(buffer);
    if (buffer.size() >= kFlushBytes) {
      out.write(buffer.data(), static_cast<std::streamsize>(buffer.size()));
      buffer.clear();
    }
  }
  out.write(buffer.data(), static_cast<std::streamsize>(buffer.size()));
}

RefgroveGraph::RefgroveGraph(std::istream& in, std::ostream& log) {
  const std::string bytes = read_rest_of_stream(in);
  ByteReader reader(bytes.data(), bytes.size());
  read(reader, log);
}

RefgroveGraph::RefgroveGraph(const MappedFile& file, std::ostream& log) {
  ByteReader reader(reinterpret_cast<const char*>(file.data()), file.size());
  read(reader, log);
}

void RefgroveGraph::read(ByteReader& reader, std::ostream& log) {
  log << "Reading Graph Data...\n";
  author_table = std::make_unique<CompactedStringTable>(reader);
  std::int32_t n = 0;
  reader.read_int32(&n);
  // The stored count is reported as it is, but only whole records are kept;
  // none can be shorter than kSmallestRecordBytes.
  const std::size_t capacity =
      std::min<std::size_t>(static_cast<std::size_t>(std::max(n, 0)), reader.remaining() / kSmallestRecordBytes);
  records_.resize(capacity);
  std::size_t kept = 0;
  while (kept < capacity && RefgroveGraphData::read(reader, arena_, &records_[kept])) ++kept;
  records_.resize(kept);
  records_.shrink_to_fit();  // a count that overstated the records reserved too much
  docs.reserve(kept);
  for (RefgroveGraphData& record : records_) docs.push_back(&record);
  log << "read " << n << " items.\n"
      << "Done.\n";
}

std::ostream& RefgroveGraph::write(std::ostream& out) const {
  write_graph_file(out, *author_table, docs);
  return out;
}

int RefgroveGraph::findDid(int did) const {
  int lo = 0;
  int hi = static_cast<int>(docs.size());
  if (hi < 1) return -1;
  for (;;) {
    const int mid = lo + (hi - lo) / 2;
    const int k = docs[mid]->did;
    if (k < did) {
      lo = mid + 1;
      if (lo >= hi) return -1;
    } else if (k == did) {
      return mid;
    } else {
      hi = mid;
      if (lo >= hi) return -1;
    }
  }
}

}  // namespace refgrove
