// Semantic Scholar records read and written as dump lines: each case the
// files of one import and the dumps they must give.
#include "import/s2_reader.h"

#include <gtest/gtest.h>

#include "import/json_records.h"
#include "import/read_into_dumps.h"

namespace refgrove {
namespace {

Dumps import_files(const std::vector<std::string>& files, WorkSetCounts* counts) {
  return read_into_dumps(
      [&](const WorkSink& sink) {
        for (const std::string& text : files) {
          read_s2("in.jsonl", FileContents{text + std::string(json_padding(), '\0'), text.size()}, sink);
        }
      },
      std::nullopt, counts);
}

TEST(S2Reader, PapersAbstractsAndCitationsInAnyOrder) {
  const struct {
    const char* name;
    std::vector<std::string> files;
    Dumps expected;
    std::int64_t unknown;  // citations of works not known
  } cases[] = {
      {"every field",
       {R"({"corpusid":11,"externalids":{"DOI":"10.1/x"},"title":"Fast trees","year":2001,"authors":[{"authorId":"5","name":"Ann Lee"},{"name":"Bo Chen"}]})"},
       {"1 11 2001 GIDs: DIDs: Title: Fast trees Authors: Ann Lee and Bo Chen\n", "", "", ""},
       0},
      {"nulls and absent fields are unknown",
       {R"({"corpusid":"12","title":null,"year":null,"authors":null,"externalids":null})"},
       {"1 12 - GIDs: DIDs: Title: - Authors:\n", "", "", ""},
       0},
      {"abstracts and citations before their papers; a null cited id counted",
       {"{\"corpusid\":1,\"abstract\":\"Words of one\"}\n"
        "{\"citingcorpusid\":2,\"citedcorpusid\":1}\n{\"citingcorpusid\":2,\"citedcorpusid\":null}\n",
        "{\"corpusid\":1,\"title\":\"One\"}\n{\"corpusid\":2,\"title\":\"Two\"}\n"},
       {"1 1 - GIDs: DIDs: Title: One Authors:\n2 2 - GIDs: 1 DIDs: 1 Title: Two Authors:\n", "1 - Words of one\n", "",
        ""},
       1},
      {"bad records named by line and field",
       {"{\"corpusid\":[1],\"title\":\"x\"}\n{\"corpusid\":3,\"year\":\"1999\"}\n{\"citingcorpusid\":3}\n"
        "{\"openaccessinfo\":{}}\n[1]\n{\"corpusid\":4,\"authors\":[\"Ann\"]}\n"},
       {"", "", "",
        "in.jsonl:1: corpusid: not a corpus id\nin.jsonl:2: year: not a year\nin.jsonl:3: citedcorpusid: missing\n"
        "in.jsonl:4: neither a paper, an abstract nor a citation\nin.jsonl:5: not a JSON object\n"
        "in.jsonl:6: authors: an author that is not an object\n"},
       0},
  };
  for (const auto& c : cases) {
    WorkSetCounts counts;
    EXPECT_EQ(import_files(c.files, &counts), c.expected) << c.name;
    EXPECT_EQ(counts.citations_unknown, c.unknown) << c.name;
  }
}

}  // namespace
}  // namespace refgrove
