// The subcommands of the refgrove command-line tool.
//
// One CLI::App parses the whole command line: each subcommand is declared by
// an add_*_command function in its own file, which registers the
// subcommand's options and positionals and a callback that runs it and
// stores its exit status in CommandContext::status. refgrove_main builds the
// application, parses and returns that status.
#ifndef REFGROVE_TOOLS_COMMANDS_H_
#define REFGROVE_TOOLS_COMMANDS_H_

#include <istream>
#include <ostream>

namespace CLI {
class App;
}

// The streams a command reads and writes and the status it leaves. The
// preprocess command runs the module's own preprocessing, which writes to
// the standard streams whatever is given here.
struct CommandContext {
  std::istream& in;
  std::ostream& out;
  std::ostream& err;
  int status = 0;
};

// Runs the refgrove tool on argv (argv[0] is the program's name) and
// returns its exit status: 0 ok, 1 failure or nothing found, 2 usage error
// (CLI11's message on `err`), 3 a dump that does not parse.
int refgrove_main(int argc, const char* const* argv, std::istream& in, std::ostream& out, std::ostream& err);

// `refgrove tokens`: lists the tokens of a file under a chosen language.
void add_tokens_command(CLI::App& app, CommandContext& ctx);
// `refgrove preprocess`: text dumps into a data directory.
void add_preprocess_command(CLI::App& app, CommandContext& ctx);
// `refgrove stats`, `printdoc`, `author`, `query`: reading a data directory.
void add_data_commands(CLI::App& app, CommandContext& ctx);
// `refgrove show`: documents for people to read.
void add_show_command(CLI::App& app, CommandContext& ctx);
// `refgrove cited-by`, `author-docs`, `key-docs`: the reverse lookups.
void add_lookup_commands(CLI::App& app, CommandContext& ctx);
// `refgrove export`: a data directory as JSON lines or CSV.
void add_export_command(CLI::App& app, CommandContext& ctx);
// `refgrove search`: documents by their words, ranked.
void add_search_command(CLI::App& app, CommandContext& ctx);
// `refgrove check`: the consistency of a data directory.
void add_check_command(CLI::App& app, CommandContext& ctx);
// `refgrove rank`, `distance`, `neighbourhood`, `similar`, `components`:
// the analyses of the citation network.
void add_network_commands(CLI::App& app, CommandContext& ctx);
// `refgrove main-path`, `authors`, `timeline`: the network's structure in
// time.
void add_fronts_commands(CLI::App& app, CommandContext& ctx);
// `refgrove generate`: synthetic text dumps.
void add_generate_command(CLI::App& app, CommandContext& ctx);

// `refgrove serve`: the web explorer (native builds only).
void add_serve_command(CLI::App& app, CommandContext& ctx);

#endif  // REFGROVE_TOOLS_COMMANDS_H_
