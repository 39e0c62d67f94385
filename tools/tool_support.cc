#include "tools/tool_support.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <sstream>

#include "core/data_set.h"

std::string as_dir(const std::string& path) {
  if (path.empty() || path.back() == '/') return path;
  return path + "/";
}

void add_data_dir_args(CLI::App* cmd, DataDirArgs* args) {
  cmd->add_flag("-v,--verbose", args->verbose, "show the loading messages");
  cmd->add_option("DIR", args->dir, "the data directory")->required();
}

refgrove::DataSetPtr load_data_dir(const char* command, const DataDirArgs& args, std::ostream& err) {
  const std::string dir = as_dir(args.dir);
  for (const char* name : {kWordTableFile, kWordIdxFile, kWordDataFile, kGraphFile}) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(dir + name, ec)) {
      err << "refgrove " << command << ": " << dir << " is not a data directory: " << name
          << " is missing (make one with refgrove preprocess)\n";
      return nullptr;
    }
  }
  if (args.verbose) return refgrove::load_data_set(dir, err);
  std::ostringstream hidden;
  return refgrove::load_data_set(dir, hidden);
}
