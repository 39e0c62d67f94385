#include "import/openalex_reader.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "import/json_records.h"

namespace refgrove {
namespace {

using simdjson::dom::element;
using simdjson::dom::element_type;

std::string_view short_id(std::string_view id) {
  const std::size_t slash = id.rfind('/');
  return slash == std::string_view::npos ? id : id.substr(slash + 1);
}

std::string_view key_of(const element& value, const char* name) {
  std::string_view s;
  if (value.get(s) != simdjson::SUCCESS) throw BadField{name, "not a string"};
  const std::string_view key = short_id(s);
  if (key.empty()) throw BadField{name, "empty id"};
  if (has_dump_blank(key)) throw BadField{name, "an id with a blank"};
  return key;
}

// What reading a work needs, kept from one work to the next so that their
// room is made once.
struct Scratch {
  ImportedWork work;
  std::vector<std::pair<std::int64_t, std::string_view>> placed;  // an abstract's words and positions
  std::vector<std::string_view> by_position;
  std::vector<bool> taken;  // of by_position
};

// Puts the words of `placed` in position order into `by_position` when
// their positions are 0 to n - 1, each once, as they nearly always are
// (no sort needed then); returns false otherwise.
bool in_position_order(const std::vector<std::pair<std::int64_t, std::string_view>>& placed,
                       std::vector<std::string_view>& by_position, std::vector<bool>& taken) {
  const std::size_t n = placed.size();
  by_position.assign(n, std::string_view());
  taken.assign(n, false);
  for (const auto& [at, word] : placed) {
    if (static_cast<std::uint64_t>(at) >= n || taken[static_cast<std::size_t>(at)]) return false;
    taken[static_cast<std::size_t>(at)] = true;
    by_position[static_cast<std::size_t>(at)] = word;
  }
  return true;
}

void read_abstract(const element& work, Scratch& scratch) {
  std::string& abstract = scratch.work.abstract;
  abstract.clear();
  element index;
  if (!json_field(work, "abstract_inverted_index", &index)) return;
  simdjson::dom::object words;
  if (index.get(words) != simdjson::SUCCESS) throw BadField{"abstract_inverted_index", "not an object"};
  auto& placed = scratch.placed;
  placed.clear();
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
  const auto join = [&abstract](std::string_view word) {
    if (!abstract.empty()) abstract += ' ';
    abstract += word;
  };
  if (in_position_order(placed, scratch.by_position, scratch.taken)) {
    for (std::string_view word : scratch.by_position) join(word);
    return;
  }
  std::sort(placed.begin(), placed.end());
  for (const auto& [at, word] : placed) join(word);
}

// The work `work` as scratch.work.
const ImportedWork& work_of(const element& work, Scratch& scratch) {
  if (!work.is_object()) throw BadField{"", "not a JSON object"};
  ImportedWork& w = scratch.work;
  w.authors.clear();
  w.cites.clear();
  element value;
  if (!json_field(work, "id", &value)) throw BadField{"id", "missing"};
  w.key = key_of(value, "id");
  w.year = json_year(work, "publication_year");
  w.title = json_text(work, json_field(work, "title", &value) ? "title" : "display_name");
  if (json_field(work, "authorships", &value)) {
    simdjson::dom::array authorships;
    if (value.get(authorships) != simdjson::SUCCESS) throw BadField{"authorships", "not a list"};
    for (element a : authorships) {
      element author, name;
      if (!a.is_object() || !json_field(a, "author", &author) || !author.is_object() ||
          !json_field(author, "display_name", &name)) {
        continue;  // an authorship without a name names no one
      }
      std::string_view s;
      if (name.get(s) != simdjson::SUCCESS) throw BadField{"authorships.author.display_name", "not a string"};
      w.authors.emplace_back(s);
    }
  }
  read_abstract(work, scratch);
  if (json_field(work, "referenced_works", &value)) {
    simdjson::dom::array refs;
    if (value.get(refs) != simdjson::SUCCESS) throw BadField{"referenced_works", "not a list"};
    for (element r : refs) w.cites.emplace_back(key_of(r, "referenced_works"));
  }
  return w;
}

// One line: a work, or an API page of works.
void read_line(const element& doc, const std::string& path, std::int64_t line, const WorkSink& sink) {
  thread_local Scratch scratch;
  element results_field;
  simdjson::dom::array results;
  const bool page = doc.is_object() && json_field(doc, "results", &results_field) &&
                    results_field.get(results) == simdjson::SUCCESS && doc["id"].error() == simdjson::NO_SUCH_FIELD;
  if (!page) {
    try {
      sink.work(work_of(doc, scratch));
    } catch (const BadField& e) {
      sink.bad(ImportError(path, line, e.field, e.message));
    }
    return;
  }
  std::int64_t i = 0;
  for (element w : results) {
    try {
      sink.work(work_of(w, scratch));
    } catch (const BadField& e) {
      sink.bad(ImportError(path, line, "results[" + std::to_string(i) + "]" + (e.field.empty() ? "" : "." + e.field),
                           e.message));
    }
    ++i;
  }
}

}  // namespace

void read_openalex(const std::string& path, const FileContents& contents, const WorkSink& sink) {
  for_each_json_line(path, contents, sink.bad,
                     [&](const element& doc, std::int64_t line) { read_line(doc, path, line, sink); });
}

}  // namespace refgrove
