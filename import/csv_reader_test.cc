// Tables read and written as dump lines: each case one or two input files
// and the dumps they must give, then the records split by themselves.
#include "import/csv_reader.h"

#include <gtest/gtest.h>

#include "import/read_into_dumps.h"

namespace refgrove {
namespace {

struct Table {
  std::string name, text;
};

Dumps import_tables(const std::vector<Table>& tables, const CsvColumns& columns = {}) {
  return read_into_dumps([&](const WorkSink& sink) {
    for (const Table& t : tables) {
      try {
        read_csv(t.name, FileContents{t.text, t.text.size()}, columns, sink);
      } catch (const ImportError& e) {
        sink.bad(ImportError(t.name, e.line, e.field, "stopped: " + e.message));
      }
    }
  });
}

struct Case {
  const char* name;
  std::vector<Table> tables;
  Dumps expected;
};

void check(const Case& c, const CsvColumns& columns = {}) {
  const Dumps d = import_tables(c.tables, columns);
  std::string input;
  for (const Table& t : c.tables) input += "--- " + t.name + "\n" + t.text;
  EXPECT_EQ(d, c.expected) << c.name << "\n" << input;
}

TEST(CsvReader, WorksAndCitations) {
  const Case cases[] = {
      {"every column",
       {{"w.csv", "id,year,title,authors,abstract\nP1,2001,Fast trees,Ann Lee; Bo Chen,First words\n"}},
       {"1 P1 2001 GIDs: DIDs: Title: Fast trees Authors: Ann Lee and Bo Chen\n", "1 - First words\n", "", ""}},
      {"only the id; headers in any case, blanks around them, columns of others left alone",
       {{"w.csv", " ID ,pages\r\nP1,12\r\n"}},
       {"1 P1 - GIDs: DIDs: Title: - Authors:\n", "", "", ""}},
      {"empty values are unknown",
       {{"w.csv", "id,year,title,authors,abstract\nP1,,,;;,\n"}},
       {"1 P1 - GIDs: DIDs: Title: - Authors:\n", "", "", ""}},
      {"quotes hold separators, line ends and doubled quotes",
       {{"w.csv", "id,title,authors\nP1,\"A, \"\"b\"\"\nc\",\"Lee, Ann\"\n"}},
       {"1 P1 - GIDs: DIDs: Title: A, \"b\" c Authors: Lee, Ann\n", "", "", ""}},
      {"tab-separated by its name, a byte order mark skipped",
       {{"w.tsv", "\xEF\xBB\xBFid\ttitle\nP1\tx, y\n"}},
       {"1 P1 - GIDs: DIDs: Title: x, y Authors:\n", "", "", ""}},
      {"citations apart, in either order of the files, outside works named",
       {{"a-cites.csv", "citing,cited\nP2,P1\nP2,X9\nP2,P2\nP7,P1\n"}, {"b-works.csv", "id,year\nP1,1999\nP2,2000\n"}},
       {"1 P1 1999 GIDs: DIDs: Title: - Authors:\n2 P2 2000 GIDs: 1 3 2 DIDs: 1 3 2 Title: - Authors:\n", "", "X9 ",
        ""}},
      {"a record read again replaces the first",
       {{"w.csv", "id,title\nP1,old\nP2,two\nP1,new\n"}},
       {"1 P1 - GIDs: DIDs: Title: new Authors:\n2 P2 - GIDs: DIDs: Title: two Authors:\n", "", "", ""}},
      {"an empty table and blank lines",
       {{"e.csv", ""}, {"w.csv", "\n\nid\n\nP1\n\n"}},
       {"1 P1 - GIDs: DIDs: Title: - Authors:\n", "", "", ""}},
  };
  for (const Case& c : cases) check(c);
}

TEST(CsvReader, ColumnsOfOtherNames) {
  const Case c{"mapped",
               {{"w.csv", "paper_id,name,year\nP1,Trees,2001\n"}, {"c.csv", "src,dst\nP1,P1\n"}},
               {"1 P1 2001 GIDs: 1 DIDs: 1 Title: Trees Authors:\n", "", "", ""}};
  check(c, {{"id", "paper_id"}, {"title", "name"}, {"citing", "src"}, {"cited", "dst"}});

  CsvColumns columns;
  std::string error;
  EXPECT_TRUE(parse_csv_columns("id=paper_id, title = name", &columns, &error));
  EXPECT_EQ(columns, (CsvColumns{{"id", "paper_id"}, {"title", "name"}}));
  EXPECT_FALSE(parse_csv_columns("doi=x", &columns, &error));
  EXPECT_NE(error.find("'doi' is not a column"), std::string::npos) << error;
  EXPECT_FALSE(parse_csv_columns("id", &columns, &error));
  EXPECT_EQ(error, "'id' is not OURS=THEIRS");
}

TEST(CsvReader, BadRecordsNameTheFileTheLineAndTheColumn) {
  const Case cases[] = {
      {"a field too many, then a good record",
       {{"w.csv", "id,year\nP1,2001,x\nP2,2002\n"}},
       {"1 P2 2002 GIDs: DIDs: Title: - Authors:\n", "", "", "w.csv:2: 3 fields where the header has 2\n"}},
      {"not a year; an id with a blank; an empty id",
       {{"w.csv", "Id,Year\nP1,20x1\nP 2,2002\n,2003\n"}},
       {"", "", "", "w.csv:2: Year: not a year\nw.csv:3: Id: an id with a blank\nw.csv:4: Id: empty id\n"}},
      {"text after a closing quote: the next line is read on",
       {{"w.csv", "id,title\nP1,\"a\"b\nP2,c\n"}},
       {"1 P2 - GIDs: DIDs: Title: c Authors:\n", "", "", "w.csv:2: text after the closing quote of a field\n"}},
      {"an unclosed quote names the line it opens on",
       {{"w.csv", "id,title\nP1,t\nP2,\"open\n\nmore\n"}},
       {"1 P1 - GIDs: DIDs: Title: t Authors:\n", "", "",
        "w.csv:3: a quoted field from line 3 has no closing quote\n"}},
      {"an unknown header stops the file",
       {{"w.csv", "paper,title\nP1,t\n"}},
       {"", "", "",
        "w.csv:1: stopped: a header without \"id\" (a works table) or \"citing\" and \"cited\" (a citations "
        "table); --columns names other headers\n"}},
      {"a citation with an empty key", {{"c.csv", "citing,cited\nP1,\n"}}, {"", "", "", "c.csv:2: cited: empty id\n"}},
  };
  for (const Case& c : cases) check(c);
}

TEST(CsvReader, CitationsOfWorksOutsideTheSetAreCounted) {
  WorkSetCounts counts;
  read_into_dumps(
      [](const WorkSink& sink) {
        const std::string works = "id\nP1\n", cites = "citing,cited\nP1,P9\nQ1,P1\nQ2,P1\n";
        read_csv("w.csv", FileContents{works, works.size()}, {}, sink);
        read_csv("c.csv", FileContents{cites, cites.size()}, {}, sink);
      },
      std::nullopt, &counts);
  EXPECT_EQ(counts.citations_outside, 1);
  EXPECT_EQ(counts.citations_unplaced, 2);
}

TEST(CsvReader, FilesInADirectory) {
  for (const char* name : {"a.csv", "a.tsv", "a.csv.gz", "a.tsv.gz"}) EXPECT_TRUE(is_csv_file(name)) << name;
  for (const char* name : {"a.txt", "csv", "a.gz", "a.csvx"}) EXPECT_FALSE(is_csv_file(name)) << name;
}

}  // namespace
}  // namespace refgrove
