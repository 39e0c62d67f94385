// `refgrove export`: a data directory whose texts hold quotes, commas, line
// breaks, valid UTF-8 and bytes that are not UTF-8, written as JSON lines
// and as CSV and read back by nlohmann-json and by a CSV reader.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "testing/data_dir_builder.h"
#include "tools/tool_test_util.h"

namespace refgrove {

namespace {

ToolRun Export(std::vector<std::string> args) {
  args.insert(args.begin(), "export");
  return run_tool(std::move(args));
}

// RFC 4180 records: CRLF between records, quoted fields with doubled quotes
// and line breaks inside.
std::vector<std::vector<std::string>> ReadCsv(const std::string& text) {
  std::vector<std::vector<std::string>> records(1, std::vector<std::string>(1));
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    std::string& field = records.back().back();
    if (quoted) {
      if (c != '"') {
        field += c;
      } else if (i + 1 < text.size() && text[i + 1] == '"') {
        field += c;
        ++i;
      } else {
        quoted = false;
      }
    } else if (c == '"') {
      quoted = true;
    } else if (c == ',') {
      records.back().emplace_back();
    } else if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
      records.emplace_back(1);
      ++i;
    } else {
      field += c;
    }
  }
  EXPECT_FALSE(quoted) << "a quoted field runs to the end";
  EXPECT_EQ(records.back(), std::vector<std::string>(1)) << "the last record ends without CRLF";
  records.pop_back();
  return records;
}

struct Expected {
  int did;
  std::string key;
  std::optional<int> year;
  std::string title;
  std::vector<std::string> authors;
  std::vector<int> citations;
  std::string abstract;
};

TEST(ExportCommandTest, JsonLinesAndCsvReadBack) {
  TempDir dir;
  DataDirBuilder()
      .add({3,
            "he said \"hi\", ok",
            1999,
            {{40, 5}, {41, 9}},
            {"Graphs,", "\"quoted\""},
            {"Erd\xc5\x91s, P.", "Lee\nAnn"},
            {"sort", "\xe9t\xe9"},
            true,
            true})
      .add({5,
            "\xff\xfe"
            "key\r",
            -1,
            {},
            {"x"},
            {"R\xe9nyi"},
            {"a", "b", "c"},
            true,
            true})
      .add({9, "k9", 2001, {}, {}, {}, {}, true, false})
      .add({12, "", -1, {}, {}, {}, {"only"}, false, true})
      .write(dir.path());
  // Bytes that are not UTF-8 read as Latin-1; each abstract is its own words.
  const Expected expected[] = {
      {3,
       "he said \"hi\", ok",
       1999,
       "Graphs, \"quoted\"",
       {"Erd\xc5\x91s, P.", "Lee\nAnn"},
       {5, 9},
       "sort \xc3\xa9t\xc3\xa9"},
      {5,
       "\xc3\xbf\xc3\xbe"
       "key\r",
       std::nullopt,
       "x",
       {"R\xc3\xa9nyi"},
       {},
       "a b c"},
      {9, "k9", 2001, "", {}, {}, ""},
      {12, "", std::nullopt, "", {}, {}, "only"},
  };

  const ToolRun jsonl = Export({dir.path()});
  ASSERT_EQ(jsonl.status, 0) << jsonl.err;
  std::istringstream lines(jsonl.out);
  std::string line;
  for (const Expected& e : expected) {
    ASSERT_TRUE(std::getline(lines, line)) << "DID " << e.did;
    const nlohmann::json j = nlohmann::json::parse(line);  // throws on invalid UTF-8
    EXPECT_EQ(j.at("did"), e.did) << line;
    EXPECT_EQ(j.at("key"), e.key) << line;
    EXPECT_EQ(j.at("year"), e.year ? nlohmann::json(*e.year) : nlohmann::json()) << line;
    EXPECT_EQ(j.at("title"), e.title) << line;
    EXPECT_EQ(j.at("authors"), e.authors) << line;
    EXPECT_EQ(j.at("cites"), e.citations) << line;
    EXPECT_EQ(j.at("abstract"), e.abstract) << line;
  }
  EXPECT_FALSE(std::getline(lines, line)) << line;

  const ToolRun csv = Export({"--format", "csv", dir.path()});
  ASSERT_EQ(csv.status, 0) << csv.err;
  const std::vector<std::vector<std::string>> records = ReadCsv(csv.out);
  ASSERT_EQ(records.size(), std::size(expected) + 1) << csv.out;
  EXPECT_EQ(records[0], (std::vector<std::string>{"did", "key", "year", "title", "authors", "cites", "abstract"}));
  for (std::size_t i = 0; i < std::size(expected); ++i) {
    const Expected& e = expected[i];
    std::string authors, citations;
    for (const std::string& a : e.authors) authors += (authors.empty() ? "" : "; ") + a;
    for (const int c : e.citations) citations += (citations.empty() ? "" : " ") + std::to_string(c);
    EXPECT_EQ(records[i + 1],
              (std::vector<std::string>{std::to_string(e.did), e.key, e.year ? std::to_string(*e.year) : "", e.title,
                                        authors, citations, e.abstract}))
        << "DID " << e.did;
  }

  // -o writes the same to a file; a file that cannot be written is named.
  const std::string file = dir.path() + "out.jsonl";
  EXPECT_EQ(Export({dir.path(), "-o", file}).status, 0);
  EXPECT_EQ(read_file(file), jsonl.out);
  const std::string unwritable = dir.path() + "none/out.csv";
  const ToolRun failed = Export({dir.path(), "--format", "csv", "-o", unwritable});
  EXPECT_EQ(failed.status, 1);
  EXPECT_EQ(failed.err, "refgrove export: " + unwritable + ": No such file or directory\n");
  EXPECT_EQ(Export({dir.path(), "--format", "xml"}).status, 2);
  EXPECT_EQ(Export({dir.path() + "none"}).status, 1);
}

}  // namespace

}  // namespace refgrove
