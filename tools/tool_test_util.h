// Shared helper of the tool's tests: the whole tool run in-process.
#ifndef REFGROVE_TOOLS_TOOL_TEST_UTIL_H_
#define REFGROVE_TOOLS_TOOL_TEST_UTIL_H_

#include <sstream>
#include <string>
#include <vector>

#include "tools/commands.h"

namespace refgrove {

struct ToolRun {
  int status;
  std::string out, err;
};

// Runs `refgrove args...` with `input` as its standard input.
inline ToolRun run_tool(std::vector<std::string> args, const std::string& input = "") {
  args.insert(args.begin(), "refgrove");
  std::vector<const char*> argv;
  for (const std::string& a : args) argv.push_back(a.c_str());
  std::istringstream in(input);
  std::ostringstream out, err;
  const int status = refgrove_main(static_cast<int>(argv.size()), argv.data(), in, out, err);
  return ToolRun{status, out.str(), err.str()};
}

}  // namespace refgrove

#endif  // REFGROVE_TOOLS_TOOL_TEST_UTIL_H_
