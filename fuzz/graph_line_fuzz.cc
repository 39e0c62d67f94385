// Graph dump lines parsed into records, as the graph preprocessing reads
// them (up to an "xxxx" line or the end), then each record written in the
// graph file layout and read back: what comes back must be what was parsed.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz/fuzz_support.h"
#include "graph/graph_dump.h"
#include "graph/graph_file.h"
#include "words/compacted_string_table.h"

namespace refgrove {

namespace {

void check_round_trip(const RefgroveGraphData& r) {
  std::ostringstream out(std::ios::out | std::ios::binary);
  r.write(out);
  const std::string bytes = out.str();
  ByteReader reader(bytes.data(), bytes.size());
  Arena arena;
  RefgroveGraphData back{};
  FUZZ_CHECK(RefgroveGraphData::read(reader, arena, &back));
  FUZZ_CHECK(reader.remaining() == 0);
  FUZZ_CHECK(back.did == r.did);
  // The key comes back up to its first NUL byte.
  FUZZ_CHECK(back.key == r.key.substr(0, std::strlen(r.key.data())));
  FUZZ_CHECK(back.year == r.year);
  FUZZ_CHECK(back.citations.size() == r.citations.size());
  for (std::int32_t i = 0; i < r.citations.size(); ++i) {
    FUZZ_CHECK(back.citations[i].gid == r.citations[i].gid && back.citations[i].did == r.citations[i].did);
  }
  FUZZ_CHECK(back.title.size() == r.title.size());
  for (std::int32_t i = 0; i < r.title.size(); ++i) FUZZ_CHECK(back.title[i].id() == r.title[i].id());
  FUZZ_CHECK(back.nb_authors == r.nb_authors);
  for (std::int32_t k = 0; k < r.nb_authors; ++k) FUZZ_CHECK(back.authors[k] == r.authors[k]);
}

}  // namespace

int fuzz_one_input(const std::uint8_t* data, std::size_t size) {
  std::istringstream in(std::string(reinterpret_cast<const char*>(data), size), std::ios::in | std::ios::binary);
  const auto t = create_refgrovegraph_tokenizer(in);
  Arena arena;
  StringTable words, authors;
  std::vector<RefgroveGraphData*> docs;
  try {
    while (t->has_more_tokens() && !t->is_next_token("xxxx")) {
      RefgroveGraphData* r = parse_graph_record(arena, &words, &authors, *t);
      FUZZ_CHECK(r != nullptr);
      FUZZ_CHECK(r->title.size() >= 1);
      for (const WordId& w : r->title) FUZZ_CHECK(w.id() < static_cast<std::uint32_t>(words.size()));
      for (std::int32_t k = 0; k < r->nb_authors; ++k) FUZZ_CHECK(r->authors[k] >= 0 && r->authors[k] < authors.size());
      check_round_trip(*r);
      docs.push_back(r);
    }
  } catch (const ParserError& e) {
    // Preprocessing reports the error and ends the process here.
    std::ostringstream text;
    e.write(text);
    FUZZ_CHECK(!text.str().empty());
  }

  // The whole graph file, read back.
  std::ostringstream out(std::ios::out | std::ios::binary);
  write_graph_file(out, CompactedStringTable(authors), docs);
  std::istringstream file(out.str(), std::ios::in | std::ios::binary);
  fuzz::Silence quiet;
  const RefgroveGraph graph(file);
  FUZZ_CHECK(graph.docs.size() == docs.size());
  FUZZ_CHECK(graph.author_table->count == authors.size());
  return 0;
}

}  // namespace refgrove

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return refgrove::fuzz_one_input(data, size);
}
