#include "words/word_data.h"

#include <algorithm>
#include <fstream>

namespace refgrove {

WordData::WordData(const std::string& dir, std::ostream& log) {
  read_word_table(dir + kWordTableFile, log);
  read_headers(dir + kWordIdxFile, log);
  map_word_ids(dir + kWordDataFile, log);
}

WordData::WordData() : doc_info{DocumentWordInfo{0, 0}} {
  ByteReader nothing(nullptr, 0);
  word_table = std::make_unique<CompactedStringTable>(nothing);
}

void WordData::read_word_table(const std::string& name, std::ostream& log) {
  std::ifstream in(name, std::ios::in);
  log << "Reading Word Data from " << name << " ...\n";
  word_table = std::make_unique<CompactedStringTable>(in);
  log << "Read " << word_table->count << " words in " << word_table->chars_size << " bytes.\n";
}

// The headers, then the last header once more: the record that a reader
// looping until end of file appends twice. A trailing partial header is not
// whole and is dropped; a missing or empty file yields one zero header.
void WordData::read_headers(const std::string& name, std::ostream& log) {
  std::ifstream in(name, std::ios::in | std::ios::binary);
  const std::string bytes = read_rest_of_stream(in);
  const std::size_t whole = bytes.size() / kDocumentWordInfoBytes;
  doc_info.reserve(whole + 1);
  const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
  for (std::size_t i = 0; i < whole; ++i) doc_info.push_back(read_document_word_info(p + kDocumentWordInfoBytes * i));
  doc_info.push_back(doc_info.empty() ? DocumentWordInfo{0, 0} : doc_info.back());
  log << "Read " << doc_info.size() - 1 << " document headers\n";
}

void WordData::map_word_ids(const std::string& name, std::ostream& log) {
  log << "Mapping abstract file " << name << "...\n";
  word_file_ = std::make_unique<MappedFile>(name, static_cast<std::size_t>(std::max(doc_info.back().offset, 0)));
  word_ids = word_file_->data();
  log << "Mapped abstracts file at " << static_cast<const void*>(word_ids) << std::endl;
  log << "start=";
  log << "Done.\n";
}

}  // namespace refgrove
