// refgrove: command-line tools around the refgrove data files.
#include <cstdio>
#include <cstring>
#include <iostream>

#include "tools/commands.h"

namespace {

const Command kCommands[] = {
    {"tokens", "list the tokens of a file, with positions, under a chosen tokenizer language",
     tokens_command},
    {"preprocess", "turn the text dumps of a directory into a data directory", preprocess_command},
    {"stats", "show the size of a data directory", stats_command},
    {"printdoc", "print documents of a data directory by DID", printdoc_command},
    {"author", "print authors of a data directory by id", author_command},
    {"query", "run one query operation on a data directory and print its result", query_command},
    {"check", "report what is inconsistent in a data directory, with files and offsets", check_command},
    {"generate", "write synthetic text dumps of any size", generate_command},
};

void usage(std::ostream& os) {
  os << "usage: refgrove <command> [options] [arguments]\n"
        "       refgrove <command> --help\n\ncommands:\n";
  for (const Command& c : kCommands) os << "  " << c.name << "\t" << c.summary << "\n";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    usage(std::cerr);
    return 2;
  }
  if (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0 ||
      std::strcmp(argv[1], "help") == 0) {
    usage(std::cout);
    return 0;
  }
  for (const Command& c : kCommands) {
    if (std::strcmp(argv[1], c.name) == 0) return c.run(argc - 1, argv + 1);
  }
  std::cerr << "refgrove: unknown command '" << argv[1] << "'\n";
  usage(std::cerr);
  return 2;
}
