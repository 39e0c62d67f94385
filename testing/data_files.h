// Test support: the four files of a data directory as byte strings, to be
// damaged and written back, and the sample dumps preprocessed.
#ifndef REFGROVE_TESTING_DATA_FILES_H_
#define REFGROVE_TESTING_DATA_FILES_H_

#include <cstdint>
#include <cstdio>
#include <map>
#include <string>

#include "graph/graph_file.h"
#include "refgrove/preprocess.h"
#include "refgrove/query.h"
#include "testing/data_dir_builder.h"
#include "words/word_files.h"

namespace refgrove {

inline const char* const kDataFileNames[] = {kWordTableFile, kWordIdxFile, kWordDataFile, kGraphFile};

// File name -> contents; a file that is not in the map is missing.
using DataFiles = std::map<std::string, std::string>;

inline DataFiles read_data_files(const std::string& dir) {
  DataFiles files;
  for (const char* name : kDataFileNames) files[name] = read_file(dir + name);
  return files;
}

// Writes `files` into `dir` and removes the data files that are not in it.
inline void write_data_files(const std::string& dir, const DataFiles& files) {
  for (const char* name : kDataFileNames) {
    const auto it = files.find(name);
    if (it == files.end()) {
      std::remove((dir + name).c_str());
    } else {
      write_file(dir + name, it->second);
    }
  }
}

inline void set_int32(std::string* bytes, std::size_t at, std::int32_t value) {
  const auto v = static_cast<std::uint32_t>(value);
  for (int i = 0; i < 4; ++i) (*bytes)[at + i] = static_cast<char>(v >> (8 * i));
}

#ifdef REFGROVE_SAMPLE_DIR
// The dumps of data/sample preprocessed into `dir`, messages swallowed.
inline void preprocess_sample(const std::string& dir) {
  StreamCapture quiet;
  refgrove_preproc_1(REFGROVE_SAMPLE_DIR, dir.c_str());
}
#endif

}  // namespace refgrove

#endif  // REFGROVE_TESTING_DATA_FILES_H_
