// The manifest: its checksum, and the files that do not match it.
#include "preproc/manifest.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include <nlohmann/json.hpp>

#include "testing/data_dir_builder.h"
#include "testing/data_files.h"
#include "testing/test_files.h"

namespace refgrove {

namespace {

TEST(ManifestTest, ChecksumIsFnv1a64) {
  // Published test vectors of the 64-bit FNV-1a hash.
  const struct {
    std::string text;
    std::uint64_t hash;
  } cases[] = {{"", 0xcbf29ce484222325u}, {"a", 0xaf63dc4c8601ec8cu}, {"foobar", 0x85944171f73967e8u}};
  for (const auto& c : cases) EXPECT_EQ(fnv1a64(c.text.data(), c.text.size()), c.hash) << '"' << c.text << '"';
  // In two pieces as in one, as files are read a buffer at a time.
  EXPECT_EQ(fnv1a64("bar", 3, fnv1a64("foo", 3)), 0x85944171f73967e8u);
}

TEST(ManifestTest, ChecksumIsXxh3) {
  TempDir dir;
  write_file(dir.path() + "f", "");
  write_file(dir.path() + "g", std::string(3000, 'x'));  // more than one stripe of 1,024 bytes
  FileDigest empty, longer;
  std::string error;
  ASSERT_TRUE(digest_file(dir.path() + "f", ChecksumKind::xxh3_64, &empty, &error)) << error;
  ASSERT_TRUE(digest_file(dir.path() + "g", ChecksumKind::xxh3_64, &longer, &error)) << error;
  EXPECT_EQ(empty.checksum, 0x2d06800538d394c2u);  // XXH3_64bits of no bytes, seed 0
  EXPECT_EQ(longer.size, 3000u);
  EXPECT_NE(longer.checksum, empty.checksum);
}

// A manifest as version 1.0.0 wrote it: an FNV-1a 64 checksum per file.
void write_fnv_manifest(const std::string& dir) {
  nlohmann::json files = nlohmann::json::object();
  for (const std::string& name : data_file_names()) {
    FileDigest d;
    std::string error;
    ASSERT_TRUE(digest_file(dir + name, ChecksumKind::fnv1a64, &d, &error)) << error;
    char hex[17];
    std::snprintf(hex, sizeof hex, "%016llx", static_cast<unsigned long long>(d.checksum));
    files[name] = {{"size", d.size}, {"fnv1a64", hex}};
  }
  write_file(dir + kManifestFile, nlohmann::json{{"files", files}, {"made_by", "test"}}.dump());
}

// A directory written with a manifest, then changed; the findings of each
// change, as "file: message" without the message's end.
TEST(ManifestTest, FilesThatDoNotMatchTheManifestAreNamed) {
  const std::string differs = ": the file is not the one refgrove-manifest.json lists (size ";
  const struct {
    const char* what;
    std::function<void(const std::string& dir, DataFiles* files)> change;
    std::vector<std::string> findings;
  } cases[] = {
      {"nothing changed", [](const std::string&, DataFiles*) {}, {}},
      {"one byte changed",
       [](const std::string&, DataFiles* f) { (*f)["word-data"][0] ^= 1; },
       {"word-data" + differs +
        "6, listed 6; the checksum differs): the files come from different runs, or this "
        "one was changed since."}},
      {"a file from another run",
       [](const std::string&, DataFiles* f) { (*f)["word-idx"] += std::string(8, '\0'); },
       {"word-idx" + differs +
        "24, listed 16; the checksum differs): the files come from different runs, or this "
        "one was changed since."}},
      {"a manifest of 1.0.0", [](const std::string& dir, DataFiles*) { write_fnv_manifest(dir); }, {}},
      {"a manifest of 1.0.0, one byte changed",
       [](const std::string& dir, DataFiles* f) {
         write_fnv_manifest(dir);
         (*f)["word-data"][0] ^= 1;
       },
       {"word-data" + differs +
        "6, listed 6; the checksum differs): the files come from different runs, or this "
        "one was changed since."}},
      {"no manifest",
       [](const std::string& dir, DataFiles* f) {
         std::remove((dir + kManifestFile).c_str());
         (*f)["word-data"][0] ^= 1;
       },
       {}},
      {"manifest not JSON",
       [](const std::string& dir, DataFiles*) { write_file(dir + kManifestFile, "{\"files\": "); },
       {"refgrove-manifest.json: the manifest is not a JSON object with a \"files\" object: it cannot be compared."}},
      {"entry without checksum",
       [](const std::string& dir, DataFiles*) {
         write_file(dir + kManifestFile, R"({"files": {"word-idx": {"size": 24}}})");
       },
       {"refgrove-manifest.json: no valid size and checksum for word-table: it cannot be compared.",
        "refgrove-manifest.json: no valid size and checksum for word-idx: it cannot be compared.",
        "refgrove-manifest.json: no valid size and checksum for word-data: it cannot be compared.",
        "refgrove-manifest.json: no valid size and checksum for graph_data: it cannot be compared."}},
  };
  for (const auto& c : cases) {
    TempDir dir;
    DataDirBuilder().add({7, "k", 1999, {}, {"t"}, {"A. Lee"}, {"one", "two"}, true, true}).write(dir.path());
    std::string error;
    ASSERT_TRUE(write_manifest(dir.path(), dir.path() + kManifestFile, "test", &error)) << error;
    DataFiles files = read_data_files(dir.path());
    c.change(dir.path(), &files);
    write_data_files(dir.path(), files);
    std::vector<std::string> found;
    for (const ManifestMismatch& m : manifest_mismatches(dir.path())) found.push_back(m.file + ": " + m.message);
    EXPECT_EQ(found, c.findings) << c.what;
  }
}

}  // namespace

}  // namespace refgrove
