// arXiv abstracts in the listing layout of the hep-th and hep-ph sets
// (files ending in ".abs"), and citation edge lists in SNAP's layout (other
// files: cit-HepTh.txt).
//
// An .abs file: anything before the first line "\\", then a header block of
// "Name: value" lines (a line that starts with a blank continues the field
// before it) up to the next "\\", then the abstract up to the next "\\" or
// the end. Of the header: "Paper:" (the key, hep-th/9501001), "Title:",
// "Authors:" or "Author:" (names separated by commas and the word "and";
// parenthesised affiliations left out) and "Date:" (the first one: a year
// of four digits in it, or of two after the month). Without a year there,
// the key gives it (hep-th/9501001: 1995; 0704.0001: 2007).
//
// An edge list: "#" comment lines, then "FromNodeId ToNodeId" lines (tab or
// blank between). A node is a paper's number without its archive and
// leading zeros (9501001, 1001 for 0001001); it names the paper read with
// that number, or else, for a paper outside the set, the key made of the
// number and the archive of the papers read (when they all share one).
// Edges are held back until every file is read.
#ifndef REFGROVE_IMPORT_ARXIV_READER_H_
#define REFGROVE_IMPORT_ARXIV_READER_H_

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "import/imported_work.h"
#include "import/input_files.h"

namespace refgrove {

class ArxivReader : public WorkReader {
 public:
  void read(const std::string& path, const FileContents& contents, const WorkSink& sink) override;
  void finish(const WorkSink& sink) override;

 private:
  void read_abstract(const std::string& path, std::string_view text, const WorkSink& sink);
  void read_edges(const std::string& path, std::string_view text, const WorkSink& sink);
  std::string key_of_node(std::int64_t node) const;

  std::vector<std::pair<std::int64_t, std::int64_t>> edges_;  // citing, cited nodes
  std::map<std::int64_t, std::string> key_by_node_;           // papers read
  std::set<std::string> archives_;                            // of the papers read
};

// Whether a file met in a directory is an abstract or an edge list: .abs,
// .txt, and those ending in .gz.
bool is_arxiv_file(const std::string& name);

}  // namespace refgrove

#endif  // REFGROVE_IMPORT_ARXIV_READER_H_
