// What the subcommands over the network's analyses share: loading the data
// directory and turning the analysis's complaints into messages.
#ifndef REFGROVE_TOOLS_NETWORK_COMMAND_H_
#define REFGROVE_TOOLS_NETWORK_COMMAND_H_

#include <CLI/CLI.hpp>

#include <functional>

#include "core/data_set.h"
#include "tools/commands.h"
#include "tools/tool_support.h"

namespace refgrove {

// Loads the directory and runs `body` on it; the analysis's complaints
// about its arguments (NetworkArgumentError) become "refgrove COMMAND: ..."
// and status 1.
int run_on(const char* command, const DataDirArgs& dir, CommandContext& ctx,
           const std::function<int(const RefgroveData&)>& body);

// A subcommand `name` of `app` reading a data directory into `dir`.
CLI::App* add_network_command(CLI::App& app, const char* name, const char* summary, const char* help, DataDirArgs* dir);

}  // namespace refgrove

#endif  // REFGROVE_TOOLS_NETWORK_COMMAND_H_
