// A work set whose spooled text is far larger than the spools' buffers:
// each work's text is found again wherever its last record put it, before
// or after the other works', in pieces read across buffer edges.
#include "import/imported_work.h"

#include <gtest/gtest.h>

#include "import/read_into_dumps.h"

namespace refgrove {
namespace {

constexpr int kWorks = 3000;

ImportedWork work(int i, const std::string& title, std::size_t abstract_words) {
  ImportedWork w;
  w.key = "K" + std::to_string(i);
  w.year = 2000 + i % 3;
  w.title = title;
  w.authors = {"A" + std::to_string(i)};
  for (std::size_t n = 0; n < abstract_words; ++n) w.abstract += "w" + std::to_string(i) + " ";
  if (i > 1) w.cites = {"K" + std::to_string(i - 1)};
  return w;
}

TEST(WorkSet, LastRecordsTextFoundAcrossSpoolBuffers) {
  // Work 1 is read again last, work 7 twice, with text of its own each
  // time; work 5 has an abstract of several MiB.
  const auto read = [](const WorkSink& sink) {
    for (int i = 1; i <= kWorks; ++i) sink.work(work(i, "first " + std::to_string(i), i == 5 ? 400000 : 40));
    sink.work(work(7, "second 7", 3));
    sink.work(work(7, "third 7", 0));
    sink.work(work(1, "second 1", 2));
  };
  const struct {
    const char* name;
    std::optional<YearRange> years;
  } cases[] = {{"all works", std::nullopt}, {"the works of 2000 and 2001", YearRange{2000, 2001}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    WorkSetCounts counts;
    const Dumps d = read_into_dumps(read, c.years, &counts);
    std::string graph, words;
    int did = 0;
    std::vector<int> did_of(kWorks + 1, 0);
    for (int i = 1; i <= kWorks; ++i) {
      if (!c.years || c.years->contains(2000 + i % 3)) did_of[i] = ++did;
    }
    int outside = did;
    for (int i = 1; i <= kWorks; ++i) {
      if (did_of[i] == 0) continue;
      const std::string title = i == 1 ? "second 1" : i == 7 ? "third 7" : "first " + std::to_string(i);
      std::string cites;
      if (i > 1) cites = " " + std::to_string(did_of[i - 1] ? did_of[i - 1] : ++outside);
      graph += std::to_string(did_of[i]) + " K" + std::to_string(i) + " " + std::to_string(2000 + i % 3) +
               " GIDs:" + cites + " DIDs:" + cites + " Title: " + title + " Authors: A" + std::to_string(i) + "\n";
      const std::size_t abstract_words = i == 1 ? 2 : i == 7 ? 0 : i == 5 ? 400000 : 40;
      if (abstract_words == 0) continue;
      words += std::to_string(did_of[i]) + " -";
      for (std::size_t n = 0; n < abstract_words; ++n) words += " w" + std::to_string(i);
      words += "\n";
    }
    EXPECT_TRUE(d.graph == graph) << d.graph.substr(0, 400);
    EXPECT_TRUE(d.words == words) << d.words.substr(0, 400);
    EXPECT_EQ(counts.read, kWorks + 3);
    EXPECT_EQ(counts.replaced, 3);
    EXPECT_EQ(counts.kept, did);
  }
}

}  // namespace
}  // namespace refgrove
