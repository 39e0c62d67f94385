// refgrove-host: a Prolog-like toplevel for refgrove.so over the simulated
// host engine. Goals come from the command line or, when there are none,
// from standard input.
#include <unistd.h>

#include <cctype>
#include <climits>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "host/term_text.h"
#include "host/toplevel.h"

namespace refgrove {

namespace {

const char kUsage[] =
    "Usage: refgrove-host [--module PATH] [GOAL...]\n"
    "\n"
    "Loads refgrove.so into a simulated host engine and runs goals against its\n"
    "foreign predicates, as a Prolog toplevel does: each goal prints its\n"
    "variables' bindings (or \"true.\"), or \"false.\" when it fails.\n"
    "\n"
    "Goals are taken from the arguments, or else from standard input, each\n"
    "ended by a full stop. A goal is a conjunction of calls separated by \",\";\n"
    "arguments are integers, floats, atoms (plain or 'quoted'), variables and\n"
    "lists. halt. ends the session.\n"
    "\n"
    "Options:\n"
    "  -m, --module PATH   the module to load (default: refgrove.so next to\n"
    "                      this program, or in ../module/ of the build tree)\n"
    "  -h, --help          print this help and exit\n"
    "      --version       print the version and exit\n"
    "\n"
    "Example, from the top of the source tree (preprocessing writes into a\n"
    "directory that exists):\n"
    "  mkdir -p /tmp/rg\n"
    "  refgrove-host \"refgrove_preproc('data/sample/', '/tmp/rg/')\" \\\n"
    "                \"refgrove_load('/tmp/rg/')\" \"refgrove_get_year(107, Y)\"\n"
    "\n"
    "Limits: the terms of one goal may take 786,432 heap words (a list cell\n"
    "takes two), lists may be nested 10,000 deep; a goal beyond them is an\n"
    "error.\n"
    "\n"
    "Exit status: 0, or 1 when a goal raised an error, or 2 when the module\n"
    "could not be loaded or the options are wrong.\n";

std::string own_directory() {
  char path[PATH_MAX];
  const ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
  if (n <= 0) return ".";
  path[n] = '\0';
  std::string dir(path);
  const std::size_t slash = dir.find_last_of('/');
  return slash == std::string::npos ? "." : dir.substr(0, slash);
}

std::string default_module() {
  const std::string dir = own_directory();
  for (const std::string& candidate : {dir + "/refgrove.so", dir + "/../module/refgrove.so"}) {
    if (access(candidate.c_str(), R_OK) == 0) return candidate;
  }
  return dir + "/refgrove.so";
}

}  // namespace

int run_program(int argc, char** argv) {
  std::string module_path;
  std::vector<std::string> goals;
  for (int k = 1; k < argc; ++k) {
    const std::string arg = argv[k];
    if (arg == "-h" || arg == "--help") {
      std::cout << kUsage;
      return 0;
    }
    if (arg == "--version") {
      std::cout << "refgrove-host " REFGROVE_VERSION "\n";
      return 0;
    }
    if (arg == "-m" || arg == "--module") {
      if (k + 1 == argc) {
        std::cerr << "refgrove-host: " << arg << " needs a path\n" << kUsage;
        return 2;
      }
      module_path = argv[++k];
    } else if (arg.rfind("--module=", 0) == 0) {
      module_path = arg.substr(std::strlen("--module="));
    } else if (arg == "--") {
      for (++k; k < argc; ++k) goals.emplace_back(argv[k]);
    } else if (arg.size() > 1 && arg[0] == '-' && !std::isdigit(static_cast<unsigned char>(arg[1]))) {
      std::cerr << "refgrove-host: unknown option " << arg << "\n" << kUsage;
      return 2;
    } else {
      goals.push_back(arg);
    }
  }
  if (module_path.empty()) module_path = default_module();

  std::unique_ptr<toplevel::Toplevel> top;
  try {
    top.reset(new toplevel::Toplevel(module_path));
  } catch (const std::exception& e) {
    std::cerr << "refgrove-host: " << e.what() << "\n";
    return 2;
  }

  const bool interactive = goals.empty() && isatty(0);
  int status = 0;
  auto run_all = [&](std::istream& in) {
    toplevel::GoalReader reader(in);
    std::string goal;
    for (;;) {
      if (interactive) std::cout << "?- " << std::flush;
      if (!reader.next(&goal)) return true;
      if (!interactive) std::cout << "?- " << goal << ".\n" << std::flush;
      const auto outcome = top->run(goal, std::cout, std::cerr);
      std::cout << std::flush;
      if (outcome == toplevel::Toplevel::Outcome::kHalt) return false;
      if (outcome == toplevel::Toplevel::Outcome::kError) status = 1;
    }
  };
  if (goals.empty()) {
    run_all(std::cin);
    if (interactive) std::cout << "\n";
  } else {
    for (const std::string& text : goals) {
      std::istringstream in(text);
      if (!run_all(in)) break;
    }
  }
  return status;
}

}  // namespace refgrove

int main(int argc, char** argv) { return refgrove::run_program(argc, argv); }
