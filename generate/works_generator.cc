#include "generate/works_generator.h"

#include <sys/stat.h>
#include <zlib.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <unordered_map>
#include <utility>

#include "generate/buffered_file.h"

namespace refgrove {
namespace {

constexpr std::int64_t kWorksPerPart = 100000;
constexpr std::int32_t kLargestArxivNumber = 9999999;

void append_json_string(std::string& s, std::string_view text) {
  s += '"';
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      s += '\\';
      s += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      char escaped[8];
      std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
      s += escaped;
    } else {
      s += c;
    }
  }
  s += '"';
}

template <typename Words>
std::string joined(const Words& words, std::string_view separator = " ") {
  std::string text;
  for (const auto& w : words) {
    if (!text.empty()) text += separator;
    text += w;
  }
  return text;
}

void append_year_or_null(std::string& s, const GeneratedDocument& d) {
  if (d.year) {
    append_int(s, *d.year);
  } else {
    s += "null";
  }
}

// One format's files: write() takes the documents in order, close() ends
// them; both false when a file cannot be written (`error` then says why).
class WorksWriter {
 public:
  virtual ~WorksWriter() = default;
  virtual bool write(const GeneratedDocument& d) = 0;
  virtual bool close() = 0;
  std::int64_t bytes = 0;
  std::string error;
};

bool open_all(std::initializer_list<std::pair<BufferedFile*, std::string>> files, std::string* error) {
  for (const auto& [file, name] : files) {
    if (!file->open(name)) {
      *error = "cannot create " + name + ": " + std::strerror(errno);
      return false;
    }
  }
  return true;
}

bool close_all(std::initializer_list<BufferedFile*> files, std::int64_t* bytes, std::string* error) {
  bool ok = true;
  for (BufferedFile* f : files) {
    ok = f->close() && ok;
    *bytes += f->bytes();
    if (!ok && error->empty()) *error = "write error in " + f->name();
  }
  return ok;
}

class OpenAlexWriter : public WorksWriter {
 public:
  explicit OpenAlexWriter(std::string dir) : dir_(std::move(dir)) {}
  ~OpenAlexWriter() override {
    if (part_ != nullptr) gzclose(part_);
  }

  bool write(const GeneratedDocument& d) override {
    if (written_ % kWorksPerPart == 0 && !next_part()) return false;
    ++written_;
    append_work(d);
    return buffer_.size() < (1u << 20) || flush();
  }

  bool close() override {
    if (part_ == nullptr) return true;  // no works, no part
    const bool ok = flush() && gzclose(part_) == Z_OK;
    part_ = nullptr;
    if (!ok && error.empty()) error = "write error in " + name_;
    return ok;
  }

 private:
  bool next_part() {
    if (part_ != nullptr && !close()) return false;
    char name[32];
    std::snprintf(name, sizeof name, "part_%03lld.gz", static_cast<long long>(written_ / kWorksPerPart));
    name_ = dir_ + name;
    part_ = gzopen(name_.c_str(), "wb1");  // fast: the benchmark reads them, it does not time their writing
    if (part_ == nullptr) error = "cannot create " + name_ + ": " + std::strerror(errno);
    return part_ != nullptr;
  }

  bool flush() {
    if (!buffer_.empty() && gzwrite(part_, buffer_.data(), static_cast<unsigned>(buffer_.size())) == 0) {
      error = "write error in " + name_;
      return false;
    }
    bytes += static_cast<std::int64_t>(buffer_.size());
    buffer_.clear();
    return true;
  }

  void append_id(std::int32_t did) {
    append_json_string(buffer_, "https://openalex.org/" + generated_work_key("openalex", did));
  }

  void append_work(const GeneratedDocument& d) {
    std::string& s = buffer_;
    const std::string title = joined(d.title);
    s += "{\"id\":";
    append_id(d.did);
    s += ",\"display_name\":";
    append_json_string(s, title);
    s += ",\"title\":";
    append_json_string(s, title);
    s += ",\"publication_year\":";
    append_year_or_null(s, d);
    s += ",\"authorships\":[";
    for (std::size_t k = 0; k < d.authors.size(); ++k) {
      s += k == 0 ? "{\"author\":{\"display_name\":" : ",{\"author\":{\"display_name\":";
      append_json_string(s, d.authors[k]);
      s += "}}";
    }
    s += "],\"abstract_inverted_index\":";
    append_inverted_index(d);
    s += ",\"referenced_works\":[";
    for (std::size_t k = 0; k < d.cited.size(); ++k) {
      if (k > 0) s += ',';
      append_id(d.cited[k]);
    }
    s += "]}\n";
  }

