// How the refgrove tool words a usage error: the command it concerns, what
// was wrong with which argument, the command's usage and where to read on.
//
//   refgrove printdoc: DID: expected a decimal number, not '/tmp/data'
//   Usage: refgrove printdoc [OPTIONS] DIR DID...
//   Run 'refgrove printdoc --help' for more.
//
// A word where a command expects one of its subcommands is named with the
// nearest subcommand, as a typing slip usually is.
#ifndef REFGROVE_TOOLS_USAGE_ERROR_H_
#define REFGROVE_TOOLS_USAGE_ERROR_H_

#include <ostream>
#include <string>
#include <vector>

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace refgrove {

// Writes the error that parsing the command line of `app` threw.
void write_usage_error(CLI::App& app, const CLI::ParseError& error, std::ostream& err);

// The name among `names` that `word` is nearest to, counting the characters
// to insert, delete or replace; empty when even the nearest needs more than
// a third of the word changed (or more than one character of a short word).
std::string nearest_name(const std::string& word, const std::vector<std::string>& names);

}  // namespace refgrove

#endif  // REFGROVE_TOOLS_USAGE_ERROR_H_
