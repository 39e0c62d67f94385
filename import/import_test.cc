// Importing into a data directory end to end: the files made, read back
// through the query core, and what bad inputs leave behind.
#include "import/import.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/data_view.h"
#include "core/validate.h"
#include "import/read_into_dumps.h"
#include "preproc/manifest.h"
#include "testing/test_files.h"

namespace refgrove {
namespace {

const char kWorks[] =
    R"({"id":"https://openalex.org/W10","publication_year":2001,"title":"Fast Trees","authorships":[{"author":{"display_name":"Ann Lee"}}],"abstract_inverted_index":{"trees":[1],"Fast":[0]},"referenced_works":["https://openalex.org/W20","https://openalex.org/W99"]})"
    "\n"
    R"({"id":"https://openalex.org/W20","publication_year":1999,"title":"Slow Lists","authorships":[],"referenced_works":["https://openalex.org/W20"]})"
    "\n";

// The dumps that hold the same works.
const char kGraphDump[] =
    "1 W10 2001 GIDs: 2 3 DIDs: 2 3 Title: Fast Trees Authors: Ann Lee\n"
    "2 W20 1999 GIDs: 2 DIDs: 2 Title: Slow Lists Authors:\n";
const char kWordDump[] = "1 W10 Fast trees\n";

ImportSummary run(const std::vector<std::string>& inputs, const std::string& target, ImportOptions options = {},
                  const std::string& format = "openalex") {
  std::ostream quiet(nullptr);
  options.out = options.err = &quiet;
  StagedRunHooks hooks;
  return import_works(format, inputs, target, options, hooks);
}

class ImportTest : public ::testing::Test {
 protected:
  std::string in(const std::string& name) { return dir_.path() + name; }
  TempDir dir_;
};

TEST_F(ImportTest, MakesTheFilesThatTheEquivalentDumpsMake) {
  write_gzip(in("part_000.gz"), kWorks);
  const ImportSummary s = run({in("part_000.gz")}, in("imported"));
  EXPECT_EQ(s.works.read, 2);
  EXPECT_EQ(s.works.kept, 2);
  EXPECT_EQ(s.works.citations_within, 2);
  EXPECT_EQ(s.works.citations_outside, 1);

  std::filesystem::create_directory(in("dumps"));
  write_file(in("dumps/graph-data-aug-2002.txt"), kGraphDump);
  write_file(in("dumps/word-data1-mar-2002.txt"), kWordDump);
  write_file(in("dumps/word-data2-mar-2002.txt"), "");
  write_file(in("dumps/word-data3-mar-2002.txt"), "");
  std::ostream quiet(nullptr);
  StagedRunHooks hooks;
  StagedRequest request{in("dumps"), in("preprocessed"), {}, "test", {}};
  request.options.out = request.options.err = &quiet;
  staged_preprocess(request, hooks);
  for (const std::string& name : data_file_names()) {
    EXPECT_EQ(read_file(in("imported/") + name), read_file(in("preprocessed/") + name)) << name;
  }
  EXPECT_EQ(read_file(in("imported/outside-keys")), "3\tW99\n");
  EXPECT_TRUE(validate_data_dir(in("imported/")).empty());
  EXPECT_TRUE(manifest_mismatches(in("imported/")).empty());

  // The same inputs, plain this time, give the same bytes.
  write_file(in("works.jsonl"), kWorks);
  run({in("works.jsonl")}, in("again"));
  for (const char* name : {"graph_data", "word-idx", "word-data", "word-table", "outside-keys"}) {
    EXPECT_EQ(read_file(in("again/") + name), read_file(in("imported/") + name)) << name;
  }
  // A changed outside-keys file is found by the manifest.
  write_file(in("imported/outside-keys"), "3\tW98\n");
  ASSERT_EQ(manifest_mismatches(in("imported/")).size(), 1u);
  EXPECT_EQ(manifest_mismatches(in("imported/"))[0].file, "outside-keys");
}

TEST_F(ImportTest, ReadsBackByKeyYearTitleAuthorsAndCitations) {
  write_file(in("works.jsonl"), kWorks);
  run({in("works.jsonl")}, in("out"));
  std::ostringstream log;
  const std::shared_ptr<RefgroveData> d = load_data_set(in("out/"), log);
  const char* text = nullptr;
  int n = 0;
  ASSERT_EQ(get_key(*d, 1, &text), 1);
  EXPECT_STREQ(text, "W10");
  ASSERT_EQ(get_year(*d, 2, &n), 1);
  EXPECT_EQ(n, 1999);
  ASSERT_EQ(get_title_word(*d, 1, 1, &text), 1);
  EXPECT_STREQ(text, "Trees");
  ASSERT_EQ(get_author(*d, 1, 0, &text), 1);
  EXPECT_STREQ(text, "Ann Lee");
  int cited = 0, gid = 0;
  ASSERT_EQ(get_cite(*d, 2, 0, &cited, &gid), 1);
  EXPECT_EQ(cited, 2);  // a self-citation kept
  ASSERT_EQ(get_cite(*d, 1, 1, &cited, &gid), 1);
  EXPECT_EQ(cited, 3);  // W99, outside the set
}

TEST_F(ImportTest, KeysWithPunctuationKeepTheirAbstracts) {
  write_file(in("works.csv"), "id,title,abstract\ndoi:10.1/x.y,T,\"Words, all of them\"\nhttps://a.b/c?d=1,U,more\n");
  write_file(in("cites.csv"), "citing,cited\nhttps://a.b/c?d=1,doi:10.1/x.y\n");
  run({in("works.csv"), in("cites.csv")}, in("out"), {}, "csv");
  std::ostringstream log;
  const std::shared_ptr<RefgroveData> d = load_data_set(in("out/"), log);
  const char* text = nullptr;
  ASSERT_EQ(get_key(*d, 2, &text), 1);
  EXPECT_STREQ(text, "https://a.b/c?d=1");
  std::string words;
  int n = 0;
  ASSERT_EQ(abstract_length(*d, 1, &n), 1);
  for (int i = 0; i < n; ++i) {
    ASSERT_EQ(get_abstract_word(*d, 1, i, &text), 1);
    words += std::string(text) + " ";
  }
  EXPECT_EQ(words, "Words , all of them ");
  int cited = 0, gid = 0;
  ASSERT_EQ(get_cite(*d, 2, 0, &cited, &gid), 1);
  EXPECT_EQ(cited, 1);
}

TEST_F(ImportTest, InputsAreFilesAndDirectoriesWalkedInNameOrder) {
  std::filesystem::create_directories(in("snap/b"));
  write_file(in("snap/b/part_1.jsonl"), "{\"id\":\"W3\"}\n");
  write_file(in("snap/a.json"), "{\"id\":\"W1\"}\n");
  write_file(in("snap/manifest"), "not read: not a name of works\n");
  write_file(in("more.txt"), "{\"id\":\"W9\"}\n");
  run({in("snap"), in("more.txt")}, in("out"));
  std::ostringstream log;
  const std::shared_ptr<RefgroveData> d = load_data_set(in("out/"), log);
  const char* key = nullptr;
  std::string keys;
  for (int did = 1; did <= 3; ++did) {
    ASSERT_EQ(get_key(*d, did, &key), 1);
    keys += std::string(key) + " ";
  }
  EXPECT_EQ(keys, "W1 W3 W9 ");
}

TEST_F(ImportTest, BadInputNamesTheFileAndLeavesTheTargetAsItWas) {
  write_file(in("good.jsonl"), kWorks);
  run({in("good.jsonl")}, in("out"));
  const std::string before = read_file(in("out/graph_data"));
  std::string gz_bytes;
  {
    write_gzip(in("whole.gz"), std::string(kWorks) + kWorks + kWorks);
    gz_bytes = read_file(in("whole.gz"));
  }
  write_file(in("cut.gz"), gz_bytes.substr(0, gz_bytes.size() / 2));
  write_file(in("bad.jsonl"), std::string(kWorks) + "{\"id\":\n");
  write_file(in("empty.jsonl"), "");
  std::filesystem::create_directory(in("nothing"));
  write_file(in("nothing/readme.txt"), "x");
  write_file(in("long.jsonl"), "{\"id\":\"W1\",\"title\":\"" + std::string(100 << 20, 'a') + "\",}\n");
  const struct {
    std::vector<std::string> inputs;
    std::string error;
  } cases[] = {
      {{in("bad.jsonl")}, in("bad.jsonl") + ":3: not JSON"},
      {{in("cut.gz")}, in("cut.gz") + ": damaged compressed data"},
      {{in("empty.jsonl")}, in("empty.jsonl") + ": no works found"},
      {{in("nothing")}, in("nothing") + ": the directory holds no file to import"},
      {{in("missing.jsonl")}, in("missing.jsonl") + ": No such file"},
      {{in("long.jsonl")}, in("long.jsonl") + ":1: not JSON"},
  };
  for (const auto& c : cases) {
    try {
      run(c.inputs, in("out"));
      ADD_FAILURE() << c.error << ": no error";
    } catch (const ImportError& e) {
      EXPECT_EQ(std::string(e.what()).rfind(c.error, 0), 0u) << e.what();
    }
    EXPECT_EQ(read_file(in("out/graph_data")), before) << c.error;
  }
  // Skipped, the bad line is counted and the rest imported.
  ImportOptions skip;
  skip.skip_bad = true;
  const ImportSummary s = run({in("bad.jsonl")}, in("out"), skip);
  EXPECT_EQ(s.refused, 1);
  EXPECT_EQ(s.works.kept, 2);
}

}  // namespace
}  // namespace refgrove
