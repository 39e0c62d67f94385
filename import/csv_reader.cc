#include "import/csv_reader.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

#include "import/csv_table.h"

namespace refgrove {
namespace {

// A record that cannot be used, with the column at fault.
struct BadField {
  std::string field, message;
};

std::string_view trimmed(std::string_view s) {
  while (!s.empty() && is_dump_blank(s.front())) s.remove_prefix(1);
  while (!s.empty() && is_dump_blank(s.back())) s.remove_suffix(1);
  return s;
}

std::string lowered(std::string_view s) {
  std::string out(s);
  std::transform(out.begin(), out.end(), out.begin(), [](unsigned char c) { return std::tolower(c); });
  return out;
}

bool ends_with(const std::string& name, std::string_view end) { return std::string_view(name).ends_with(end); }

// Where each of our columns is in a table, by its header line.
class ColumnPlaces {
 public:
  ColumnPlaces(const std::vector<std::string>& header, const CsvColumns& columns) : header_(header) {
    for (const std::string& ours : csv_column_names()) {
      const auto theirs = columns.find(ours);
      const std::string wanted = lowered(trimmed(theirs == columns.end() ? ours : theirs->second));
      for (std::size_t i = 0; i < header.size(); ++i) {
        if (lowered(trimmed(header[i])) == wanted) {
          place_[ours] = i;
          break;
        }
      }
    }
  }

  bool has(const std::string& ours) const { return place_.contains(ours); }
  std::size_t columns() const { return header_.size(); }

  // The value of our column in `record`; empty when the table has none.
  std::string_view value(const std::vector<std::string>& record, const std::string& ours) const {
    const auto at = place_.find(ours);
    return at == place_.end() ? std::string_view() : std::string_view(record[at->second]);
  }
  // Their name of our column, for messages.
  const std::string& name(const std::string& ours) const { return header_[place_.at(ours)]; }

 private:
  std::vector<std::string> header_;
  std::map<std::string, std::size_t> place_;
};

std::string key_in(const std::vector<std::string>& record, const ColumnPlaces& places, const std::string& ours) {
  const std::string_view key = trimmed(places.value(record, ours));
  if (key.empty()) throw BadField{places.name(ours), "empty id"};
  if (has_dump_blank(key)) throw BadField{places.name(ours), "an id with a blank"};
  return std::string(key);
}

std::optional<std::int32_t> year_in(const std::vector<std::string>& record, const ColumnPlaces& places) {
  const std::string_view text = trimmed(places.value(record, "year"));
  if (text.empty()) return std::nullopt;
  std::int32_t year = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), year);
  if (error != std::errc() || end != text.data() + text.size()) throw BadField{places.name("year"), "not a year"};
  return year;
}

std::vector<std::string> authors_in(std::string_view names) {
  std::vector<std::string> authors;
  while (!names.empty()) {
    const std::size_t semicolon = std::min(names.find(';'), names.size());
    const std::string_view name = trimmed(names.substr(0, semicolon));
    if (!name.empty()) authors.emplace_back(name);
    names.remove_prefix(std::min(semicolon + 1, names.size()));
  }
  return authors;
}

void read_record(const std::vector<std::string>& record, const ColumnPlaces& places, const WorkSink& sink) {
  if (record.size() != places.columns()) {
    throw BadField{"",
                   std::to_string(record.size()) + " fields where the header has " + std::to_string(places.columns())};
  }
  if (places.has("id")) {
    ImportedWork w;
    w.key = key_in(record, places, "id");
    w.year = year_in(record, places);
    w.title = places.value(record, "title");
    w.authors = authors_in(places.value(record, "authors"));
    w.abstract = places.value(record, "abstract");
    sink.work(std::move(w));
  } else {
    sink.citation(key_in(record, places, "citing"), key_in(record, places, "cited"));
  }
}

}  // namespace

const std::vector<std::string>& csv_column_names() {
  static const std::vector<std::string> names = {"id", "year", "title", "authors", "abstract", "citing", "cited"};
  return names;
}

bool parse_csv_columns(const std::string& text, CsvColumns* columns, std::string* error) {
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::string_view entry = rest.substr(0, std::min(rest.find(','), rest.size()));
    rest.remove_prefix(std::min(entry.size() + 1, rest.size()));
    const std::size_t equals = entry.find('=');
    if (equals == std::string_view::npos) {
      *error = "'" + std::string(entry) + "' is not OURS=THEIRS";
      return false;
    }
    const std::string ours(trimmed(entry.substr(0, equals)));
    if (std::find(csv_column_names().begin(), csv_column_names().end(), ours) == csv_column_names().end()) {
      *error = "'" + ours + "' is not a column refgrove reads (id, year, title, authors, abstract, citing, cited)";
      return false;
    }
    (*columns)[ours] = std::string(trimmed(entry.substr(equals + 1)));
  }
  return true;
}

bool is_csv_file(const std::string& name) {
  for (const char* end : {".csv", ".tsv", ".csv.gz", ".tsv.gz"}) {
    if (ends_with(name, end)) return true;
  }
  return false;
}

void read_csv(const std::string& path, const FileContents& contents, const CsvColumns& columns, const WorkSink& sink) {
  const char separator = ends_with(path, ".tsv") || ends_with(path, ".tsv.gz") ? '\t' : ',';
  CsvRecords records(std::string_view(contents.bytes.data(), contents.size), separator);
  std::vector<std::string> record;
  std::int64_t line = 0;
  try {
    if (!records.next(&record, &line)) return;  // an empty table
  } catch (const CsvSyntaxError& e) {
    throw ImportError(path, line, "", std::string("the header: ") + e.what());
  }
  const ColumnPlaces places(record, columns);
  if (!places.has("id") && !(places.has("citing") && places.has("cited"))) {
    throw ImportError(path, line, "",
                      "a header without \"id\" (a works table) or \"citing\" and \"cited\" (a citations table); "
                      "--columns names other headers");
  }
  for (;;) {
    try {
      if (!records.next(&record, &line)) return;
      read_record(record, places, sink);
    } catch (const CsvSyntaxError& e) {
      sink.bad(ImportError(path, line, "", e.what()));
    } catch (const BadField& e) {
      sink.bad(ImportError(path, line, e.field, e.message));
    }
  }
}

}  // namespace refgrove
