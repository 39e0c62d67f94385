// arXiv abstracts and SNAP edge lists read and written as dump lines: each
// case the files of one import and the dumps they must give.
#include "import/arxiv_reader.h"

#include <gtest/gtest.h>

#include "import/read_into_dumps.h"

namespace refgrove {
namespace {

struct File {
  std::string name, text;
};

Dumps import_files(const std::vector<File>& files) {
  return read_into_dumps([&](const WorkSink& sink) {
    ArxivReader reader;
    for (const File& f : files) reader.read(f.name, FileContents{f.text, f.text.size()}, sink);
    reader.finish(sink);
  });
}

const char kAbs[] =
    "------------------------------------------------------------------------------\n"
    "\\\\\n"
    "Paper: hep-th/9201001\n"
    "From: Ann Lee <lee@example.org>\n"
    "Date: Wed, 1 Jan 92 19:38:19 GMT   (10kb)\n"
    "Date (revised): Mon, 3 Feb 1993 10:00:00 GMT\n"
    "\n"
    "Title: Strings on a\n"
    "  circle\n"
    "Authors: Ann Lee (Princeton, IAS), Bo Chen and Cy Dunn\n"
    "Comments: 10 pages\n"
    "\\\\\n"
    "  We study strings\n"
    "on a circle.\n"
    "\\\\\n";

TEST(ArxivReader, AbstractsAndEdgeLists) {
  const struct {
    const char* name;
    std::vector<File> files;
    Dumps expected;
  } cases[] = {
      {"every field; a continued title; affiliations left out; the first date",
       {{"9201001.abs", kAbs}},
       {"1 hep-th/9201001 1992 GIDs: DIDs: Title: Strings on a circle Authors: Ann Lee and Bo Chen and Cy Dunn\n",
        "1 - We study strings on a circle.\n", "", ""}},
      {"the year from the key without a date; Author: for one; CRLF",
       {{"a.abs", "\\\\\r\nPaper: hep-th/9912001\r\nAuthor: Solo\r\nTitle: T\r\n\\\\\r\n"},
        {"b.abs", "\\\\\nPaper: 0704.0001\nDate: sometime\nTitle: U\n\\\\\n"}},
       {"1 hep-th/9912001 1999 GIDs: DIDs: Title: T Authors: Solo\n2 0704.0001 2007 GIDs: DIDs: Title: U Authors:\n",
        "", "", ""}},
      {"edges before the abstracts; numbers without leading zeros; outside papers in the archive",
       {{"cit.txt", "# Directed graph\n# FromNodeId\tToNodeId\n1001\t9201001\n1001 9999999\n9201001\t1001\n"},
        {"x.abs", "\\\\\nPaper: hep-th/0001001\nTitle: A\n\\\\\n"},
        {"y.abs", "\\\\\nPaper: hep-th/9201001\nTitle: B\n\\\\\n"}},
       {"1 hep-th/0001001 2000 GIDs: 2 3 DIDs: 2 3 Title: A Authors:\n"
        "2 hep-th/9201001 1992 GIDs: 1 DIDs: 1 Title: B Authors:\n",
        "", "hep-th/9999999 ", ""}},
      {"bad files and lines",
       {{"n.abs", "Paper: hep-th/9201001\n"},
        {"p.abs", "\\\\\nTitle: no paper\n\\\\\n"},
        {"e.txt", "1\t2\n1\n1\tx\n12\n1-2\n"}},
       {"", "", "",
        "n.abs: no header block (a line \\\\ before it)\np.abs: Paper: missing\n"
        "e.txt:2: not a line FromNodeId<TAB>ToNodeId\ne.txt:3: not a line FromNodeId<TAB>ToNodeId\n"
        "e.txt:4: not a line FromNodeId<TAB>ToNodeId\ne.txt:5: not a line FromNodeId<TAB>ToNodeId\n"}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(import_files(c.files), c.expected) << c.name;
  }
}

TEST(ArxivReader, FilesInADirectory) {
  for (const char* name : {"9201001.abs", "cit-HepTh.txt", "a.abs.gz", "a.txt.gz"}) EXPECT_TRUE(is_arxiv_file(name));
  for (const char* name : {"a.tar", "abs", "a.json"}) EXPECT_FALSE(is_arxiv_file(name)) << name;
}

}  // namespace
}  // namespace refgrove
