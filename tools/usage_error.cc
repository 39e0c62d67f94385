#include "tools/usage_error.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>

namespace refgrove {

namespace {

// The characters to insert, delete or replace, and the neighbours to swap
// ("rnak" is one slip from "rank"), to make `a` into `b`.
std::size_t edit_distance(const std::string& a, const std::string& b) {
  // d[i][j]: the distance from the first i characters of `a` to the first j of `b`.
  std::vector<std::vector<std::size_t>> d(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) d[i][0] = i;
  for (std::size_t j = 0; j <= b.size(); ++j) d[0][j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    for (std::size_t j = 1; j <= b.size(); ++j) {
      d[i][j] = std::min({d[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1), d[i - 1][j] + 1, d[i][j - 1] + 1});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
    }
  }
  return d[a.size()][b.size()];
}

// The subcommand that the command line reached: the innermost one selected.
CLI::App* innermost_command(CLI::App* app) {
  const std::vector<CLI::App*> selected = app->get_subcommands();
  return selected.empty() ? app : innermost_command(selected.front());
}

// "refgrove query key" for the `key` operation of `query`.
std::string command_path(const CLI::App* cmd) {
  return cmd->get_parent() == nullptr ? cmd->get_name() : command_path(cmd->get_parent()) + " " + cmd->get_name();
}

// For a command that wants a subcommand and got none: which was missing, or
// the word given in its place with the nearest subcommand, if any is near.
std::string missing_subcommand(CLI::App* cmd) {
  if (cmd->get_require_subcommand_min() == 0 || !cmd->get_subcommands().empty()) return "";
  const std::string what = cmd->get_parent() == nullptr ? "command" : "operation";
  const std::vector<std::string> rest = cmd->remaining();
  if (rest.empty()) return "no " + what + " given";
  std::vector<std::string> names;
  for (const CLI::App* sub : cmd->get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(sub->get_name());
  }
  const std::string nearest = nearest_name(rest.front(), names);
  return "no " + what + " '" + rest.front() + "'" + (nearest.empty() ? "" : "; the nearest is '" + nearest + "'");
}

// For options that `cmd` does not have: the first with the nearest option
// it has, as "no option '--limt'; did you mean --limit?".
std::string unknown_option(CLI::App* cmd) {
  std::vector<std::string> names;
  for (const CLI::Option* option : cmd->get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    for (const std::string& name : option->get_snames()) names.push_back("-" + name);
  }
  for (const std::string& arg : cmd->remaining()) {
    if (arg.size() < 2 || arg[0] != '-' || std::isdigit(static_cast<unsigned char>(arg[1]))) continue;
    const std::string word = arg.substr(0, arg.find('='));
    const std::string nearest = nearest_name(word, names);
    return "no option '" + word + "'" + (nearest.empty() ? "" : "; did you mean " + nearest + "?");
  }
  return "";
}

// The usage line. A subcommand of a subcommand (an operation of `query`)
// follows its parent's positionals: "refgrove query [OPTIONS] DIR key DID".
std::string usage(const CLI::App* cmd) {
  const CLI::App* parent = cmd->get_parent();
  if (parent == nullptr || parent->get_parent() == nullptr) return CLI::Formatter().make_usage(cmd, command_path(cmd));
  std::string line = CLI::Formatter().make_usage(parent, command_path(parent));
  const std::size_t marker = line.rfind("SUBCOMMAND");
  if (marker == std::string::npos) return line;
  std::string op = cmd->get_name();
  for (const CLI::Option* arg : cmd->get_options([](const CLI::Option* o) { return o->get_positional(); })) {
    op += " " + arg->get_name();
  }
  return line.replace(marker, std::string("SUBCOMMAND").size(), op);
}

}  // namespace

std::string nearest_name(const std::string& word, const std::vector<std::string>& names) {
  std::string nearest;
  std::size_t best = std::max<std::size_t>(word.size() / 3, 1) + 1;  // one more than the edits allowed
  for (const std::string& name : names) {
    const std::size_t d = edit_distance(word, name);
    if (d < best) {
      best = d;
      nearest = name;
    }
  }
  return nearest;
}

void write_usage_error(CLI::App& app, const CLI::ParseError& error, std::ostream& err) {
  CLI::App* cmd = innermost_command(&app);
  const std::string path = command_path(cmd);
  std::string what = missing_subcommand(cmd);
  if (what.empty() && dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) what = unknown_option(cmd);
  if (what.empty()) what = error.what();
  err << path << ": " << what << "\n" << usage(cmd) << "Run '" << path << " --help' for more.\n";
}

}  // namespace refgrove
