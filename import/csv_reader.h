// Works and citations in tables (csv_table.h): comma-separated, or
// tab-separated when the file's name ends in ".tsv" (or ".tsv.gz").
//
// A table is known by its header line: a works table has the column "id"
// and any of "year", "title", "authors" (names separated by ";") and
// "abstract"; a citations table has "citing" and "cited" (keys of works).
// Headers are matched ignoring case and the blanks around them; other
// columns are left alone. Tables of other names are read through a map of
// ours to theirs (`--columns id=paper_id,title=name`). Every record has as
// many fields as the header; an empty year, title or abstract is unknown.
#ifndef REFGROVE_IMPORT_CSV_READER_H_
#define REFGROVE_IMPORT_CSV_READER_H_

#include <map>
#include <string>
#include <vector>

#include "import/imported_work.h"
#include "import/input_files.h"

namespace refgrove {

// Our column names: "id", "year", "title", "authors", "abstract", "citing",
// "cited".
const std::vector<std::string>& csv_column_names();

// Our column name -> the header that holds it in the user's tables.
using CsvColumns = std::map<std::string, std::string>;

// Reads "OURS=THEIRS,..." into `columns`; false with `error` set for a name
// that is not ours or an entry without "=".
bool parse_csv_columns(const std::string& text, CsvColumns* columns, std::string* error);

// Reads the works or citations of the table `contents`, the file `path`,
// into `sink`. Throws ImportError for a header that is neither table's.
void read_csv(const std::string& path, const FileContents& contents, const CsvColumns& columns, const WorkSink& sink);

// Whether a file met in a directory is a table: .csv, .tsv, and those
// ending in .gz.
bool is_csv_file(const std::string& name);

}  // namespace refgrove

#endif  // REFGROVE_IMPORT_CSV_READER_H_
