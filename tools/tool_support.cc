#include "tools/tool_support.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>

#include "core/data_set.h"
#include "core/refgrove.h"

std::string as_dir(const std::string& path) {
  if (path.empty() || path.back() == '/') return path;
  return path + "/";
}

bool parse_int(const char* text, int* out) {
  char* end = nullptr;
  errno = 0;
  const long v = std::strtol(text, &end, 10);
  if (*text == '\0' || *end != '\0' || errno != 0 || v < INT_MIN || v > INT_MAX) return false;
  *out = static_cast<int>(v);
  return true;
}

bool is_help(const char* arg) { return std::strcmp(arg, "-h") == 0 || std::strcmp(arg, "--help") == 0; }

bool load_data_dir(const char* command, const std::string& dir, bool verbose) {
  for (const char* name : {kWordTableFile, kWordIdxFile, kWordDataFile, kGraphFile}) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(dir + name, ec)) {
      std::cerr << command << ": " << dir << " is not a data directory: " << name
                << " is missing (make one with refgrove preprocess)\n";
      return false;
    }
  }
  if (verbose) {
    refgrove_load_1(dir.c_str());
  } else {
    std::streambuf* old = std::cerr.rdbuf(nullptr);
    refgrove_load_1(dir.c_str());
    std::cerr.rdbuf(old);
    std::cerr.clear();
  }
  return refgrove_data != nullptr;
}

void unload_data() {
  delete refgrove_data;
  refgrove_data = nullptr;
}
