// Helpers shared by the refgrove subcommands that work on directories.
#ifndef REFGROVE_TOOLS_TOOL_SUPPORT_H_
#define REFGROVE_TOOLS_TOOL_SUPPORT_H_

#include <string>

// `path` with a trailing "/" (the library appends file names to directory
// paths without a separator).
std::string as_dir(const std::string& path);

// Parses a whole decimal int; false on anything else.
bool parse_int(const char* text, int* out);

// True for "-h" and "--help".
bool is_help(const char* arg);

// Loads the data directory `dir` (with its trailing "/") as the current
// data set. Checks first that the four data files are there; on failure
// writes "<command>: ..." to standard error and returns false. The loading
// messages are shown only when `verbose`.
bool load_data_dir(const char* command, const std::string& dir, bool verbose);

// Drops the loaded data set.
void unload_data();

#endif  // REFGROVE_TOOLS_TOOL_SUPPORT_H_
