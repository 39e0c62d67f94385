// `refgrove check DIR`: reports everything in a data directory that does not
// fit together, one finding per line, with the file and the byte offset.
#include <iostream>
#include <string>
#include <vector>

#include "core/validate.h"
#include "tools/manifest.h"
#include "tools/commands.h"
#include "tools/tool_support.h"

namespace {

const char kHelp[] =
    "usage: refgrove check DIR\n"
    "\n"
    "Reads the data directory DIR (word-table, word-idx, word-data and\n"
    "graph_data) byte by byte and reports, one line each, what does not fit\n"
    "together: sizes that do not match their counts, records cut short, string\n"
    "offsets outside their tables, document offsets that go backwards or past\n"
    "the end of word-data, a missing end sentinel in word-idx, word and author\n"
    "ids outside their tables, graph records out of DID order. Each line names\n"
    "the file and the byte offset of the fault. At most 10 findings of one\n"
    "kind are listed, then their number. When DIR holds refgrove-manifest.json\n"
    "(written by refgrove preprocess), the files' sizes and checksums are\n"
    "compared with it: a file that differs comes from another run.\n"
    "\n"
    "Exit status: 0 when nothing was found, 1 when something was, 2 on a usage\n"
    "error.\n";

}  // namespace

int check_main(int argc, char** argv, std::ostream& out, std::ostream& err) {
  if (argc == 2 && is_help(argv[1])) {
    out << kHelp;
    return 0;
  }
  if (argc != 2 || argv[1][0] == '\0') {
    err << "usage: refgrove check DIR (see refgrove check --help)\n";
    return 2;
  }
  const std::string dir = as_dir(argv[1]);
  std::vector<Finding> findings = validate_data_dir(dir);
  for (Finding& f : manifest_findings(dir)) findings.push_back(std::move(f));
  for (const Finding& f : findings) out << dir << f.text() << "\n";
  if (findings.empty()) {
    out << dir << ": no problems found.\n";
    return 0;
  }
  out << findings.size() << (findings.size() == 1 ? " problem" : " problems") << " found in " << dir << ".\n";
  return 1;
}

int check_command(int argc, char** argv) { return check_main(argc, argv, std::cout, std::cerr); }
