#include "preproc/concurrent_graph_parse.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <istream>
#include <limits>
#include <streambuf>

#include "graph/graph_dump.h"

namespace refgrove {

namespace {

// The bytes [begin, end) of a file as a stream buffer; a file that cannot
// be opened reads as empty, as an ifstream of it would. Only a stretch
// after the first seeks, so that a file that cannot seek is read from its
// start.
class FileRange : public std::streambuf {
 public:
  FileRange(const std::string& path, std::streamoff begin, std::streamoff end, PreprocProgress* progress)
      : left_(end - begin), progress_(progress) {
    if (file_.open(path, std::ios::in | std::ios::binary) == nullptr ||
        (begin > 0 && file_.pubseekpos(begin, std::ios::in) != std::streampos(begin))) {
      left_ = 0;
    }
  }

 protected:
  int_type underflow() override {
    const std::streamsize n = left_ <= 0 ? 0 : file_.sgetn(buffer_, std::min<std::streamoff>(left_, kBufferBytes));
    if (n <= 0) return traits_type::eof();
    left_ -= n;
    if (progress_ != nullptr) progress_->bytes_read.fetch_add(static_cast<std::uint64_t>(n), std::memory_order_relaxed);
    setg(buffer_, buffer_, buffer_ + n);
    return traits_type::to_int_type(buffer_[0]);
  }

 private:
  static constexpr std::streamsize kBufferBytes = 1 << 16;
  std::filebuf file_;
  std::streamoff left_;
  PreprocProgress* progress_;  // or null
  char buffer_[kBufferBytes];
};

// The position after the first line end at or after `from`, or -1.
std::streamoff line_start_after(const std::string& path, std::streamoff from) {
  std::ifstream in(path, std::ios::in | std::ios::binary);
  if (!in.seekg(from)) return -1;
  char chunk[1 << 12];
  std::streamoff at = from;
  while (in.read(chunk, sizeof chunk) || in.gcount() > 0) {
    const std::streamsize n = in.gcount();
    const char* const end = chunk + n;
    const char* const line_end = std::find(static_cast<const char*>(chunk), end, '\n');
    if (line_end != end) return at + (line_end - chunk) + 1;
    at += n;
  }
  return -1;
}

// Cuts the file at line ends into up to `parts` stretches of at least
// `min_bytes` bytes: the positions where the stretches after the first
// start.
std::vector<std::streamoff> part_starts(const std::string& path, int parts, std::uintmax_t min_bytes) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  std::vector<std::streamoff> starts;
  if (error || min_bytes == 0) return starts;
  const std::uintmax_t n = std::min<std::uintmax_t>(static_cast<std::uintmax_t>(std::max(parts, 1)), size / min_bytes);
  for (std::uintmax_t i = 1; i < n; ++i) {
    const auto target = static_cast<std::streamoff>(size / n * i);
    const std::streamoff from = starts.empty() ? target : std::max(target, starts.back());
    const std::streamoff start = line_start_after(path, from);
    if (start < 0 || static_cast<std::uintmax_t>(start) >= size) break;
    starts.push_back(start);
  }
  return starts;
}

void renumber_titles(const std::vector<RefgroveGraphData*>& docs, const std::vector<int>& ids) {
  for (RefgroveGraphData* doc : docs) {
    // The arena's memory; records only show it read-only.
    auto* title = const_cast<WordId*>(doc->title.items);
    for (std::int32_t i = 0; i < doc->title.size(); ++i) {
      title[i] = WordId::from_id(static_cast<std::uint32_t>(ids[title[i].id()]));
    }
  }
}

void renumber_authors(const std::vector<RefgroveGraphData*>& docs, const std::vector<int>& ids) {
  for (RefgroveGraphData* doc : docs) {
    auto* authors = const_cast<std::int32_t*>(doc->authors);
    for (std::int32_t k = 0; k < doc->nb_authors; ++k) authors[k] = ids[static_cast<std::size_t>(authors[k])];
  }
}

}  // namespace

