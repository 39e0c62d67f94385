// Semantic Scholar's dataset files, JSON Lines whose records are told apart
// by their fields:
//   papers      "corpusid" with "title", "year", "authors" or "externalids":
//               a work; its authors are "authors"[]."name" in their order;
//   abstracts   "corpusid" and "abstract" alone: the abstract of that work;
//   citations   "citingcorpusid" and "citedcorpusid": a citation; a null
//               cited id names no work and is counted, not kept.
// Keys are the corpus ids (numbers or strings) written in decimal.
#ifndef REFGROVE_IMPORT_S2_READER_H_
#define REFGROVE_IMPORT_S2_READER_H_

#include <string>

#include "import/imported_work.h"
#include "import/input_files.h"

namespace refgrove {

// Reads the records of `contents` (from read_input_file() with
// json_padding()), the file `path`, into `sink`.
void read_s2(const std::string& path, const FileContents& contents, const WorkSink& sink);

}  // namespace refgrove

#endif  // REFGROVE_IMPORT_S2_READER_H_
