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
// The set keeps of each work only its key, its year and its citations (as
// indices in a table of keys); the text of its title and names and that of
// its abstract go, as read, to spool files (spool_file.h), and a later
// record's text simply comes after the earlier one's. Once all is read, the
// set is written as the text dumps that preprocessing reads
// (graph/graph_dump.h): one graph line per work, one word-dump line per work
// with an abstract, the text copied back from the spools. Preprocessing
// those dumps then makes the data directory, so that titles and abstracts
// become words exactly as they would from dumps holding the same text. What
// the dumps cannot hold is changed on the way: blanks, tabs, line ends and
// NULs separate words; the words "Title:" and "Authors:" are left out of
// titles and names; a work without a title gets the title "-"; and a name
// holding the word "and" is read back as two names, as from dumps.
#ifndef REFGROVE_IMPORT_IMPORTED_WORK_H_
#define REFGROVE_IMPORT_IMPORTED_WORK_H_

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "graph/year_range.h"
#include "import/input_files.h"
#include "import/spool_file.h"

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
  std::function<void(const ImportedWork&)> work;
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
  // or all; spools their text in `spool_dir` (SpoolFile's default when
  // empty).
  explicit WorkSet(std::optional<YearRange> years = std::nullopt, const std::string& spool_dir = "");

  void add(const ImportedWork& work);
  void add_citation(std::string_view citing, std::string_view cited);
  void add_abstract(std::string_view key, std::string_view abstract);

  // Writes the graph dump and the first word dump (the other two stay
  // empty) and returns the counts. `outside_keys` gets the keys of the
  // outside works, the first one's DID being kept + 1. Done once, when
  // everything is added.
  WorkSetCounts write_dumps(std::ostream& graph, std::ostream& words, std::vector<std::string>* outside_keys);

  std::int64_t read() const { return read_; }

 private:
  using KeyIndex = std::uint32_t;
  // Where a record's text is in a spool; at == kNone: none.
  struct Spooled {
    std::uint64_t at;
    std::uint64_t size;
  };
  static constexpr std::uint64_t kNone = ~std::uint64_t{0};
  // A work as its last record gave it.
  struct Work {
    KeyIndex key;
    bool has_year;
    std::int32_t year;
    std::uint64_t cites_at;  // in cites_
    std::uint32_t cites_size;
    Spooled text;      // the graph line from " Title:" on, with its line end
    Spooled abstract;  // the word-dump words, each after a blank; at == kNone: no abstract
  };

  KeyIndex key_index(std::string_view key);
  void write_work(const Work& work, std::int64_t did, const std::vector<std::int64_t>& cited, std::string& graph,
                  std::string& words);

  std::optional<YearRange> years_;
  // Every key met (works, cited works, keys read apart), by index.
  std::deque<std::string> keys_;
  std::unordered_map<std::string_view, KeyIndex> index_of_;  // views of keys_
  std::vector<std::uint32_t> work_of_;                       // by key index: index in works_ + 1, 0 when none
  std::vector<Work> works_;                                  // first-read order
  std::vector<KeyIndex> cites_;                              // the works' cited keys, record after record
  // Citations read apart, by citing key.
  std::unordered_map<KeyIndex, std::vector<KeyIndex>> cites_apart_;
  std::unordered_map<KeyIndex, Spooled> abstracts_apart_;
  SpoolFile text_spool_, abstract_spool_;
  std::string scratch_;  // a record's text on its way to a spool
  std::int64_t cites_apart_count_ = 0, cites_unknown_ = 0;
  std::int64_t read_ = 0, replaced_ = 0;
};

}  // namespace refgrove

#endif  // REFGROVE_IMPORT_IMPORTED_WORK_H_