  // Each word once, with the positions it holds, in the order first met.
  void append_inverted_index(const GeneratedDocument& d) {
    if (!d.has_abstract) {
      buffer_ += "null";
      return;
    }
    std::vector<std::pair<std::string_view, std::vector<int>>> index;
    std::unordered_map<std::string_view, std::size_t> slot;
    for (std::size_t p = 0; p < d.abstract.size(); ++p) {
      const auto [at, inserted] = slot.try_emplace(d.abstract[p], index.size());
      if (inserted) index.emplace_back(d.abstract[p], std::vector<int>());
      index[at->second].second.push_back(static_cast<int>(p));
    }
    buffer_ += '{';
    for (std::size_t k = 0; k < index.size(); ++k) {
      if (k > 0) buffer_ += ',';
      append_json_string(buffer_, index[k].first);
      buffer_ += ":[";
      for (std::size_t j = 0; j < index[k].second.size(); ++j) {
        if (j > 0) buffer_ += ',';
        append_int(buffer_, index[k].second[j]);
      }
      buffer_ += ']';
    }
    buffer_ += '}';
  }

  std::string dir_, name_, buffer_;
  gzFile part_ = nullptr;
  std::int64_t written_ = 0;
};

class S2Writer : public WorksWriter {
 public:
  explicit S2Writer(const std::string& dir) {
    opened_ = open_all({{&papers_, dir + "papers.jsonl"},
                        {&abstracts_, dir + "abstracts.jsonl"},
                        {&citations_, dir + "citations.jsonl"}},
                       &error);
  }

  bool write(const GeneratedDocument& d) override {
    if (!opened_) return false;
    std::string& p = papers_.text();
    p += "{\"corpusid\":";
    append_int(p, d.did);
    p += ",\"externalids\":{\"DOI\":null},\"title\":";
    append_json_string(p, joined(d.title));
    p += ",\"year\":";
    append_year_or_null(p, d);
    p += ",\"authors\":[";
    for (std::size_t k = 0; k < d.authors.size(); ++k) {
      p += k == 0 ? "{\"authorId\":null,\"name\":" : ",{\"authorId\":null,\"name\":";
      append_json_string(p, d.authors[k]);
      p += '}';
    }
    p += "]}\n";
    if (d.has_abstract) {
      std::string& a = abstracts_.text();
      a += "{\"corpusid\":";
      append_int(a, d.did);
      a += ",\"openaccessinfo\":null,\"abstract\":";
      append_json_string(a, joined(d.abstract));
      a += "}\n";
    }
    for (std::int32_t c : d.cited) {
      std::string& t = citations_.text();
      t += "{\"citingcorpusid\":";
      append_int(t, d.did);
      t += ",\"citedcorpusid\":";
      append_int(t, c);
      t += "}\n";
    }
    return papers_.flush_if_full() && abstracts_.flush_if_full() && citations_.flush_if_full();
  }

  bool close() override { return opened_ && close_all({&papers_, &abstracts_, &citations_}, &bytes, &error); }

 private:
  BufferedFile papers_, abstracts_, citations_;
  bool opened_ = false;
};

class ArxivWriter : public WorksWriter {
 public:
  explicit ArxivWriter(std::string dir) : dir_(std::move(dir)) {
    opened_ = make_dir(dir_ + "abs") && open_all({{&edges_, dir_ + "cit-generated.txt"}}, &error);
    edges_.text() += "# Directed graph: citations among generated papers\n# FromNodeId\tToNodeId\n";
  }

  bool write(const GeneratedDocument& d) override {
    if (!opened_) return false;
    if (d.did > kLargestArxivNumber) {
      error = "DID " + std::to_string(d.did) + " has more than seven digits, as arXiv numbers cannot";
      return false;
    }
    char folder[16], number[16];
    std::snprintf(folder, sizeof folder, "%04d", d.did / 1000);
    std::snprintf(number, sizeof number, "%07d", d.did);
    if (d.did / 1000 != folder_ && !make_dir(dir_ + "abs/" + folder)) return false;
    folder_ = d.did / 1000;
    BufferedFile abs;
    if (!open_all({{&abs, dir_ + "abs/" + folder + "/" + number + ".abs"}}, &error)) return false;
    append_abs(d, abs.text());
    if (!close_all({&abs}, &bytes, &error)) return false;
    for (std::int32_t c : d.cited) {
      append_int(edges_.text(), d.did);
      edges_.text() += '\t';
      append_int(edges_.text(), c);
      edges_.text() += '\n';
    }
    return edges_.flush_if_full();
  }

