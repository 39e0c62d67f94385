// Input files read in pieces of whole lines: whatever the sizes of the
// lines against the pieces', the pieces put together give the file, each
// ends at a line end (the last one may not), carries the number of its
// first line and has room for the padding after it.
#include "import/input_files.h"

#include <gtest/gtest.h>

#include "import/read_into_dumps.h"
#include "testing/test_files.h"

namespace refgrove {
namespace {

constexpr std::size_t kPadding = 64;
constexpr std::size_t kPiece = 4096;

// Lines of `sizes` bytes each (the line end included), numbered so that a
// piece's first line can be checked against its text.
std::string lines_of(const std::vector<std::size_t>& sizes, bool last_end = true) {
  std::string text;
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    std::string line = std::to_string(i + 1) + " ";
    line.resize(sizes[i] - 1, 'x');
    text += line;
    if (last_end || i + 1 < sizes.size()) text += '\n';
  }
  return text;
}

// The pieces of `path` joined, each checked on the way.
std::string read_back(const std::string& path) {
  std::string joined;
  read_input_lines(
      path, kPadding,
      [&](const FileContents& piece) {
        EXPECT_GE(piece.bytes.size(), piece.size + kPadding);
        const std::string_view text(piece.bytes.data(), piece.size);
        EXPECT_EQ(std::to_string(piece.first_line) + " ", text.substr(0, text.find(' ') + 1));
        EXPECT_EQ(std::count(joined.begin(), joined.end(), '\n') + 1, piece.first_line);
        EXPECT_TRUE(joined.empty() || joined.back() == '\n');
        joined += text;
      },
      kPiece);
  return joined;
}

TEST(ReadInputLines, PiecesJoinIntoTheFile) {
  const struct {
    const char* name;
    std::string text;
  } cases[] = {
      {"one short line without its end", lines_of({10}, false)},
      {"many short lines over several pieces", lines_of(std::vector<std::size_t>(3000, 60))},
      {"a line longer than a piece between short ones", lines_of({20, kPiece + 9, 30, 4 * kPiece + 1, 40})},
      {"a line end just at a piece's end", lines_of({kPiece, kPiece, 5})},
      {"a long last line without its end", lines_of({100, 3 * kPiece}, false)},
  };
  TempDir dir;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    write_file(dir.path() + "plain.jsonl", c.text);
    write_gzip(dir.path() + "packed.jsonl.gz", c.text);
    EXPECT_TRUE(read_back(dir.path() + "plain.jsonl") == c.text);
    EXPECT_TRUE(read_back(dir.path() + "packed.jsonl.gz") == c.text);
  }
  write_file(dir.path() + "empty.jsonl", "");
  EXPECT_EQ(read_back(dir.path() + "empty.jsonl"), "");
}

TEST(ReadInputLines, DamagedOrMissingFilesAreNamed) {
  TempDir dir;
  const std::string text = lines_of(std::vector<std::size_t>(40000, 50));
  write_gzip(dir.path() + "whole.gz", text);
  const std::string packed = read_file(dir.path() + "whole.gz");
  const struct {
    const char* name;
    std::string bytes;
  } cases[] = {
      {"cut.gz", packed.substr(0, packed.size() / 2)},
      {"bad.gz", packed.substr(0, 20) + std::string(packed.size() - 20, 'z')},
  };
  for (const auto& c : cases) {
    write_file(dir.path() + c.name, c.bytes);
    try {
      read_input_lines(
          dir.path() + c.name, kPadding, [](const FileContents&) {}, kPiece);
      ADD_FAILURE() << c.name << " was read";
    } catch (const ImportError& e) {
      EXPECT_EQ(e.file, dir.path() + c.name);
      EXPECT_NE(e.message.find("damaged compressed data"), std::string::npos) << c.name << ": " << e.what();
    }
  }
  EXPECT_THROW(read_input_lines(dir.path() + "missing.gz", kPadding, [](const FileContents&) {}), ImportError);
}

}  // namespace
}  // namespace refgrove
