#include "tools/tool_support.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <filesystem>
#include <sstream>

#include "core/data_set.h"

namespace refgrove {

std::string as_dir(const std::string& path) {
  if (path.empty() || path.back() == '/') return path;
  return path + "/";
}

std::string parse_decimal(const std::string& text, std::int64_t min, std::int64_t max, std::int64_t* value) {
  const std::size_t digits_at = !text.empty() && text[0] == '-' ? 1 : 0;
  const bool digits_only =
      text.size() > digits_at && text.find_first_not_of("0123456789", digits_at) == std::string::npos;
  if (!digits_only) return "expected a decimal number, not '" + text + "'";
  std::int64_t v = 0;
  const std::from_chars_result r = std::from_chars(text.data(), text.data() + text.size(), v);
  if (r.ec == std::errc::result_out_of_range || v < min || v > max) {
    const bool int32_range = min == std::numeric_limits<std::int32_t>::min() &&
                             max == std::numeric_limits<std::int32_t>::max();
    return text + " is beyond " + (int32_range ? "the int32 range, " : "the range ") + std::to_string(min) + " to " +
           std::to_string(max);
  }
  *value = v;
  return "";
}

CLI::Validator decimal(std::int64_t min, std::int64_t max) {
  return CLI::Validator(
      [min, max](std::string& arg) {
        std::int64_t value = 0;
        std::string reason = parse_decimal(arg, min, max, &value);
        if (reason.empty()) arg = std::to_string(value);
        return reason;
      },
      "");
}

std::string directory_problem(const std::string& path) {
  std::error_code ec;
  const std::filesystem::file_status status = std::filesystem::status(path, ec);
  if (std::filesystem::is_directory(status)) return "";
  return std::filesystem::exists(status) ? "not a directory" : "no such directory";
}

void add_data_dir_args(CLI::App* cmd, DataDirArgs* args) {
  cmd->add_flag("-v,--verbose", args->verbose, "show the loading messages");
  cmd->add_option("DIR", args->dir, "the data directory")->required();
}

refgrove::DataSetPtr load_data_dir(const char* command, const DataDirArgs& args, std::ostream& err) {
  const std::string dir = as_dir(args.dir);
  if (const std::string problem = directory_problem(args.dir); !problem.empty()) {
    err << "refgrove " << command << ": " << args.dir << ": " << problem << "\n";
    return nullptr;
  }
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

int add_named_authors(const char* command, const RefgroveData& data, const std::vector<std::string>& names,
                      std::vector<int>* ids, std::ostream& err) {
  int status = 0;
  for (const std::string& name : names) {
    const bool prefix = !name.empty() && name.back() == '*';
    const std::string text = prefix ? name.substr(0, name.size() - 1) : name;
    const auto count = prefix ? refgrove::author_prefix_count : refgrove::author_named_count;
    const auto get = prefix ? refgrove::get_author_prefix : refgrove::get_author_named;
    int n = 0, id = 0;
    if (!count(data, text.c_str(), &n)) {
      err << "refgrove " << command << ": no author named " << name << "\n";
      status = 1;
    }
    for (int i = 0; i < n && get(data, text.c_str(), i, &id); ++i) ids->push_back(id);
  }
  return status;
}

}  // namespace refgrove
