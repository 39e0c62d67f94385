// The refgrove application: every subcommand under one CLI11 parser, which
// also answers --help, --version and usage errors (status 2, see
// usage_error.h).
#include <CLI/CLI.hpp>

#include "tools/commands.h"
#include "tools/usage_error.h"

#ifndef REFGROVE_VERSION
#error "REFGROVE_VERSION must be defined by the build (the project's version)"
#endif

namespace {

// CLI11 lets an option that keeps several values take every word after it,
// so that `--element X FILE` would read FILE as a second element. Each
// occurrence of such an option takes one value here; the option is repeated
// for more.
void take_one_value_per_occurrence(CLI::App* app) {
  for (CLI::Option* option : app->get_options()) {
    if (option->nonpositional() && option->get_items_expected_max() > 1) option->allow_extra_args(false);
  }
  for (CLI::App* sub : app->get_subcommands([](const CLI::App*) { return true; })) {
    take_one_value_per_occurrence(sub);
  }
}

}  // namespace

int refgrove_main(int argc, const char* const* argv, std::istream& in, std::ostream& out, std::ostream& err) {
  CommandContext ctx{in, out, err};
  CLI::App app("refgrove: command-line tools around the refgrove data files.", "refgrove");
  app.set_version_flag("--version", "refgrove " REFGROVE_VERSION);
  app.require_subcommand(1);
  app.footer(
      "Run refgrove COMMAND --help for a command's options.\n"
      "Exit status: 0 ok, 1 failure or nothing found, 2 usage error, 3 a dump that does not parse.");
  add_tokens_command(app, ctx);
  add_preprocess_command(app, ctx);
  add_data_commands(app, ctx);
  add_show_command(app, ctx);
  add_lookup_commands(app, ctx);
  add_export_command(app, ctx);
  add_search_command(app, ctx);
  add_check_command(app, ctx);
  add_generate_command(app, ctx);
  add_network_commands(app, ctx);
  add_fronts_commands(app, ctx);
#ifdef REFGROVE_SERVE
  add_serve_command(app, ctx);
#endif
  take_one_value_per_occurrence(&app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& e) {  // --help, --version
    return app.exit(e, out, err);
  } catch (const CLI::ParseError& e) {
    write_usage_error(app, e, err);
    return 2;
  }
  return ctx.status;
}
