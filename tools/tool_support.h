// Helpers shared by the refgrove subcommands that work on data directories.
#ifndef REFGROVE_TOOLS_TOOL_SUPPORT_H_
#define REFGROVE_TOOLS_TOOL_SUPPORT_H_

#include <cstdint>
#include <limits>
#include <ostream>
#include <string>

#include "core/data_view.h"

namespace CLI {
class App;
class Option;
class Validator;
}  // namespace CLI

namespace refgrove {

// `path` with a trailing "/" (the library appends file names to directory
// paths without a separator).
std::string as_dir(const std::string& path);

// Reads `text` as a decimal integer in [min, max]: an optional "-", then
// digits only (leading zeros are still decimal: "0101" is 101). Returns the
// reason it is not one ("expected a decimal number, not '0x41'", "99999999999
// is beyond ..."), or an empty string with *value set.
std::string parse_decimal(const std::string& text, std::int64_t min, std::int64_t max, std::int64_t* value);

// The check of every numeric argument: the argument rewritten as plain
// decimal digits (CLI11's own conversion would read "0101" as octal and
// "0x41" as hex), or the reason it is not a decimal number in [min, max].
CLI::Validator decimal(std::int64_t min = std::numeric_limits<std::int32_t>::min(),
                       std::int64_t max = std::numeric_limits<std::int32_t>::max());

// The largest count a --limit takes; 0 means all.
inline constexpr std::int64_t kMaxLimit = 1000000000;

// Declares the count option `name` (--limit, --largest) on `cmd`: 0 means all,
// anything below 0 or above kMaxLimit is a usage error saying what is taken.
CLI::Option* add_limit_option(CLI::App* cmd, const std::string& name, std::int64_t* limit, const std::string& help);

// A --limit as the analyses take it: 0, all, becomes the largest count.
std::int64_t all_if_zero(std::int64_t limit);

// 1896 as "1,896", as people read counts.
std::string with_commas(std::int64_t n);

// Says on `err` that `command` showed `shown` of `total` `what`s and how to
// see more ("refgrove rank: showing 10 of 1,896 documents; raise --limit");
// nothing when it showed them all.
void note_cut(const char* command, std::int64_t shown, std::int64_t total, const std::string& what,
              const std::string& option, std::ostream& err);

using refgrove::directory_problem;

// Appends to `ids` the authors that each of `names` names, ignoring case; a
// name ending in "*" names the authors whose name starts with the rest.
// Returns 1 when a name names none (said on `err` for `command`), else 0.
int add_named_authors(const char* command, const RefgroveData& data, const std::vector<std::string>& names,
                      std::vector<int>* ids, std::ostream& err);

// What every command reading a data directory takes: -v and DIR.
struct DataDirArgs {
  bool verbose = false;
  std::string dir;
};

// Declares -v/--verbose and the positional DIR on `cmd`.
void add_data_dir_args(CLI::App* cmd, DataDirArgs* args);

// Loads the data directory args.dir. Checks first that it is a directory
// and that the four data files are there; on failure writes
// "refgrove <command>: ..." to `err` and returns null. The loading messages go to `err` only with -v.
refgrove::DataSetPtr load_data_dir(const char* command, const DataDirArgs& args, std::ostream& err);

}  // namespace refgrove

#endif  // REFGROVE_TOOLS_TOOL_SUPPORT_H_
