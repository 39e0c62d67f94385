// Works in OpenAlex's JSON: JSON Lines (one work per line, as in the
// snapshot's works/updated_date=*/part_*.gz) or API pages (one object whose
// "results" is a list of works), told apart line by line.
//
// Of a work: "id" (its key: the part after the last "/",
// https://openalex.org/W2741809807 -> W2741809807), "publication_year",
// "title" (else "display_name"), "authorships"[]."author"."display_name" in
// their order, "abstract_inverted_index" (word -> positions: the abstract is
// the words in position order, joined by blanks) and "referenced_works"
// (keys as for "id"). A field that is missing or null is unknown. Blank
// lines are skipped.
#ifndef REFGROVE_IMPORT_OPENALEX_READER_H_
#define REFGROVE_IMPORT_OPENALEX_READER_H_

#include <string>

#include "import/imported_work.h"
#include "import/input_files.h"

namespace refgrove {

// Reads the works of `contents` (from read_input_file(), padded), the file
// `path`, into `sink`.
void read_openalex(const std::string& path, const FileContents& contents, const WorkSink& sink);

// The contents must be followed by json_padding() bytes (json_records.h);
// the files met in a directory are those of is_json_file().

}  // namespace refgrove

#endif  // REFGROVE_IMPORT_OPENALEX_READER_H_
