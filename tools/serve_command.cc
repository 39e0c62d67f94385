// `refgrove serve DIR [--port N] [--host ADDR] [--allow-host NAME]...
// [--no-token]`: the web explorer over a data directory (web/serve.h).
#include <CLI/CLI.hpp>

#include <memory>

#include "tools/commands.h"
#include "tools/tool_support.h"
#include "web/serve.h"

namespace {

struct ServeArgs {
  DataDirArgs dir;
  refgrove::web::ServeOptions options;
};

const char kHelp[] =
    "Serves an explorer of the data directory DIR to a web browser: search,\n"
    "papers with their citations and neighbourhood drawn as a graph, authors\n"
    "with their co-authors and collaboration paths, rankings; and the JSON\n"
    "API that the page reads (/api/...). It listens on the loopback address\n"
    "unless --host says otherwise, and runs until interrupted (Ctrl-C).\n"
    "Requests must name the server in their Host header (its address, or\n"
    "localhost, or a loopback address; --allow-host adds names). Listening\n"
    "beyond loopback, every request needs the access token printed in the\n"
    "address (kept in a cookie, or sent as Authorization: Bearer TOKEN),\n"
    "unless --no-token.\n"
    "SIGHUP loads DIR again (after a new refgrove preprocess) while requests\n"
    "go on.\n"
    "\n"
    "Exit status: 0 when stopped, 1 when DIR is not a data directory or the\n"
    "address cannot be listened on, 2 on a usage error.";

}  // namespace

void add_serve_command(CLI::App& app, CommandContext& ctx) {
  CLI::App* cmd = app.add_subcommand("serve", "explore a data directory in a web browser");
  cmd->footer(kHelp);
  auto args = std::make_shared<ServeArgs>();
  add_data_dir_args(cmd, &args->dir);
  cmd->add_option("--port", args->options.port, "the TCP port")->check(CLI::Range(0, 65535))->capture_default_str();
  cmd->add_option("--host", args->options.host, "the address to listen on")->capture_default_str();
  cmd->add_option("--allow-host", args->options.allowed_hosts,
                  "a name (with any port) that the Host header may give besides the server's own; repeatable")
      ->allow_extra_args(false);
  cmd->add_flag("--no-token", args->options.no_token, "need no access token, even when listening beyond loopback");
  cmd->callback([&ctx, args] {
    ctx.status = refgrove::web::serve(
        args->options, [&] { return load_data_dir("serve", args->dir, ctx.err); }, ctx.out, ctx.err);
  });
}
