// The subcommands of the refgrove command-line tool.
//
// Each subcommand lives in its own file and is listed in the table of
// refgrove_main.cc. A subcommand gets the arguments after its name (argv[0]
// is the subcommand's name) and returns the process exit status.
#ifndef REFGROVE_TOOLS_COMMANDS_H_
#define REFGROVE_TOOLS_COMMANDS_H_

#include <istream>
#include <ostream>

struct Command {
  const char* name;
  const char* summary;  // one line for `refgrove --help`
  int (*run)(int argc, char** argv);
};

// `refgrove tokens`: lists the tokens of a file under a chosen language.
int tokens_command(int argc, char** argv);
// The same with explicit streams: `in` is read for the file name "-".
int tokens_main(int argc, char** argv, std::istream& in, std::ostream& out, std::ostream& err);

// `refgrove preprocess`: text dumps into a data directory.
int preprocess_command(int argc, char** argv);
// `refgrove stats`, `printdoc`, `author`, `query`: reading a data directory.
int stats_command(int argc, char** argv);
int printdoc_command(int argc, char** argv);
int author_command(int argc, char** argv);
int query_command(int argc, char** argv);
// `refgrove check`: the consistency of a data directory.
int check_command(int argc, char** argv);
int check_main(int argc, char** argv, std::ostream& out, std::ostream& err);
// `refgrove generate`: synthetic text dumps.
int generate_command(int argc, char** argv);

#endif  // REFGROVE_TOOLS_COMMANDS_H_
