#include "import/arxiv_reader.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdio>
#include <optional>
#include <string_view>

namespace refgrove {
namespace {

constexpr std::string_view kBlockEnd = "\\\\";

std::string_view trimmed(std::string_view s) {
  while (!s.empty() && is_dump_blank(s.front())) s.remove_prefix(1);
  while (!s.empty() && is_dump_blank(s.back())) s.remove_suffix(1);
  return s;
}

std::vector<std::string_view> lines_of(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    lines.push_back(line);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

bool all_digits(std::string_view s) {
  return !s.empty() && std::all_of(s.begin(), s.end(), [](unsigned char c) { return std::isdigit(c); });
}

int year_of_two_digits(std::string_view yy) {
  const int y = (yy[0] - '0') * 10 + (yy[1] - '0');
  return y >= 91 ? 1900 + y : 2000 + y;  // arXiv began in 1991
}

// "Wed, 1 Jan 92 19:38:19 GMT (46kb)" or "Mon, 3 Jan 1994 ...".
std::optional<std::int32_t> year_of_date(std::string_view date) {
  static constexpr std::string_view kMonths[] = {"jan", "feb", "mar", "apr", "may", "jun",
                                                 "jul", "aug", "sep", "oct", "nov", "dec"};
  std::vector<std::string_view> words;
  for (std::size_t at = 0; at < date.size();) {
    const std::size_t end = std::min(date.find_first_of(" ,\t", at), date.size());
    if (end > at) words.push_back(date.substr(at, end - at));
    at = end + 1;
  }
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (words[i].size() == 4 && all_digits(words[i]) && (words[i].starts_with("19") || words[i].starts_with("20"))) {
      return std::stoi(std::string(words[i]));
    }
    std::string month(words[i].substr(0, 3));
    for (char& c : month) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const bool is_month =
        words[i].size() >= 3 && std::find(std::begin(kMonths), std::end(kMonths), month) != std::end(kMonths);
    if (is_month && i + 1 < words.size() && words[i + 1].size() == 2 && all_digits(words[i + 1])) {
      return year_of_two_digits(words[i + 1]);
    }
  }
  return std::nullopt;
}

// hep-th/9501001 gives 1995, 0704.0001 gives 2007.
std::optional<std::int32_t> year_of_key(std::string_view key) {
  const std::size_t slash = key.rfind('/');
  const std::string_view number = slash == std::string_view::npos ? key : key.substr(slash + 1);
  if (number.size() < 4 || !all_digits(number.substr(0, 4))) return std::nullopt;
  return year_of_two_digits(number.substr(0, 2));
}

// Names separated by commas and the word "and"; parenthesised text (the
// affiliations) left out.
std::vector<std::string> authors_of(std::string_view text) {
  std::string plain;
  int depth = 0;
  for (char c : text) {
    if (c == '(') ++depth;
    if (depth == 0) plain += c == ',' ? ' ' + std::string(1, ',') + ' ' : std::string(1, c);
    if (c == ')' && depth > 0) --depth;
  }
  std::vector<std::string> authors;
  std::string name;
  const auto end_name = [&] {
    if (!name.empty()) authors.push_back(name);
    name.clear();
  };
  std::string_view rest = plain;
  while (!rest.empty()) {
    rest = trimmed(rest);
    const std::size_t end = std::min(rest.find_first_of(" \t"), rest.size());
    const std::string_view word = rest.substr(0, end);
    rest.remove_prefix(end);
    if (word == "," || word == "and") {
      end_name();
    } else if (!word.empty()) {
      name += (name.empty() ? "" : " ") + std::string(word);
    }
  }
  end_name();
  return authors;
}

// The old-style number of a key, hep-th/9501001: the archive and 9501001.
bool node_of(std::string_view key, std::string* archive, std::int64_t* node) {
  const std::size_t slash = key.find('/');
  if (slash == std::string_view::npos || slash == 0) return false;
  const std::string_view number = key.substr(slash + 1);
  if (number.size() != 7 || !all_digits(number)) return false;
  *archive = std::string(key.substr(0, slash));
  std::from_chars(number.data(), number.data() + number.size(), *node);
  return true;
}

}  // namespace

bool is_arxiv_file(const std::string& name) {
  for (const char* end : {".abs", ".txt", ".abs.gz", ".txt.gz"}) {
    if (std::string_view(name).ends_with(end)) return true;
  }
  return false;
}

void ArxivReader::read(const std::string& path, const FileContents& contents, const WorkSink& sink) {
  const std::string_view text(contents.bytes.data(), contents.size);
  if (std::string_view(path).ends_with(".abs") || std::string_view(path).ends_with(".abs.gz")) {
    read_abstract(path, text, sink);
  } else {
    read_edges(path, text, sink);
  }
}

void ArxivReader::read_abstract(const std::string& path, std::string_view text, const WorkSink& sink) {
  const std::vector<std::string_view> lines = lines_of(text);
  std::size_t i = 0;
  while (i < lines.size() && trimmed(lines[i]) != kBlockEnd) ++i;
  if (i == lines.size()) {
    sink.bad(ImportError(path, 0, "", "no header block (a line \\\\ before it)"));
    return;
  }
  std::map<std::string, std::string> header;
  std::string ignored, *field = &ignored;
  for (++i; i < lines.size() && trimmed(lines[i]) != kBlockEnd; ++i) {
    const std::string_view line = lines[i];
    const std::size_t colon = line.find(':');
    if (trimmed(line).empty()) continue;
    if (is_dump_blank(line.front()) || colon == std::string_view::npos) {
      *field += " " + std::string(trimmed(line));  // a field continued
      continue;
    }
    // The first of a repeated field counts (the first Date: is the
    // submission's).
    const auto [at, inserted] = header.try_emplace(std::string(trimmed(line.substr(0, colon))));
    field = inserted ? &at->second : &ignored;
    *field = std::string(trimmed(line.substr(colon + 1)));
  }
  std::string abstract;
  for (++i; i < lines.size() && trimmed(lines[i]) != kBlockEnd; ++i) {
    if (!trimmed(lines[i]).empty()) abstract += (abstract.empty() ? "" : " ") + std::string(trimmed(lines[i]));
  }

  ImportedWork w;
  const std::string_view paper = trimmed(header["Paper"]);
  w.key = std::string(paper.substr(0, std::min(paper.find_first_of(" \t"), paper.size())));
  if (w.key.empty()) {
    sink.bad(ImportError(path, 0, "Paper", "missing"));
    return;
  }
  w.year = year_of_date(header["Date"]);
  if (!w.year) w.year = year_of_key(w.key);
  w.title = header["Title"];
  w.authors = authors_of(header.contains("Authors") ? header["Authors"] : header["Author"]);
  w.abstract = std::move(abstract);
  std::string archive;
  std::int64_t node = 0;
  if (node_of(w.key, &archive, &node)) {
    key_by_node_[node] = w.key;
    archives_.insert(archive);
  }
  sink.work(std::move(w));
}

void ArxivReader::read_edges(const std::string& path, std::string_view text, const WorkSink& sink) {
  const std::vector<std::string_view> lines = lines_of(text);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const std::string_view line = trimmed(lines[i]);
    if (line.empty() || line.front() == '#') continue;
    std::int64_t from = -1, to = -1;
    const char* const line_end = line.data() + line.size();
    const auto [middle, from_error] = std::from_chars(line.data(), line_end, from);
    const bool apart = middle != line_end && is_dump_blank(*middle);
    const std::string_view rest = trimmed(std::string_view(middle, line_end - middle));
    const auto [end, to_error] = std::from_chars(rest.data(), rest.data() + rest.size(), to);
    if (from_error != std::errc() || !apart || to_error != std::errc() || end != rest.data() + rest.size() ||
        from < 0 || to < 0) {
      sink.bad(ImportError(path, static_cast<std::int64_t>(i + 1), "", "not a line FromNodeId<TAB>ToNodeId"));
      continue;
    }
    edges_.emplace_back(from, to);
  }
}

std::string ArxivReader::key_of_node(std::int64_t node) const {
  if (const auto at = key_by_node_.find(node); at != key_by_node_.end()) return at->second;
  char number[24];
  std::snprintf(number, sizeof number, "%07lld", static_cast<long long>(node));
  return archives_.size() == 1 ? *archives_.begin() + "/" + number : number;
}

void ArxivReader::finish(const WorkSink& sink) {
  for (const auto& [from, to] : edges_) sink.citation(key_of_node(from), key_of_node(to));
}

}  // namespace refgrove
