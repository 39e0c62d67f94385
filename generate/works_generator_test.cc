// The generated works of every format imported and read back: each must
// give the generated documents, in their order, with their keys, years,
// titles, authors, abstract words and citations. This also checks the
// readers of importing against each other: the four formats agree.
#include "generate/works_generator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <unordered_map>

#include "core/data_view.h"
#include "import/import.h"
#include "testing/test_files.h"

namespace refgrove {
namespace {

// A document as a data directory shows it: the word dumps keep a word with
// a byte beyond ASCII as "[foreign]".
struct Shown {
  std::string key;
  int year = -1;
  std::vector<std::string> title, authors, abstract;
  std::vector<int> cites;
  bool operator==(const Shown&) const = default;
};

std::ostream& operator<<(std::ostream& os, const Shown& s) {
  os << s.key << " " << s.year << " |";
  for (const auto& w : s.title) os << " " << w;
  os << " |";
  for (const auto& a : s.authors) os << " " << a << ";";
  os << " | " << s.abstract.size() << " words |";
  for (int c : s.cites) os << " " << c;
  return os;
}

std::vector<Shown> expected(const std::string& format, const DocumentGeneratorOptions& options) {
  DocumentGenerator documents(options);
  std::unordered_map<std::int32_t, int> imported_did;  // generated DID -> DID given by the import
  std::vector<Shown> all;
  GeneratedDocument d;
  while (documents.next(&d)) {
    imported_did[d.did] = static_cast<int>(all.size()) + 1;
    Shown s;
    s.key = generated_work_key(format, d.did);
    s.year = d.year ? *d.year : format == "arxiv" ? 2000 : -1;
    s.title = d.title;
    s.authors = d.authors;
    for (std::string_view w : d.abstract) {
      const bool ascii = std::all_of(w.begin(), w.end(), [](unsigned char c) { return c < 128; });
      s.abstract.emplace_back(ascii ? std::string(w) : "[foreign]");
    }
    for (std::int32_t c : d.cited) s.cites.push_back(imported_did.at(c));
    all.push_back(std::move(s));
  }
  return all;
}

Shown shown(const RefgroveData& data, int did) {
  Shown s;
  const char* text = nullptr;
  int n = 0;
  if (get_key(data, did, &text)) s.key = text;
  get_year(data, did, &s.year);
  title_length(data, did, &n);
  for (int i = 0; i < n && get_title_word(data, did, i, &text); ++i) s.title.emplace_back(text);
  author_count(data, did, &n);
  for (int i = 0; i < n && get_author(data, did, i, &text); ++i) s.authors.emplace_back(text);
  if (abstract_length(data, did, &n)) {
    for (int i = 0; i < n && get_abstract_word(data, did, i, &text); ++i) s.abstract.emplace_back(text);
  }
  cite_count(data, did, &n);
  for (int i = 0, cited = 0, gid = 0; i < n && get_cite(data, did, i, &cited, &gid); ++i) s.cites.push_back(cited);
  return s;
}

TEST(WorksGenerator, EveryFormatImportsToTheGeneratedDocuments) {
  TempDir dir;
  const DocumentGeneratorOptions options{600, 11};
  for (const std::string& format : generated_work_formats()) {
    const std::string works = dir.path() + format + "/";
    std::filesystem::create_directory(works);
    WorksGeneratorResult generated;
    std::string error;
    ASSERT_TRUE(generate_works(format, works, options, &generated, &error)) << format << ": " << error;

    std::ostream quiet(nullptr);
    ImportOptions import_options;
    import_options.out = import_options.err = &quiet;
    StagedRunHooks hooks;
    const ImportSummary summary = import_works(format, {works}, dir.path() + format + "-data", import_options, hooks);
    EXPECT_EQ(summary.works.outside_works, 0) << format;
    std::ostringstream log;
    const std::shared_ptr<RefgroveData> data = load_data_set(dir.path() + format + "-data/", log);
    const std::vector<Shown> want = expected(format, options);
    ASSERT_EQ(summary.works.kept, static_cast<std::int64_t>(want.size())) << format;
    for (std::size_t i = 0; i < want.size(); ++i) {
      ASSERT_EQ(shown(*data, static_cast<int>(i) + 1), want[i]) << format << ", document " << i + 1;
    }
  }
}

TEST(WorksGenerator, RefusesWhatItCannotWrite) {
  TempDir dir;
  WorksGeneratorResult result;
  std::string error;
  EXPECT_FALSE(generate_works("bibtex", dir.path(), {10, 1}, &result, &error));
  EXPECT_EQ(error, "bibtex: not a format of works (openalex, s2, arxiv, csv)");
  EXPECT_FALSE(generate_works("csv", dir.path() + "missing/", {10, 1}, &result, &error));
  EXPECT_NE(error.find("cannot create"), std::string::npos) << error;
}

}  // namespace
}  // namespace refgrove
