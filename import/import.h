// import_works(): a data directory made from works in a source's own format,
// the one entry behind every face that imports (the tool's `refgrove
// import`).
//
// The input files are read one after the other (files of lines in pieces,
// the next one decompressed while the last is parsed) into a set of works
// (imported_work.h) that spools their text into a directory beside the
// target (.NAME.refgrove-import.PID, removed at the end); the set is then
// written there as text dumps, which
// the staged run of preprocessing (preproc/staged_preprocess.h) then turns
// into the data directory: the same lock, staging, check, manifest and move
// into place, so that a run that fails leaves the target as it was.
//
// The keys of the works cited from outside the set are written into the
// data directory's file "outside-keys" (outside_keys.h).
#ifndef REFGROVE_IMPORT_IMPORT_H_
#define REFGROVE_IMPORT_IMPORT_H_

#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "import/csv_reader.h"
#include "import/imported_work.h"
#include "import/input_files.h"
#include "preproc/staged_preprocess.h"

namespace refgrove {

struct ImportOptions {
  std::optional<YearRange> years;  // only the works of these years
  // Bad records are counted and skipped; otherwise the first one stops the
  // run with an ImportError, the target untouched.
  bool skip_bad = false;
  // The headers of the user's tables that hold our columns (format csv).
  CsvColumns columns;
  // Called after each input file with the files read so far, their count
  // and the works read so far.
  std::function<void(std::size_t files_read, std::size_t files, std::int64_t works)> progress;
  // Where preprocessing's own messages go (PreprocOptions).
  std::ostream* out = nullptr;
  std::ostream* err = nullptr;
};

struct ImportSummary {
  std::string target;  // absolute
  WorkSetCounts works;
  std::int64_t refused = 0;  // bad records skipped
  PreprocSummary data;
};

// The formats known: "openalex", "s2", "arxiv", "csv".
const std::vector<std::string>& import_formats();

// Imports `inputs` (files or directories) of `format` into the data
// directory `target`. `on_bad` sees each bad record skipped. Throws
// ImportError for an input that cannot be used (unknown format included:
// the file is then the format's name), StagedRunError when the data
// directory cannot be made.
ImportSummary import_works(const std::string& format, const std::vector<std::string>& inputs, const std::string& target,
                           const ImportOptions& options, StagedRunHooks& hooks,
                           const std::function<void(const ImportError&)>& on_bad = {});

}  // namespace refgrove

#endif  // REFGROVE_IMPORT_IMPORT_H_
