#include "tools/tool_support.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <span>
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
    const bool int32_range =
        min == std::numeric_limits<std::int32_t>::min() && max == std::numeric_limits<std::int32_t>::max();
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

CLI::Option* add_limit_option(CLI::App* cmd, const std::string& name, std::int64_t* limit, const std::string& help) {
  const CLI::Validator count(
      [](std::string& arg) {
        std::int64_t value = 0;
        const std::string not_a_count = parse_decimal(arg, 0, kMaxLimit, &value);
        if (not_a_count.starts_with("expected")) return not_a_count;
        if (!not_a_count.empty()) {
          return arg + ": must be 0 or more (0: all), and " + with_commas(kMaxLimit) + " at most";
        }
        arg = std::to_string(value);
        return std::string();
      },
      "");
  return cmd->add_option(name, *limit, help + " (0: all)")->transform(count)->capture_default_str();
}

std::int64_t all_if_zero(std::int64_t limit) { return limit == 0 ? std::numeric_limits<std::int64_t>::max() : limit; }

std::string with_commas(std::int64_t count) {
  std::string digits = std::to_string(count);
  const std::size_t first = count < 0 ? 1 : 0;
  for (std::size_t at = digits.size(); at > first + 3; at -= 3) digits.insert(at - 3, ",");
  return digits;
}

void note_cut(const char* command, std::int64_t shown, std::int64_t total, const std::string& what,
              const std::string& option, std::ostream& err) {
  if (shown >= total) return;
  err << "refgrove " << command << ": showing " << with_commas(shown) << " of " << with_commas(total) << " " << what
      << "; raise " << option << "\n";
}

void add_data_dir_args(CLI::App* cmd, DataDirArgs* args) {
  cmd->add_flag("-v,--verbose", args->verbose, "show the loading messages");
  cmd->add_option("DIR", args->dir, "the data directory")->required();
}

refgrove::DataSetPtr load_data_dir(const char* command, const DataDirArgs& args, std::ostream& err) {
  if (const std::string problem = refgrove::data_dir_problem(args.dir); !problem.empty()) {
    err << "refgrove " << command << ": " << problem << "\n";
    return nullptr;
  }
  const std::string dir = as_dir(args.dir);
  if (args.verbose) return refgrove::load_data_set(dir, err);
  std::ostringstream hidden;
  return refgrove::load_data_set(dir, hidden);
}

int add_named_authors(const char* command, const RefgroveData& data, const std::vector<std::string>& names,
                      std::vector<int>* ids, std::ostream& err) {
  int status = 0;
  for (const std::string& name : names) {
    const std::vector<std::int32_t> found = refgrove::named_authors(data, name);
    if (found.empty()) {
      err << "refgrove " << command << ": no author named " << name << "\n";
      status = 1;
    }
    ids->insert(ids->end(), found.begin(), found.end());
  }
  return status;
}

}  // namespace refgrove
