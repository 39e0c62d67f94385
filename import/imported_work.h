// The works an import gathers from its inputs, whatever their format, and
// the dumps written of them.
//
// A work is known by its key, the source's own id (an OpenAlex id's short
// form, "W2741809807"). A work read again under the same key replaces the
// earlier record and keeps its place. DIDs are handed out in the order the
// works were first read, from 1; the works that the kept works cite but
// that are not in the set (never read, or left out by --years) get the DIDs
// after them, in the order they are first cited. A citation's group id is
// the cited work's DID.
//
// Citations may also come apart from the works (tables of citing and cited
// keys): they are added to the citing work's own, after them, in the order
// read; those whose citing work is not in the set are left out and counted,
// as are those whose cited work is not known (an empty key). An abstract
// read apart is the work's when its record has none; the last one read
// wins.
//
// The set is written as the text dumps that preprocessing reads
// (graph/graph_dump.h): one graph line per work, one word-dump line per work
// with an abstract. Preprocessing those dumps then makes the data directory,
// so that titles and abstracts become words exactly as they would from
// dumps holding the same text. What the dumps cannot hold is changed on the
// way: blanks, tabs, line ends and NULs separate words; the words "Title:"
// and "Authors:" are left out of titles and names; a work without a title
// gets the title "-"; and a name holding the word "and" is read back as two
// names, as from dumps.
#ifndef REFGROVE_IMPORT_IMPORTED_WORK_H_
#define REFGROVE_IMPORT_IMPORTED_WORK_H_

#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "graph/year_range.h"
#include "import/input_files.h"

namespace refgrove {

// What separates words in the dumps: blank, tab, line ends, and NUL (a
// string of the input may hold one, the dumps cannot). A key holds none.
bool is_dump_blank(char c);
bool has_dump_blank(std::string_view s);

struct ImportedWork {
  std::string key;  // no blank, tab or line end
  std::optional<std::int32_t> year;
  std::string title;                 // any text; empty when unknown
  std::vector<std::string> authors;  // whole names, in their order
  std::string abstract;              // any text; empty when unknown
  std::vector<std::string> cites;    // keys of the cited works, repeats kept
};

struct WorkSetCounts {
  std::int64_t read = 0;      // works read
  std::int64_t kept = 0;      // works in the set
  std::int64_t replaced = 0;  // records replaced by a later one of the same key
  std::int64_t citations_within = 0, citations_outside = 0;
  std::int64_t outside_works = 0;       // distinct works cited from outside the set
  std::int64_t citations_unplaced = 0;  // read apart, by works not in the set
  std::int64_t citations_unknown = 0;   // read apart, of works not known
};

// What a reader does with what it reads: each work, each citation and
// abstract read apart from its work, and each record it cannot use (an ImportError naming
// the file, the line and the field).
struct WorkSink {
  std::function<void(ImportedWork)> work;
  std::function<void(std::string citing, std::string cited)> citation;
  std::function<void(std::string key, std::string abstract)> abstract;
  std::function<void(const ImportError&)> bad;
};

// A format's reader: the files of one import are read one after the
// other, in order; finish() then hands over what the reader held back
// until it had seen them all (citations whose keys depend on other files).
class WorkReader {
 public:
  virtual ~WorkReader() = default;
  virtual void read(const std::string& path, const FileContents& contents, const WorkSink& sink) = 0;
  virtual void finish(const WorkSink&) {}
};

class WorkSet {
 public:
  // Keeps the works of `years` (a work without a year is then left out),
  // or all.
  explicit WorkSet(std::optional<YearRange> years = std::nullopt) : years_(years) {}

  void add(ImportedWork work);
  void add_citation(std::string citing, std::string cited);
  void add_abstract(std::string key, std::string abstract);

  // Writes the graph dump and the first word dump (the other two stay
  // empty) and returns the counts. `outside_keys` gets the keys of the
  // outside works, the first one's DID being kept + 1.
  WorkSetCounts write_dumps(std::ostream& graph, std::ostream& words, std::vector<std::string>* outside_keys) const;

  std::int64_t read() const { return read_; }

 private:
  std::optional<YearRange> years_;
  std::vector<ImportedWork> works_;                      // first-read order
  std::unordered_map<std::string, std::size_t> by_key_;  // index in works_
  // Citations read apart, by citing key, and the order their keys came in.
  std::unordered_map<std::string, std::vector<std::string>> cites_apart_;
  std::unordered_map<std::string, std::string> abstracts_apart_;
  std::int64_t cites_apart_count_ = 0, cites_unknown_ = 0;
  std::int64_t read_ = 0, replaced_ = 0;
};

}  // namespace refgrove

#endif  // REFGROVE_IMPORT_IMPORTED_WORK_H_
