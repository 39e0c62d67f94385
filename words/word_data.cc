#include "words/word_data.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <iostream>

WordData::WordData(const std::string& dir) {
  read_word_table(dir + kWordTableFile);
  read_headers(dir + kWordIdxFile);
  map_word_ids(dir + kWordDataFile);
}

WordData::~WordData() {
  if (mapped_size > 0) munmap(const_cast<unsigned char*>(word_ids), mapped_size);
  if (fd >= 0) close(fd);
}

void WordData::read_word_table(const std::string& name) {
  std::ifstream in(name, std::ios::in);
  std::cerr << "Reading Word Data from " << name << " ...\n";
  word_table = std::make_unique<CompactedStringTable>(in);
  std::cerr << "Read " << word_table->count << " words in " << word_table->chars_size << " bytes.\n";
}

// The headers, then the last header once more: the record that a reader
// looping until end of file appends twice. A trailing partial header is not
// whole and is dropped; a missing or empty file yields one zero header.
void WordData::read_headers(const std::string& name) {
  std::ifstream in(name, std::ios::in | std::ios::binary);
  const std::string bytes = read_rest_of_stream(in);
  const std::size_t whole = bytes.size() / kDocumentWordInfoBytes;
  doc_info.reserve(whole + 1);
  const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
  for (std::size_t i = 0; i < whole; ++i) doc_info.push_back(read_document_word_info(p + kDocumentWordInfoBytes * i));
  doc_info.push_back(doc_info.empty() ? DocumentWordInfo{0, 0} : doc_info.back());
  std::cerr << "Read " << doc_info.size() - 1 << " document headers\n";
}

// Maps as many bytes as the last header's offset names, but never more than
// the file holds: pages past the end of a file cannot be read.
void WordData::map_word_ids(const std::string& name) {
  std::cerr << "Mapping abstract file " << name << "...\n";
  fd = open(name.c_str(), O_RDONLY);
  void* base = MAP_FAILED;
  struct stat st;
  if (fd >= 0 && fstat(fd, &st) == 0) {
    const std::size_t wanted = static_cast<std::size_t>(std::max<std::int32_t>(doc_info.back().offset, 0));
    const std::size_t length = std::min<std::size_t>(wanted, static_cast<std::size_t>(st.st_size));
    if (length > 0) base = mmap(nullptr, length, PROT_READ, MAP_PRIVATE, fd, 0);
    if (base != MAP_FAILED) mapped_size = length;
  }
  word_ids = static_cast<const unsigned char*>(base);
  std::cerr << "Mapped abstracts file at " << base << std::endl;
  std::cerr << "start=";
  std::cerr << "Done.\n";
}