  bool close() override { return opened_ && close_all({&edges_}, &bytes, &error); }

 private:
  bool make_dir(const std::string& path) {
    if (mkdir(path.c_str(), 0777) == 0 || errno == EEXIST) return true;
    error = "cannot create " + path + ": " + std::strerror(errno);
    return false;
  }

  static void append_abs(const GeneratedDocument& d, std::string& s) {
    s += "------------------------------------------------------------------------------\n\\\\\n";
    s += "Paper: " + generated_work_key("arxiv", d.did) + "\n";
    s += "From: " + d.authors.front() + " <author@example.org>\n";
    if (d.year) s += "Date: Mon, 1 Jan " + std::to_string(*d.year) + " 00:00:00 GMT   (1kb)\n";
    s += "\nTitle: " + joined(d.title) + "\n";
    s += "Authors: ";
    for (std::size_t k = 0; k < d.authors.size(); ++k) {
      if (k > 0) s += k + 1 == d.authors.size() ? " and " : ", ";
      s += d.authors[k];
    }
    s += "\nComments: generated\n\\\\\n";
    std::size_t column = 0;
    for (std::string_view word : d.abstract) {
      if (column + word.size() > 76) {
        s += '\n';
        column = 0;
      }
      s += column == 0 ? "  " : " ";
      s += word;
      column += word.size() + 1;
    }
    s += "\n\\\\\n";
  }

  std::string dir_;
  BufferedFile edges_;
  std::int32_t folder_ = -1;
  bool opened_ = false;
};

class CsvWriter : public WorksWriter {
 public:
  explicit CsvWriter(const std::string& dir) {
    opened_ = open_all({{&works_, dir + "works.csv"}, {&citations_, dir + "citations.csv"}}, &error);
    works_.text() += "id,year,title,authors,abstract\n";
    citations_.text() += "citing,cited\n";
  }

  bool write(const GeneratedDocument& d) override {
    if (!opened_) return false;
    std::string& w = works_.text();
    w += generated_work_key("csv", d.did);
    w += ',';
    if (d.year) append_int(w, *d.year);
    w += ',';
    append_quoted(w, joined(d.title));
    w += ',';
    append_quoted(w, joined(d.authors, "; "));
    w += ',';
    append_quoted(w, joined(d.abstract));
    w += '\n';
    for (std::int32_t c : d.cited) {
      citations_.text() += generated_work_key("csv", d.did) + "," + generated_work_key("csv", c) + "\n";
    }
    return works_.flush_if_full() && citations_.flush_if_full();
  }

  bool close() override { return opened_ && close_all({&works_, &citations_}, &bytes, &error); }

 private:
  static void append_quoted(std::string& s, std::string_view text) {
    s += '"';
    for (const char c : text) {
      if (c == '"') s += '"';
      s += c;
    }
    s += '"';
  }

  BufferedFile works_, citations_;
  bool opened_ = false;
};

std::unique_ptr<WorksWriter> writer_for(const std::string& format, const std::string& dir) {
  if (format == "openalex") return std::make_unique<OpenAlexWriter>(dir);
  if (format == "s2") return std::make_unique<S2Writer>(dir);
  if (format == "arxiv") return std::make_unique<ArxivWriter>(dir);
  if (format == "csv") return std::make_unique<CsvWriter>(dir);
  return nullptr;
}

}  // namespace

const std::vector<std::string>& generated_work_formats() {
  static const std::vector<std::string> formats = {"openalex", "s2", "arxiv", "csv"};
  return formats;
}

std::string generated_work_key(const std::string& format, std::int32_t did) {
  if (format == "s2") return std::to_string(did);
  if (format == "arxiv") {
    char number[16];
    std::snprintf(number, sizeof number, "%07d", did);
    return std::string("gen/") + number;
  }
  return "W" + std::to_string(did);
}

bool generate_works(const std::string& format, const std::string& dir, const DocumentGeneratorOptions& options,
                    WorksGeneratorResult* result, std::string* error) {
  const std::unique_ptr<WorksWriter> writer = writer_for(format, dir);
  if (!writer) {
    *error = format + ": not a format of works (openalex, s2, arxiv, csv)";
    return false;
  }
  DocumentGenerator documents(options);
  GeneratedDocument d;
  while (documents.next(&d)) {
    if (!writer->write(d)) {
      *error = writer->error;
      return false;
    }
  }
  if (!writer->close()) {
    *error = writer->error;
    return false;
  }
  result->bytes = writer->bytes;
  result->last_did = d.did;
  return true;
}

}  // namespace refgrove
