// Semantic Scholar records read and written as dump lines: each case the
// files of one import and the dumps they must give.
#include "import/s2_reader.h"

#include <gtest/gtest.h>

#include <sstream>

#include "import/json_records.h"

namespace refgrove {
namespace {

struct Dumps {
  std::string graph, words, errors;
  std::int64_t unknown = 0;
};

Dumps import_files(const std::vector<std::string>& files) {
  WorkSet set;
  Dumps d;
  const WorkSink sink{[&set](ImportedWork w) { set.add(std::move(w)); },
                      [&set](std::string citing, std::string cited) { set.add_citation(citing, cited); },
                      [&set](std::string key, std::string text) { set.add_abstract(key, text); },
                      [&d](const ImportError& e) { d.errors += std::string(e.what()) + "\n"; }};
  for (const std::string& text : files) {
    read_s2("in.jsonl", FileContents{text + std::string(json_padding(), '\0'), text.size()}, sink);
  }
  std::ostringstream graph, words;
  std::vector<std::string> outside;
  d.unknown = set.write_dumps(graph, words, &outside).citations_unknown;
  d.graph = graph.str();
  d.words = words.str();
  return d;
}

TEST(S2Reader, PapersAbstractsAndCitationsInAnyOrder) {
  const struct {
    const char* name;
    std::vector<std::string> files;
    Dumps expected;
  } cases[] = {
      {"every field",
       {R"({"corpusid":11,"externalids":{"DOI":"10.1/x"},"title":"Fast trees","year":2001,"authors":[{"authorId":"5","name":"Ann Lee"},{"name":"Bo Chen"}]})"},
       {"1 11 2001 GIDs: DIDs: Title: Fast trees Authors: Ann Lee and Bo Chen\n", "", "", 0}},
      {"nulls and absent fields are unknown",
       {R"({"corpusid":"12","title":null,"year":null,"authors":null,"externalids":null})"},
       {"1 12 - GIDs: DIDs: Title: - Authors:\n", "", "", 0}},
      {"abstracts and citations before their papers; a null cited id counted",
       {"{\"corpusid\":1,\"abstract\":\"Words of one\"}\n"
        "{\"citingcorpusid\":2,\"citedcorpusid\":1}\n{\"citingcorpusid\":2,\"citedcorpusid\":null}\n",
        "{\"corpusid\":1,\"title\":\"One\"}\n{\"corpusid\":2,\"title\":\"Two\"}\n"},
       {"1 1 - GIDs: DIDs: Title: One Authors:\n2 2 - GIDs: 1 DIDs: 1 Title: Two Authors:\n", "1 - Words of one\n", "",
        1}},
      {"bad records named by line and field",
       {"{\"corpusid\":[1],\"title\":\"x\"}\n{\"corpusid\":3,\"year\":\"1999\"}\n{\"citingcorpusid\":3}\n"
        "{\"openaccessinfo\":{}}\n[1]\n{\"corpusid\":4,\"authors\":[\"Ann\"]}\n"},
       {"", "",
        "in.jsonl:1: corpusid: not a corpus id\nin.jsonl:2: year: not a year\nin.jsonl:3: citedcorpusid: missing\n"
        "in.jsonl:4: neither a paper, an abstract nor a citation\nin.jsonl:5: not a JSON object\n"
        "in.jsonl:6: authors: an author that is not an object\n",
        0}},
  };
  for (const auto& c : cases) {
    const Dumps d = import_files(c.files);
    EXPECT_EQ(d.graph, c.expected.graph) << c.name;
    EXPECT_EQ(d.words, c.expected.words) << c.name;
    EXPECT_EQ(d.errors, c.expected.errors) << c.name;
    EXPECT_EQ(d.unknown, c.expected.unknown) << c.name;
  }
}

}  // namespace
}  // namespace refgrove
