// `refgrove generate`: synthetic text dumps for benchmarks and scale tests.
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>

#include "tools/commands.h"
#include "tools/dump_generator.h"
#include "tools/tool_support.h"

namespace {

const char kHelp[] =
    "usage: refgrove generate --docs N [--seed S] OUT_DIR\n"
    "\n"
    "Writes synthetic text dumps of N documents into OUT_DIR (created when\n"
    "missing), under the names that refgrove preprocess reads. Documents have\n"
    "ascending DIDs, about 10 citations of earlier documents, 9 title words,\n"
    "2.5 authors and 120 abstract words drawn from a Zipf-distributed\n"
    "vocabulary; some keys and years are missing. The same N and S (default\n"
    "2002) always give the same files. 200,000 documents take about 190 MB.\n";

bool parse_count(const char* text, std::uint64_t* out) {
  if (*text < '0' || *text > '9') return false;
  char* end = nullptr;
  *out = std::strtoull(text, &end, 10);
  return *end == '\0';
}

}  // namespace

int generate_command(int argc, char** argv) {
  DumpGeneratorOptions options;
  bool have_docs = false;
  const char* dir = nullptr;
  const char* usage = "usage: refgrove generate --docs N [--seed S] OUT_DIR (see refgrove generate --help)\n";
  for (int i = 1; i < argc; ++i) {
    std::uint64_t v = 0;
    if (is_help(argv[i])) {
      std::cout << kHelp;
      return 0;
    } else if (std::strcmp(argv[i], "--docs") == 0 || std::strcmp(argv[i], "--seed") == 0) {
      const bool docs = argv[i][2] == 'd';
      if (i + 1 >= argc || !parse_count(argv[i + 1], &v) || (docs && v > 100000000)) {
        std::cerr << "refgrove generate: " << argv[i] << " needs a number" << (docs ? " up to 100000000" : "")
                  << "\n";
        return 2;
      }
      ++i;
      if (docs) {
        options.docs = static_cast<std::int64_t>(v);
        have_docs = true;
      } else {
        options.seed = v;
      }
    } else if (argv[i][0] == '-' || dir != nullptr) {
      std::cerr << usage;
      return 2;
    } else {
      dir = argv[i];
    }
  }
  if (!have_docs || dir == nullptr) {
    std::cerr << usage;
    return 2;
  }
  std::error_code ec;
  std::filesystem::create_directories(dir, ec);
  DumpGeneratorResult result;
  std::string error;
  if (!generate_dumps(as_dir(dir), options, &result, &error)) {
    std::cerr << "refgrove generate: " << error << "\n";
    return 1;
  }
  std::printf("wrote %" PRId64 " documents (largest DID %" PRId32 ", %" PRId64 " abstract words, %.1f MB) to %s\n",
              options.docs, result.last_did, result.words, static_cast<double>(result.bytes) / 1e6, dir);
  return 0;
}
