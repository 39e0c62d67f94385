#include "import/import.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>

#include "graph/graph_dump.h"
#include "import/arxiv_reader.h"
#include "import/csv_reader.h"
#include "import/json_records.h"
#include "import/openalex_reader.h"
#include "import/outside_keys.h"
#include "import/s2_reader.h"
#include "preproc/manifest.h"
#include "preproc/word_preproc.h"

namespace refgrove {
namespace {

// The directory of the dumps written for one run, beside the target,
// removed with its files when the run ends.
class DumpDir {
 public:
  explicit DumpDir(const TargetPaths& paths)
      : path_(paths.parent + "/." + paths.name + ".refgrove-import." + std::to_string(getpid())) {
    if (mkdir(path_.c_str(), 0700) != 0) throw ImportError(path_, 0, "", std::strerror(errno));
  }
  ~DumpDir() {
    unlink(file(kGraphDumpFile).c_str());
    for (const char* name : kWordDumpFiles) unlink(file(name).c_str());
    rmdir(path_.c_str());
  }
  DumpDir(const DumpDir&) = delete;
  DumpDir& operator=(const DumpDir&) = delete;

  const std::string& path() const { return path_; }
  std::string file(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

// A reader of files that stand each on its own.
template <void (*Read)(const std::string&, const FileContents&, const WorkSink&)>
class FileByFile : public WorkReader {
 public:
  void read(const std::string& path, const FileContents& contents, const WorkSink& sink) override {
    Read(path, contents, sink);
  }
};

class CsvTables : public WorkReader {
 public:
  explicit CsvTables(const CsvColumns& columns) : columns_(columns) {}
  void read(const std::string& path, const FileContents& contents, const WorkSink& sink) override {
    read_csv(path, contents, columns_, sink);
  }

 private:
  CsvColumns columns_;
};

// One format that refgrove imports; import_formats() lists their names.
struct Format {
  const char* name;
  bool (*usable)(const std::string&);  // a file met in a directory
  std::size_t (*padding)();            // zero bytes wanted after a file's contents
  bool by_lines;                       // its files may be read in pieces of whole lines
  std::unique_ptr<WorkReader> (*reader)(const ImportOptions&);
};

std::size_t no_padding() { return 0; }

const Format kFormats[] = {
    {"openalex", is_json_file, json_padding, true,
     [](const ImportOptions&) -> std::unique_ptr<WorkReader> { return std::make_unique<FileByFile<read_openalex>>(); }},
    {"s2", is_json_file, json_padding, true,
     [](const ImportOptions&) -> std::unique_ptr<WorkReader> { return std::make_unique<FileByFile<read_s2>>(); }},
    {"arxiv", is_arxiv_file, no_padding, false,
     [](const ImportOptions&) -> std::unique_ptr<WorkReader> { return std::make_unique<ArxivReader>(); }},
    {"csv", is_csv_file, no_padding, false,
     [](const ImportOptions& options) -> std::unique_ptr<WorkReader> {
       return std::make_unique<CsvTables>(options.columns);
     }},
};

const Format& format_of(const std::string& name) {
  for (const Format& format : kFormats) {
    if (name == format.name) return format;
  }
  std::string known;
  for (const Format& format : kFormats) known += std::string(known.empty() ? "" : ", ") + format.name;
  throw ImportError(name, 0, "", "not a format that refgrove imports (known: " + known + ")");
}

WorkSetCounts write_dumps(WorkSet& set, const DumpDir& dumps, std::vector<std::string>* outside) {
  std::ofstream graph(dumps.file(kGraphDumpFile), std::ios::binary);
  std::ofstream words(dumps.file(kWordDumpFiles[0]), std::ios::binary);
  std::ofstream empty2(dumps.file(kWordDumpFiles[1])), empty3(dumps.file(kWordDumpFiles[2]));
  const WorkSetCounts counts = set.write_dumps(graph, words, outside);
  graph.close();
  words.close();
  if (!graph || !words || !empty2 || !empty3) throw ImportError(dumps.path(), 0, "", "the dumps cannot be written");
  return counts;
}

}  // namespace

const std::vector<std::string>& import_formats() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> all;
    for (const Format& format : kFormats) all.emplace_back(format.name);
    return all;
  }();
  return names;
}

ImportSummary import_works(const std::string& format_name, const std::vector<std::string>& inputs,
                           const std::string& target, const ImportOptions& options, StagedRunHooks& hooks,
                           const std::function<void(const ImportError&)>& on_bad) {
  const Format& format = format_of(format_name);
  const std::vector<std::string> files = list_input_files(inputs, format.usable);
  if (files.empty()) throw ImportError(format_name, 0, "", "no input given");
  TargetPaths paths;
  std::string error;
  if (!resolve_target(target, &paths, &error)) throw ImportError(target, 0, "", error);
  const DumpDir dumps(paths);
  ImportSummary summary;
  // Freed once written as dumps, before preprocessing takes its own memory.
  auto set = std::make_unique<WorkSet>(options.years, dumps.path());
  WorkSink sink;
  sink.work = [&set](const ImportedWork& w) { set->add(w); };
  sink.abstract = [&set](std::string key, std::string abstract) { set->add_abstract(key, abstract); };
  sink.citation = [&set](std::string citing, std::string cited) { set->add_citation(citing, cited); };
  sink.bad = [&](const ImportError& e) {
    if (!options.skip_bad) throw e;
    ++summary.refused;
    if (on_bad) on_bad(e);
  };
  const std::unique_ptr<WorkReader> reader = format.reader(options);
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (format.by_lines) {
      read_input_lines(files[i], format.padding(),
                       [&](const FileContents& piece) { reader->read(files[i], piece, sink); });
    } else {
      reader->read(files[i], read_input_file(files[i], format.padding()), sink);
    }
    if (options.progress) options.progress(i + 1, files.size(), set->read());
  }
  reader->finish(sink);

  if (set->read() == 0) {  // citations alone make no data set
    throw ImportError(files.size() == 1 ? files.front() : inputs.front(), 0, "", "no works found in the input");
  }
  std::vector<std::string> outside;
  summary.works = write_dumps(*set, dumps, &outside);
  set.reset();

  StagedRequest request{dumps.path(), target, {}, "refgrove import", {}};
  if (options.out) request.options.out = options.out;
  if (options.err) request.options.err = options.err;
  if (!outside.empty()) {
    request.extra_files.emplace_back(kOutsideKeysFile, outside_keys_file(summary.works.kept + 1, outside));
  }
  StagedResult result;
  try {
    result = staged_preprocess(request, hooks);
  } catch (const DumpParseError& e) {  // the dumps are written to parse: a fault here is ours
    throw ImportError(target, 0, "", "the works written as dumps do not parse (" + e.message + ")");
  }
  summary.target = result.target;
  summary.data = result.summary;
  return summary;
}

}  // namespace refgrove
