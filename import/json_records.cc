#include "import/json_records.h"

#include <cstring>
#include <limits>
#include <string_view>

namespace refgrove {

std::size_t json_padding() { return simdjson::SIMDJSON_PADDING; }

bool is_json_file(const std::string& name) {
  for (const char* end : {".gz", ".json", ".jsonl", ".ndjson"}) {
    if (std::string_view(name).ends_with(end) && name.size() > std::strlen(end)) return true;
  }
  return false;
}

void for_each_json_line(const std::string& path, const FileContents& contents,
                        const std::function<void(const ImportError&)>& bad,
                        const std::function<void(const simdjson::dom::element&, std::int64_t line)>& each) {
  // One parser for every line of every file: its room, sized by the
  // longest line so far, is made once.
  thread_local simdjson::dom::parser parser;
  const char* data = contents.bytes.data();
  std::int64_t line = contents.first_line - 1;
  for (std::size_t at = 0; at < contents.size;) {
    const char* end = static_cast<const char*>(std::memchr(data + at, '\n', contents.size - at));
    const std::size_t stop = end ? static_cast<std::size_t>(end - data) : contents.size;
    ++line;
    std::size_t from = at, to = stop;
    while (from < to && (data[from] == ' ' || data[from] == '\t' || data[from] == '\r')) ++from;
    while (to > from && (data[to - 1] == ' ' || data[to - 1] == '\t' || data[to - 1] == '\r')) --to;
    at = stop + 1;
    if (from == to) continue;
    simdjson::dom::element doc;
    // The bytes after the line (the rest of the file, then the padding)
    // stand in for simdjson's padding.
    if (const auto error = parser.parse(data + from, to - from, false).get(doc); error != simdjson::SUCCESS) {
      bad(ImportError(path, line, "", std::string("not JSON (") + simdjson::error_message(error) + ")"));
      continue;
    }
    each(doc, line);
  }
}

bool json_field(const simdjson::dom::element& object, const char* name, simdjson::dom::element* value) {
  return object[name].get(*value) == simdjson::SUCCESS && !value->is_null();
}

std::string json_text(const simdjson::dom::element& object, const char* name) {
  simdjson::dom::element value;
  if (!json_field(object, name, &value)) return {};
  std::string_view s;
  if (value.get(s) != simdjson::SUCCESS) throw BadField{name, "not a string"};
  return std::string(s);
}

std::optional<std::int32_t> json_year(const simdjson::dom::element& object, const char* name) {
  simdjson::dom::element value;
  if (!json_field(object, name, &value)) return std::nullopt;
  std::int64_t year;
  if (value.get(year) != simdjson::SUCCESS || year < std::numeric_limits<std::int32_t>::min() ||
      year > std::numeric_limits<std::int32_t>::max()) {
    throw BadField{name, "not a year"};
  }
  return static_cast<std::int32_t>(year);
}

}  // namespace refgrove
