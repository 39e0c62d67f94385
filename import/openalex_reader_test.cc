// OpenAlex works read and written as dump lines: each case one input file
// and the dumps it must give.
#include "import/openalex_reader.h"

#include <gtest/gtest.h>

#include "import/json_records.h"
#include "import/read_into_dumps.h"

namespace refgrove {
namespace {

Dumps import_text(const std::string& text, std::optional<YearRange> years = std::nullopt) {
  const FileContents contents{text + std::string(json_padding(), '\0'), text.size()};
  return read_into_dumps([&](const WorkSink& sink) { read_openalex("in.jsonl", contents, sink); }, years);
}

struct Case {
  const char* name;
  std::string input;
  Dumps expected;
};

TEST(OpenAlexReader, FieldsPresentAbsentNullEmpty) {
  const Case cases[] = {
      {"every field",
       R"({"id":"https://openalex.org/W1","publication_year":2001,"title":"A b","authorships":[{"author":{"display_name":"Ann Lee"}},{"author":{"display_name":"Bo Chen"}}],"abstract_inverted_index":{"second":[1],"first":[0],"again":[2]},"referenced_works":[]})",
       {"1 W1 2001 GIDs: DIDs: Title: A b Authors: Ann Lee and Bo Chen\n", "1 - first second again\n", "", ""}},
      {"only the id", R"({"id":"W7"})", {"1 W7 - GIDs: DIDs: Title: - Authors:\n", "", "", ""}},
      {"nulls are unknown",
       R"({"id":"W7","publication_year":null,"title":null,"display_name":null,"authorships":null,"abstract_inverted_index":null,"referenced_works":null})",
       {"1 W7 - GIDs: DIDs: Title: - Authors:\n", "", "", ""}},
      {"empty values",
       R"({"id":"W7","title":"","authorships":[],"abstract_inverted_index":{},"referenced_works":[]})",
       {"1 W7 - GIDs: DIDs: Title: - Authors:\n", "", "", ""}},
      {"display_name stands in for a missing title",
       R"({"id":"W7","display_name":"Shown  name"})",
       {"1 W7 - GIDs: DIDs: Title: Shown name Authors:\n", "", "", ""}},
      {"authorships without a name are skipped",
       R"({"id":"W7","authorships":[{"author":{}},{"author":{"display_name":"X"}},{"author":null},{}]})",
       {"1 W7 - GIDs: DIDs: Title: - Authors: X\n", "", "", ""}},
      {"line ends, tabs and dump elements in text",
       "{\"id\":\"W7\",\"title\":\"one\\ntwo\\tAuthors: three\\r\",\"abstract_inverted_index\":{\"a\\nb\":[0]}}",
       {"1 W7 - GIDs: DIDs: Title: one two three Authors:\n", "1 - a b\n", "", ""}},
      {"abstract positions each of 0 to n - 1 once, a word at two of them",
       R"({"id":"W7","abstract_inverted_index":{"x":[2,0],"y":[1],"z":[3]}})",
       {"1 W7 - GIDs: DIDs: Title: - Authors:\n", "1 - x y x z\n", "", ""}},
      {"abstract positions with gaps and two words at one",
       R"({"id":"W7","abstract_inverted_index":{"b":[9],"c":[2],"a":[0,2]}})",
       {"1 W7 - GIDs: DIDs: Title: - Authors:\n", "1 - a a c b\n", "", ""}},
      {"UTF-8 kept as it is",
       R"({"id":"W7","title":"Erdős–Rényi","authorships":[{"author":{"display_name":"Pál Erdős"}}]})",
       {"1 W7 - GIDs: DIDs: Title: Erdős–Rényi Authors: Pál Erdős\n", "", "", ""}},
      {"CRLF line ends and blank lines",
       "{\"id\":\"W1\"}\r\n\r\n  \n{\"id\":\"W2\"}\r\n",
       {"1 W1 - GIDs: DIDs: Title: - Authors:\n2 W2 - GIDs: DIDs: Title: - Authors:\n", "", "", ""}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const Dumps d = import_text(c.input);
    EXPECT_EQ(d.graph, c.expected.graph) << c.input;
    EXPECT_EQ(d.words, c.expected.words) << c.input;
    EXPECT_EQ(d.errors, c.expected.errors) << c.input;
  }
}

TEST(OpenAlexReader, CitationsReplacementsAndYears) {
  const Case cases[] = {
      {"within, outside, self and repeated citations",
       R"({"id":"W1","referenced_works":["https://openalex.org/W2","W9","W1","W9"]})"
       "\n"
       R"({"id":"W2","referenced_works":["W8"]})",
       {"1 W1 - GIDs: 2 3 1 3 DIDs: 2 3 1 3 Title: - Authors:\n2 W2 - GIDs: 4 DIDs: 4 Title: - Authors:\n", "",
        "W9 W8 ", ""}},
      {"a later record replaces the earlier and keeps its place",
       R"({"id":"W1","title":"old"})"
       "\n"
       R"({"id":"W2"})"
       "\n"
       R"({"id":"W1","title":"new"})",
       {"1 W1 - GIDs: DIDs: Title: new Authors:\n2 W2 - GIDs: DIDs: Title: - Authors:\n", "", "", ""}},
      {"an API page of works",
       R"({"meta":{"count":2},"results":[{"id":"W1","referenced_works":["W2"]},{"id":"W2"}]})",
       {"1 W1 - GIDs: 2 DIDs: 2 Title: - Authors:\n2 W2 - GIDs: DIDs: Title: - Authors:\n", "", "", ""}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const Dumps d = import_text(c.input);
    EXPECT_EQ(d.graph, c.expected.graph) << c.input;
    EXPECT_EQ(d.outside, c.expected.outside) << c.input;
    EXPECT_EQ(d.errors, "") << c.input;
  }
  // --years 2000-2001: the work of 1999 and the one without a year become
  // outside works.
  const Dumps d = import_text(R"({"id":"W1","publication_year":2000,"referenced_works":["W2","W3"]})"
                              "\n"
                              R"({"id":"W2","publication_year":1999})"
                              "\n"
                              R"({"id":"W3"})",
                              YearRange{2000, 2001});
  EXPECT_EQ(d.graph, "1 W1 2000 GIDs: 2 3 DIDs: 2 3 Title: - Authors:\n");
  EXPECT_EQ(d.outside, "W2 W3 ");
}

TEST(OpenAlexReader, BadRecordsNameTheLineAndTheField) {
  const struct {
    std::string input, error;
  } cases[] = {
      {"{\"id\":\"W1\"}\n{\"id\":\"W2\",", "in.jsonl:2: not JSON"},
      {R"({"title":"no id"})", "in.jsonl:1: id: missing"},
      {R"({"id":7})", "in.jsonl:1: id: not a string"},
      {R"({"id":"W 7"})", "in.jsonl:1: id: an id with a blank"},
      {R"({"id":"https://openalex.org/"})", "in.jsonl:1: id: empty id"},
      {R"({"id":"W1","publication_year":"2001"})", "in.jsonl:1: publication_year: not a year"},
      {R"({"id":"W1","publication_year":99999999999})", "in.jsonl:1: publication_year: not a year"},
      {R"({"id":"W1","title":3})", "in.jsonl:1: title: not a string"},
      {R"({"id":"W1","authorships":{}})", "in.jsonl:1: authorships: not a list"},
      {R"({"id":"W1","abstract_inverted_index":{"a":[-1]}})", "in.jsonl:1: abstract_inverted_index: a position"},
      {R"({"id":"W1","referenced_works":[null]})", "in.jsonl:1: referenced_works: not a string"},
      {R"([1,2])", "in.jsonl:1: not a JSON object"},
      {R"({"results":[{"id":"W1"},{"id":5}]})", "in.jsonl:1: results[1].id: not a string"},
      {"{\"id\":\"W1\",\"title\":\"\xff\"}", "in.jsonl:1: not JSON"},
  };
  for (const auto& c : cases) {
    const Dumps d = import_text(c.input);
    EXPECT_EQ(d.errors.rfind(c.error, 0), 0u) << c.input << "\ngave: " << d.errors;
  }
}

}  // namespace
}  // namespace refgrove
