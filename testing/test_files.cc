#include "testing/test_files.h"

#include <stdlib.h>

#include <cctype>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>

#include "words/compacted_string_table.h"
#include "words/string_table.h"

namespace refgrove {

void write_word_table(const std::string& dir, const std::vector<std::string>& words) {
  StringTable table;
  for (const std::string& w : words) table.String2ID(w);
  std::ofstream out(dir + kWordTableFile, std::ios::binary);
  CompactedStringTable(table).write(out);
}

void write_word_idx(const std::string& dir, const std::vector<DocumentWordInfo>& headers) {
  std::ofstream out(dir + kWordIdxFile, std::ios::binary);
  for (const DocumentWordInfo& h : headers) write_document_word_info(out, h);
}

void write_word_data(const std::string& dir, const std::vector<std::uint32_t>& ids) {
  std::ofstream out(dir + kWordDataFile, std::ios::binary);
  for (std::uint32_t id : ids) write_word_id(out, WordId::from_id(id));
}

void write_file(const std::string& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string read_file(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::string hex(const std::string& bytes) {
  static const char kDigits[] = "0123456789abcdef";
  std::string out;
  for (unsigned char c : bytes) {
    out += kDigits[c >> 4];
    out += kDigits[c & 15];
  }
  return out;
}

std::string compact_hex(const std::string& spaced) {
  std::string out;
  for (char c : spaced) {
    if (!std::isspace(static_cast<unsigned char>(c))) out += c;
  }
  return out;
}

TempDir::TempDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "refgrove-test-XXXXXX").string();
  if (mkdtemp(&pattern[0]) == nullptr) throw std::runtime_error("mkdtemp failed");
  path_ = pattern + "/";
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

StreamCapture::StreamCapture() : old_out_(std::cout.rdbuf(out_.rdbuf())), old_err_(std::cerr.rdbuf(err_.rdbuf())) {}

StreamCapture::~StreamCapture() {
  std::cout.rdbuf(old_out_);
  std::cerr.rdbuf(old_err_);
}

}  // namespace refgrove
