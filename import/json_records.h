// What the readers of JSON Lines share (OpenAlex, Semantic Scholar): the
// walk over a file's lines with simdjson, the fields of a record, and the
// record found bad.
#ifndef REFGROVE_IMPORT_JSON_RECORDS_H_
#define REFGROVE_IMPORT_JSON_RECORDS_H_

#include <simdjson.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "import/input_files.h"

namespace refgrove {

// A record that cannot be used, with the field at fault (empty: the record
// as a whole). Thrown while a record is read, caught by its reader, which
// names the file and the line.
struct BadField {
  std::string field, message;
};

// The zero bytes that simdjson wants after a file's contents.
std::size_t json_padding();

// Whether a file met in a directory holds JSON: .gz, .json, .jsonl,
// .ndjson.
bool is_json_file(const std::string& name);

// Parses each line of `contents` (from read_input_file() with
// json_padding()) or read_input_lines(), the file `path`, and hands it to
// `each` with its number in the file. Blank lines are skipped; a line that is not JSON goes to `bad`.
void for_each_json_line(const std::string& path, const FileContents& contents,
                        const std::function<void(const ImportError&)>& bad,
                        const std::function<void(const simdjson::dom::element&, std::int64_t line)>& each);

// The field `name` of `object`; false when missing or null.
bool json_field(const simdjson::dom::element& object, const char* name, simdjson::dom::element* value);

// The string field `name` of `object`; empty when missing or null. Throws
// BadField when it is not a string.
std::string json_text(const simdjson::dom::element& object, const char* name);

// The whole-number field `name` of `object` as a year; none when missing
// or null. Throws BadField when it is not a 32-bit whole number.
std::optional<std::int32_t> json_year(const simdjson::dom::element& object, const char* name);

}  // namespace refgrove

#endif  // REFGROVE_IMPORT_JSON_RECORDS_H_
