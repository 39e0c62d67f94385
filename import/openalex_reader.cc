#include "import/openalex_reader.h"

#include <simdjson.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

namespace refgrove {
namespace {

using simdjson::dom::element;
using simdjson::dom::element_type;

// A record that cannot be used, with the field at fault.
struct BadField {
  std::string field, message;
};

std::string_view short_id(std::string_view id) {
  const std::size_t slash = id.rfind('/');
  return slash == std::string_view::npos ? id : id.substr(slash + 1);
}

bool has_blank(std::string_view s) {
  return std::any_of(s.begin(), s.end(),
                     [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\0'; });
}

// The field `name` of `object`; false when missing or null.
bool field(const element& object, const char* name, element* value) {
  return object[name].get(*value) == simdjson::SUCCESS && !value->is_null();
}

std::string text_field(const element& work, const char* name) {
  element value;
  if (!field(work, name, &value)) return {};
  std::string_view s;
  if (value.get(s) != simdjson::SUCCESS) throw BadField{name, "not a string"};
  return std::string(s);
}

std::string key_of(const element& value, const char* name) {
  std::string_view s;
  if (value.get(s) != simdjson::SUCCESS) throw BadField{name, "not a string"};
  const std::string_view key = short_id(s);
  if (key.empty()) throw BadField{name, "empty id"};
  if (has_blank(key)) throw BadField{name, "an id with a blank"};
  return std::string(key);
}

std::string abstract_of(const element& work) {
  element index;
  if (!field(work, "abstract_inverted_index", &index)) return {};
  simdjson::dom::object words;
  if (index.get(words) != simdjson::SUCCESS) throw BadField{"abstract_inverted_index", "not an object"};
  std::vector<std::pair<std::int64_t, std::string_view>> placed;
  for (auto [word, positions] : words) {
    simdjson::dom::array list;
    if (positions.get(list) != simdjson::SUCCESS) throw BadField{"abstract_inverted_index", "positions not a list"};
    for (element p : list) {
      std::int64_t at;
      if (p.get(at) != simdjson::SUCCESS || at < 0) {
        throw BadField{"abstract_inverted_index", "a position that is not a number from 0"};
      }
      placed.emplace_back(at, word);
    }
  }
  std::sort(placed.begin(), placed.end());
  std::string abstract;
  for (const auto& [at, word] : placed) {
    if (!abstract.empty()) abstract += ' ';
    abstract += word;
  }
  return abstract;
}

ImportedWork work_of(const element& work) {
  if (!work.is_object()) throw BadField{"", "not a JSON object"};
  ImportedWork w;
  element value;
  if (!field(work, "id", &value)) throw BadField{"id", "missing"};
  w.key = key_of(value, "id");
  if (field(work, "publication_year", &value)) {
    std::int64_t year;
    if (value.get(year) != simdjson::SUCCESS || year < std::numeric_limits<std::int32_t>::min() ||
        year > std::numeric_limits<std::int32_t>::max()) {
      throw BadField{"publication_year", "not a year"};
    }
    w.year = static_cast<std::int32_t>(year);
  }
  w.title = text_field(work, "title");
  if (!field(work, "title", &value)) w.title = text_field(work, "display_name");
  if (field(work, "authorships", &value)) {
    simdjson::dom::array authorships;
    if (value.get(authorships) != simdjson::SUCCESS) throw BadField{"authorships", "not a list"};
    for (element a : authorships) {
      element author, name;
      if (!a.is_object() || !field(a, "author", &author) || !author.is_object() ||
          !field(author, "display_name", &name)) {
        continue;  // an authorship without a name names no one
      }
      std::string_view s;
      if (name.get(s) != simdjson::SUCCESS) throw BadField{"authorships.author.display_name", "not a string"};
      w.authors.emplace_back(s);
    }
  }
  w.abstract = abstract_of(work);
  if (field(work, "referenced_works", &value)) {
    simdjson::dom::array refs;
    if (value.get(refs) != simdjson::SUCCESS) throw BadField{"referenced_works", "not a list"};
    for (element r : refs) w.cites.push_back(key_of(r, "referenced_works"));
  }
  return w;
}

// One line: a work, or an API page of works.
void read_line(const element& doc, const std::string& path, std::int64_t line, const WorkSink& sink) {
  element results_field;
  simdjson::dom::array results;
  const bool page = doc.is_object() && field(doc, "results", &results_field) &&
                    results_field.get(results) == simdjson::SUCCESS && doc["id"].error() == simdjson::NO_SUCH_FIELD;
  if (!page) {
    try {
      sink.work(work_of(doc));
    } catch (const BadField& e) {
      sink.bad(ImportError(path, line, e.field, e.message));
    }
    return;
  }
  std::int64_t i = 0;
  for (element w : results) {
    try {
      sink.work(work_of(w));
    } catch (const BadField& e) {
      sink.bad(ImportError(path, line, "results[" + std::to_string(i) + "]" + (e.field.empty() ? "" : "." + e.field),
                           e.message));
    }
    ++i;
  }
}

}  // namespace

std::size_t openalex_padding() { return simdjson::SIMDJSON_PADDING; }

bool is_openalex_file(const std::string& name) {
  for (const char* end : {".gz", ".json", ".jsonl", ".ndjson"}) {
    const std::size_t n = std::strlen(end);
    if (name.size() > n && name.compare(name.size() - n, n, end) == 0) return true;
  }
  return false;
}

void read_openalex(const std::string& path, const FileContents& contents, const WorkSink& sink) {
  simdjson::dom::parser parser;
  const char* data = contents.bytes.data();
  std::int64_t line = 0;
  for (std::size_t at = 0; at < contents.size;) {
    const char* end = static_cast<const char*>(std::memchr(data + at, '\n', contents.size - at));
    const std::size_t stop = end ? static_cast<std::size_t>(end - data) : contents.size;
    ++line;
    std::size_t from = at, to = stop;
    while (from < to && (data[from] == ' ' || data[from] == '\t' || data[from] == '\r')) ++from;
    while (to > from && (data[to - 1] == ' ' || data[to - 1] == '\t' || data[to - 1] == '\r')) --to;
    at = stop + 1;
    if (from == to) continue;
    element doc;
    // The bytes after the line (the rest of the file, then the padding)
    // stand in for simdjson's padding.
    if (const auto error = parser.parse(data + from, to - from, false).get(doc); error != simdjson::SUCCESS) {
      sink.bad(ImportError(path, line, "", std::string("not JSON (") + simdjson::error_message(error) + ")"));
      continue;
    }
    read_line(doc, path, line, sink);
  }
}

}  // namespace refgrove
