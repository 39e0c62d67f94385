#include "core/data_set.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "core/data_view.h"
#include "graph/did_index.h"

namespace refgrove {

RefgroveData::RefgroveData(const std::string& path, std::ostream& log) {
  word_data = std::make_unique<WordData>(path, log);
  const std::string graph_file_name = path + kGraphFile;
  log << "graph_file_name=" << graph_file_name << std::endl;
  graph = std::make_unique<RefgroveGraph>(MappedFile(graph_file_name), log);
  max_index_size_ = did_index_limit(graph->docs.size(), word_data->doc_info.size());
  size_index();
  index_graph();
  index_words();
  if (unindexed_ > 0) {
    log << "refgrove: " << unindexed_ << " documents not indexed: their DID is negative or out of range\n";
  }
}

RefgroveData::RefgroveData() : word_data(std::make_unique<WordData>()) {
  std::istringstream no_bytes;
  std::ostream no_log(nullptr);
  graph = std::make_unique<RefgroveGraph>(no_bytes, no_log);
}

const RefgroveData& RefgroveData::empty() {
  static const RefgroveData* const kEmpty = new RefgroveData();  // never destroyed: threads may query it at exit
  return *kEmpty;
}

bool RefgroveData::fits(std::int32_t did) const { return did_indexable(did, max_index_size_); }

bool RefgroveData::indexable(std::int32_t did) {
  if (fits(did)) return true;
  ++unindexed_;
  return false;
}

// Sizes the index once for the largest DID that can be indexed, instead of
// growing it DID by DID (a damaged file may name DIDs in the millions).
void RefgroveData::size_index() {
  std::size_t size = 0;
  for (const RefgroveGraphData* doc : graph->docs) {
    if (fits(doc->did)) size = std::max(size, static_cast<std::size_t>(doc->did) + 1);
  }
  const std::vector<DocumentWordInfo>& headers = word_data->doc_info;
  for (std::size_t j = 0; j + 1 < headers.size(); ++j) {
    if (fits(headers[j].did)) size = std::max(size, static_cast<std::size_t>(headers[j].did) + 1);
  }
  did_index.resize(size);
}

void RefgroveData::index_graph() {
  const std::vector<RefgroveGraphData*>& docs = graph->docs;
  for (std::size_t i = 0; i < docs.size(); ++i) {
    if (indexable(docs[i]->did))
      did_index[static_cast<std::size_t>(docs[i]->did)].graph_index = static_cast<std::int32_t>(i);
  }
}

// The last header is the repeated end sentinel and is not a document; the
// file's own sentinel has DID -1 and is skipped like every such header.
void RefgroveData::index_words() {
  const std::vector<DocumentWordInfo>& headers = word_data->doc_info;
  for (std::size_t j = 0; j + 1 < headers.size(); ++j) {
    const std::int32_t did = headers[j].did;
    if (did == -1) continue;
    if (indexable(did)) did_index[static_cast<std::size_t>(did)].word_index = static_cast<std::int32_t>(j);
  }
}

std::shared_ptr<RefgroveData> load_data_set(const std::string& path, std::ostream& log) {
  return std::make_shared<RefgroveData>(path, log);
}

std::string directory_problem(const std::string& path) {
  std::error_code ec;
  const std::filesystem::file_status status = std::filesystem::status(path, ec);
  if (std::filesystem::is_directory(status)) return "";
  return std::filesystem::exists(status) ? "not a directory" : "no such directory";
}

std::string data_dir_problem(const std::string& path) {
  if (const std::string problem = directory_problem(path); !problem.empty()) return path + ": " + problem;
  const std::string dir = path.empty() || path.back() == '/' ? path : path + "/";
  for (const char* name : {kWordTableFile, kWordIdxFile, kWordDataFile, kGraphFile}) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(dir + name, ec)) {
      return dir + " is not a data directory: " + name + " is missing (make one with refgrove preprocess)";
    }
  }
  return "";
}

}  // namespace refgrove