// The records of one stretch of the dump, parsed in a thread of its own.
struct ConcurrentGraphParse::Part {
  Part(const std::string& path, std::streamoff begin, std::streamoff end, PreprocProgress* progress)
      : parse([this, path, begin, end, progress] { read(path, begin, end, progress); }) {}

  void read(const std::string& path, std::streamoff begin, std::streamoff end, PreprocProgress* progress) {
    FileRange range(path, begin, end, progress);
    std::istream in(&range);
    const std::unique_ptr<RefgroveGraphTokenizer> t = create_refgrovegraph_tokenizer(in);
    GraphLineParser parser(&arena, &titles, &authors);
    while (t->has_more_tokens()) {
      if (t->is_next_token("xxxx")) {
        ends_at_marker = true;
        return;
      }
      docs.push_back(parser.parse(*t));
    }
  }

  Arena arena;
  StringTable titles, authors;
  std::vector<RefgroveGraphData*> docs;
  bool ends_at_marker = false;  // stopped at an "xxxx" line
  std::exception_ptr error;
  BackgroundJob parse;  // last: it runs while the others live
};

ConcurrentGraphParse::ConcurrentGraphParse(const std::string& in_dir, const PreprocOptions& options, int parts,
                                           std::uintmax_t min_part_bytes)
    : in_dir_(in_dir), out_(*options.out), err_(*options.err) {
  const std::string path = in_dir + kGraphDumpFile;
  std::streamoff begin = 0;
  for (const std::streamoff start : part_starts(path, parts, min_part_bytes)) {
    parts_.push_back(std::make_unique<Part>(path, begin, start, options.progress));
    begin = start;
  }
  parts_.push_back(std::make_unique<Part>(path, begin, std::numeric_limits<std::streamoff>::max(), options.progress));
}

ConcurrentGraphParse::~ConcurrentGraphParse() = default;

void ConcurrentGraphParse::write_file(StringTable* words, const std::string& out_dir) {
  for (const std::unique_ptr<Part>& part : parts_) part->error = part->parse.wait();
  if (!parts_hold_the_dump()) return;
  writer_ = std::make_unique<BackgroundJob>([this, words, out_dir] { join_and_write(words, out_dir); });
}

GraphPassResult ConcurrentGraphParse::finish(StringTable* words, const std::string& out_dir) {
  if (!writer_) {
    try {
      return preprocGraph(in_dir_, out_dir, words, out_, err_);
    } catch (const ParserError& e) {
      throw DumpParseError(e, in_dir_ + kGraphDumpFile);
    }
  }
  if (const std::exception_ptr error = writer_->wait()) std::rethrow_exception(error);
  report(graph_.docs.size());
  announceGraphFile(out_dir, err_);
  return GraphPassResult{graph_.counts(), write_error_};
}

bool ConcurrentGraphParse::parts_hold_the_dump() const {
  for (const std::unique_ptr<Part>& part : parts_) {
    // Title word ids are kept in 24 bits: beyond that many distinct title
    // words the local ids cannot be told apart in the records.
    if (part->error || part->titles.size() > (1 << 24)) return false;
    if (part->ends_at_marker) break;
  }
  return true;
}

void ConcurrentGraphParse::join_and_write(StringTable* words, const std::string& out_dir) {
  for (const std::unique_ptr<Part>& part : parts_) {
    append(*part, words);
    if (part->ends_at_marker) break;
  }
  write_error_ = writeGraphFile(out_dir, graph_);
}

void ConcurrentGraphParse::append(Part& part, StringTable* words) {
  renumber_titles(part.docs, words->String2IDs(part.titles.by_id));
  if (graph_.author_table.size() == 0) {
    graph_.author_table = std::move(part.authors);
  } else {
    renumber_authors(part.docs, graph_.author_table.String2IDs(part.authors.by_id));
  }
  graph_.docs.insert(graph_.docs.end(), part.docs.begin(), part.docs.end());
  graph_.arena_.absorb(part.arena);
}

void ConcurrentGraphParse::report(std::size_t records) const {
  out_ << "preprocGraph() ...\n";
  for (std::size_t count = 1; count <= records; ++count) reportGraphProgress(err_, count);
  err_ << std::endl;
}

}  // namespace refgrove
