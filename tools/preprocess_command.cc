// `refgrove preprocess IN_DIR OUT_DIR`: the text dumps of IN_DIR into the
// data directory OUT_DIR, exactly as refgrove_preproc_1 does it.
#include <filesystem>
#include <iostream>
#include <string>

#include "core/refgrove.h"
#include "tools/commands.h"
#include "tools/tool_support.h"

namespace {

const char kHelp[] =
    "usage: refgrove preprocess IN_DIR OUT_DIR\n"
    "\n"
    "Reads the text dumps of IN_DIR, graph-data-aug-2002.txt and\n"
    "word-data{1,2,3}-mar-2002.txt, and writes the data directory OUT_DIR:\n"
    "word-data, word-idx, graph_data and word-table. OUT_DIR is created when\n"
    "missing; existing data files in it are replaced. Progress goes to\n"
    "standard output and standard error. A missing dump is reported (word\n"
    "dumps) or read as empty (graph dump); a word-dump line without a DID is\n"
    "reported and skipped.\n"
    "\n"
    "Exit status: 0 when done, 1 when a directory is unusable, 2 on a usage\n"
    "error, 3 when a dump does not parse (the parse error is written to\n"
    "standard error, and the data directory is left incomplete).\n";

}  // namespace

int preprocess_command(int argc, char** argv) {
  if (argc == 2 && is_help(argv[1])) {
    std::cout << kHelp;
    return 0;
  }
  if (argc != 3) {
    std::cerr << "usage: refgrove preprocess IN_DIR OUT_DIR (see refgrove preprocess --help)\n";
    return 2;
  }
  const std::string in = as_dir(argv[1]), out = as_dir(argv[2]);
  std::error_code ec;
  if (!std::filesystem::is_directory(in, ec)) {
    std::cerr << "refgrove preprocess: " << argv[1] << ": no such directory\n";
    return 1;
  }
  std::filesystem::create_directories(out, ec);
  if (!std::filesystem::is_directory(out, ec)) {
    std::cerr << "refgrove preprocess: cannot create " << argv[2] << "\n";
    return 1;
  }
  refgrove_preproc_1(in.c_str(), out.c_str());  // ends the process with status 3 on a parse error
  return 0;
}
