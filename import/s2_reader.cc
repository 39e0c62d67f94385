#include "import/s2_reader.h"

#include <string_view>

#include "import/json_records.h"

namespace refgrove {
namespace {

using simdjson::dom::element;

// A corpus id, a number or a string of one, as a key.
std::string corpus_id(const element& value, const char* name) {
  std::uint64_t number;
  if (value.get(number) == simdjson::SUCCESS) return std::to_string(number);
  std::string_view text;
  if (value.get(text) != simdjson::SUCCESS) throw BadField{name, "not a corpus id"};
  if (text.empty()) throw BadField{name, "empty id"};
  if (has_dump_blank(text)) throw BadField{name, "an id with a blank"};
  return std::string(text);
}

std::string required_id(const element& record, const char* name) {
  element value;
  if (!json_field(record, name, &value)) throw BadField{name, "missing"};
  return corpus_id(value, name);
}

ImportedWork paper_of(const element& record) {
  ImportedWork w;
  w.key = required_id(record, "corpusid");
  w.year = json_year(record, "year");
  element value;
  w.title = json_text(record, "title");
  if (json_field(record, "authors", &value)) {
    simdjson::dom::array authors;
    if (value.get(authors) != simdjson::SUCCESS) throw BadField{"authors", "not a list"};
    for (element a : authors) {
      if (!a.is_object()) throw BadField{"authors", "an author that is not an object"};
      std::string name = json_text(a, "name");
      if (!name.empty()) w.authors.push_back(std::move(name));
    }
  }
  return w;
}

void read_record(const element& record, const WorkSink& sink) {
  if (!record.is_object()) throw BadField{"", "not a JSON object"};
  element cited;
  if (record["citingcorpusid"].error() != simdjson::NO_SUCH_FIELD) {
    const std::string citing = required_id(record, "citingcorpusid");
    if (record["citedcorpusid"].error() == simdjson::NO_SUCH_FIELD) throw BadField{"citedcorpusid", "missing"};
    sink.citation(citing, json_field(record, "citedcorpusid", &cited) ? corpus_id(cited, "citedcorpusid") : "");
    return;
  }
  const bool paper =
      record["title"].error() != simdjson::NO_SUCH_FIELD || record["year"].error() != simdjson::NO_SUCH_FIELD ||
      record["authors"].error() != simdjson::NO_SUCH_FIELD || record["externalids"].error() != simdjson::NO_SUCH_FIELD;
  if (paper) {
    sink.work(paper_of(record));
  } else if (record["abstract"].error() != simdjson::NO_SUCH_FIELD) {
    sink.abstract(required_id(record, "corpusid"), json_text(record, "abstract"));
  } else {
    throw BadField{"", "neither a paper, an abstract nor a citation"};
  }
}

}  // namespace

void read_s2(const std::string& path, const FileContents& contents, const WorkSink& sink) {
  for_each_json_line(path, contents, sink.bad, [&](const element& record, std::int64_t line) {
    try {
      read_record(record, sink);
    } catch (const BadField& e) {
      sink.bad(ImportError(path, line, e.field, e.message));
    }
  });
}

}  // namespace refgrove
