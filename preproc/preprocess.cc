#include "preproc/preprocess.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

#include "graph/graph_dump.h"
#include "preproc/word_preproc.h"
#include "refgrove/preprocess.h"
#include "tokenizer/parser_error.h"

namespace refgrove {

namespace {

// The four dumps of in_dir, the graph dump first.
std::vector<std::string> dump_paths(const std::string& in_dir) {
  std::vector<std::string> paths = {in_dir + kGraphDumpFile};
  for (const char* name : WordPreproc().files) paths.push_back(in_dir + name);
  return paths;
}

// Throws PreprocError unless `path` is a regular file that can be read.
void check_input(const std::string& path) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (error) throw PreprocError(path, error.message());
  if (!std::filesystem::is_regular_file(status)) {
    throw PreprocError(path,
                       std::filesystem::is_directory(status) ? "is a directory, not a dump" : "is not a regular file");
  }
  std::ifstream in(path, std::ios::in | std::ios::binary);
  if (!in.is_open()) throw PreprocError(path, std::error_code(errno, std::generic_category()).message());
}

// The input directory itself, so that a file given as one is named as such.
void check_input_dir(const std::string& in_dir) {
  std::string dir = in_dir;
  while (dir.size() > 1 && dir.back() == '/') dir.pop_back();
  std::error_code error;
  if (!dir.empty() && std::filesystem::exists(dir, error) && !std::filesystem::is_directory(dir, error)) {
    throw PreprocError(dir, "is not a directory");
  }
}

}  // namespace

std::uint64_t dumps_size(const std::string& in_dir) {
  std::uint64_t total = 0;
  for (const std::string& path : dump_paths(in_dir)) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (!error) total += size;
  }
  return total;
}

PreprocSummary preprocess(const std::string& in_dir, const std::string& out_dir, const PreprocOptions& options) {
  WordPreproc preproc(options);
  if (options.checked) {
    check_input_dir(in_dir);
    for (const std::string& path : dump_paths(in_dir)) check_input(path);
  }
  if (options.progress != nullptr) options.progress->total_bytes = dumps_size(in_dir);
  const PreprocSummary summary = preproc.preproc(in_dir, out_dir);
  // A graph dump read again in one piece reports nothing on the way.
  if (options.progress != nullptr) options.progress->bytes_read = options.progress->total_bytes;
  return summary;
}

}  // namespace refgrove

void refgrove_preproc_1(const char* a, const char* b) {
  // The one place where a dump that does not parse ends the process: the
  // parsers below only throw.
  try {
    refgrove::preprocess(a, b);
  } catch (const refgrove::ParserError& e) {
    e.write(std::cerr);
    std::cerr.flush();
    std::exit(3);
  }
}
