// One word dump preprocessed, in process: the dump is written to a scratch
// file and read by WordPreproc::preprocFile, which fills a string table and
// writes "word-data" and "word-idx". A ParserError is what ends the
// preprocessing process with exit status 3; here it ends the run. What was
// written must be consistent with the table.
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>

#include "fuzz/fuzz_support.h"
#include "preproc/word_preproc.h"
#include "words/byte_io.h"
#include "words/compacted_string_table.h"
#include "words/string_table.h"
#include "words/word_files.h"

namespace refgrove {

namespace {

std::string read_back(const std::string& path) {
  std::ifstream in(path, std::ios::in | std::ios::binary);
  return read_rest_of_stream(in);
}

void check_output(const std::string& data, const std::string& idx, const StringTable& table) {
  FUZZ_CHECK(data.size() % kWordIdBytes == 0);
  FUZZ_CHECK(idx.size() % kDocumentWordInfoBytes == 0);
  const auto* d = reinterpret_cast<const unsigned char*>(data.data());
  for (std::size_t p = 0; p < data.size(); p += kWordIdBytes) {
    FUZZ_CHECK(read_word_id(d + p).id() < static_cast<std::uint32_t>(table.size()));
  }
  const auto* h = reinterpret_cast<const unsigned char*>(idx.data());
  std::int32_t previous = 0;
  for (std::size_t p = 0; p < idx.size(); p += kDocumentWordInfoBytes) {
    const DocumentWordInfo info = read_document_word_info(h + p);
    FUZZ_CHECK(info.did >= 0);  // "-" is a token of its own: no negative DIDs
    FUZZ_CHECK(info.offset >= previous);
    FUZZ_CHECK(info.offset % kWordIdBytes == 0);
    FUZZ_CHECK(static_cast<std::size_t>(info.offset) <= data.size());
    previous = info.offset;
  }
}

}  // namespace

int fuzz_one_input(const std::uint8_t* data, std::size_t size) {
  const std::string& dir = fuzz::scratch_dir();
  const std::string dump = dir + "word-dump.txt";
  fuzz::write_file(dump, data, size);
  fuzz::Silence quiet;
  StringTable table;
  {
    std::ofstream data_out(dir + kWordDataFile, std::ios::out | std::ios::trunc | std::ios::binary);
    std::ofstream idx_out(dir + kWordIdxFile, std::ios::out | std::ios::trunc | std::ios::binary);
    WordPreproc preproc;
    try {
      preproc.preprocFile(&table, data_out, idx_out, dump.c_str());
    } catch (const ParserError& e) {
      std::ostringstream text;
      e.write(text);
    }
  }
  check_output(read_back(dir + kWordDataFile), read_back(dir + kWordIdxFile), table);
  // The table as it is frozen for "word-table".
  std::ostringstream frozen(std::ios::out | std::ios::binary);
  CompactedStringTable(table).write(frozen);
  std::istringstream in(frozen.str(), std::ios::in | std::ios::binary);
  const CompactedStringTable back(in);
  FUZZ_CHECK(back.count == table.size());
  return 0;
}

}  // namespace refgrove

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return refgrove::fuzz_one_input(data, size);
}
