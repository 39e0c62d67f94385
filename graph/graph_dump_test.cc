// Parsing single document lines of the graph dump.
#include "graph/graph_dump.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace refgrove {

namespace {

// A parsed record with its ids turned back into text.
struct Parsed {
  int did;
  std::string key;
  int year;
  std::vector<std::pair<int, int>> cites;  // (gid, did)
  std::vector<std::string> title;
  std::vector<std::string> authors;
  int nb_authors;

  bool operator==(const Parsed& o) const {
    return did == o.did && key == o.key && year == o.year && cites == o.cites && title == o.title &&
           authors == o.authors && nb_authors == o.nb_authors;
  }
};

std::ostream& operator<<(std::ostream& os, const Parsed& p) {
  os << "{did " << p.did << ", key '" << p.key << "', year " << p.year << ", cites";
  for (auto& c : p.cites) os << " (" << c.first << "," << c.second << ")";
  os << ", title";
  for (auto& w : p.title) os << " '" << w << "'";
  os << ", authors";
  for (auto& a : p.authors) os << " '" << a << "'";
  return os << ", nb_authors " << p.nb_authors << "}";
}

struct Tables {
  Arena arena;
  StringTable words, authors;

  Parsed text_of(const RefgroveGraphData& r) const {
    Parsed p{r.did, std::string(r.key), r.year, {}, {}, {}, r.nb_authors};
    for (const CitationInfo& c : r.citations) p.cites.emplace_back(c.gid, c.did);
    for (const WordId& w : r.title) p.title.push_back(words.by_id.at(w.id()));
    for (int k = 0; k < r.nb_authors; ++k) p.authors.push_back(authors.by_id.at(r.authors[k]));
    return p;
  }
};

// Every record of `dump` (read up to its end), as text.
std::vector<Parsed> ParseAll(Tables& tables, const std::string& dump) {
  std::istringstream in(dump);
  auto t = create_refgrovegraph_tokenizer(in);
  std::vector<Parsed> out;
  while (t->has_more_tokens()) {
    out.push_back(tables.text_of(*parse_graph_record(tables.arena, &tables.words, &tables.authors, *t)));
  }
  return out;
}

TEST(GraphDumpTest, DocumentLines) {
  struct Case {
    const char* line;
    Parsed expected;
  };
  const Case cases[] = {
      {"17 - - GIDs: DIDs: Title: graphs Authors:\n", {17, "", -1, {}, {"graphs"}, {}, 0}},
      {"5 k5 1999 GIDs: 3 8 DIDs: 40 41 Title: a b Authors: X Y and Z\n",
       {5, "k5", 1999, {{3, 40}, {8, 41}}, {"a", "b"}, {"X Y", "Z"}, 2}},
      // Commas stay inside names; only "and" separates authors. Tabs and
      // carriage returns are blanks; punctuation and quotes belong to tokens.
      {"7\tsmith94-a\t1994 GIDs: 1 DIDs: 2 Title: \"Fast\" (sorting), Authors: Smith, J. and Doe\r\n",
       {7, "smith94-a", 1994, {{1, 2}}, {"\"Fast\"", "(sorting),"}, {"Smith, J.", "Doe"}, 2}},
      // "Authors:" right after "Title:" is the first title word.
      {"8 - 2001 GIDs: DIDs: Title: Authors: on Authors: A\n", {8, "", 2001, {}, {"Authors:", "on"}, {"A"}, 1}},
      // A lone "-" elsewhere is an ordinary token; "x-y" is one token.
      {"9 k 2000 GIDs: DIDs: Title: - x-y Authors: B  and  -\n", {9, "k", 2000, {}, {"-", "x-y"}, {"B", "-"}, 2}},
      // A line end where the key stands is taken as the key.
      {"11\n- GIDs: DIDs: Title: t Authors:\n", {11, "\n", -1, {}, {"t"}, {}, 0}},
      // Several blanks between name parts become one.
      {"10 - - GIDs: -4 DIDs: 0 Title: t Authors: A.   B.   Name\n", {10, "", -1, {{-4, 0}}, {"t"}, {"A. B. Name"}, 1}},
  };
  for (const Case& c : cases) {
    Tables tables;
    std::vector<Parsed> got;
    try {
      got = ParseAll(tables, c.line);
    } catch (const ParserError& e) {
      std::ostringstream msg;
      e.write(msg);
      ADD_FAILURE() << "line: " << c.line << "error: " << msg.str();
      continue;
    }
    ASSERT_EQ(got.size(), 1u) << "line: " << c.line;
    EXPECT_EQ(got[0], c.expected) << "line: " << c.line;
  }
}

TEST(GraphDumpTest, MalformedLinesThrowAtTheOffendingToken) {
  struct Case {
    const char* line;
    const char* message;  // as ParserError::write prints it
  };
  const Case cases[] = {
      // Two GIDs, one DID: "Title:" is read as the second DID.
      {"5 k 1999 GIDs: 3 8 DIDs: 40 Title: a Authors: X\n", "expected integer, not 'Title:' at 1:"},
      // A keyword among the GIDs, reported where the element's look-ahead
      // left the position: at the token after it.
      {"5 k 1999 GIDs: 3 Title: a Authors: X\n", "expected integer, not 'Title:' at 1:24"},
      {"5 k 1999 DIDs: Title: a Authors: X\n", "expected 'GIDs:', found 'DIDs:' at 1:9"},
      {"5 k 1999 GIDs: DIDs: a Authors: X\n", "expected 'Title:', found 'a' at 1:21"},
      {"x k 1999 GIDs: DIDs: Title: a Authors: X\n", "expected integer, not 'x' at 1:0"},
      {"5 k year GIDs: DIDs: Title: a Authors: X\n", "expected integer, not 'year' at 1:4"},
      // A line end before the authors is a token, here read as the year.
      {"5 k\n1999 GIDs: DIDs: Title: a Authors: X\n", "expected integer, not '\n' at "},
      // The input ends inside the record.
      {"5 k 1999 GIDs: DIDs: Title: a Authors: X", "unexpected end of file at 1:"},
      {"5 k 1999 GIDs: 1 2", "unexpected end of file at 1:"},
  };
  for (const Case& c : cases) {
    Tables tables;
    std::string message = "(no error)";
    try {
      ParseAll(tables, c.line);
    } catch (const ParserError& e) {
      std::ostringstream msg;
      e.write(msg);
      message = msg.str();
    }
    EXPECT_EQ(message.substr(0, std::string(c.message).size()), c.message) << "line: " << c.line;
  }
}

TEST(GraphDumpTest, StringsKeepTheirFirstIds) {
  Tables tables;
  tables.words.String2ID("graphs");  // from the word dumps, read before
  const std::vector<Parsed> got = ParseAll(tables,
                                           "1 - - GIDs: DIDs: Title: trees and graphs Authors: A. Lee and B. Ray\n"
                                           "2 - - GIDs: DIDs: Title: graphs Authors: B. Ray\n");
  ASSERT_EQ(got.size(), 2u);
  EXPECT_EQ(tables.words.by_id, (std::vector<std::string>{"graphs", "trees", "and"}));
  EXPECT_EQ(tables.authors.by_id, (std::vector<std::string>{"A. Lee", "B. Ray"}));
  EXPECT_EQ(got[1].authors, std::vector<std::string>{"B. Ray"});
}

}  // namespace

}  // namespace refgrove
