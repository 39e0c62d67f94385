// Helpers shared by the refgrove subcommands that work on data directories.
#ifndef REFGROVE_TOOLS_TOOL_SUPPORT_H_
#define REFGROVE_TOOLS_TOOL_SUPPORT_H_

#include <ostream>
#include <string>

#include "core/data_view.h"

namespace CLI {
class App;
}

// `path` with a trailing "/" (the library appends file names to directory
// paths without a separator).
std::string as_dir(const std::string& path);

// What every command reading a data directory takes: -v and DIR.
struct DataDirArgs {
  bool verbose = false;
  std::string dir;
};

// Declares -v/--verbose and the positional DIR on `cmd`.
void add_data_dir_args(CLI::App* cmd, DataDirArgs* args);

// Loads the data directory args.dir. Checks first that the four data files
// are there; on failure writes "refgrove <command>: ..." to `err` and returns
// null. The loading messages go to `err` only with -v.
refgrove::DataSetPtr load_data_dir(const char* command, const DataDirArgs& args, std::ostream& err);

#endif  // REFGROVE_TOOLS_TOOL_SUPPORT_H_
